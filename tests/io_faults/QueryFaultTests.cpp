// Queries while the disk fails: the whole answer or a failure, and the store as it was.
#include "tests/io_faults/IoFaultFixture.h"

namespace tsl::test {

class QueryFaults : public IoFaultTest {};

TEST_F(QueryFaults, AnswerAllIdsInATimeOrFail) {
    RunWithFaults(QueryingTimes(Plugin()));
}

TEST_F(QueryFaults, AnswerAllIdsInARangeOrFail) {
    RunWithFaults(QueryingIds(Plugin()));
}

TEST_F(QueryFaults, AnswerAllIdsOfAUserOrFail) {
    RunWithFaults(QueryingAllIds(Plugin()));
}

TEST_F(QueryFaults, AnswerAllRecordsAskedForOrFail) {
    RunWithFaults(FetchingRecords(Plugin(), {1, 2, kRecords, kLatestId}));
}

} // namespace tsl::test
