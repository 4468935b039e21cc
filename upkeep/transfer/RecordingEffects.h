// What recording an action does besides adding a record to the action log.
#pragma once

#include <optional>
#include <string>

#include "console/HostAction.h"

namespace tsl {

// Why there will be no record of the action in the action log, whatever is in it; nothing when
// there will be one.
std::optional<std::string> WhyNotRecorded(const HostAction& action);

// Whether recording it deletes the records that its user has under its log kind.
bool DeletesRecords(const HostAction& action);

// Whether recording it also keeps what it says for whoever takes the deleted items later.
bool KeepsDeletedItems(const HostAction& action);

// Whether recording it adds values of the moment and of the system.
bool GainsValues(const HostAction& action);

} // namespace tsl
