// Application: the window-system face of the kernel for a client that runs its own main loop.
#pragma once
#include <cstdint>

#include "platform/host_window.h"

// The APP service table; libraries call through it, so the order is fixed and the two reserved
// operations keep their places. The window operations act on gMainWindowHandle.
class ApplicationInterface {
 public:
  // Dispatches queued messages: while active until the queue is empty, while inactive waiting
  // for each. 0 when the quit message was dispatched, 1 otherwise.
  virtual int PumpMessages() = 0;
  virtual int IsActive() = 0;
  // Active: the window up and the cursor hidden; inactive: minimised and the cursor shown.
  // Nothing happens when the flag equals the current state.
  virtual void SetActive(int active) = 0;
  // The working directory at bring-up; the same buffer on every call.
  virtual const char* GetWorkingDirectory() = 0;
  virtual void SetUserValue(std::int32_t value) = 0;
  virtual std::int32_t GetUserValue() = 0;
  // Focuses, raises and maximises the main window.
  virtual void ActivateWindow() = 0;
  // Places the main window above all others and shows it.
  virtual void PlaceWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                           std::int32_t height) = 0;
  virtual void GetWindowBounds(HostRect* rect) = 0;
  virtual void MinimizeWindow() = 0;
  // Shows or hides the cursor with one call, whatever the display count was.
  virtual void ShowMouseCursor(int show) = 0;
  // Stores a copy of the text; longer texts are cut to the buffer's 1023 bytes.
  virtual void SetText(const char* text) = 0;
  // 1 once SetText ran, also with an empty text.
  virtual int HasText() = 0;
  virtual void SetWindowHandle(HostHandle window) = 0;
  virtual HostHandle GetWindowHandle() = 0;
  virtual void SetInstanceHandle(HostHandle instance) = 0;
  virtual HostHandle GetInstanceHandle() = 0;
  virtual void ReservedA() = 0;
  virtual void ReservedB() = 0;

 protected:
  ~ApplicationInterface() = default;
};

class Application : public ApplicationInterface {
 public:
  static constexpr int kPathSize = 260;
  static constexpr int kTextSize = 1024;

  Application() = default;
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  int PumpMessages() override;
  int IsActive() override;
  void SetActive(int active) override;
  const char* GetWorkingDirectory() override;
  void SetUserValue(std::int32_t value) override;
  std::int32_t GetUserValue() override;
  void ActivateWindow() override;
  void PlaceWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                   std::int32_t height) override;
  void GetWindowBounds(HostRect* rect) override;
  void MinimizeWindow() override;
  void ShowMouseCursor(int show) override;
  void SetText(const char* text) override;
  int HasText() override;
  void SetWindowHandle(HostHandle window) override;
  HostHandle GetWindowHandle() override;
  void SetInstanceHandle(HostHandle instance) override;
  HostHandle GetInstanceHandle() override;
  void ReservedA() override;
  void ReservedB() override;

  // Inactive, no handles, no text, the cursor and working directory of this moment. Bring-up.
  void Init();

  std::int32_t active = 0;
  std::int32_t userValue = 0;
  std::int32_t textSet = 0;
  HostHandle windowHandle = nullptr;
  HostHandle instanceHandle = nullptr;
  char workingDirectory[kPathSize] = {};
  HostHandle cursor = nullptr;
  char text[kTextSize] = {};
};

// The process-wide handles of the start-up: the program instance, stored once after bring-up,
// and the main window, stored once as it opens. Null until then.
extern HostHandle gInstanceHandle;
extern HostHandle gMainWindowHandle;

// Null before bring-up has bound it and after shutdown has unbound it.
extern Application* gAPP;

// Hands both process-wide handles to the Application object (the main window's start calls it).
void ApplicationTakeHandles();
