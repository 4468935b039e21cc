// The commands of the component as one table, each so that it meets its own records.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "component/host/ITslPluginDb.h"
#include "tests/calls/CallingHost.h"

namespace tsl::test {

// Of the same command, the first and the second work on records of their own, so that it does not
// matter which of them is first.
enum class Turn { First, Second };

struct HostCommand {
    const char* name;
    // Calls the object with an argument that argument makes of the values, and tells the HRESULT
    // and the answer.
    std::function<std::string(
        ITslPluginDb2&, Turn,
        const std::function<CComPtr<ITslParamContainer>(CComPtr<CTslParamContainer>)>& argument)>
        call;
};
const std::vector<HostCommand>& HostCommands();

// The records that the commands want to be there, under log kind 1. The last id handed out is 200.
void RecordBaseStore(ITslPluginDb2& plugin);

} // namespace tsl::test
