#include "upkeep/backup/Replacement.h"

#include <cstdio>
#include <iterator>
#include <memory>

#include "base/Hresult.h"
#include "files/AccessRights.h"
#include "files/Paths.h"
#include "upkeep/CheckedFiles.h"
#include "upkeep/HeldFile.h"
#include "upkeep/StoreFiles.h"

namespace tsl {

namespace {

std::wstring DatedName() {
    SYSTEMTIME now{};
    GetSystemTime(&now);
    wchar_t name[64];
    std::swprintf(name, std::size(name), L"before-restore-%04d%02d%02d-%02d%02d%02d", now.wYear,
                  now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond);
    return name;
}

} // namespace

CReplacement::CReplacement(const std::wstring& folder) : m_folder(folder) {}

CReplacement::~CReplacement() {
    TakeBack();
}

void CReplacement::MakeKeptFolder() {
    const std::wstring dated = (std::filesystem::path(m_folder) / DatedName()).wstring();
    std::wstring folder = dated;
    for (int another = 2; !CreateDirectoryW(folder.c_str(), nullptr); ++another) {
        if (GetLastError() != ERROR_ALREADY_EXISTS)
            throw CFailure("cannot make", folder, HresultFromLastError());
        folder = dated + L"-" + std::to_wstring(another);
    }
    OpenedFile opened = OpenCheckedFolder(folder, FILE_LIST_DIRECTORY | READ_CONTROL,
                                          FILE_SHARE_READ | FILE_SHARE_WRITE);
    if (!opened.file) throw FailureToOpen("cannot make", folder, opened);
    GrantAccess(opened.file);
    m_keptHeld = std::move(opened.file);
    m_keptFolder = folder;
}

std::wstring CReplacement::KeptPathOf(const std::wstring& path) {
    if (m_keptFolder.empty()) MakeKeptFolder();
    return (std::filesystem::path(m_keptFolder) / NameOf(path)).wstring();
}

void CReplacement::Replace(const std::wstring& path, CNewFile& made, Keep keep) {
    if (keep == Keep::Moved || FolderExists(path)) {
        SetAside(path);
        made.Move(WhatIsThere::Stays);
        m_placed.push_back(&made);
        m_undo.emplace_back([&made] { return made.MoveBack(); });
        return;
    }
    std::wstring kept;
    {
        const std::optional<CHeldFile> old = CHeldFile::Find(path);
        if (old) {
            kept = KeptPathOf(path);
            old->CopyTo(kept);
            m_undo.emplace_back([kept] {
                DiscardFile(kept);
                return true;
            });
        }
    }
    made.Move();
    m_placed.push_back(&made);
    m_undo.emplace_back([&made, path, kept] {
        if (!made.MoveBack()) return false;
        const std::optional<CHeldFile> old = kept.empty() ? std::nullopt : CHeldFile::Find(kept);
        if (old) old->MoveTo(path);
        return old || kept.empty();
    });
}

void CReplacement::SetAside(const std::wstring& path) {
    std::optional<CHeldFile> found = CHeldFile::Find(path);
    if (!found) return;
    const auto old = std::make_shared<CHeldFile>(std::move(*found));
    old->MoveTo(KeptPathOf(path));
    m_undo.emplace_back([old] { return old->MoveBack(); });
}

void CReplacement::Finish() noexcept {
    for (CNewFile* const made : m_placed)
        made->Keep();
    m_undo.clear();
}

bool CReplacement::TakeBack() noexcept {
    bool whole = true;
    for (; !m_undo.empty(); m_undo.pop_back()) {
        const HRESULT undone = AtBoundary([&] { return m_undo.back()() ? S_OK : E_FAIL; });
        whole = SUCCEEDED(undone) && whole;
    }
    m_keptHeld = CHandle();
    if (!m_keptFolder.empty() && RemoveDirectoryW(m_keptFolder.c_str())) m_keptFolder.clear();
    return whole;
}

} // namespace tsl
