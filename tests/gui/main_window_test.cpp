// The main window driven with real clicks and keys: gun commands, selection, keys, the frame.
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QScrollBar>
#include <map>
#include <vector>

#include "gui_support.h"
#include "shell/document.h"
#include "shell/qt/edit_gun_form.h"
#include "shell/qt/gun_list_control.h"

namespace {

using Fields = std::map<std::string, std::string>;

class MainWindow : public MainWindowTest {
 protected:
  // Runs New Gun (or the button given) and types the fields into the form before OK.
  void EnterGun(const Fields& fields, const char* button = "NewGun") {
    whenModal<EditGunForm>([fields](EditGunForm* form) {
      for (const auto& [name, text] : fields) {
        form->Field(name.c_str())->selectAll();
        QTest::keyClicks(form->Field(name.c_str()), QString::fromStdString(text));
      }
      click(form->findChild<QWidget*>("OK"));
    });
    Press(button);
    waitForNoModal();
  }
  std::vector<std::string> Rows() {
    std::vector<std::string> rows;
    char cell[GunListView::kCellSize];
    for (int row = 0; row < window_->RowCount(); ++row) {
      std::string text;
      for (int c = 0; c < GunListControl::kCells; ++c) {
        window_->ReadCell(row, c, cell);
        text += (c ? "|" : "") + std::string(cell);
      }
      rows.push_back(text);
    }
    return rows;
  }
  // A point in the list's viewport on `row` (past the last row: below it) in `column`.
  QPoint At(int row, int column) {
    GunListControl* list = window_->List();
    int x = list->header()->sectionViewportPosition(column) + 10;
    QRect last = list->visualItemRect(list->topLevelItem(list->RowCount() - 1));
    if (row >= list->RowCount()) return QPoint(x, last.bottom() + 20);
    return QPoint(x, list->visualItemRect(list->topLevelItem(row)).center().y());
  }
};

TEST_F(MainWindow, RunsTheSixGunCommandsOnTheTable) {
  EnterGun({{"TypeName", "Alpha"}, {"Caliber", "12.7"}, {"ROF", "750.4"}, {"MuzzleVel", "900"}});
  EnterGun({{"TypeName", "Bravo"}, {"Caliber", "20"}});
  EXPECT_EQ(Rows(), (std::vector<std::string>{"Alpha|12.7|750|900", "Bravo|20.0|0|0"}));
  EXPECT_EQ(window_->FirstSelectedRow(), 1);
  EXPECT_EQ(SaveChangesPrompt.dirty, 1);

  Press("CopyGun");
  EXPECT_EQ(Rows().at(2), "Copy of Bravo|20.0|0|0");
  Press("MoveUp");
  EXPECT_EQ(Rows().at(1), "Copy of Bravo|20.0|0|0");
  EXPECT_EQ(window_->FirstSelectedRow(), 1);
  Press("MoveDown");
  EXPECT_EQ(Rows().at(2), "Copy of Bravo|20.0|0|0");

  window_->SelectRow(0);
  whenModal<EditGunForm>([](EditGunForm* form) {
    EXPECT_EQ(form->Field("TypeName")->text(), "Alpha");
    EXPECT_EQ(form->Field("Caliber")->text(), "12.7");
    EXPECT_EQ(form->Field("ROF")->text(), "750.4");
    form->Field("ROF")->selectAll();
    QTest::keyClicks(form->Field("ROF"), "600");
    click(form->findChild<QWidget*>("OK"));
  });
  Press("EditGun");
  EXPECT_EQ(Rows().at(0), "Alpha|12.7|600|900");
  Press("DeleteGun");
  EXPECT_EQ(Rows(), (std::vector<std::string>{"Bravo|20.0|0|0", "Copy of Bravo|20.0|0|0"}));
  EXPECT_EQ(window_->FirstSelectedRow(), 0);
}

TEST_F(MainWindow, EnterNeitherRunsACommandNorClosesTheForm) {
  EnterGun({{"TypeName", "Alpha"}});
  SaveChangesPrompt.dirty = 0;
  window_->List()->setFocus();
  QTest::keyClick(window_->List(), Qt::Key_Return);
  QTest::qWait(50);
  EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
  EXPECT_TRUE(window_->isVisible());

  whenModal<EditGunForm>([](EditGunForm* form) {
    EXPECT_EQ(form->focusWidget(), form->Field("TypeName"));
    QTest::keyClick(form->Field("TypeName"), Qt::Key_Return);
    QTest::keyClick(form->Field("Caliber"), Qt::Key_Enter);
    EXPECT_TRUE(form->isVisible());
    QTest::keyClick(form, Qt::Key_Escape);
  });
  Press("EditGun");
  EXPECT_EQ(Rows(), std::vector<std::string>{"Alpha|0.0|0|0"});
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
}

TEST_F(MainWindow, EscAndTheCloseBoxAskOnADirtyDocumentAndCancelKeepsIt) {
  EnterGun({{"TypeName", "Alpha"}});
  for (bool escape : {true, false}) {
    whenModal<QMessageBox>([](QMessageBox* box) {
      EXPECT_EQ(box->text(), "Save changes to Untitled?");
      EXPECT_EQ(box->windowTitle(), "Tessarine");
      EXPECT_EQ(box->icon(), QMessageBox::Warning);
      QTest::keyClick(box, Qt::Key_Escape);
    });
    if (escape) {
      QTest::keyClick(window_, Qt::Key_Escape);
    } else {
      window_->close();
    }
    waitForNoModal();
    EXPECT_TRUE(window_->isVisible()) << escape;
    EXPECT_EQ(SaveChangesPrompt.dirty, 1);
  }
  whenModal<QMessageBox>([](QMessageBox* box) { QTest::keyClick(box, Qt::Key_N); });
  QTest::keyClick(window_, Qt::Key_Escape);
  EXPECT_FALSE(window_->isVisible());
  EXPECT_EQ(window_->RowCount(), 0) << "the closing window gives its guns back";
}

TEST_F(MainWindow, AClickAnywhereInARowSelectsItAndBelowTheRowsTheLast) {
  for (const char* name : {"A", "B", "C"}) EnterGun({{"TypeName", name}});
  Activate();
  GunListControl* list = window_->List();
  for (int column = 0; column < GunListControl::kCells; ++column) {
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, At(column % 2, column));
    EXPECT_EQ(window_->FirstSelectedRow(), column % 2) << column;
    EXPECT_EQ(window_->SelectedCount(), 1);
  }
  Button("Save")->setFocus();
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, At(3, 2));
  EXPECT_EQ(window_->FirstSelectedRow(), 2);
  EXPECT_TRUE(list->hasFocus());

  whenModal<EditGunForm>([](EditGunForm* form) {
    EXPECT_EQ(form->Field("TypeName")->text(), "B");
    QTest::keyClick(form, Qt::Key_Escape);
  });
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, At(1, 3));
  waitForNoModal();
  EXPECT_EQ(window_->FirstSelectedRow(), 1);
  EXPECT_EQ(window_->focusWidget(), list);
  Activate();

  list->clearSelection();
  Button("Save")->setFocus();  // the list loses the focus and keeps a row selected
  EXPECT_EQ(window_->FirstSelectedRow(), 2);
}

TEST_F(MainWindow, FramesTheSelectedRowWhenItIsWhollyVisible) {
  for (int row = 0; row < 40; ++row) window_->InsertRow(row, ("Gun " + std::to_string(row)).c_str());
  GunListControl* list = window_->List();
  int rowHeight = list->visualItemRect(list->topLevelItem(0)).height();
  int fitting = list->viewport()->height() / rowHeight;
  ASSERT_NE(list->viewport()->height() % rowHeight, 0) << "no row is cut at the bottom";
  auto framed = [&](int row) {
    list->selectionModel()->select(list->model()->index(row, 0),
                                   QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    QImage image = list->viewport()->grab().toImage();
    QRect frame = list->FrameRect(row);
    return image.pixelColor(frame.left(), frame.top() + 1) == Qt::black &&
           image.pixelColor(frame.right(), frame.top() + 1) == Qt::black &&
           image.pixelColor(frame.left() - 1, frame.top() + 1) != Qt::black;
  };
  EXPECT_TRUE(framed(0));
  EXPECT_TRUE(framed(fitting - 1));
  EXPECT_FALSE(framed(fitting)) << "the row cut off at the bottom";
  EXPECT_EQ(list->verticalScrollBar()->value(), 0);
}

TEST_F(MainWindow, ShowsTheCaptionExactlyAndKeepsTheChoosersFilter) {
  EnterGun({{"TypeName", "Alpha"}});
  whenModal<QFileDialog>([](QFileDialog* chooser) {
    EXPECT_EQ(chooser->nameFilters(),
              (QStringList{"Gun Data Files (*.ini)", "All Files (*)"}));
    EXPECT_EQ(chooser->directory().absolutePath(), QDir::currentPath());
    EXPECT_EQ(chooser->defaultSuffix(), "ini");
    chooser->selectFile("a[*]");
    QMetaObject::invokeMethod(chooser, "accept");
  });
  Press("Save");
  waitForNoModal();
  EXPECT_EQ(window_->windowHandle()->title(), "a[*].ini");
  EXPECT_TRUE(QFileInfo::exists("a[*].ini"));
  EXPECT_TRUE(QFileInfo::exists("a[*].dat"));
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);

  whenModal<QFileDialog>([](QFileDialog* chooser) {
    EXPECT_EQ(chooser->fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(chooser->selectedFiles().value(0), QDir::current().absoluteFilePath("a[*].ini"));
    chooser->selectNameFilter("All Files (*)");
    chooser->selectFile("a[*].ini");
    QMetaObject::invokeMethod(chooser, "accept");
  });
  Press("Open");
  waitForNoModal();
  EXPECT_EQ(Rows(), std::vector<std::string>{"Alpha|0.0|0|0"});
  whenModal<QFileDialog>([](QFileDialog* chooser) {
    EXPECT_EQ(chooser->selectedNameFilter(), "All Files (*)");
    chooser->reject();
  });
  Press("SaveAs");
  waitForNoModal();
  EXPECT_EQ(std::string(DocumentTitle), "a[*].ini");
}

TEST_F(MainWindow, RefusesAChosenPathThatTheSystemCannotHold) {
  writeWholeFile(root_.file("back\\slash.ini"), "[GunData001]\nTypeName=X\n");
  whenModal<QFileDialog>([](QFileDialog* chooser) {
    whenModal<QMessageBox>([](QMessageBox* box) {
      EXPECT_EQ(box->windowTitle(), "ERROR!");
      EXPECT_TRUE(box->text().contains("backslash")) << box->text().toStdString();
      box->accept();
    });
    chooser->selectFile("back\\slash.ini");
    QMetaObject::invokeMethod(chooser, "accept");
  });
  Press("Open");
  waitForNoModal();
  EXPECT_EQ(window_->windowHandle()->title(), "Untitled");
  EXPECT_EQ(DocumentHasPath, 0);
  EXPECT_EQ(window_->RowCount(), 0);
}

}  // namespace
