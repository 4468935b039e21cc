// Owner of an interface pointer: the platform SDK's own.
#pragma once

#include <windows.h>
#include <wrl/client.h>

namespace tsl {

using Microsoft::WRL::ComPtr;

} // namespace tsl
