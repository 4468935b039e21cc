#include "upkeep/backup/Replacement.h"

#include <cstdio>
#include <iterator>

#include "base/Handle.h"
#include "base/Hresult.h"
#include "console/Failure.h"
#include "files/AccessRights.h"
#include "files/Paths.h"
#include "upkeep/StoreFiles.h"

namespace tsl {

namespace {

constexpr char kCannotReplace[] = "cannot replace";

bool Move(const std::wstring& from, const std::wstring& to) noexcept {
    constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return MoveFileExW(from.c_str(), to.c_str(), kFlags) != 0;
}

void RequireMoved(const std::wstring& from, const std::wstring& to, const std::wstring& path) {
    if (!Move(from, to)) throw CFailure(kCannotReplace, path, HresultFromLastError());
}

// The system says only "denied" when a file that is open is replaced.
void RequireUnused(const std::wstring& path) {
    const CHandle file(CreateFileW(path.c_str(), GENERIC_READ, /*shareMode=*/0,
                                   /*securityAttributes=*/nullptr, OPEN_EXISTING,
                                   FILE_ATTRIBUTE_NORMAL, /*templateFile=*/nullptr));
    if (!file) throw CFailure(kCannotReplace, path, HresultFromLastError());
}

// A second name for the file, or where the disk knows none, a copy.
void KeepBeside(const std::wstring& path, const std::wstring& kept) {
    if (CreateHardLinkW(kept.c_str(), path.c_str(), /*securityAttributes=*/nullptr)) return;
    if (!CopyFileW(path.c_str(), kept.c_str(), /*failIfExists=*/TRUE))
        throw CFailure("cannot keep", path, HresultFromLastError());
}

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
    GrantFolderAccess(folder);
    m_keptFolder = folder;
}

CReplacement::Step& CReplacement::AddStep(const std::wstring& path) {
    Step step{path, {}};
    if (IsThere(path)) {
        if (!FolderExists(path)) RequireUnused(path);
        if (m_keptFolder.empty()) MakeKeptFolder();
        step.kept = (std::filesystem::path(m_keptFolder) / NameOf(path)).wstring();
    }
    return m_steps.emplace_back(std::move(step));
}

void CReplacement::Replace(const std::wstring& path, const std::wstring& made) {
    if (FolderExists(path)) SetAside(path);
    Step& step = AddStep(path);
    if (!step.kept.empty()) KeepBeside(path, step.kept);
    RequireMoved(made, path, path);
    step.gone = true;
}

void CReplacement::SetAside(const std::wstring& path) {
    if (!IsThere(path)) return;
    Step& step = AddStep(path);
    RequireMoved(path, step.kept, path);
    step.gone = true;
}

bool CReplacement::TakeBack() noexcept {
    bool whole = true;
    for (; !m_steps.empty(); m_steps.pop_back()) {
        const Step& step = m_steps.back();
        if (!step.gone) {
            DeleteFileW(step.kept.c_str());
        } else if (step.kept.empty()) {
            whole = DeleteFileW(step.path.c_str()) && whole;
        } else {
            whole = Move(step.kept, step.path) && whole;
        }
    }
    if (!m_keptFolder.empty() && RemoveDirectoryW(m_keptFolder.c_str())) m_keptFolder.clear();
    return whole;
}

} // namespace tsl
