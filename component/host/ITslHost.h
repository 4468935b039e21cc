// What the component asks a host object for in SetHost, and holds.
#pragma once

#include <windows.h>

#include <unknwn.h>

namespace tsl {

// The component calls none of its methods.
struct ITslHost : public IUnknown {};

} // namespace tsl
