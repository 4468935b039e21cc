#include "upkeep/recovery/FileReplacement.h"

#include <filesystem>
#include <vector>

#include "upkeep/CheckedFiles.h"
#include "upkeep/HeldFile.h"
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

void ReplaceFileKeeping(const std::wstring& path, CNewFile& made, const std::wstring& kept) {
    // All are held before the first is moved. What belongs to the old file would be wrong beside
    // the new one, and so has to go before that comes.
    std::vector<std::pair<CHeldFile, std::wstring>> old;
    for (const std::wstring suffix : {L"-journal", L"-wal", L""}) {
        if (auto held = CHeldFile::Find(path + suffix))
            old.emplace_back(std::move(*held), kept + suffix);
    }
    size_t moved = 0;
    try {
        for (; moved < old.size(); ++moved)
            old[moved].first.MoveTo(old[moved].second);
        // Only hosts that are in the file have a use for it.
        DiscardFile(path + kLogIndexSuffix);
        made.Move(WhatIsThere::Stays);
    } catch (const CFailure&) {
        while (moved > 0)
            old[--moved].first.MoveBack();
        throw;
    }
    made.Keep();
}

} // namespace tsl
