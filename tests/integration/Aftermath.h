// What must hold after whatever went wrong: nothing is locked, and the store works.
#pragma once

#include <gtest/gtest.h>

#include "base/Handle.h"
#include "component/host/CommandCodes.h"
#include "component/host/ITslPluginDb.h"
#include "tests/support/Containers.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

inline void ExpectLocksAreFree() {
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    EXPECT_TRUE(MutexIsFree(kLogIdLock));
}

// Whether the file can be opened without sharing, which it cannot while anyone has it open.
inline bool NobodyHasOpen(const std::filesystem::path& file) {
    return static_cast<bool>(CHandle(CreateFileW(file.c_str(), GENERIC_READ, /*share=*/0, nullptr,
                                                 OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)));
}

// A good action goes to both databases, and the files are closed afterwards. REQUIRES: recording is
// on.
inline void ExpectAGoodActionIsRecorded(ITslPluginDb2& plugin) {
    constexpr UINT32 kRecordId = 777777;
    const int rows = CountRows(ActionLogPath(), kActionLogRows);
    const int replayRows = CountRows(ReplayPath(), kReplayRows);
    EXPECT_EQ(S_OK, plugin.Notify(kCommandRecordAction, Action(kRecordId, L"goodAction")));
    EXPECT_EQ(rows + 1, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ(replayRows + 1, CountRows(ReplayPath(), kReplayRows));
    EXPECT_TRUE(NobodyHasOpen(ActionLogPath()));
    EXPECT_TRUE(NobodyHasOpen(ReplayPath()));
    ExpectLocksAreFree();
}

} // namespace tsl::test
