#include "upkeep/transfer/RecordingEffects.h"

#include "console/Text.h"
#include "recording/ActionFilters.h"
#include "store/LogKinds.h"

namespace tsl {

std::optional<std::string> WhyNotRecorded(const HostAction& action) {
    if (IsContentMove(action.name)) {
        return "a content move is carried out in the host's content and leaves no record";
    }
    if (IsExcludedFromActionLog(action.name, action.kind)) {
        return "log kind " + std::to_string(action.kind) + " keeps " + ToUtf8(action.name) +
               " out of the action log";
    }
    return std::nullopt;
}

bool DeletesRecords(const HostAction& action) {
    return IsSettingReset(action.name) && action.user != 0;
}

bool KeepsDeletedItems(const HostAction& action) {
    return IsDeleteAction(action.name) && action.kind == kLogKindOfKeptRecords;
}

bool GainsValues(const HostAction& action) {
    return action.kind == kLogKindOfSystemUsers;
}

} // namespace tsl
