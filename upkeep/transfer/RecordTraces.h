// What an action leaves beside its record in the action log.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

namespace tsl {

// The parameter text that a delete action of log kind 1 keeps for whoever takes the deleted items
// later. Nothing where nothing is kept under the id. Takes the lock of the databases. Throws
// CFailure.
std::optional<std::wstring> ReadKeptParameters(const std::wstring& actionLog, UINT32 recordId);

// Whether the action is in the replay log. Otherwise as above.
bool IsInReplayLog(const std::wstring& replayLog, UINT32 recordId);

} // namespace tsl
