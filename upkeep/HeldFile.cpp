#include "upkeep/HeldFile.h"

#include "base/Hresult.h"
#include "console/NewFile.h"
#include "files/Paths.h"
#include "upkeep/CheckedFiles.h"

namespace tsl {

namespace {

constexpr char kCannotReplace[] = "cannot replace";

} // namespace

std::optional<CHeldFile> CHeldFile::Find(const std::wstring& path) {
    OpenedFile opened = FolderExists(path) ? OpenCheckedFolder(path, DELETE)
                                           : OpenChecked(path, GENERIC_READ | DELETE,
                                                         /*shareMode=*/0, OPEN_EXISTING);
    if (IsMissing(opened)) return std::nullopt;
    if (!opened.file) throw FailureToOpen(kCannotReplace, path, opened);
    return CHeldFile(path, std::move(opened.file));
}

void CHeldFile::MoveTo(const std::wstring& kept) const {
    const HRESULT moved = MoveOpened(m_file, kept, WhatIsThere::Stays);
    if (FAILED(moved)) throw CFailure(kCannotReplace, m_path, moved);
}

void CHeldFile::CopyTo(const std::wstring& kept) const {
    CNewFile copy(kept);
    ReadBlocks(m_file, m_path, [&](const void* block, DWORD size) { copy.Write(block, size); });
    copy.Move(WhatIsThere::Stays);
    copy.Keep();
}

bool CHeldFile::MoveBack() const noexcept {
    return SUCCEEDED(AtBoundary([&] { return MoveOpened(m_file, m_path); }));
}

} // namespace tsl
