// Every call of the interface that touches a file of the store, under both ways of naming users.
#pragma once

#include <map>
#include <string>

#include "component/host/ITslPluginDb.h"

namespace tsl::test {

// What each answered, by its name: "next id", "record", "all ids", ...
std::map<std::string, HRESULT> MakeAllCalls(ITslPluginDb2& plugin);

} // namespace tsl::test
