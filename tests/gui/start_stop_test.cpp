// The program's start and stop, the template geometry and the Application's window calls on Qt.
#include <QCursor>
#include <QLineEdit>

#include "gui_support.h"
#include "platform/host_window.h"
#include "services/application.h"
#include "shell/qt/tessarine_app.h"

namespace {

void runProgram(const std::string& directory, std::function<void(GunListDialog*)> act) {
  std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(directory);
  whenModal<GunListDialog>(act);
  EXPECT_EQ(InitInstance(), 0);
  waitForNoModal();
  std::filesystem::current_path(cwd);
}

TEST(Program, WritesTheSettingsAtStartAndCloseAndReopensInPlace) {
  TempDir root;
  const std::string settings = root.file("Tessarine.ini");
  runProgram(root.path(), [&](GunListDialog* window) {
    EXPECT_EQ(window->windowHandle()->title(), "Untitled");
    EXPECT_EQ(gAPP->GetWindowHandle(), static_cast<QWidget*>(window));
    EXPECT_EQ(readWholeFile(settings), "[Tessarine]\nTargetDirectory=" + systemPath(root.path()) +
                                           "\nPositionX=0\nPositionY=0\n\n");
    std::filesystem::remove(settings);
    window->move(120, 80);
    QTest::keyClick(window, Qt::Key_Escape);
  });
  EXPECT_NE(readWholeFile(settings).find("PositionX=120\nPositionY=80\n"), std::string::npos);
  runProgram(root.path(), [&](GunListDialog* window) {
    EXPECT_EQ(window->frameGeometry().topLeft(), QPoint(120, 80));
    window->close();
  });
}

// Pinned for one font: DejaVu Sans at 11 pixels has bases 7 and 13.
TEST(DialogUnitsTest, ConvertsTemplateUnitsFromTheFontsBases) {
  QFont font(QStringLiteral("DejaVu Sans"));
  font.setPixelSize(11);
  DialogUnits units(font);
  EXPECT_EQ(QPoint(units.baseX(), units.baseY()), QPoint(7, 13));
  EXPECT_EQ(units.Rect(10, 21, 275, 219), QRect(18, 34, 481, 356));
  EXPECT_EQ(DialogUnits(6, 13).Rect(310, 220, 50, 14), QRect(465, 358, 75, 23));
  EXPECT_EQ(GunListDialog().size(), DialogUnits(font).Size(387, 250)) << "the window's font";
}

TEST(QtWindowCallsTest, MovesShowsAndFocusesTheWindowAndHidesTheCursor) {
  QWidget window;
  QLineEdit field(&window);
  window.show();  // the frame is known once shown
  ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
  HostWindowCalls* calls = hostWindowCalls();
  calls->SetWindowPosTopmost(&window, 40, 30, 200, 100);
  HostRect rect = {};
  calls->GetWindowRect(&window, &rect);
  EXPECT_EQ(std::vector<int>({rect.left, rect.top, rect.right}), std::vector<int>({40, 30, 240}));
  EXPECT_TRUE(window.windowFlags() & Qt::WindowStaysOnTopHint);
  calls->ShowWindow(&window, kHostMinimize);
  EXPECT_TRUE(window.isMinimized());
  calls->ShowWindow(&window, kHostShowMaximized);
  calls->UpdateWindow(&window);
  EXPECT_TRUE(window.isMaximized());
  calls->SetActiveWindow(&window);
  calls->SetFocus(&field);
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
  EXPECT_EQ(window.focusWidget(), &field);
  HostHandle arrow = calls->GetCursor();
  for (HostHandle cursor : {arrow, static_cast<HostHandle>(nullptr)}) {  // hidden either way
    calls->SetCursor(cursor);
    EXPECT_EQ(calls->ShowCursor(cursor ? 0 : 1), cursor ? -1 : 0);
    QCursor* shown = QApplication::overrideCursor();
    EXPECT_EQ(shown ? shown->shape() : Qt::ArrowCursor, Qt::BlankCursor);
  }
  calls->SetCursor(arrow);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  HostMessage message = {};
  EXPECT_EQ(calls->PeekMessage(&window, &message), 0) << "an empty queue";
}

}  // namespace
