// Tests of the Application service on a recording window system: the state switch, the cursor's
// display count, the message pump and the text.
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

#include "base/path_util.h"
#include "kernel_fixture.h"
#include "services/application.h"

namespace {

int mainWindow;
int arrowCursor;

// Records every call; the queue holds message ids, and GetMessage answers -1 when it is empty.
class RecordingWindow final : public HostWindowCalls {
 public:
  int PeekMessage(HostHandle window, HostMessage* message) override {
    calls.push_back(window == &mainWindow ? "peek" : "peek elsewhere");
    return Take(message) ? 1 : 0;
  }
  int GetMessage(HostHandle, HostMessage* message) override {
    calls.push_back("get");
    if (!Take(message)) return -1;
    return message->id == kHostQuitMessage ? 0 : 1;
  }
  void DispatchMessage(const HostMessage* message) override {
    calls.push_back("dispatch " + std::to_string(message->id));
    if (message->id == 99) app->SetActive(1);  // a handler that wakes the client up
  }
  void SetFocus(HostHandle) override { calls.push_back("focus"); }
  void SetActiveWindow(HostHandle) override { calls.push_back("activate"); }
  void ShowWindow(HostHandle, int command) override {
    calls.push_back("show " + std::to_string(command));
  }
  void UpdateWindow(HostHandle) override { calls.push_back("update"); }
  HostHandle GetCursor() override { return &arrowCursor; }
  void SetCursor(HostHandle cursor) override {
    calls.push_back(cursor == &arrowCursor ? "cursor arrow" : "cursor none");
  }
  int ShowCursor(int show) override {
    displayCount += show ? 1 : -1;
    calls.push_back("count " + std::to_string(displayCount));
    return displayCount;
  }

  bool Take(HostMessage* message) {
    if (queue.empty()) return false;
    message->id = queue.front();
    queue.pop_front();
    return true;
  }

  Application* app = nullptr;
  std::deque<std::uint32_t> queue;
  std::vector<std::string> calls;
  int displayCount = 0;
};

class ApplicationTest : public KernelTest {
 protected:
  void SetUp() override {
    KernelTest::SetUp();
    hostInstallWindowCalls(&window);
    window.app = &app;
    app.Init();
    gMainWindowHandle = &mainWindow;
  }
  void TearDown() override {
    gMainWindowHandle = nullptr;
    hostInstallWindowCalls(nullptr);
    KernelTest::TearDown();
  }
  std::vector<std::string> TakeCalls() { return std::exchange(window.calls, {}); }

  RecordingWindow window;
  Application app;
};

using Calls = std::vector<std::string>;

}  // namespace

TEST_F(ApplicationTest, SwitchesWindowAndCursorOnlyOnAChange) {
  app.SetActive(0);
  EXPECT_EQ(TakeCalls(), Calls{});
  window.displayCount = 2;  // shown more than once: one hide must still hide it
  app.SetActive(1);
  EXPECT_EQ(TakeCalls(), (Calls{"focus", "activate", "show 3", "update", "cursor none",
                                "count 1", "count 0", "count -1"}));
  app.SetActive(1);
  EXPECT_EQ(TakeCalls(), Calls{});
  window.displayCount = -3;
  app.SetActive(0);
  EXPECT_EQ(TakeCalls(), (Calls{"show 6", "cursor arrow", "count -2", "count -1", "count 0"}));
  EXPECT_EQ(app.IsActive(), 0);
}

TEST_F(ApplicationTest, PumpsUntilEmptyWhenActiveAndUntilQuitOrWakeWhenNot) {
  struct Case {
    int active;
    std::deque<std::uint32_t> queue;
    int result;
    Calls calls;
    std::size_t left;
  } cases[] = {
      {1, {}, 1, {"peek"}, 0},
      {1, {5, 18, 6}, 0, {"peek", "dispatch 5", "peek", "dispatch 18"}, 1},
      {0, {18, 6}, 0, {"get", "dispatch 18"}, 1},
      {0, {7}, 1, {"get", "dispatch 7", "get"}, 0},  // an error ends the wait
      {0, {99}, 1, {"get", "dispatch 99", "focus", "activate", "show 3", "update", "cursor none",
                    "count -1", "peek"}, 0},  // the handler's switch counts on the next pass
  };
  for (Case& c : cases) {
    app.active = c.active;
    window.queue = c.queue;
    EXPECT_EQ(app.PumpMessages(), c.result);
    EXPECT_EQ(TakeCalls(), c.calls);
    EXPECT_EQ(window.queue.size(), c.left);
  }
}

TEST_F(ApplicationTest, KeepsItsTextCutAndTheDirectoryOfBringUp) {
  EXPECT_EQ(app.HasText(), 0);
  app.SetText("");
  EXPECT_EQ(app.HasText(), 1);
  std::string longText(2000, 'x');
  app.SetText(longText.c_str());
  EXPECT_EQ(std::string(app.text), longText.substr(0, Application::kTextSize - 1));

  char startDirectory[260];
  fmgGetCurrentDirectory(startDirectory, 260);
  const char* directory = app.GetWorkingDirectory();
  EXPECT_STREQ(directory, startDirectory);
  TempDir elsewhere;
  ASSERT_EQ(fmgSetCurrentDirectory(systemPath(elsewhere.path()).c_str()), 1);
  EXPECT_EQ(app.GetWorkingDirectory(), directory);
  EXPECT_STREQ(directory, startDirectory);
  fmgSetCurrentDirectory(startDirectory);
}
