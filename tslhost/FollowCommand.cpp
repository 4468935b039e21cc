// tslhost follow

#include "base/Handle.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/StorePlace.h"
#include "tslhost/Commands.h"
#include "upkeep/transfer/RecordFeed.h"

namespace tsl {

namespace {

constexpr UINT32 kShortestInterval = 10;

bool Selects(const FollowOptions& options, const ExportedRecord& exported) {
    return options.user.value_or(exported.record.user) == exported.record.user &&
           options.kind.value_or(exported.kind) == exported.kind;
}

// For the handler, which is given nothing.
HANDLE g_stop = nullptr;

BOOL WINAPI StopFollowing(DWORD event) {
    SetEvent(g_stop);
    // When the console goes, the process is ended as soon as this returns: let it end by itself, so
    // that it leaves no lock behind.
    constexpr DWORD kTimeToEnd = 4000;
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) Sleep(kTimeToEnd);
    return TRUE;
}

// Set by Ctrl-C, from now on to the end of the process.
HANDLE StopEvent() {
    static const CHandle stop(CreateEventW(nullptr, /*manualReset=*/TRUE, FALSE, nullptr));
    g_stop = stop.Get();
    if (!stop || !SetConsoleCtrlHandler(StopFollowing, TRUE)) {
        throw CFailure(ExitCode::Denied, "cannot wait for an interruption");
    }
    return stop.Get();
}

} // namespace

ExitCode RunFollow(const FollowOptions& options, const CommandContext& context) {
    if (options.interval < kShortestInterval) {
        throw CFailure(ExitCode::Usage,
                       "--interval is at least " + std::to_string(kShortestInterval));
    }
    const HANDLE stop = StopEvent();
    if (!context.json) PrintLine(RecordTitles());
    CRecordFeed feed(ActionLogPath(), options.after);
    do {
        for (const ExportedRecord& exported : feed.Look()) {
            if (!Selects(options, exported)) continue;
            PrintLine(context.json ? ExportJson(exported) : RecordLine(exported.record));
        }
        // Who reads along may have gone.
    } while (!std::ferror(stdout) && WaitForSingleObject(stop, options.interval) == WAIT_TIMEOUT);
    return ExitCode::Fine;
}

} // namespace tsl
