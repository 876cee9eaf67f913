// The default window calls: no window system, so nothing to show and nothing in the queue.
#include "platform/host_window.h"

namespace {

class NoWindowCalls final : public HostWindowCalls {};

NoWindowCalls noWindow;
HostWindowCalls* installed = nullptr;

}  // namespace

int HostWindowCalls::PeekMessage(HostHandle, HostMessage*) { return 0; }
int HostWindowCalls::GetMessage(HostHandle, HostMessage*) { return -1; }
void HostWindowCalls::DispatchMessage(const HostMessage*) {}
void HostWindowCalls::SetFocus(HostHandle) {}
void HostWindowCalls::SetActiveWindow(HostHandle) {}
void HostWindowCalls::ShowWindow(HostHandle, int) {}
void HostWindowCalls::UpdateWindow(HostHandle) {}
void HostWindowCalls::SetWindowPosTopmost(HostHandle, std::int32_t, std::int32_t, std::int32_t,
                                          std::int32_t) {}
void HostWindowCalls::GetWindowRect(HostHandle, HostRect*) {}
HostHandle HostWindowCalls::GetCursor() { return nullptr; }
void HostWindowCalls::SetCursor(HostHandle) {}

int HostWindowCalls::ShowCursor(int show) { return show ? ++cursorCount_ : --cursorCount_; }

HostWindowCalls* hostWindowCalls() { return installed ? installed : &noWindow; }

void hostInstallWindowCalls(HostWindowCalls* calls) { installed = calls; }
