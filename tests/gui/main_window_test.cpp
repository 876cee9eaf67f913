// Both windows driven with real clicks and keys.
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>

#include "gui_support.h"
#include "gun/gun_file.h"
#include "shell/document.h"
#include "shell/qt/edit_gun_form.h"
#include "shell/qt/gun_list_control.h"

namespace {

using Strings = std::vector<std::string>;

void retype(QLineEdit* field, const char* text) {
  field->selectAll();
  QTest::keyClicks(field, text);
}
void clickOK(QWidget* form) { click(form->findChild<QWidget*>("OK")); }

class MainWindow : public MainWindowTest {
 protected:
  void EnterGun(const std::vector<std::pair<const char*, const char*>>& fields) {
    whenModal<EditGunForm>([fields](EditGunForm* form) {
      for (auto [name, text] : fields) retype(form->Field(name), text);
      clickOK(form);
    });
    Press("NewGun");
    waitForNoModal();
  }
  Strings Rows() {  // the cells of each row joined by '|'
    Strings rows;
    for (int row = 0; row < window_->RowCount(); ++row) {
      QTreeWidgetItem* item = window_->List()->topLevelItem(row);
      rows.push_back(QStringList{item->text(0), item->text(1), item->text(2), item->text(3)}
                         .join('|').toStdString());
    }
    return rows;
  }
  void ClickAt(int row, int column, bool twice = false) {  // a row past the last: below it
    GunListControl* list = window_->List();
    QRect rect = list->visualItemRect(list->topLevelItem(std::min(row, list->RowCount() - 1)));
    QPoint at(list->header()->sectionViewportPosition(column) + 10,
              row < list->RowCount() ? rect.center().y() : rect.bottom() + 20);
    twice ? QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, at)
          : QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, at);
  }
};

TEST_F(MainWindow, RunsTheGunCommandsSelectsByClicksAnywhereInARowAndSaves) {
  EnterGun({{"TypeName", "Alpha"}, {"Caliber", "12.7"}, {"ROF", "750.4"}, {"MuzzleVel", "900"}});
  EnterGun({{"TypeName", "Bravo"}, {"Caliber", "20"}});
  Press("CopyGun");
  Press("MoveUp");
  EXPECT_EQ(Rows(), (Strings{"Alpha|12.7|750|900", "Copy of Bravo|20.0|0|0", "Bravo|20.0|0|0"}));
  Press("MoveDown");
  for (int column = 0; column < GunListControl::kCells; ++column) {
    ClickAt(column % 2, column);
    EXPECT_EQ(window_->FirstSelectedRow(), column % 2) << column;
  }
  ClickAt(3, 2);  // below the last row
  EXPECT_EQ(window_->FirstSelectedRow(), 2);
  whenModal<EditGunForm>([](EditGunForm* form) {
    EXPECT_EQ(form->Field("ROF")->text(), "750.4");
    retype(form->Field("ROF"), "600");
    clickOK(form);
  });
  ClickAt(0, 3, true);  // a double click edits that row
  waitForNoModal();
  window_->activateWindow();  // focus moves only in the active window
  ASSERT_TRUE(QTest::qWaitForWindowActive(window_));
  window_->List()->clearSelection();
  window_->findChild<QWidget*>("Save")->setFocus();  // losing the focus, the list gets its row back
  EXPECT_EQ(window_->FirstSelectedRow(), 2);
  Press("DeleteGun");
  EXPECT_EQ(Rows(), (Strings{"Alpha|12.7|600|900", "Bravo|20.0|0|0"}));
  EXPECT_EQ(window_->FirstSelectedRow(), 1);
  whenModal<QFileDialog>([](QFileDialog* chooser) {
    chooser->selectNameFilter("All Files (*)");
    // Typed rather than selected: selectFile leaves a focused name field alone.
    chooser->findChild<QLineEdit*>("fileNameEdit")->setText("a[*]");  // the toolkit's modified mark
    QMetaObject::invokeMethod(chooser, "accept");
  });
  Press("Save");
  waitForNoModal();
  EXPECT_EQ(window_->windowHandle()->title(), "a[*].ini");
  whenModal<QFileDialog>([](QFileDialog* chooser) {
    EXPECT_EQ(chooser->selectedNameFilter(), "All Files (*)");
    chooser->reject();
  });
  Press("SaveAs");
}

TEST_F(MainWindow, EnterDoesNothingAndEscAsksOnADirtyDocumentWhereCancelKeepsIt) {
  EnterGun({{"TypeName", "Alpha"}});
  window_->List()->setFocus();
  QTest::keyClick(window_->List(), Qt::Key_Return);
  QTest::qWait(50);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  SaveChangesPrompt.dirty = 0;
  whenModal<EditGunForm>([](EditGunForm* form) {
    QTest::keyClick(form->Field("Caliber"), Qt::Key_Enter);
    EXPECT_TRUE(form->isVisible());
    QTest::keyClick(form, Qt::Key_Escape);
  });
  Press("EditGun");
  EXPECT_EQ(SaveChangesPrompt.dirty, 0) << "Esc cancels the form";
  SaveChangesPrompt.dirty = 1;
  for (bool escape : {true, false}) {  // Esc, then the close box
    whenModal<QMessageBox>([](QMessageBox* box) {
      EXPECT_EQ(box->text(), "Save changes to Untitled?");
      QTest::keyClick(box, Qt::Key_Escape);
    });
    escape ? QTest::keyClick(window_, Qt::Key_Escape) : void(window_->close());
    waitForNoModal();
    EXPECT_TRUE(window_->isVisible()) << escape;
  }
  whenModal<QMessageBox>([](QMessageBox* box) { QTest::keyClick(box, Qt::Key_N); });
  QTest::keyClick(window_, Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
}

TEST_F(MainWindow, FormRefusesFieldsInExchangeOrderAndOpensLongTextsWhole) {
  const std::string type(40, 'T'), full(100, 'F');
  writeWholeFile(root_.file("long.ini"),
                 "[GunData001]\nTypeName=" + type + "\nFullName=" + full + "\n");
  GunFileLoad(window_, systemPath(root_.file("long.ini")).c_str());
  whenModal<EditGunForm>([&](EditGunForm* form) {
    EXPECT_EQ(form->focusWidget(), form->Field("TypeName"));
    EXPECT_EQ(form->Field("TypeName")->text().toStdString(), type);
    form->Field("TypeName")->end(false);
    QTest::keyClicks(form->Field("TypeName"), "xy");
    EXPECT_EQ(form->Field("TypeName")->text().size(), 40) << "typing stops past the limit";
    retype(form->Field("Caliber"), "12y");
    retype(form->Field("AmmoWt"), "12x");
    const struct { const char *label, *field; int cut; } refusals[] = {
        {"Ammo Wt (g)", "AmmoWt", 1}, {"Caliber (mm)", "Caliber", 1},
        {"Full Name", "FullName", 37}, {"Type Name", "TypeName", 9}};
    for (auto [label, field, cut] : refusals) {
      whenModal<QMessageBox>([label](QMessageBox* box) {
        EXPECT_TRUE(box->text().startsWith(QString(label) + ":")) << box->text().toStdString();
        box->accept();
      });
      clickOK(form);
      EXPECT_EQ(form->focusWidget(), form->Field(field)) << label;
      form->Field(field)->end(false);
      for (int i = 0; i < cut; ++i) QTest::keyClick(form->Field(field), Qt::Key_Backspace);
    }
    clickOK(form);
  });
  Press("EditGun");
  EXPECT_EQ(Rows(), Strings{std::string(31, 'T') + "|12.0|0|0"});
}

}  // namespace
