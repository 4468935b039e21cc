#include "tests/support/LockWaits.h"

#include <winternl.h>

#include <bit>
#include <stdexcept>

namespace tsl::test {

namespace {

constexpr char kWait[] = "WaitForSingleObject";

// Linked to, that library would come before the C runtime with functions of the same names.
const auto kQueryObject = std::bit_cast<decltype(&NtQueryObject)>(
    GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryObject"));

// The kind of an object or its name; empty when it has none.
std::wstring TextOf(HANDLE object, OBJECT_INFORMATION_CLASS asked) {
    alignas(void*) char answer[1024]; // begins with the text in both cases
    ULONG size = 0;
    if (kQueryObject(object, asked, answer, sizeof answer, &size) < 0) return {};
    const auto* const text = reinterpret_cast<const UNICODE_STRING*>(answer);
    return {text->Buffer, text->Length / sizeof(wchar_t)};
}

// "Global\" and the system's own words for it both end with a backslash.
std::wstring WithoutNamespace(const std::wstring& name) {
    return name.substr(name.rfind(L'\\') + 1);
}

std::wstring NameOfMutex(HANDLE object) {
    if (TextOf(object, ObjectTypeInformation) != L"Mutant") return {};
    return WithoutNamespace(TextOf(object, ObjectNameInformation));
}

} // namespace

LockWaits* LockWaits::s_living = nullptr;

LockWaits::LockWaits(HeldLocks held, const wchar_t* module) : m_held(held) {
    if (s_living) throw std::logic_error("waits are watched already");
    const HMODULE watched = GetModuleHandleW(module);
    if (watched) m_wait = std::bit_cast<decltype(m_wait)>(ImportHook::Imported(watched, kWait));
    if (!m_wait) throw std::runtime_error("there is no module that waits");
    s_living = this;
    m_hook.emplace(watched, kWait, &Wait);
}

LockWaits::~LockWaits() {
    m_hook.reset();
    s_living = nullptr;
}

DWORD WINAPI LockWaits::Wait(HANDLE object, DWORD timeoutMilliseconds) {
    LockWaits& watch = *s_living;
    const auto wait = watch.m_wait;
    std::wstring name = NameOfMutex(object);
    if (timeoutMilliseconds == 0 || (object && name.empty()))
        return wait(object, timeoutMilliseconds);
    const bool isCut =
        watch.m_held == HeldLocks::AreGivenUpAtOnce && timeoutMilliseconds != INFINITE;
    {
        const std::lock_guard guard(watch.m_mutex);
        watch.m_seen.emplace_back(std::move(name), timeoutMilliseconds);
    }
    return wait(object, isCut ? 0 : timeoutMilliseconds);
}

std::vector<DWORD> LockWaits::TimeOuts(const std::wstring& lock) const {
    const std::wstring wanted = WithoutNamespace(lock);
    const std::lock_guard guard(m_mutex);
    std::vector<DWORD> timeOuts;
    for (const auto& [name, timeOut] : m_seen) {
        if (name == wanted) timeOuts.push_back(timeOut);
    }
    return timeOuts;
}

bool LockWaits::SeesWaitFor(const wchar_t* lock) const {
    constexpr int kTriesOfTenMilliseconds = 1000;
    for (int tries = 0; TimeOuts(lock).empty(); ++tries) {
        if (tries == kTriesOfTenMilliseconds) return false;
        Sleep(10);
    }
    return true;
}

} // namespace tsl::test
