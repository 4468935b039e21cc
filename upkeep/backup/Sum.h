// SHA-256, by the system's own provider: of texts, of files, and of files that are copied.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

#include "base/Handle.h"
#include "upkeep/Progress.h"

namespace tsl {

struct FileSum {
    UINT64 size = 0;
    std::string sha256; // 64 small hexadecimal digits

    bool operator==(const FileSum&) const = default;
};

std::string Sha256Of(std::string_view bytes);

// Opens a file to read it while nobody writes it; one that somebody writes cannot be opened. Throws
// CFailure, which names the file, as the others do.
CHandle OpenUnchanging(const std::wstring& path);

// Of a file that is there.
FileSum SumOfFile(const std::wstring& path, const Progress& progress);

// Of an opened file; the path names it in messages.
FileSum SumOf(const CHandle& file, const std::wstring& path, const Progress& progress);

// Copies an opened file, which the path names, to the end of another. The copy is on the disk
// afterwards.
FileSum CopyAndSum(const CHandle& file, const std::wstring& path, const CHandle& copy,
                   const Progress& progress);

} // namespace tsl
