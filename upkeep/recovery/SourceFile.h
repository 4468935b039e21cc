// The file that rows are saved from: the damaged database itself, or a copy in which the change
// that was interrupted is taken back.
#pragma once

#include <optional>

#include "upkeep/TemporaryDatabase.h"

namespace tsl {

class CSourceFile {
public:
    // Copies into the temporary folder only where a change is pending. Throws CFailure.
    explicit CSourceFile(const std::wstring& database);

    const std::wstring& Path() const noexcept { return m_copy ? m_copy->Path() : m_path; }

private:
    std::wstring m_path;
    std::optional<CTemporaryDatabase> m_copy;
};

} // namespace tsl
