// Application: the window-system face of the kernel for a client that runs its own main loop.
#pragma once
#include "tessarine/plugin.h"
#include <cstdint>

#include "platform/host_window.h"

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
