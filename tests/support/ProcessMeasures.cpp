#include "tests/support/ProcessMeasures.h"

#include <vector>

namespace tsl::test {

namespace {

size_t AllocatedHeapBytes() {
    size_t bytes = 0;
    for (const HANDLE heap : ProcessHeaps()) {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) bytes += entry.cbData;
        }
    }
    return bytes;
}

size_t CommittedPrivateBytes() {
    size_t bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    for (const char* address = nullptr; VirtualQuery(address, &region, sizeof region) != 0;
         address = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    }
    return bytes;
}

} // namespace

std::vector<HANDLE> ProcessHeaps() {
    std::vector<HANDLE> heaps(64);
    heaps.resize(GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data()));
    return heaps;
}

int CountHandles() {
    // Values beyond this would need thousands of open ones.
    constexpr ULONG_PTR kHighestTried = 0x20000;
    int count = 0;
    for (ULONG_PTR value = 4; value <= kHighestTried; value += 4) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(value), &flags)) ++count;
    }
    return count;
}

MemoryUsage MemoryUsage::Now() {
    return {.heapBytes = AllocatedHeapBytes(), .committedBytes = CommittedPrivateBytes()};
}

std::string MemoryUsage::Text() const {
    return std::to_string(heapBytes) + " bytes on heaps, " + std::to_string(committedBytes) +
           " private bytes committed";
}

} // namespace tsl::test
