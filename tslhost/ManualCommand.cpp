// tslhost manual
#include "console/Output.h"
#include "tslhost/Commands.h"
#include "tslhost/Manual.h"

namespace tsl {

void AddManualCommand(CLI::App& app, CommandContext& /*context*/) {
    CLI::App* const command =
        app.add_subcommand("manual", "Print the help of all commands as one Markdown document");
    command->footer("Example: tslhost manual > tslhost.md");
    command->callback([&app] { PrintLine(MakeManual(app)); });
}

} // namespace tsl
