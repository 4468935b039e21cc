// tslhost follow
#include <memory>

#include "base/Handle.h"
#include "console/Numbers.h"
#include "console/Output.h"
#include "console/RecordOutput.h"
#include "console/StorePlace.h"
#include "tslhost/Commands.h"
#include "upkeep/transfer/RecordFeed.h"

namespace tsl {

namespace {

constexpr UINT32 kShortestInterval = 10;

struct FollowOptions {
    std::optional<UINT32> after;
    std::optional<UINT32> user;
    std::optional<UINT32> kind;
    UINT32 interval = 500;

    bool Selects(const ExportedRecord& exported) const {
        return user.value_or(exported.record.user) == exported.record.user &&
               kind.value_or(exported.kind) == exported.kind;
    }
};

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

void Follow(const FollowOptions& options, bool json) {
    if (options.interval < kShortestInterval) {
        throw CFailure(ExitCode::Usage,
                       "--interval is at least " + std::to_string(kShortestInterval));
    }
    const HANDLE stop = StopEvent();
    if (!json) PrintLine(RecordTitles());
    CRecordFeed feed(ActionLogPath(), options.after);
    do {
        for (const ExportedRecord& exported : feed.Look()) {
            if (!options.Selects(exported)) continue;
            PrintLine(json ? ExportJson(exported) : RecordLine(exported.record));
        }
        // Who reads along may have gone.
    } while (!std::ferror(stdout) && WaitForSingleObject(stop, options.interval) == WAIT_TIMEOUT);
}

} // namespace

void AddFollowCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command =
        app.add_subcommand("follow", "Print new records as they come, until interrupted (Ctrl-C)");
    const auto options = std::make_shared<FollowOptions>();
    command
        ->add_option("--after", options->after,
                     "Begin behind this record id; default: the highest that is there")
        ->check(ANumber<UINT32>());
    command->add_option("--user", options->user, "Only of this user id")->check(ANumber<UINT32>());
    command->add_option("--kind", options->kind, "Only of this log kind")->check(ALogKind());
    command->add_option("--interval", options->interval, "Milliseconds from one look to the next")
        ->check(ANumber<UINT32>())
        ->capture_default_str();
    command->footer("Example: tslhost follow --user 1 --json");
    command->callback([&context, options] { Follow(*options, context.json); });
}

} // namespace tsl
