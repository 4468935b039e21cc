// The heap of the checked build: every block ends at a page that may not be touched and is taken
// away when it is freed, so that reading or writing past a block, or after its end, faults at once.
// What lies before a block is checked when it is freed. Each module that links this has its own.
//
// A process can have only so many separate pieces of memory, so while very many blocks live,
// further ones come from the process heap, with nothing but the checks at the time they are freed.
#include <windows.h>

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr std::size_t kPageSize = 4096;
constexpr std::size_t kAlignment = __STDCPP_DEFAULT_NEW_ALIGNMENT__;
constexpr unsigned char kFill = 0xCD;

// Stands right before a block. What follows the block up to the guard page is filled.
struct alignas(kAlignment) Header {
    unsigned char* region; // null for a block of the process heap
    std::size_t size;
    std::size_t committed;
    std::uintptr_t seal;

    std::uintptr_t ExpectedSeal() const noexcept {
        return ~(reinterpret_cast<std::uintptr_t>(region) ^ size ^ committed);
    }
};

// Freed regions stay reserved for a while, so that their addresses are not used again at once.
constexpr std::size_t kQuarantine = 4096;
std::atomic<unsigned char*> g_quarantine[kQuarantine];
std::atomic<std::size_t> g_nextInQuarantine;

constexpr std::size_t kMostGuarded = 10000;
std::atomic<std::size_t> g_guarded;

[[noreturn]] void Fail(const char* what, const void* block) noexcept {
    std::fprintf(stderr, "guarded heap: %s at block %p\n", what, block);
    std::fflush(stderr);
    std::abort();
}

constexpr std::size_t RoundUp(std::size_t size, std::size_t unit) noexcept {
    return (size + unit - 1) / unit * unit;
}

// Writes the header of a block and fills the block.
void* Prepare(unsigned char* block, unsigned char* region, std::size_t size,
              std::size_t committed) noexcept {
    auto* const header = reinterpret_cast<Header*>(block) - 1;
    header->region = region;
    header->size = size;
    header->committed = committed;
    header->seal = header->ExpectedSeal();
    std::memset(block, kFill, RoundUp(size, kAlignment));
    return block;
}

void* AllocateFromProcessHeap(std::size_t size) {
    const std::size_t whole = sizeof(Header) + RoundUp(size, kAlignment);
    void* const start = whole < size ? nullptr : HeapAlloc(GetProcessHeap(), 0, whole);
    if (!start) throw std::bad_alloc();
    return Prepare(static_cast<unsigned char*>(start) + sizeof(Header), nullptr, size, 0);
}

void* AllocateGuarded(std::size_t size) {
    const std::size_t blockSize = RoundUp(size, kAlignment);
    const std::size_t committed = RoundUp(sizeof(Header) + blockSize, kPageSize);
    if (committed < size) throw std::bad_alloc();
    void* const reserved = VirtualAlloc(nullptr, committed + kPageSize, MEM_RESERVE, PAGE_NOACCESS);
    if (!reserved) throw std::bad_alloc();
    auto* const region = static_cast<unsigned char*>(reserved);
    if (!VirtualAlloc(region, committed, MEM_COMMIT, PAGE_READWRITE)) {
        VirtualFree(region, 0, MEM_RELEASE);
        throw std::bad_alloc();
    }
    ++g_guarded;
    return Prepare(region + committed - blockSize, region, size, committed);
}

void* Allocate(std::size_t size) {
    return g_guarded < kMostGuarded ? AllocateGuarded(size) : AllocateFromProcessHeap(size);
}

void Free(void* block) noexcept {
    if (!block) return;
    Header* const place = static_cast<Header*>(block) - 1;
    const Header header = *place;
    if (header.seal != header.ExpectedSeal()) Fail("written before the block", block);
    const auto* const bytes = static_cast<unsigned char*>(block);
    for (std::size_t index = header.size; index < RoundUp(header.size, kAlignment); ++index) {
        if (bytes[index] != kFill) Fail("written after the block", block);
    }
    if (!header.region) {
        HeapFree(GetProcessHeap(), 0, place);
        return;
    }
    VirtualFree(header.region, header.committed, MEM_DECOMMIT);
    --g_guarded;
    const std::size_t next = g_nextInQuarantine++ % kQuarantine;
    unsigned char* const oldest = g_quarantine[next].exchange(header.region);
    if (oldest) VirtualFree(oldest, 0, MEM_RELEASE);
}

// Runs when everything of the module has ended: a DLL that is loaded again and again would
// otherwise use up the process's addresses.
[[gnu::destructor(101)]] void ReleaseQuarantine() {
    for (std::atomic<unsigned char*>& place : g_quarantine) {
        unsigned char* const region = place.exchange(nullptr);
        if (region) VirtualFree(region, 0, MEM_RELEASE);
    }
}

} // namespace

void* operator new(std::size_t size) {
    return Allocate(size);
}
void* operator new[](std::size_t size) {
    return Allocate(size);
}
void operator delete(void* block) noexcept {
    Free(block);
}
void operator delete[](void* block) noexcept {
    Free(block);
}
void operator delete(void* block, std::size_t) noexcept {
    Free(block);
}
void operator delete[](void* block, std::size_t) noexcept {
    Free(block);
}
