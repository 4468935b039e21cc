#include "bench/calls/CountedCalls.h"

#include <cstddef>
#include <cstring>
#include <stdexcept>

#include "base/Hresult.h"

namespace tsl::bench {

namespace {

constexpr size_t kMostThunks = 4'096;

} // namespace

// Machine code with its data right behind it, so that both are found by their distance:
//   lock inc qword [calls]
//   jmp qword [function]
struct CCountedCalls::Thunk {
    unsigned char code[16];
    std::uint64_t calls;
    void* function;
};

CCountedCalls::CCountedCalls()
    : m_thunks(
          static_cast<Thunk*>(VirtualAlloc(nullptr, kMostThunks * sizeof(Thunk),
                                           MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE))) {
    if (!m_thunks) throw CHresultError(E_OUTOFMEMORY);
}

CCountedCalls::~CCountedCalls() {
    VirtualFree(m_thunks, 0, MEM_RELEASE);
}

void* CCountedCalls::Count(const std::string& name, void* function) {
    const size_t index = m_used.size();
    const auto [place, added] = m_used.try_emplace({name, function}, nullptr);
    if (added) {
        if (index == kMostThunks) throw std::runtime_error("too many functions to count");
        // Distances are from the end of each instruction: 8 and 14 bytes from the start.
        constexpr unsigned char kCode[] = {
            0xF0, 0x48, 0xFF, 0x05, offsetof(Thunk, calls) - 8,     0,
            0,    0,    0xFF, 0x25, offsetof(Thunk, function) - 14, 0,
            0,    0,    0xCC, 0xCC};
        static_assert(sizeof kCode == sizeof Thunk::code);
        Thunk& thunk = m_thunks[index];
        std::memcpy(thunk.code, kCode, sizeof kCode);
        thunk.calls = 0;
        thunk.function = function;
        place->second = &thunk;
    }
    return place->second->code;
}

CallCounts CCountedCalls::Take() {
    CallCounts counts;
    for (const auto& [named, thunk] : m_used) {
        if (thunk->calls != 0) counts[named.first] += thunk->calls;
        thunk->calls = 0;
    }
    return counts;
}

} // namespace tsl::bench
