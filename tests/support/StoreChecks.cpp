#include "tests/support/StoreChecks.h"

#include <thread>

#include "base/Handle.h"
#include "tests/support/FileDatabase.h"

namespace tsl::test {

namespace {

CHandle OpenNamedMutex(const wchar_t* name) {
    return CHandle(OpenMutexW(SYNCHRONIZE | MUTEX_MODIFY_STATE, /*inheritHandle=*/FALSE, name));
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
    DWORD waited = WAIT_FAILED;
    std::thread([&] {
        const CHandle mutex = OpenNamedMutex(name);
        waited = mutex ? WaitForSingleObject(mutex.Get(), /*milliseconds=*/0) : WAIT_OBJECT_0;
        if (mutex && waited == WAIT_OBJECT_0) ReleaseMutex(mutex.Get());
    }).join();
    return waited == WAIT_OBJECT_0;
}

} // namespace tsl::test
