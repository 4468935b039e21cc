// Many host processes on one store: every id once, every acknowledged record in both databases.
#include <gmock/gmock.h>

#include <numeric>

#include "tests/processes/WorkerProcess.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

using ::testing::IsEmpty;

int CallsOfEach() {
    return InForm(50, 1000);
}

std::vector<WorkerCall> RunAll(const std::vector<std::pair<std::wstring, int>>& modes) {
    std::vector<WorkerProcess> processes;
    for (const auto& [mode, count] : modes)
        processes.emplace_back(mode, count, /*user=*/7);
    std::vector<WorkerCall> calls;
    for (WorkerProcess& process : processes) {
        const std::vector<WorkerCall> made = process.Wait();
        calls.insert(calls.end(), made.begin(), made.end());
    }
    for (const char* const operation : {"id", "notify", "fetch", "read"}) {
        const std::vector<WorkerCall> chosen = CallsOf(calls, operation);
        if (!chosen.empty()) Measured(DescribeTimes(chosen));
    }
    return calls;
}

std::vector<UINT32> IdsOf(const std::vector<WorkerCall>& calls) {
    std::vector<UINT32> ids;
    for (const WorkerCall& call : calls)
        ids.push_back(call.recordId);
    std::ranges::sort(ids);
    return ids;
}

std::vector<HRESULT> FailuresOf(const std::vector<WorkerCall>& calls) {
    std::vector<HRESULT> failures;
    for (const WorkerCall& call : calls) {
        if (call.result != S_OK) failures.push_back(call.result);
    }
    return failures;
}

std::vector<UINT32> StoredIds(const std::filesystem::path& path, const char* table) {
    std::vector<UINT32> ids;
    for (const Row& row : FileDatabase(path).Query(std::string("SELECT ActionLogId FROM ") + table +
                                                   " ORDER BY ActionLogId")) {
        ids.push_back(static_cast<UINT32>(std::stoul(row[0].value_or("0"))));
    }
    return ids;
}

} // namespace

class Contention : public StoreTest {
protected:
    void ExpectEveryRecord(const std::vector<WorkerCall>& calls, int writers) {
        std::vector<UINT32> all(static_cast<size_t>(writers * CallsOfEach()));
        std::iota(all.begin(), all.end(), 1u);
        EXPECT_EQ(all, IdsOf(CallsOf(calls, "id"))) << "each id once, without a gap";
        EXPECT_THAT(FailuresOf(CallsOf(calls, "id")), IsEmpty());
        EXPECT_THAT(FailuresOf(CallsOf(calls, "notify")), IsEmpty());
        EXPECT_THAT(FailuresOf(CallsOf(calls, "fetch")), IsEmpty());
        EXPECT_EQ(all, StoredIds(ActionLogPath(), kActionLogRows));
        EXPECT_EQ("ok", FileDatabase(ActionLogPath()).Value("PRAGMA integrity_check"));
        EXPECT_EQ("ok", FileDatabase(ReplayPath()).Value("PRAGMA integrity_check"));
    }
};

TEST_F(Contention, EightProcessesLoseAndRepeatNothing) {
    const std::vector<WorkerCall> calls =
        RunAll(std::vector(8, std::pair<std::wstring, int>(L"write", CallsOfEach())));
    ExpectEveryRecord(calls, 8);
}

TEST_F(Contention, ReadersWithoutALockLoseNoRecordOfWriters) {
    std::vector<std::pair<std::wstring, int>> modes(8, {L"write", CallsOfEach()});
    modes.insert(modes.end(), 4, {L"read", 4 * CallsOfEach()});
    const std::vector<WorkerCall> calls = RunAll(modes);
    ExpectEveryRecord(calls, 8);
    Measured(std::to_string(FailuresOf(CallsOf(calls, "read")).size()) + " reads failed");
}

} // namespace tsl::test
