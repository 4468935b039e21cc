// tslhost id
#include "console/HostSession.h"
#include "console/Output.h"
#include "tslhost/Commands.h"
#include "tslhost/RecordIdOutput.h"

namespace tsl {

void AddIdCommand(CLI::App& app, CommandContext& context) {
    CLI::App* const command = app.add_subcommand("id", "Hand out and print the next record id");
    command->footer("Example: tslhost id --json");
    command->callback([&context] {
        CHostSession session(context.pluginPath);
        PrintRecordId(session.NextRecordId(), context.json);
    });
}

} // namespace tsl
