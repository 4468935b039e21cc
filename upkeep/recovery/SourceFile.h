// The file that rows are saved from: the damaged database itself, or a copy in which the change
// that was interrupted is taken back.
#pragma once

#include <string>

#include "upkeep/StorePaths.h"

namespace tsl {

class CSourceFile {
public:
    // Copies into the temporary folder only where a change is pending. Throws CFailure.
    explicit CSourceFile(const std::wstring& database);
    CSourceFile(const CSourceFile&) = delete;
    CSourceFile& operator=(const CSourceFile&) = delete;
    // Deletes the copy.
    ~CSourceFile();

    const std::wstring& Path() const noexcept { return m_path; }
    bool IsCopy() const noexcept { return m_isCopy; }

private:
    std::wstring m_path;
    bool m_isCopy = false;
};

// A path in the temporary folder that no other process uses.
std::wstring TemporaryPath(const std::wstring& name);

} // namespace tsl
