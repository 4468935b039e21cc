// tslhost whoami
#include <nlohmann/json.hpp>

#include "console/JsonOutput.h"
#include "console/Output.h"
#include "console/Text.h"
#include "files/UserIdList.h"
#include "tslhost/Commands.h"

namespace tsl {

ExitCode RunWhoami(const CommandContext& context) {
    std::wstring sid;
    UINT64 id = 0;
    HRESULT result = CurrentUserSid(sid);
    if (SUCCEEDED(result)) result = CurrentUserId(id);
    if (FAILED(result)) throw CFailure("cannot find out", L"the current user", result);
    if (context.json) {
        PrintLine(ToJsonLine({{"sid", ToUtf8(sid)}, {"id", id}}));
    } else {
        PrintLine(ToUtf8(sid) + "  " + std::to_string(id));
    }
    return ExitCode::Fine;
}

} // namespace tsl
