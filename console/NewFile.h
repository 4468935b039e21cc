// A file that is made beside the place that it is to have, under a name that nobody can guess, and
// is held until it is there. Used by one thread.
#pragma once

#include <windows.h>

#include <string>

#include "base/Handle.h"
#include "files/CheckedOpen.h"

namespace tsl {

class CNewFile {
public:
    // Makes it, empty; nothing is made behind a link. Others may open it by its name meanwhile.
    // Throws CFailure, which names the place.
    explicit CNewFile(const std::wstring& place);
    CNewFile(CNewFile&& other) noexcept = default;
    CNewFile& operator=(CNewFile&&) = delete;
    // Takes it away unless it was kept.
    ~CNewFile();

    // Where it lies while it is made, and for reading and writing.
    const std::wstring& Path() const noexcept { return m_path; }
    const CHandle& File() const noexcept { return m_file; }

    // Writes behind what was written before. Throws CFailure.
    void Write(const void* bytes, size_t size) const;

    // Brings what it holds to the disk and moves it to its place. Throws CFailure; it is not there
    // then. It is still held, and is taken away unless it is kept.
    void Move(WhatIsThere there = WhatIsThere::IsReplaced) const;

    // Moves it from its place to where it was made. False when that is not possible.
    bool MoveBack() const noexcept;

    // Lets go of it where it is.
    void Keep() noexcept { m_file = CHandle(); }

private:
    std::wstring m_place;
    std::wstring m_path;
    CHandle m_file;
};

} // namespace tsl
