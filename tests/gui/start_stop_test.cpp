// The program's start and stop, the template geometry and the Application's window calls on Qt.
#include <QLineEdit>

#include "gui_support.h"
#include "platform/host_window.h"
#include "services/application.h"
#include "shell/qt/tessarine_app.h"

namespace {

TEST(Program, WritesTheSettingsAtStartAndCloseAndReopensInPlace) {
  TempDir root;
  const std::string settings = root.file("Tessarine.ini");
  std::filesystem::path cwd = std::filesystem::current_path();
  std::filesystem::current_path(root.path());
  for (bool reopened : {false, true}) {  // the second run keeps the place the first left
    whenModal<GunListDialog>([&](GunListDialog* window) {
      EXPECT_EQ(gAPP->GetWindowHandle(), static_cast<QWidget*>(window));
      EXPECT_TRUE(std::filesystem::remove(settings)) << "written at start";
      if (!reopened) window->move(120, 80);
      QTest::keyClick(window, Qt::Key_Escape);
    });
    EXPECT_EQ(InitInstance(), 0);
    waitForNoModal();
    EXPECT_NE(readWholeFile(settings).find("PositionX=120\nPositionY=80\n"), std::string::npos);
  }
  std::filesystem::current_path(cwd);
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
  EXPECT_EQ(calls->ShowCursor(0), -1);
  EXPECT_NE(QApplication::overrideCursor(), nullptr) << "hidden";
  calls->SetCursor(nullptr);
  EXPECT_EQ(calls->ShowCursor(1), 0);
  EXPECT_NE(QApplication::overrideCursor(), nullptr) << "no cursor is hidden too";
  calls->SetCursor(arrow);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
  HostMessage message = {};
  EXPECT_EQ(calls->PeekMessage(&window, &message), 0) << "an empty queue";
}

}  // namespace
