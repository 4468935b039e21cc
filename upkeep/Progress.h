// Looking after a large store takes a while; this is how it tells how far it has come.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace tsl {

// What is being done ("copying ualog.db"), and how many bytes of how many are done.
using Progress = std::function<void(const std::string& what, UINT64 done, UINT64 all)>;

} // namespace tsl
