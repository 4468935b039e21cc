#include "tests/support/StoreChecks.h"

#include "base/Handle.h"
#include "tests/support/FileDatabase.h"

namespace tsl::test {

namespace {

CHandle OpenNamedMutex(const wchar_t* name) {
    return CHandle(OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, /*inheritHandle=*/FALSE, name));
}

// A thread of the system's own: those of the standard library keep a handle now and then, which
// tests that count handles would see.
DWORD WINAPI TryMutex(void* name) {
    const CHandle mutex = OpenNamedMutex(static_cast<const wchar_t*>(name));
    if (!mutex) return WAIT_OBJECT_0;
    const DWORD waited = WaitForSingleObject(mutex.Get(), /*milliseconds=*/0);
    if (waited == WAIT_OBJECT_0) ReleaseMutex(mutex.Get());
    return waited;
}

} // namespace

int CountRows(const std::filesystem::path& database, const std::string& table) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(database, error)) return 0;
    const FileDatabase file(database);
    const std::string known =
        file.Value("SELECT count(*) FROM sqlite_master WHERE name = '" + table + "'");
    return known == "0" ? 0 : std::stoi(file.Value("SELECT count(*) FROM " + table));
}

bool MutexExists(const wchar_t* name) {
    return static_cast<bool>(OpenNamedMutex(name));
}

bool MutexIsFree(const wchar_t* name) {
    const CHandle thread(
        CreateThread(nullptr, 0, TryMutex, const_cast<wchar_t*>(name), 0, nullptr));
    DWORD waited = WAIT_FAILED;
    if (!thread || WaitForSingleObject(thread.Get(), INFINITE) != WAIT_OBJECT_0) return false;
    return GetExitCodeThread(thread.Get(), &waited) && waited == WAIT_OBJECT_0;
}

} // namespace tsl::test
