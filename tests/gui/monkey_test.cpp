// The monkey run: random clicks, double clicks and keys on the real windows, the modal ones
// answered at random too, with the rows checked against the gun list after every action.
// TESS_MONKEY_SEED replays a run; TESS_MONKEY_ACTIONS sets its length (10,000 by default).
#include <QAbstractButton>
#include <QCheckBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <cstdio>
#include <random>
#include <vector>

#include "gui_support.h"
#include "gun/gun_data.h"
#include "gun/gun_list.h"
#include "shell/qt/edit_gun_form.h"
#include "shell/qt/gun_list_control.h"

namespace {

// Close and Esc end the window, so they come rarely, apart from the rest.
const char* const kButtons[] = {"NewGun", "EditGun", "CopyGun", "DeleteGun", "MoveUp",
                                "MoveDown", "New",   "Open",    "Save",      "SaveAs"};
const Qt::Key kKeys[] = {Qt::Key_Up,    Qt::Key_Down,  Qt::Key_Home,   Qt::Key_End,
                         Qt::Key_PageUp, Qt::Key_Down, Qt::Key_Return, Qt::Key_Space,
                         Qt::Key_Delete, Qt::Key_Tab,  Qt::Key_A};
const char* const kTexts[] = {"Alpha", "12.5", "-3", "abc", "1e3", "", "0.000001",
                              "a very long name that is well past the field's sixty-three bytes",
                              "7,5", "Ünïcödé"};
const char* const kFileNames[] = {"a.ini", "b", "guns.ini", "sub\\x.ini", "missing.ini"};

std::uint32_t seedOfRun() {
  const char* given = std::getenv("TESS_MONKEY_SEED");
  return given ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10)) : 20261123u;
}

int actionsOfRun() {
  const char* given = std::getenv("TESS_MONKEY_ACTIONS");
  return given ? std::atoi(given) : 10000;
}

class Monkey : public MainWindowTest {
 protected:
  template <typename Items>
  const auto& Pick(const Items& items) {
    std::size_t last = static_cast<std::size_t>(std::size(items)) - 1;
    return items[std::uniform_int_distribution<std::size_t>(0, last)(random_)];
  }
  bool Chance(int percent) { return std::uniform_int_distribution<int>(1, 100)(random_) <= percent; }

  // Answers modal windows from the event loop until the fixture goes. Each turn books the next
  // before it acts, since an act may open a window whose modal run must still be answered.
  void KeepAnswering() {
    QTimer::singleShot(0, &answerer_, [this] {
      KeepAnswering();
      AnswerModal();
    });
  }

  // One random act on the window that is modal now; most acts end it, so that runs move on.
  void AnswerModal() {
    QWidget* modal = QApplication::activeModalWidget();
    if (!modal || !modal->isVisible()) return;
    answers_++;
    if (auto* form = qobject_cast<EditGunForm*>(modal)) return AnswerForm(form);
    if (auto* box = qobject_cast<QMessageBox*>(modal)) return click(Pick(box->buttons()));
    if (auto* chooser = qobject_cast<QFileDialog*>(modal)) return AnswerChooser(chooser);
    ADD_FAILURE() << "an unexpected modal " << modal->metaObject()->className();
    modal->close();
  }
  void AnswerForm(EditGunForm* form) {
    QList<QLineEdit*> fields = form->findChildren<QLineEdit*>();
    switch (std::uniform_int_distribution<int>(0, 5)(random_)) {
      case 0: {
        QLineEdit* field = Pick(fields);
        if (Chance(50)) field->selectAll();
        QString text = QString::fromUtf8(Pick(kTexts));
        // QTest types ASCII only; other text comes in as an input method would put it.
        if (text.toLatin1() == text.toUtf8()) {
          QTest::keyClicks(field, text);
        } else {
          field->insert(text);
        }
        break;
      }
      case 1: click(form->findChild<QCheckBox*>()); break;
      case 2: QTest::keyClick(Pick(fields), Qt::Key_Return); break;  // never closes the form
      case 3: QTest::keyClick(form, Qt::Key_Escape); break;
      case 4: click(form->findChild<QWidget*>("Cancel")); break;
      default: click(form->findChild<QWidget*>("OK")); break;
    }
  }
  void AnswerChooser(QFileDialog* chooser) {
    if (Chance(30)) return chooser->reject();
    auto* name = chooser->findChild<QLineEdit*>("fileNameEdit");
    if (!name) return chooser->reject();
    name->selectAll();
    QTest::keyClicks(name, QString::fromUtf8(Pick(kFileNames)));
    QTest::keyClick(name, Qt::Key_Return);
  }

  // One random act on the main window.
  void Act() {
    GunListControl* list = window_->List();
    QWidget* viewport = list->viewport();
    QPoint anywhere(std::uniform_int_distribution<int>(0, viewport->width() - 1)(random_),
                    std::uniform_int_distribution<int>(0, viewport->height() - 1)(random_));
    int roll = std::uniform_int_distribution<int>(0, 99)(random_);
    if (roll < 1) return click(Button("Close"));
    if (roll < 2) return QTest::keyClick(list, Qt::Key_Escape);
    if (roll < 40) return click(Button(Pick(kButtons)));
    if (roll < 60) return QTest::mouseClick(viewport, Qt::LeftButton, {}, anywhere);
    if (roll < 70) return QTest::mouseDClick(viewport, Qt::LeftButton, {}, anywhere);
    if (roll < 75) {
      QHeaderView* header = list->header();
      return QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                               QPoint(anywhere.x(), header->height() / 2));
    }
    QTest::keyClick(list, Pick(kKeys));
  }

  // After an accepted Close the window has ended: a new one opens, as at the next start.
  void ReopenIfClosed() {
    if (window_->isVisible()) return;
    reopened_++;
    delete window_;
    OpenWindow();
  }

  // The rows show the gun list: as many, in order, each named by its record.
  void ExpectRowsShowTheList(int action) {
    ASSERT_EQ(window_->RowCount(), GunList.count) << "after action " << action;
    char cell[GunListView::kCellSize];
    int row = 0;
    for (GunList.MoveFirst(); GunList.current; GunList.MoveNext(), row++) {
      ASSERT_EQ(window_->ReadCell(row, 0, cell), 1);
      ASSERT_STREQ(cell, static_cast<GunData*>(GunList.current->payload)->TypeName)
          << "row " << row << " after action " << action;
    }
  }

  std::mt19937 random_{seedOfRun()};
  QObject answerer_;  // pending answers end with it
  int answers_ = 0, mostRows_ = 0, reopened_ = 0;
};

}  // namespace

TEST_F(Monkey, SurvivesRandomActionsWithTheRowsInStepWithTheList) {
  int actions = actionsOfRun();
  std::printf("[ monkey   ] seed %u (TESS_MONKEY_SEED replays it), %d actions\n", seedOfRun(),
              actions);
  KeepAnswering();
  for (int action = 0; action < actions && !HasFailure(); action++) {
    Act();
    waitForNoModal();
    ASSERT_EQ(QApplication::activeModalWidget(), nullptr) << "a modal stayed open";
    ReopenIfClosed();
    ExpectRowsShowTheList(action);
    mostRows_ = std::max(mostRows_, GunList.count);
  }
  std::printf("[ monkey   ] %d answers in modal windows, up to %d rows, %d restarts\n", answers_,
              mostRows_, reopened_);
}
