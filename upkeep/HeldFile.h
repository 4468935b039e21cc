// A file of a store, or what lies in its place, held so that it can be moved away and back without
// anybody coming between. Used by one thread.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "base/Handle.h"

namespace tsl {

class CHeldFile {
public:
    // Nothing where nothing is there. Throws CFailure: Locked where another program has it open,
    // Denied for a link.
    static std::optional<CHeldFile> Find(const std::wstring& path);

    // Moves it, to where nothing is. Throws CFailure, and it is where it was.
    void MoveTo(const std::wstring& kept) const;
    // Copies what is in it, to where nothing is. Throws CFailure, and there is no copy. REQUIRES:
    // it is no folder.
    void CopyTo(const std::wstring& kept) const;
    // Moves it to where it was found, over what is there. False when that is not possible.
    bool MoveBack() const noexcept;

private:
    CHeldFile(std::wstring path, CHandle file) : m_path(std::move(path)), m_file(std::move(file)) {}

    std::wstring m_path;
    CHandle m_file;
};

} // namespace tsl
