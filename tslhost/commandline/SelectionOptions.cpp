#include "tslhost/commandline/SelectionOptions.h"

#include "tslhost/commandline/Numbers.h"

namespace tsl {

void AddSelectionOptions(CLI::App& command, RecordSelection& selection) {
    command.add_option("--user", selection.users, "User id; may be given again and again")
        ->check(ANumber<UINT32>())
        ->expected(1, -1)
        ->allow_extra_args(false)
        ->capture_default_str();
    command.add_option("--since", selection.since, "Recorded at this time or later, ISO 8601");
    command.add_option("--until", selection.until, "Recorded at this time or earlier, ISO 8601");
    command.add_option("--first", selection.first, "Lowest record id")->check(ANumber<UINT32>());
    command.add_option("--last", selection.last, "Highest record id")->check(ANumber<UINT32>());
    command.add_option("--kind", selection.kind, "Log kind; default: any, and 1 with record ids")
        ->check(ALogKind());
}

void AddFilterOptions(CLI::App& command, RecordFilter& filter) {
    command.add_option("--name", filter.name, "Action name");
    command.add_option("--app", filter.app, "Application id")->check(ANumber<INT32>());
}

} // namespace tsl
