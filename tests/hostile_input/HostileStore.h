// Base of the tests that hand hostile input to the real DLL: nothing of it may be left in use.
#pragma once

#include "tests/integration/Aftermath.h"
#include "tests/query/QueryFixture.h"
#include "tests/user_ids/TokenSid.h"

namespace tsl::test {

inline constexpr wchar_t kLoginLock[] = L"Global\\TslIf_Mut_LoginInfo";

class HostileStoreTest : public QueryTest {
protected:
    void TearDown() override {
        ExpectNothingIsInUse();
        QueryTest::TearDown();
    }

    // No file is open, no lock is held, and no container that the host made is alive.
    void ExpectNothingIsInUse() {
        ExpectLocksAreFree();
        EXPECT_FALSE(MutexExists(kLoginLock));
        EXPECT_EQ(0, Containers().live);
        for (const auto& file : {ActionLogPath(), ReplayPath(), CounterPath(), UserIdListPath()}) {
            if (std::filesystem::is_regular_file(file)) {
                EXPECT_TRUE(NobodyHasOpen(file)) << file;
            }
        }
    }
};

} // namespace tsl::test
