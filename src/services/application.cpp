// Application: the window-system face of the kernel for a client that runs its own main loop.
#include "services/application.h"

#include "base/path_util.h"
#include "base/string_util.h"

HostHandle gInstanceHandle = nullptr;
HostHandle gMainWindowHandle = nullptr;
Application* gAPP = nullptr;

int Application::PumpMessages() {
  HostWindowCalls* host = hostWindowCalls();
  for (;;) {
    HostMessage message{};
    // Read anew on each pass: a handler may have switched the state.
    if (active) {
      if (host->PeekMessage(gMainWindowHandle, &message) == 0) return 1;
    } else if (host->GetMessage(gMainWindowHandle, &message) < 0) {
      return 1;
    }
    host->DispatchMessage(&message);
    if (message.id == kHostQuitMessage) return 0;
  }
}

int Application::IsActive() { return active; }

void Application::SetActive(int flag) {
  if (flag == active) return;
  // The calls go through the table and still see the old state.
  if (flag) {
    ActivateWindow();
    ShowMouseCursor(0);
  } else {
    MinimizeWindow();
    ShowMouseCursor(1);
  }
  active = flag;
}

const char* Application::GetWorkingDirectory() { return workingDirectory; }

void Application::SetUserValue(std::int32_t value) { userValue = value; }

std::int32_t Application::GetUserValue() { return userValue; }

void Application::ActivateWindow() {
  HostWindowCalls* host = hostWindowCalls();
  host->SetFocus(gMainWindowHandle);
  host->SetActiveWindow(gMainWindowHandle);
  host->ShowWindow(gMainWindowHandle, kHostShowMaximized);
  host->UpdateWindow(gMainWindowHandle);
}

void Application::PlaceWindow(std::int32_t x, std::int32_t y, std::int32_t width,
                              std::int32_t height) {
  hostWindowCalls()->SetWindowPosTopmost(gMainWindowHandle, x, y, width, height);
}

void Application::GetWindowBounds(HostRect* rect) {
  hostWindowCalls()->GetWindowRect(gMainWindowHandle, rect);
}

void Application::MinimizeWindow() {
  hostWindowCalls()->ShowWindow(gMainWindowHandle, kHostMinimize);
}

void Application::ShowMouseCursor(int show) {
  // The display count is a counter, not a switch: step it until it is on the wanted side.
  HostWindowCalls* host = hostWindowCalls();
  if (show) {
    host->SetCursor(cursor);
    while (host->ShowCursor(1) < 0) {
    }
  } else {
    host->SetCursor(nullptr);
    while (host->ShowCursor(0) >= 0) {
    }
  }
}

void Application::SetText(const char* newText) {
  textSet = 1;
  strCopyN(text, newText, kTextSize);
}

int Application::HasText() { return textSet; }

void Application::SetWindowHandle(HostHandle window) { windowHandle = window; }

HostHandle Application::GetWindowHandle() { return windowHandle; }

void Application::SetInstanceHandle(HostHandle instance) { instanceHandle = instance; }

HostHandle Application::GetInstanceHandle() { return instanceHandle; }

void Application::ReservedA() {}

void Application::ReservedB() {}

void Application::Init() {
  active = 0;
  userValue = 0;
  textSet = 0;
  windowHandle = nullptr;
  instanceHandle = nullptr;
  cursor = hostWindowCalls()->GetCursor();
  strClear(workingDirectory);
  strClear(text);
  fmgGetCurrentDirectory(workingDirectory, kPathSize);
}

void ApplicationTakeHandles() {
  if (!gAPP) return;
  gAPP->windowHandle = gMainWindowHandle;
  gAPP->instanceHandle = gInstanceHandle;
}
