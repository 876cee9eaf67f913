// The Application service on a recording window system.
#include <gtest/gtest.h>

#include <deque>
#include <string>

#include "base/path_util.h"
#include "services/application.h"

static int mainWindow, arrowCursor;

// Records every call; GetMessage answers -1 on an empty queue.
class RecordingWindow final : public HostWindowCalls {
 public:
  explicit RecordingWindow(Application* client) : app(client) { hostInstallWindowCalls(this); }
  ~RecordingWindow() { hostInstallWindowCalls(nullptr); }
  int PeekMessage(HostHandle window, HostMessage* message) override {
    return Take(window == &mainWindow ? "peek" : "peek elsewhere", message);
  }
  int GetMessage(HostHandle, HostMessage* message) override {
    return !Take("get", message) ? -1 : message->id != kHostQuitMessage;
  }
  void DispatchMessage(const HostMessage* message) override {
    Log("dispatch " + std::to_string(message->id));
    if (message->id >= 98) app->SetActive(message->id == 99);  // a handler that switches
  }
  void SetFocus(HostHandle) override { Log("focus"); }
  void SetActiveWindow(HostHandle) override { Log("activate"); }
  void ShowWindow(HostHandle, int command) override { Log("show " + std::to_string(command)); }
  void UpdateWindow(HostHandle) override { Log("update"); }
  HostHandle GetCursor() override { return &arrowCursor; }
  void SetCursor(HostHandle cursor) override { Log(cursor == &arrowCursor ? "arrow" : "other"); }
  int ShowCursor(int show) override {
    Log("count " + std::to_string(displayCount += show ? 1 : -1));
    return displayCount;
  }
  void Log(const std::string& call) { calls += call + ","; }
  int Take(const std::string& call, HostMessage* message) {
    Log(call);
    if (queue.empty()) return 0;
    message->id = queue.front();
    queue.pop_front();
    return 1;
  }

  Application* app;
  std::deque<std::uint32_t> queue;
  std::string calls;
  int displayCount = 0;
};

// A handler's switch steps the cursor's display count from wherever it stands to the wanted side.
TEST(Application, PumpsMessagesSwitchesStateOnlyOnAChangeAndCutsItsText) {
  Application app;
  RecordingWindow window(&app);
  gMainWindowHandle = &mainWindow;
  app.Init();
  const struct { int active, count; std::deque<std::uint32_t> queue; int result; const char* calls;
  } rows[] = {
      {1, 0, {}, 1, "peek,"},
      {1, 0, {5, 18, 6}, 0, "peek,dispatch 5,peek,dispatch 18,"},
      {0, 0, {18, 6}, 0, "get,dispatch 18,"},
      {0, 0, {7}, 1, "get,dispatch 7,get,"},  // an error ends the wait
      {1, 0, {99}, 1, "peek,dispatch 99,peek,"},
      {0, 2, {99}, 1, "get,dispatch 99,focus,activate,show 3,update,other,count 1,count 0,"
                      "count -1,peek,"},
      {1, -3, {98, 98}, 1,
       "peek,dispatch 98,show 6,arrow,count -2,count -1,count 0,get,dispatch 98,get,"},
  };
  for (const auto& row : rows) {
    app.active = row.active;
    window.displayCount = row.count;
    window.queue = row.queue;
    EXPECT_EQ(app.PumpMessages(), row.result) << row.calls;
    EXPECT_EQ(std::exchange(window.calls, ""), row.calls);
  }
  EXPECT_EQ(app.IsActive(), 0);
  gMainWindowHandle = nullptr;
  // The text is cut to its buffer; the directory is the one of bring-up.
  EXPECT_EQ(app.HasText(), 0);
  app.SetText(std::string(2000, 'x').c_str());
  EXPECT_EQ(app.HasText(), 1);
  char here[260];
  fmgGetCurrentDirectory(here, 260);
  EXPECT_STREQ(app.GetWorkingDirectory(), here);
}
