// Bring-up and shutdown of the kernel's services, and the program's global service pointers.
#pragma once

// Whether bring-up starts the frame clock. A program that times no frames leaves it registered
// but idle, as after an Init that found no usable timer, and so skips the frame period that
// starting it waits.
enum class FrameClock { kStarted, kIdle };

// Brings the services up in order and binds the global pointers. 1 when the services are up,
// 0 when the InterfaceManager gave no address (the debug log and the heap are then left up).
int CoreStartup(FrameClock clock = FrameClock::kStarted);
// The exact mirror of CoreStartup: unbinds, unregisters and shuts every service down, and
// destroys the heap with whatever still lies on it.
void CoreShutdown();

class Application;

// Fetches the program's own pointers to services from the registry and sets gAPP to `app` (the
// last step of bring-up).
void BindCoreInterfaces(Application* app);
// Lets them go again (the first step of shutdown), before any service is unregistered.
void UnbindCoreInterfaces();
