// Folds an action's typed value lists into the one text that is stored with its record. Each call
// works on its own; callable from any thread.
#pragma once

#include <string>

#include "component/host/ITslParamContainer.h"

namespace tsl {

// Appends the text of the container's values, with what the log kind adds, to the output. S_OK,
// also without any text when the action name is no text. E_POINTER for a null container; the
// container's answer for the action name when that is not S_OK; else the first failure of reading a
// value list, after which the later lists are not read (the output then holds the groups before
// it).
HRESULT BuildActionParameters(ITslParamContainer* container, std::wstring& output, UINT32 logKind);

} // namespace tsl
