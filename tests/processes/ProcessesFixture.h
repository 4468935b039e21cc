// Base of the tests that let many host processes work on one store, and what they count.
#pragma once

#include <gmock/gmock.h>

#include <map>

#include "tests/processes/WorkerProcess.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

using WorkerCalls = std::vector<WorkerCall>;

// The calls of one operation, of all workers.
WorkerCalls CallsOf(const WorkerCalls& calls, const std::string& operation);
// Those of them that succeeded.
WorkerCalls SuccessesOf(const WorkerCalls& calls, const std::string& operation);

// Their record ids, ascending.
std::vector<UINT32> IdsOf(const WorkerCalls& calls);
// 1 to count.
std::vector<UINT32> IdsUpTo(UINT32 count);

// How often each HRESULT was given by the calls that failed: "none", or "3 x 0x80041604".
std::string DescribeFailures(const WorkerCalls& calls);

// "id: 8000 calls, p50 1.2 ms, p99 10.5 ms, max 20.1 ms".
std::string DescribeTimes(const WorkerCalls& calls);

class ProcessesTest : public StoreTest {
protected:
    struct Job {
        std::wstring mode;
        std::wstring amount;
        UINT32 number;
    };
    // Runs them all at once, to their ends.
    static WorkerCalls RunAll(const std::vector<Job>& jobs);

    // Times and failures of each operation among the calls.
    static void Report(const WorkerCalls& calls);

    static std::vector<UINT32> StoredIds(const std::filesystem::path& path,
                                         const std::string& table, const std::string& where = "1");

    static void ExpectWholeDatabases();
};

} // namespace tsl::test
