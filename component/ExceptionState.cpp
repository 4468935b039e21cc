#include "component/ExceptionState.h"

#include <windows.h>

#include <cxxabi.h>

#include <cstdlib>

namespace __cxxabiv1 {

// As the runtime's binary interface has it.
struct __cxa_eh_globals {
    void* caughtExceptions;
    unsigned int uncaughtExceptions;
};

} // namespace __cxxabiv1

namespace __gnu_cxx {

// Frees the memory that the runtime holds ready for exceptions.
void __freeres();

} // namespace __gnu_cxx

namespace {

struct ThreadState {
    abi::__cxa_eh_globals globals;
    ThreadState* previous;
    ThreadState* next;
};

constinit DWORD g_slot = TLS_OUT_OF_INDEXES;
constinit SRWLOCK g_lock = SRWLOCK_INIT;
constinit ThreadState* g_first = nullptr; // of all threads; guarded by the lock

// Whoever throws may be about to read the last error.
ThreadState* StateOfThread() noexcept {
    const DWORD error = GetLastError();
    auto* const state = static_cast<ThreadState*>(TlsGetValue(g_slot));
    SetLastError(error);
    return state;
}

ThreadState* MakeState() noexcept {
    auto* const made = static_cast<ThreadState*>(std::calloc(1, sizeof(ThreadState)));
    if (!made || !TlsSetValue(g_slot, made)) std::abort();
    AcquireSRWLockExclusive(&g_lock);
    made->next = g_first;
    if (g_first) g_first->previous = made;
    g_first = made;
    ReleaseSRWLockExclusive(&g_lock);
    return made;
}

} // namespace

namespace __cxxabiv1 {

extern "C" __cxa_eh_globals* __cxa_get_globals() noexcept {
    ThreadState* const state = StateOfThread();
    return state ? &state->globals : &MakeState()->globals;
}

extern "C" __cxa_eh_globals* __cxa_get_globals_fast() noexcept {
    return __cxa_get_globals();
}

} // namespace __cxxabiv1

namespace tsl {

bool StartExceptionStates() noexcept {
    g_slot = TlsAlloc();
    return g_slot != TLS_OUT_OF_INDEXES;
}

void EndExceptionStateOfThread() noexcept {
    ThreadState* const state = StateOfThread();
    if (!state) return;
    AcquireSRWLockExclusive(&g_lock);
    (state->previous ? state->previous->next : g_first) = state->next;
    if (state->next) state->next->previous = state->previous;
    ReleaseSRWLockExclusive(&g_lock);
    // Modules that are told later may still call us on this thread; they get a new one.
    TlsSetValue(g_slot, nullptr);
    std::free(state);
}

void EndExceptionStates() noexcept {
    while (g_first) {
        ThreadState* const ended = g_first;
        g_first = ended->next;
        std::free(ended);
    }
    TlsFree(g_slot);
    g_slot = TLS_OUT_OF_INDEXES;
    __gnu_cxx::__freeres();
}

} // namespace tsl
