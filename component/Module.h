// The component's own module.
#pragma once

#include <windows.h>

namespace tsl {

// The module that this code was loaded from; its resources name the engine. Valid from the moment
// the module is attached. Callable from any thread.
HMODULE ComponentModule() noexcept;

} // namespace tsl
