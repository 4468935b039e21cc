// SHA-256, by the system's own provider: of texts, of files, and of files that are copied.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "upkeep/Progress.h"

namespace tsl {

struct FileSum {
    UINT64 size = 0;
    std::string sha256; // 64 small hexadecimal digits

    bool operator==(const FileSum&) const = default;
};

std::string Sha256Of(std::string_view bytes);

// Both throw CFailure, which names the file. Nobody may write the file meanwhile; one that somebody
// writes cannot be opened.
FileSum SumOfFile(const std::wstring& path, const Progress& progress);
// Replaces what is at the new place. The copy is on the disk afterwards.
FileSum CopyAndSum(const std::wstring& from, const std::wstring& to, const Progress& progress);

} // namespace tsl
