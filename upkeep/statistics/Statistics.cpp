#include "upkeep/statistics/Statistics.h"

#include <algorithm>
#include <chrono>
#include <filesystem>

#include "console/Failure.h"
#include "console/Text.h"
#include "files/TextActionLog.h"
#include "store/Schema.h"
#include "store/StoreLocks.h"
#include "upkeep/StoreLock.h"
#include "upkeep/statistics/FetchedRows.h"

namespace tsl {

namespace {

double Now() {
    constexpr double kDaysTo1970 = 25569.0;
    const std::chrono::duration<double, std::ratio<86400>> since1970 =
        std::chrono::system_clock::now().time_since_epoch();
    return kDaysTo1970 + since1970.count();
}

FileFigures SizeOf(const std::wstring& path) {
    std::error_code error;
    FileFigures file;
    file.path = path;
    const std::uintmax_t bytes = std::filesystem::file_size(path, error);
    if (!error) file.bytes = bytes;
    return file;
}

// What the next action is given: as the component counts, 1 without the file.
std::uint32_t NextId(const std::wstring& counterFile) {
    const CStoreLocks locks;
    std::error_code error;
    if (!std::filesystem::exists(counterFile, error)) return 1;
    UINT32 counter = 1; // stays where the file has no line
    const HRESULT result = ReadCounter(counterFile, counter);
    if (FAILED(result)) throw CFailure("cannot read", counterFile, result);
    return counter + 1;
}

void RequireOneFile(const StoreFigures& figures) {
    const bool any = std::ranges::any_of(figures.files, [](const FileFigures& file) {
        std::error_code error;
        return std::filesystem::exists(file.path, error);
    });
    if (any) return;
    const auto folder = std::filesystem::path(figures.files[0].path).parent_path();
    throw CFailure(ExitCode::NothingFound, "there is no action log in " + ToUtf8(folder.wstring()));
}

// The file with its pages; the rows are fetched too.
FileFigures FetchFile(const std::wstring& path, CFetchedRows& rows,
                      std::initializer_list<std::wstring_view> tables) {
    FileFigures file = SizeOf(path);
    if (!rows.Fetch(path, tables)) return file;
    file.pages = rows.Pages();
    file.freePages = rows.FreePages();
    return file;
}

} // namespace

bool StoreFigures::IsEmpty() const noexcept {
    return std::ranges::all_of(tables,
                               [](const TableFigures& table) { return table.records == 0; });
}

StoreFigures ReadStoreFigures(const StorePaths& store) {
    StoreFigures figures;
    figures.taken = Now();
    figures.files = {SizeOf(store.actionLog), SizeOf(store.replayLog), SizeOf(store.counter),
                     SizeOf(store.userIds)};
    RequireOneFile(figures);
    CFetchedRows actionLog;
    CFetchedRows replayLog;
    figures.files[0] =
        FetchFile(store.actionLog, actionLog, {kActionLogTable, kContentDeleteTable});
    figures.files[1] = FetchFile(store.replayLog, replayLog, {kReplayTable});
    figures.nextId = NextId(store.counter);
    figures.tables = {actionLog.CountTable(kActionLogTable),
                      actionLog.CountTable(kContentDeleteTable),
                      replayLog.CountTable(kReplayTable)};
    actionLog.CountRecords(kActionLogTable, figures);
    return figures;
}

} // namespace tsl
