#include "upkeep/recovery/Recovery.h"

#include <algorithm>

#include "console/Failure.h"
#include "console/Text.h"
#include "files/Paths.h"
#include "files/TextActionLog.h"
#include "upkeep/doctor/CounterCheck.h"
#include "upkeep/recovery/DatabaseRecovery.h"

namespace tsl {

namespace {

CounterReport ReadPresentCounter(const std::wstring& path) {
    CounterReport report;
    report.state = CounterState::Missing;
    if (!FileExists(path)) return report;
    const HRESULT read = ReadCounter(path, report.found);
    // It may be higher than every id that is in use, so it is not replaced unseen.
    if (FAILED(read)) throw CFailure("cannot read", path, read);
    report.state =
        IsSpoiledCounter(path, report.found) ? CounterState::Spoiled : CounterState::Fine;
    // A longer number is read as the highest one.
    constexpr UINT32 kHighestCounter = 0xFFFFFFFF;
    if (report.state == CounterState::Spoiled && report.found == kHighestCounter) report.found = 0;
    return report;
}

// Raises the counter to the highest id and writes a spoiled one anew; it never goes back.
CounterReport MendCounter(const std::wstring& path, CounterReport report, UINT32 highestId,
                          bool dryRun) {
    const bool isBehind = report.found < highestId;
    if (report.state == CounterState::Fine && isBehind) report.state = CounterState::Behind;
    // A store without records needs no file.
    if (!isBehind && report.state != CounterState::Spoiled) {
        report.state = CounterState::Fine;
        return report;
    }
    report.written = std::max(report.found, highestId);
    if (dryRun) return report;
    const HRESULT written = WriteCounterAtOnce(path, *report.written);
    if (FAILED(written)) throw CFailure("cannot write", path, written);
    return report;
}

// What was done before a step failed.
std::string DoneSoFar(const RecoverReport& report) {
    std::string done;
    for (const DatabaseReport& database : report.databases) {
        if (!database.keptAs.empty())
            done += "; before that " + ToUtf8(database.path) + " was recovered, and kept as " +
                    ToUtf8(database.keptAs);
    }
    return done;
}

void RecoverFiles(const StorePaths& store, const RecoverOptions& options, RecoverReport& report) {
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
    try {
        RecoverFiles(store, options, report);
    } catch (const CFailure& failure) {
        throw CFailure(failure.Code(), failure.what() + DoneSoFar(report));
    }
    return report;
}

} // namespace tsl
