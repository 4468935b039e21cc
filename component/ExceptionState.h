// What the C++ runtime keeps of the exceptions of each thread. The runtime's own keeping costs each
// life of the module four handles for a thread that threw, and ends the process when it cannot have
// memory for a thread that throws its first exception.
#pragma once

namespace tsl {

// All from DllMain: the module is loaded; a thread ends; the module is unloaded from a process that
// lives on.
bool StartExceptionStates() noexcept;
void EndExceptionStateOfThread() noexcept;
void EndExceptionStates() noexcept;

} // namespace tsl
