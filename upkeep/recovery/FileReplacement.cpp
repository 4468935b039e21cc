#include "upkeep/recovery/FileReplacement.h"

#include <filesystem>
#include <vector>

#include "base/Handle.h"
#include "base/Hresult.h"
#include "console/Failure.h"
#include "upkeep/StoreFiles.h"

namespace tsl {

namespace {

namespace fs = std::filesystem;

std::wstring WithAddition(const std::wstring& path, const std::wstring& addition) {
    const fs::path whole(path);
    fs::path name = whole.stem();
    name += L"." + addition;
    name += whole.extension();
    return (whole.parent_path() / name).wstring();
}

bool Move(const std::wstring& from, const std::wstring& to, DWORD flags = 0) {
    return MoveFileExW(from.c_str(), to.c_str(), flags | MOVEFILE_WRITE_THROUGH) != FALSE;
}

// What belongs to the old file, moved along with it: to the new one it would be wrong, and so it
// has to go before that one comes.
class CMovedCompanions {
public:
    CMovedCompanions(const std::wstring& path, const std::wstring& kept) {
        for (const wchar_t* const suffix : kCompanionSuffixes) {
            const std::wstring from = path + suffix;
            if (!IsThere(from)) continue;
            if (!Move(from, kept + suffix)) {
                const HRESULT result = HresultFromLastError();
                Restore();
                throw CFailure("cannot move", from, result);
            }
            m_moved.push_back({from, kept + suffix});
        }
        // Only hosts that are in the file have a use for it.
        DeleteFileW((path + kLogIndexSuffix).c_str());
    }

    void Restore() {
        for (const auto& [from, to] : m_moved)
            Move(to, from);
        m_moved.clear();
    }

private:
    std::vector<std::pair<std::wstring, std::wstring>> m_moved;
};

// Whether nobody has it open who forbids that: the second name could not be taken back then.
bool MayBeMoved(const std::wstring& path) {
    const DWORD share = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    return static_cast<bool>(CHandle(
        CreateFileW(path.c_str(), DELETE, share, /*securityAttributes=*/nullptr, OPEN_EXISTING,
                    FILE_FLAG_BACKUP_SEMANTICS, /*templateFile=*/nullptr))); // that is for folders
}

// In one step, so that there is no moment without a file.
bool ReplaceAtOnce(const std::wstring& path, const std::wstring& made, const std::wstring& kept) {
    if (!CreateHardLinkW(kept.c_str(), path.c_str(), /*securityAttributes=*/nullptr)) return false;
    if (Move(made, path, MOVEFILE_REPLACE_EXISTING)) return true;
    DeleteFileW(kept.c_str());
    return false;
}

// For a folder, and where a file has one name only.
bool ReplaceInTwoSteps(const std::wstring& path, const std::wstring& made,
                       const std::wstring& kept) {
    if (!Move(path, kept)) return false;
    if (Move(made, path)) return true;
    const DWORD error = GetLastError();
    Move(kept, path);
    SetLastError(error);
    return false;
}

} // namespace

std::wstring NameForKeeping(const std::wstring& path, const SYSTEMTIME& time) {
    wchar_t stamp[32];
    swprintf(stamp, std::size(stamp), L"damaged-%04d%02d%02d-%02d%02d%02d", time.wYear, time.wMonth,
             time.wDay, time.wHour, time.wMinute, time.wSecond);
    std::wstring name = WithAddition(path, stamp);
    for (int number = 2; IsThere(name); ++number)
        name = WithAddition(path, std::wstring(stamp) + L"-" + std::to_wstring(number));
    return name;
}

std::wstring NameWhileMade(const std::wstring& path) {
    return WithAddition(path, L"recovering");
}

void ReplaceFileKeeping(const std::wstring& path, const std::wstring& made,
                        const std::wstring& kept) {
    if (!MayBeMoved(path)) throw CFailure("cannot replace", path, HresultFromLastError());
    CMovedCompanions companions(path, kept);
    if (ReplaceAtOnce(path, made, kept) || ReplaceInTwoSteps(path, made, kept)) return;
    const HRESULT result = HresultFromLastError();
    companions.Restore();
    throw CFailure("cannot replace", path, result);
}

} // namespace tsl
