#include "upkeep/recovery/Recovery.h"

#include <algorithm>

#include "console/Failure.h"
#include "files/Paths.h"
#include "files/TextActionLog.h"
#include "upkeep/recovery/DatabaseRecovery.h"

namespace tsl {

namespace {

// Raises the counter to the highest id; it never goes back.
CounterReport MendCounter(const std::wstring& path, CounterReport report, UINT32 highestId,
                          bool dryRun) {
    if (report.found >= highestId) {
        report.state = CounterState::Fine; // also a store without records, which needs no file
        return report;
    }
    report.written = highestId;
    if (dryRun) return report;
    const HRESULT written = WriteCounterAtOnce(path, highestId);
    if (FAILED(written)) throw CFailure("cannot write", path, written);
    return report;
}

CounterReport ReadPresentCounter(const std::wstring& path) {
    CounterReport report;
    if (FAILED(ReadCounter(path, report.found))) report.found = 0;
    report.state = FileExists(path) ? CounterState::Behind : CounterState::Missing;
    return report;
}

} // namespace

bool DatabaseReport::IsPartly() const {
    const auto isUnread = [](const Unread& part) { return part.pages > 0 || part.rows > 0; };
    return isUnread(unread) || std::ranges::any_of(tables, [&](const TableReport& table) {
               return isUnread(table.unread) || table.rows.incomplete > 0 ||
                      table.rows.unbelievable > 0;
           });
}

RecoverReport RecoverStore(const StorePaths& store, const RecoverOptions& options) {
    RecoverReport report;
    report.counter = ReadPresentCounter(store.counter);
    const bool hasCounter = report.counter.state != CounterState::Missing;
    const RecoveryContext context{options, report.counter.found, hasCounter};
    report.databases.push_back(RecoverDatabase(store.actionLog, ActionLogTables(), context));
    report.databases.push_back(RecoverDatabase(store.replayLog, ReplayLogTables(), context));
    const UINT32 highestId = std::max(report.databases[0].highestId, report.databases[1].highestId);
    // The host that converts such a store makes the file.
    const bool isOlderForm = report.databases[0].isOlderForm;
    report.counter =
        MendCounter(store.counter, report.counter, isOlderForm ? 0 : highestId, options.dryRun);
    return report;
}

} // namespace tsl
