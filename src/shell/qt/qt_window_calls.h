// The Application service's window, cursor and message calls on Qt. Window handles are the
// QWidget of a top-level window; the one cursor handle is the arrow.
#pragma once
#include <QObject>

#include "platform/host_window.h"

// Qt dispatches its own events, so a message here only says that events were handled (id 0)
// or that the application was asked to quit (kHostQuitMessage). Needs the QApplication.
class QtWindowCalls final : public QObject, public HostWindowCalls {
 public:
  QtWindowCalls();
  ~QtWindowCalls() override;

  int PeekMessage(HostHandle window, HostMessage* message) override;
  int GetMessage(HostHandle window, HostMessage* message) override;
  void DispatchMessage(const HostMessage* message) override;
  void SetFocus(HostHandle window) override;
  void SetActiveWindow(HostHandle window) override;
  void ShowWindow(HostHandle window, int command) override;
  void UpdateWindow(HostHandle window) override;
  void SetWindowPosTopmost(HostHandle window, std::int32_t x, std::int32_t y, std::int32_t width,
                           std::int32_t height) override;
  void GetWindowRect(HostHandle window, HostRect* rect) override;
  HostHandle GetCursor() override;
  void SetCursor(HostHandle cursor) override;
  int ShowCursor(int show) override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  // Shows the current cursor while the display count is 0 or above, else a blank one.
  void ApplyCursor();

  bool quitSeen_ = false;
  int displayCount_ = 0;
  HostHandle cursor_;
  bool blank_ = false;
};
