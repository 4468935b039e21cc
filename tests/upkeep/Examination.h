// The findings of an examination, as tests ask for them.
#pragma once

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

#include "tests/support/StoreFixture.h"
#include "upkeep/doctor/Doctor.h"

namespace tsl::test {

// The worst finding whose subject begins so: "ualog.db" stands for all that is told of it.
inline Finding WorstOf(const Findings& findings, std::string_view subject) {
    Finding worst;
    for (const Finding& finding : findings) {
        const bool worse = worst.subject.empty() || finding.level > worst.level ||
                           (finding.level == worst.level && finding.damage && !worst.damage);
        if (finding.subject.starts_with(subject) && worse) worst = finding;
    }
    return worst;
}

// Everything that lies in a folder and below it.
struct FileState {
    Bytes bytes;
    std::filesystem::file_time_type written;

    bool operator==(const FileState&) const = default;
};
using FolderState = std::map<std::wstring, FileState>;
inline FolderState StateOf(const std::filesystem::path& folder) {
    FolderState content;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        content[entry.path().wstring()] = {
            entry.is_regular_file() ? ReadBytes(entry.path()) : Bytes(), entry.last_write_time()};
    }
    return content;
}

} // namespace tsl::test
