// The window, cursor and message calls of the Application service, behind an interface that a
// window system installs. The default has no window: it does nothing and its queue is empty.
#pragma once
#include <cstdint>

#include "tessarine/plugin.h"

struct HostMessage {
  HostHandle window;
  std::uint32_t id;
};

constexpr std::uint32_t kHostQuitMessage = 18;
constexpr int kHostShowMaximized = 3;
constexpr int kHostMinimize = 6;

class HostWindowCalls {
 public:
  // Takes the next message of `window`'s thread into *message: 1, or 0 when the queue is empty.
  virtual int PeekMessage(HostHandle window, HostMessage* message);
  // Waits for the next message: above 0 for a message, 0 for the quit message (also stored in
  // *message), below 0 on an error. The default has no queue and answers -1.
  virtual int GetMessage(HostHandle window, HostMessage* message);
  virtual void DispatchMessage(const HostMessage* message);
  virtual void SetFocus(HostHandle window);
  virtual void SetActiveWindow(HostHandle window);
  // kHostShowMaximized or kHostMinimize.
  virtual void ShowWindow(HostHandle window, int command);
  virtual void UpdateWindow(HostHandle window);
  // Moves and sizes the window above all others, and shows it.
  virtual void SetWindowPosTopmost(HostHandle window, std::int32_t x, std::int32_t y,
                                   std::int32_t width, std::int32_t height);
  // The window's frame in screen coordinates; *rect untouched when there is no window.
  virtual void GetWindowRect(HostHandle window, HostRect* rect);
  virtual HostHandle GetCursor();
  // Null hides the pointer shape.
  virtual void SetCursor(HostHandle cursor);
  // Raises (show not 0) or lowers the cursor's display count and returns the new count; the
  // cursor shows while the count is 0 or above. The default keeps the count.
  virtual int ShowCursor(int show);

 protected:
  ~HostWindowCalls() = default;

 private:
  int cursorCount_ = 0;
};

// The calls in force: the installed ones, or the default. Installing null restores the default.
HostWindowCalls* hostWindowCalls();
void hostInstallWindowCalls(HostWindowCalls* calls);
