// Both windows driven with real clicks and keys.
#include <QCheckBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <map>

#include "gui_support.h"
#include "gun/gun_file.h"
#include "shell/document.h"
#include "shell/qt/edit_gun_form.h"
#include "shell/qt/gun_list_control.h"

namespace {

using Strings = std::vector<std::string>;

class MainWindow : public MainWindowTest {
 protected:
  // Runs New Gun and types the fields into the form before OK.
  void EnterGun(const std::map<std::string, std::string>& fields) {
    whenModal<EditGunForm>([fields](EditGunForm* form) {
      for (const auto& [name, text] : fields) {
        form->Field(name.c_str())->selectAll();
        QTest::keyClicks(form->Field(name.c_str()), QString::fromStdString(text));
      }
      click(form->findChild<QWidget*>("OK"));
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
  // A point in the list's viewport on `row` (past the last row: below it) in `column`.
  QPoint At(int row, int column) {
    GunListControl* list = window_->List();
    QRect rect = list->visualItemRect(list->topLevelItem(std::min(row, list->RowCount() - 1)));
    int y = row < list->RowCount() ? rect.center().y() : rect.bottom() + 20;
    return QPoint(list->header()->sectionViewportPosition(column) + 10, y);
  }
};

// Expects a refusal box naming `label`, and closes it.
void expectRefusal(const QString& label) {
  whenModal<QMessageBox>([label](QMessageBox* box) {
    EXPECT_TRUE(box->text().startsWith(label + ":")) << box->text().toStdString();
    box->accept();
  });
}

TEST_F(MainWindow, RunsTheGunCommandsAndSelectsByClicksAnywhereInARow) {
  EnterGun({{"TypeName", "Alpha"}, {"Caliber", "12.7"}, {"ROF", "750.4"}, {"MuzzleVel", "900"}});
  EnterGun({{"TypeName", "Bravo"}, {"Caliber", "20"}});
  Press("CopyGun");
  Press("MoveUp");
  EXPECT_EQ(Rows(), (Strings{"Alpha|12.7|750|900", "Copy of Bravo|20.0|0|0", "Bravo|20.0|0|0"}));
  EXPECT_EQ(window_->FirstSelectedRow(), 1);
  EXPECT_EQ(SaveChangesPrompt.dirty, 1);
  Press("MoveDown");
  Activate();
  GunListControl* list = window_->List();
  for (int column = 0; column < GunListControl::kCells; ++column) {
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, At(column % 2, column));
    EXPECT_EQ(window_->FirstSelectedRow(), column % 2) << column;
  }
  Button("Save")->setFocus();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, At(3, 2));  // below the last row
  EXPECT_EQ(window_->FirstSelectedRow(), 2);
  EXPECT_TRUE(list->hasFocus());
  whenModal<EditGunForm>([](EditGunForm* form) {
    EXPECT_EQ(form->Field("ROF")->text(), "750.4");
    form->Field("ROF")->selectAll();
    QTest::keyClicks(form->Field("ROF"), "600");
    click(form->findChild<QWidget*>("OK"));
  });
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, At(0, 3));  // edits that row
  waitForNoModal();
  EXPECT_EQ(window_->focusWidget(), list);
  Activate();
  list->clearSelection();
  Button("Save")->setFocus();  // the list loses the focus and keeps a row selected
  EXPECT_EQ(window_->FirstSelectedRow(), 2);
  Press("DeleteGun");
  EXPECT_EQ(Rows(), (Strings{"Alpha|12.7|600|900", "Bravo|20.0|0|0"}));
  EXPECT_EQ(window_->FirstSelectedRow(), 1);
}

TEST_F(MainWindow, EnterDoesNothingAndEscAsksOnADirtyDocumentWhereCancelKeepsIt) {
  EnterGun({{"TypeName", "Alpha"}});
  SaveChangesPrompt.dirty = 0;
  window_->List()->setFocus();
  QTest::keyClick(window_->List(), Qt::Key_Return);
  QTest::qWait(50);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  whenModal<EditGunForm>([](EditGunForm* form) {
    QTest::keyClick(form->Field("TypeName"), Qt::Key_Return);
    QTest::keyClick(form->Field("Caliber"), Qt::Key_Enter);
    EXPECT_TRUE(form->isVisible());
    QTest::keyClick(form, Qt::Key_Escape);
  });
  Press("EditGun");
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
  SaveChangesPrompt.dirty = 1;
  for (bool escape : {true, false}) {  // Esc, then the close box
    whenModal<QMessageBox>([](QMessageBox* box) {
      EXPECT_EQ(box->text(), "Save changes to Untitled?");
      EXPECT_EQ(box->windowTitle(), "Tessarine");
      QTest::keyClick(box, Qt::Key_Escape);
    });
    if (escape) QTest::keyClick(window_, Qt::Key_Escape);
    if (!escape) window_->close();
    waitForNoModal();
    EXPECT_TRUE(window_->isVisible()) << escape;
  }
  whenModal<QMessageBox>([](QMessageBox* box) { QTest::keyClick(box, Qt::Key_N); });
  QTest::keyClick(window_, Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(window_->RowCount(), 0) << "the closing window gives its guns back";
}

TEST_F(MainWindow, CaptionIsExactlyTheTitleAndTheChooserKeepsItsFilter) {
  whenModal<QFileDialog>([](QFileDialog* chooser) {
    chooser->selectNameFilter("All Files (*)");
    chooser->selectFile("a[*]");  // the toolkit's own mark for a modified window
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

TEST_F(MainWindow, FormRefusesAmmoWtBeforeCaliberAndFocusesIt) {
  whenModal<EditGunForm>([](EditGunForm* form) {
    EXPECT_EQ(form->Field("AmmoWt")->text(), "0");
    EXPECT_FALSE(form->findChild<QCheckBox*>("AddLight")->isChecked());
    EXPECT_EQ(form->focusWidget(), form->Field("TypeName"));
    QTest::keyClicks(form->Field("Caliber"), "abc");
    QTest::keyClicks(form->Field("AmmoWt"), "12x");
    expectRefusal("Ammo Wt (g)");
    click(form->findChild<QWidget*>("OK"));
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->focusWidget(), form->Field("AmmoWt"));
    QTest::keyClick(form, Qt::Key_Escape);
  });
  Press("NewGun");
  EXPECT_EQ(window_->RowCount(), 0);
}

TEST_F(MainWindow, FormOpensALongNameFromAFileWholeAndRefusesOKUntilItIsShortened) {
  const std::string type(40, 'T'), full(100, 'F');
  writeWholeFile(root_.file("long.ini"),
                 "[GunData001]\nTypeName=" + type + "\nFullName=" + full + "\nAmmoWt=0.1\n");
  GunFileLoad(window_, systemPath(root_.file("long.ini")).c_str());
  auto shorten = [](QLineEdit* field, int count) {
    field->end(false);
    for (int i = 0; i < count; ++i) QTest::keyClick(field, Qt::Key_Backspace);
  };
  whenModal<EditGunForm>([&](EditGunForm* form) {
    EXPECT_EQ(form->Field("TypeName")->text().toStdString(), type);
    EXPECT_EQ(form->Field("AmmoWt")->text(), "100");
    form->Field("TypeName")->end(false);
    QTest::keyClicks(form->Field("TypeName"), "xy");
    EXPECT_EQ(form->Field("TypeName")->text().size(), 40) << "typing stops past the limit";
    expectRefusal("Full Name");
    click(form->findChild<QWidget*>("OK"));
    shorten(form->Field("FullName"), 37);
    expectRefusal("Type Name");
    click(form->findChild<QWidget*>("OK"));
    EXPECT_EQ(form->focusWidget(), form->Field("TypeName"));
    shorten(form->Field("TypeName"), 9);
    click(form->findChild<QWidget*>("OK"));
  });
  Press("EditGun");
  EXPECT_EQ(Rows(), Strings{std::string(31, 'T') + "|0.0|0|0"});
}

}  // namespace
