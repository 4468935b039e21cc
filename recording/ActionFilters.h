// What the name of an action decides about where it is recorded. Callable from any thread.
#pragma once

#include <string>

#include "component/host/ITslParamContainer.h"

namespace tsl {

// The name of an action. The filters go by a name that is text; resets and content moves are known
// by a value that only becomes text, too.
struct ActionName {
    std::wstring text;    // empty when the value is no text
    std::wstring changed; // the value changed into text; empty when it cannot be
};
ActionName ReadActionName(ITslParamContainer& container);

// Whether items of the host's are deleted by the action, in any mix of upper and lower case.
bool IsDeleteAction(const std::wstring& name) noexcept;

// Whether the action, in any mix of upper and lower case, is kept out of the action log of the log
// kind.
bool IsExcludedFromActionLog(const std::wstring& name, UINT32 logKind) noexcept;

// Whether the user starts afresh, in any mix of upper and lower case.
bool IsSettingReset(const std::wstring& name) noexcept;

// Whether content was moved; the name in exactly its own letters.
bool IsContentMove(const std::wstring& name) noexcept;

} // namespace tsl
