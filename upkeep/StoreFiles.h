// The files of a store one by one: what a backup holds of each, and under which name.
#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "files/TextActionLog.h"
#include "files/UserIdList.h"
#include "store/Schema.h"
#include "upkeep/StorePaths.h"

namespace tsl {

struct StoreFile {
    const wchar_t* name;
    std::wstring StorePaths::* path;
    bool isDatabase;

    const std::wstring& In(const StorePaths& store) const { return store.*path; }
};

inline constexpr StoreFile kCounterFile = {kCounterFileName, &StorePaths::counter, false};
inline constexpr StoreFile kUserIdFile = {kUserIdFileName, &StorePaths::userIds, false};
inline constexpr std::array<StoreFile, 4> kStoreFiles = {{
    {kActionLogFileName, &StorePaths::actionLog, true},
    {kReplayFileName, &StorePaths::replayLog, true},
    kCounterFile,
    kUserIdFile,
}};

// Whether anything lies there, were it a folder.
inline bool IsThere(const std::wstring& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

// The folder that a file lies in.
inline std::wstring FolderOf(const std::wstring& path) {
    return std::filesystem::path(path).parent_path().wstring();
}

// The last component of a path.
inline std::wstring NameOf(const std::wstring& path) {
    return std::filesystem::path(path).filename().wstring();
}

} // namespace tsl
