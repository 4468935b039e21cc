// What the engine does for a database that somebody put into the folder: its work ends soon, takes
// little memory, and what is harmless goes on.
#include <psapi.h>

#include "component/host/CommandCodes.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"
#include "tests/untrusted_folder/Calls.h"
#include "tests/untrusted_folder/HostileSchemas.h"

namespace tsl::test {

namespace {

constexpr ULONGLONG kMostMilliseconds = 5000;
constexpr size_t kMostBytes = size_t{256} << 20;

size_t PeakBytes() {
    PROCESS_MEMORY_COUNTERS counters{};
    EXPECT_TRUE(GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PeakPagefileUsage;
}

} // namespace

class HostileSchemaTest : public PluginTest {
protected:
    static void Place(const HostileSchema& schema) {
        std::filesystem::remove_all(StoreFolder());
        MakeCounterFile();
        FileDatabase(ActionLogPath(), /*create=*/true).Query(schema.sql);
    }
};

TEST_F(HostileSchemaTest, EndSoonInLittleMemory) {
    for (const HostileSchema& schema : HostileSchemas()) {
        SCOPED_TRACE(schema.name);
        ASSERT_NO_FATAL_FAILURE(Place(schema));
        const ULONGLONG start = GetTickCount64();
        const size_t before = PeakBytes();
        const auto results = MakeAllCalls(Plugin());
        EXPECT_LT(GetTickCount64() - start, kMostMilliseconds);
        EXPECT_LT(PeakBytes() - before, kMostBytes);
        if (schema.isUsable) {
            EXPECT_EQ(S_OK, results.at("record"));
        }
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    }
}

TEST_F(HostileSchemaTest, ThatAreHarmlessAreLetAlone) {
    for (const HostileSchema& schema : HarmlessSchemas()) {
        SCOPED_TRACE(schema.name);
        ASSERT_NO_FATAL_FAILURE(Place(schema));
        for (const auto& [call, result] : MakeAllCalls(Plugin()))
            EXPECT_TRUE(SUCCEEDED(result) || result == E_INVALIDARG) << call << ' ' << result;
    }
}

TEST_F(HostileSchemaTest, AreManyMoreThanThoseThatWereSeen) {
    EXPECT_GE(HostileSchemas().size(), 130u);
}

} // namespace tsl::test
