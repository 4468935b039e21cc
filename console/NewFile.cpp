#include "console/NewFile.h"

#include "base/Hresult.h"
#include "console/Failure.h"
#include "console/StorePlace.h"
#include "files/Paths.h"

namespace tsl {

namespace {

constexpr char kCannotWrite[] = "cannot write";

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

} // namespace

CNewFile::CNewFile(const std::wstring& place)
    : m_place(FullPath(place)), m_path(NameBeside(m_place)) {
    OpenedFile opened = OpenChecked(m_path, GENERIC_READ | GENERIC_WRITE, kShareAll, CREATE_NEW);
    if (!opened.file) throw CFailure(kCannotWrite, place, opened.status);
    m_file = std::move(opened.file);
}

CNewFile::~CNewFile() {
    if (m_file) DiscardOpened(m_file);
}

void CNewFile::Write(const void* bytes, size_t size) const {
    DWORD written = 0;
    if (!WriteFile(m_file.Get(), bytes, static_cast<DWORD>(size), &written, /*overlapped=*/nullptr))
        throw CFailure(kCannotWrite, m_place, HresultFromLastError());
    if (written != size) throw CFailure(kCannotWrite, m_place, HresultFromWin32(ERROR_WRITE_FAULT));
}

void CNewFile::Move(WhatIsThere there) const {
    if (!FlushFileBuffers(m_file.Get()))
        throw CFailure(kCannotWrite, m_place, HresultFromLastError());
    const HRESULT moved = MoveOpened(m_file, m_place, there);
    if (FAILED(moved)) throw CFailure(kCannotWrite, m_place, moved);
}

bool CNewFile::MoveBack() const noexcept {
    return SUCCEEDED(AtBoundary([&] { return MoveOpened(m_file, m_path); }));
}

} // namespace tsl
