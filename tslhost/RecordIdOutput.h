// How an id that was handed out is printed.
#pragma once

#include <windows.h>

#include <string>

#include "console/Output.h"

namespace tsl {

inline void PrintRecordId(UINT32 id, bool json) {
    const std::string number = std::to_string(id);
    PrintLine(json ? "{\"id\":" + number + "}" : number);
}

} // namespace tsl
