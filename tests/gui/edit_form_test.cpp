// The edit form driven with real keys: defaults, the exchange order, byte limits, placement.
#include <QCheckBox>
#include <QLineEdit>
#include <QMessageBox>
#include <string>

#include "gui_support.h"
#include "gun/gun_file.h"
#include "shell/document.h"
#include "shell/qt/edit_gun_form.h"

namespace {

using EditForm = MainWindowTest;

// Expects a refusal box naming `label`, and closes it.
void expectRefusal(const QString& label) {
  whenModal<QMessageBox>([label](QMessageBox* box) {
    EXPECT_TRUE(box->text().startsWith(label + ":")) << box->text().toStdString();
    box->accept();
  });
}

TEST_F(EditForm, RefusesAmmoWtBeforeCaliberAndFocusesIt) {
  whenModal<EditGunForm>([](EditGunForm* form) {
    for (const char* name : {"Caliber", "AmmoWt", "EffectTime", "FireColorB"}) {
      EXPECT_EQ(form->Field(name)->text(), "0") << name;
    }
    EXPECT_EQ(form->Field("TypeName")->text(), "");
    EXPECT_FALSE(form->findChild<QCheckBox*>("AddLight")->isChecked());
    EXPECT_EQ(form->focusWidget(), form->Field("TypeName"));

    form->Field("Caliber")->selectAll();
    QTest::keyClicks(form->Field("Caliber"), "abc");
    form->Field("AmmoWt")->selectAll();
    QTest::keyClicks(form->Field("AmmoWt"), "12x");
    expectRefusal("Ammo Wt (g)");
    click(form->findChild<QWidget*>("OK"));
    EXPECT_TRUE(form->isVisible());
    EXPECT_EQ(form->focusWidget(), form->Field("AmmoWt"));
    QTest::keyClick(form, Qt::Key_Escape);
  });
  Press("NewGun");
  EXPECT_EQ(window_->RowCount(), 0);
  EXPECT_EQ(SaveChangesPrompt.dirty, 0);
}

TEST_F(EditForm, OpensALongNameFromAFileWholeAndRefusesOKUntilItIsShortened) {
  const std::string type(40, 'T'), full(100, 'F');
  writeWholeFile(root_.file("long.ini"), "[GunData001]\nTypeName=" + type + "\nFullName=" + full +
                                             "\nAmmoWt=0.1\n");
  GunFileLoad(window_, systemPath(root_.file("long.ini")).c_str());
  auto shorten = [](QLineEdit* field, int count) {
    field->end(false);
    for (int i = 0; i < count; ++i) QTest::keyClick(field, Qt::Key_Backspace);
  };
  whenModal<EditGunForm>([&](EditGunForm* form) {
    EXPECT_EQ(form->Field("TypeName")->text().toStdString(), type);
    EXPECT_EQ(form->Field("FullName")->text().toStdString(), full);
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
  char cell[GunListView::kCellSize];
  window_->ReadCell(0, 0, cell);
  EXPECT_EQ(std::string(cell), std::string(31, 'T'));
}

TEST_F(EditForm, OpensWhereItWasLastLeftEvenAfterCancel) {
  QPoint moved;
  whenModal<EditGunForm>([&](EditGunForm* form) {
    moved = form->frameGeometry().topLeft() + QPoint(37, 23);
    form->move(moved);
    QTest::keyClick(form, Qt::Key_Escape);
  });
  Press("NewGun");
  whenModal<EditGunForm>([&](EditGunForm* form) {
    EXPECT_EQ(form->frameGeometry().topLeft(), moved);
    form->close();
  });
  Press("NewGun");
  EXPECT_EQ(EditPlacementUnset, 0);
}

}  // namespace
