// Owner of a block that the system hands out from the local heap.
#pragma once

#include <windows.h>

#include <memory>

namespace tsl {

struct LocalMemoryDeleter {
    void operator()(void* block) const noexcept { LocalFree(block); }
};

// Frees its block with LocalFree when it goes.
template <class T>
using LocalMemory = std::unique_ptr<T, LocalMemoryDeleter>;

} // namespace tsl
