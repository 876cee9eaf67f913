// Random clicks and keys on the real windows, with the rows checked against the gun list.
#include <QCheckBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <cstdio>
#include <random>

#include "fake_window.h"
#include "gui_support.h"
#include "shell/qt/edit_gun_form.h"
#include "shell/qt/gun_list_control.h"

namespace {

const char* const kButtons[] = {"NewGun", "EditGun", "CopyGun", "DeleteGun", "MoveUp",
                                "MoveDown", "New",   "Open",    "Save",      "SaveAs"};
const Qt::Key kKeys[] = {Qt::Key_Up,     Qt::Key_Down,  Qt::Key_Home, Qt::Key_End,
                         Qt::Key_Return, Qt::Key_Space, Qt::Key_Tab,  Qt::Key_A};
const char* const kTexts[] = {"Alpha", "12.5", "-3", "abc", "1e3", "", "7,5", "Ünïcödé",
                              "a very long name that is well past the field's sixty-three bytes"};
const char* const kFileNames[] = {"a.ini", "b", "guns.ini", "sub\\x.ini", "missing.ini"};

class Monkey : public MainWindowTest {
 protected:
  template <typename Items>
  const auto& Pick(const Items& items) {
    return items[Roll(static_cast<int>(std::size(items)))];
  }
  int Roll(int below) { return std::uniform_int_distribution<int>(0, below - 1)(random_); }

  // Each turn books the next before it acts: an act may open a modal run that needs answers.
  void KeepAnswering() {
    QTimer::singleShot(0, &answerer_, [this] {
      KeepAnswering();
      QWidget* modal = QApplication::activeModalWidget();
      if (!modal || !modal->isVisible()) return;
      if (auto* form = qobject_cast<EditGunForm*>(modal)) return AnswerForm(form);
      if (auto* box = qobject_cast<QMessageBox*>(modal)) return click(Pick(box->buttons()));
      auto* name = modal->findChild<QLineEdit*>("fileNameEdit");
      EXPECT_TRUE(qobject_cast<QFileDialog*>(modal)) << modal->metaObject()->className();
      if (!name || Roll(10) < 3) return static_cast<void>(modal->close());
      name->selectAll();
      QTest::keyClicks(name, QString::fromUtf8(Pick(kFileNames)));
      QTest::keyClick(name, Qt::Key_Return);
    });
  }
  void AnswerForm(EditGunForm* form) {
    QLineEdit* field = Pick(form->findChildren<QLineEdit*>());
    QString text = QString::fromUtf8(Pick(kTexts));
    switch (Roll(6)) {
      case 0:  // QTest types ASCII only; other text comes in as an input method would put it
        if (Roll(2)) field->selectAll();
        if (text.toLatin1() == text.toUtf8()) return QTest::keyClicks(field, text);
        return field->insert(text);
      case 1: return click(form->findChild<QCheckBox*>());
      case 2: return QTest::keyClick(field, Qt::Key_Return);  // never closes the form
      case 3: return QTest::keyClick(form, Qt::Key_Escape);
      case 4: return click(form->findChild<QWidget*>("Cancel"));
      default: return click(form->findChild<QWidget*>("OK"));
    }
  }
  // One random act on the main window; Close and Esc end it, so they come rarely.
  void Act() {
    GunListControl* list = window_->List();
    QWidget* viewport = list->viewport();
    QWidget* header = list->header()->viewport();
    QPoint anywhere(Roll(viewport->width()), Roll(viewport->height()));
    int roll = Roll(100);
    if (roll < 1) return Press("Close");
    if (roll < 2) return QTest::keyClick(list, Qt::Key_Escape);
    if (roll < 30) return Press(Pick(kButtons));  // the modal runs they open cost the most
    if (roll < 55) return QTest::mouseClick(viewport, Qt::LeftButton, {}, anywhere);
    if (roll < 62) return QTest::mouseDClick(viewport, Qt::LeftButton, {}, anywhere);
    if (roll < 67) return QTest::mouseClick(header, Qt::LeftButton, {}, {anywhere.x(), 5});
    QTest::keyClick(list, Pick(kKeys));
  }

  std::mt19937 random_;
  QObject answerer_;  // pending answers end with it
};

TEST_F(Monkey, SurvivesRandomActionsWithTheRowsInStepWithTheList) {
  const char* given = std::getenv("TESS_MONKEY_SEED");
  auto seed = given ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10)) : 20261123u;
  std::printf("[ monkey   ] seed %u (TESS_MONKEY_SEED replays it)\n", seed);
  random_.seed(seed);
  KeepAnswering();
  for (int action = 0; action < 10000 && !HasFailure(); action++) {
    Act();
    waitForNoModal();
    ASSERT_EQ(QApplication::activeModalWidget(), nullptr) << "a modal stayed open";
    if (!window_->isVisible()) {  // an accepted Close: a new window opens, as at the next start
      delete window_;
      OpenWindow();
    }
    ASSERT_EQ(RowNames(window_), ListedNames()) << "after action " << action;
  }
}

}  // namespace
