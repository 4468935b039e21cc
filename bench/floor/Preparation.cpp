#include "bench/floor/Preparation.h"

#include <aclapi.h>
#include <shlobj.h>

#include "base/Hresult.h"
#include "base/LocalMemory.h"
#include "console/StorePlace.h"
#include "tests/support/StoreChecks.h"

namespace tsl::bench {

namespace {

// Whether an entry of the list allows or denies Everyone anything.
bool NamesEveryone(PACL list) {
    SID_IDENTIFIER_AUTHORITY world = {SECURITY_WORLD_SID_AUTHORITY};
    PSID everyone = nullptr;
    AllocateAndInitializeSid(&world, 1, SECURITY_WORLD_RID, 0, 0, 0, 0, 0, 0, 0, &everyone);
    bool found = false;
    for (WORD index = 0; index < list->AceCount && !found; ++index) {
        void* entry = nullptr;
        GetAce(list, index, &entry);
        found = EqualSid(&static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart, everyone);
    }
    FreeSid(everyone);
    return found;
}

} // namespace

CPreparation::CPreparation()
    : m_sqliteAccessLock(CreateMutexW(nullptr, FALSE, test::kSqliteAccessLock)),
      m_logIdLock(CreateMutexW(nullptr, FALSE, test::kLogIdLock)) {}

std::wstring CPreparation::FindFolder() const {
    LPITEMIDLIST items = nullptr;
    wchar_t folder[MAX_PATH] = L"";
    SHGetSpecialFolderLocation(/*owner=*/nullptr, CSIDL_COMMON_APPDATA, &items);
    SHGetPathFromIDListW(items, folder);
    CoTaskMemFree(items);
    return std::wstring(folder) + kStoreFolders;
}

void CPreparation::LookForFolder(const std::wstring& folder) const {
    if (GetFileAttributesW(folder.c_str()) == INVALID_FILE_ATTRIBUTES) throw CHresultError(E_FAIL);
}

void CPreparation::RequireEveryone(const std::wstring& path) const {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error = GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT,
                                              DACL_SECURITY_INFORMATION, /*owner=*/nullptr,
                                              /*group=*/nullptr, &list, /*sacl=*/nullptr, &read);
    const LocalMemory<void> descriptor(read);
    if (error != ERROR_SUCCESS || !NamesEveryone(list)) throw CHresultError(E_ACCESSDENIED);
}

void CPreparation::PrepareFolder() const {
    const std::wstring folder = FindFolder();
    LookForFolder(folder);
    RequireEveryone(folder);
}

CPreparedWork::CPreparedWork(const CPreparation* preparation,
                             HANDLE (CPreparation::*lock)() const noexcept) {
    if (!preparation) return;
    if (lock) {
        m_lock = (preparation->*lock)();
        WaitForSingleObject(m_lock, INFINITE);
    }
    preparation->PrepareFolder();
}

} // namespace tsl::bench
