#include "tests/memory_faults/AllocationFaults.h"

#include <aclapi.h>
#include <oleauto.h>
#include <sddl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace tsl::test {

namespace {

// What the stand-ins share: they are plain functions.
struct Plan {
    bool armed = false;
    int firstToFail = 0; // 0 for none
    Extent extent = Extent::One;
    int asked = 0;
    int injected = 0;
    const char* firstFailed = nullptr;
    std::vector<const char*> noted;

    bool TakeFailure(const char* name) {
        if (!armed) return false;
        ++asked;
        if (firstToFail == 0) noted.push_back(name);
        const bool fails = firstToFail != 0 &&
                           (extent == Extent::One ? asked == firstToFail : asked >= firstToFail);
        if (!fails) return false;
        if (injected++ == 0) firstFailed = name;
        return true;
    }
};
Plan g_plan;

template <size_t kSize>
struct Name {
    char text[kSize]{};
    constexpr Name(const char (&literal)[kSize]) { std::copy_n(literal, kSize, text); }
};

// An imported function, its stand-in, and what the stand-in answers for a failure.
template <Name kName, class Function, LONG_PTR kFailure>
struct Import;
template <Name kName, class Result, class... Arguments, LONG_PTR kFailure>
struct Import<kName, Result(Arguments...), kFailure> {
    static constexpr const char* kText = kName.text;
    static inline Result (*original)(Arguments...) = nullptr;

    static Result Call(Arguments... arguments) {
        if (!g_plan.TakeFailure(kText)) return original(arguments...);
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        if constexpr (std::is_pointer_v<Result>) {
            return reinterpret_cast<Result>(kFailure);
        } else {
            return static_cast<Result>(kFailure);
        }
    }
};

constexpr LONG_PTR kNull = 0;
constexpr LONG_PTR kFalse = FALSE;
constexpr LONG_PTR kInvalidHandle = -1;

} // namespace

template <class Import>
void AllocationFaults::Replace(HMODULE module) {
    void* const imported = ImportHook::Imported(module, Import::kText);
    if (!imported) return;
    Import::original = std::bit_cast<decltype(Import::original)>(imported);
    m_hooks.push_back(std::make_unique<ImportHook>(module, Import::kText, &Import::Call));
    m_names.emplace_back(Import::kText);
}

// SHGetSpecialFolderLocation is left out: it fails for other reasons, and the files then lie in the
// current folder.
AllocationFaults::AllocationFaults(HMODULE module) {
    // The C++ runtime of the component, and the engine; the guarded heap of the checked build takes
    // pages.
    Replace<Import<"malloc", void*(size_t), kNull>>(module);
    Replace<Import<"calloc", void*(size_t, size_t), kNull>>(module);
    Replace<Import<"realloc", void*(void*, size_t), kNull>>(module);
    Replace<Import<"_strdup", char*(const char*), kNull>>(module);
    Replace<Import<"VirtualAlloc", void*(void*, SIZE_T, DWORD, DWORD), kNull>>(module);
    Replace<Import<"HeapAlloc", void*(HANDLE, DWORD, SIZE_T), kNull>>(module);
    Replace<Import<"LocalAlloc", HLOCAL(UINT, SIZE_T), kNull>>(module);

    Replace<Import<"SysAllocString", BSTR(const OLECHAR*), kNull>>(module);
    Replace<Import<"SysAllocStringLen", BSTR(const OLECHAR*, UINT), kNull>>(module);
    Replace<Import<"SysAllocStringByteLen", BSTR(const char*, UINT), kNull>>(module);
    Replace<Import<"SafeArrayCreate", SAFEARRAY*(VARTYPE, UINT, SAFEARRAYBOUND*), kNull>>(module);
    Replace<Import<"SafeArrayCreateVector", SAFEARRAY*(VARTYPE, LONG, ULONG), kNull>>(module);
    Replace<Import<"SafeArrayCopy", HRESULT(SAFEARRAY*, SAFEARRAY**), E_OUTOFMEMORY>>(module);
    Replace<Import<"SafeArrayAccessData", HRESULT(SAFEARRAY*, void**), E_OUTOFMEMORY>>(module);
    Replace<Import<"VariantCopy", HRESULT(VARIANT*, const VARIANT*), E_OUTOFMEMORY>>(module);
    Replace<Import<"VariantChangeType", HRESULT(VARIANT*, const VARIANT*, USHORT, VARTYPE),
                   E_OUTOFMEMORY>>(module);
    Replace<Import<"CoTaskMemAlloc", void*(SIZE_T), kNull>>(module);
    Replace<Import<"CoCreateInstance", HRESULT(const CLSID&, IUnknown*, DWORD, const IID&, void**),
                   E_OUTOFMEMORY>>(module);

    // What the system makes for the component out of memory.
    Replace<
        Import<"InitializeCriticalSectionAndSpinCount", BOOL(CRITICAL_SECTION*, DWORD), kFalse>>(
        module);
    Replace<Import<"CreateActCtxW", HANDLE(const ACTCTXW*), kInvalidHandle>>(module);
    Replace<Import<"LoadLibraryW", HMODULE(const wchar_t*), kNull>>(module);
    Replace<Import<"LoadLibraryExW", HMODULE(const wchar_t*, HANDLE, DWORD), kNull>>(module);
    Replace<Import<"ConvertSidToStringSidW", BOOL(PSID, wchar_t**), kFalse>>(module);
    Replace<Import<"AllocateAndInitializeSid",
                   BOOL(SID_IDENTIFIER_AUTHORITY*, BYTE, DWORD, DWORD, DWORD, DWORD, DWORD, DWORD,
                        DWORD, DWORD, PSID*),
                   kFalse>>(module);
    Replace<Import<"GetNamedSecurityInfoW",
                   DWORD(const wchar_t*, SE_OBJECT_TYPE, SECURITY_INFORMATION, PSID*, PSID*, PACL*,
                         PACL*, PSECURITY_DESCRIPTOR*),
                   ERROR_NOT_ENOUGH_MEMORY>>(module);
}

AllocationFaults::~AllocationFaults() {
    Disarm();
}

void AllocationFaults::Arm(int number, Extent extent) {
    if (number == 0) g_plan.noted.clear();
    g_plan.firstToFail = number;
    g_plan.extent = extent;
    g_plan.asked = 0;
    g_plan.injected = 0;
    g_plan.firstFailed = nullptr;
    g_plan.armed = true;
}

void AllocationFaults::ArmNoting() {
    Arm(/*number: none*/ 0, Extent::One);
}

void AllocationFaults::Disarm() {
    g_plan.armed = false;
}

int AllocationFaults::Asked() const {
    return g_plan.asked;
}

int AllocationFaults::Injected() const {
    return g_plan.injected;
}

std::string AllocationFaults::FirstFailed() const {
    return g_plan.firstFailed ? g_plan.firstFailed : "";
}

const std::vector<const char*>& AllocationFaults::Noted() const {
    return g_plan.noted;
}

std::vector<std::string> AllocationFaults::Names() const {
    return m_names;
}

} // namespace tsl::test
