#include "upkeep/StorePaths.h"

#include <filesystem>

#include "console/StorePlace.h"
#include "files/TextActionLog.h"
#include "files/UserIdList.h"
#include "store/Schema.h"

namespace tsl {

StorePaths MachineStore() {
    return {ActionLogPath(), ReplayLogPath(), CounterFilePath(), UserIdListPath()};
}

StorePaths StoreIn(const std::wstring& folder) {
    const std::filesystem::path place(folder);
    return {(place / kActionLogFileName).wstring(), (place / kReplayFileName).wstring(),
            (place / kCounterFileName).wstring(), (place / kUserIdFileName).wstring()};
}

std::wstring JournalOf(const std::wstring& database) {
    return database + L"-journal";
}

} // namespace tsl
