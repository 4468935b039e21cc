// The host's containers fail at every step in turn: what is answered, and that nothing half-built
// is handed out or left alive.
#include "tests/query/QueryFixture.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

struct IdQuery {
    const char* name;
    UINT64 code;
    bool byIds;
    UINT64 key;
};

const IdQuery kIdQueries[] = {
    {"TimeRange", 0x0400000801000000, false, 0x0200002200000013},
    {"IdRange", 0x0400000801000000, true, 0x0200002200000013},
    {"AllIds", 0x0400000b01000000, false, 0x0200001000000015},
};

} // namespace

class HalfBuilt : public QueryTest {
protected:
    // Whether a step was reached that fails.
    bool Failed() {
        return !Containers().failures.empty() &&
               Containers().steps >= Containers().failures.begin()->first;
    }
    static void ExpectUntouched(const CVariant& answer) {
        EXPECT_EQ(VT_UI4, answer.Type());
        EXPECT_EQ(42u, answer.Get().ulVal);
    }
};

class HalfBuiltIds : public HalfBuilt, public testing::WithParamInterface<IdQuery> {
protected:
    static constexpr int kCount = 4;
    static constexpr int kStepsOfOne = 3; // creation, stamping, setting

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(HalfBuilt::SetUp());
        std::vector<StoredRow> rows;
        for (INT64 id = 1; id <= kCount; ++id)
            rows.push_back({.id = id, .user = 1});
        StoreLog(rows);
        StoreTaken(rows);
    }
    HRESULT AskWithFailures(std::map<int, HRESULT> failures, CVariant& answer) {
        Containers().Restart(std::move(failures));
        ContainerBuilder request;
        request.Ui4(kUser, 1);
        if (GetParam().byIds) request.Ui4(kFirst, 1);
        return Ask(GetParam().code, request, answer.Address());
    }
    Ids Found(const CVariant& answer) {
        Ids ids;
        for (const auto& container : Unpack(answer.Get())) {
            const CVariant value = ValueOf(*container, GetParam().key);
            ids.push_back(value.Type() == VT_UI8 ? value.Get().ullVal : value.Get().ulVal);
        }
        return ids;
    }
};

TEST_P(HalfBuiltIds, LeaveOutTheIdThatFailsAndGoByTheStatusOfTheLast) {
    int step = 1;
    for (;; ++step) {
        SCOPED_TRACE(step);
        CVariant answer = CVariant::FromUi4(42);
        const HRESULT result = AskWithFailures({{step, kRefused}}, answer);
        const UINT64 failedId = static_cast<UINT64>((step - 1) / kStepsOfOne) + 1;
        if (Failed() && failedId == kCount) {
            EXPECT_EQ(kRefused, result);
            ExpectUntouched(answer);
            EXPECT_EQ(0, Containers().live);
            continue;
        }
        Ids expected;
        for (UINT64 id = 1; id <= kCount; ++id) {
            if (!Failed() || id != failedId) expected.push_back(id);
        }
        EXPECT_EQ(S_OK, result);
        EXPECT_EQ(expected, Found(answer));
        EXPECT_EQ(static_cast<int>(expected.size()), Containers().live);
        if (!Failed()) break;
    }
    EXPECT_EQ(kCount * kStepsOfOne + 1, step);
}

TEST_P(HalfBuiltIds, ReportTheLastFailureWhenEveryIdFails) {
    CVariant answer = CVariant::FromUi4(42);
    const HRESULT result =
        AskWithFailures({{1, E_FAIL}, {2, E_FAIL}, {3, E_FAIL}, {4, kRefused}}, answer);
    EXPECT_EQ(kRefused, result);
    ExpectUntouched(answer);
    EXPECT_EQ(0, Containers().created);
}

TEST_P(HalfBuiltIds, ForgetEarlierFailuresWhenTheLastIdPasses) {
    CVariant answer;
    ASSERT_EQ(S_OK, AskWithFailures({{1, E_FAIL}, {2, kRefused}, {4, E_FAIL}}, answer));
    EXPECT_EQ((Ids{4}), Found(answer));
}

INSTANTIATE_TEST_SUITE_P(Queries, HalfBuiltIds, testing::ValuesIn(kIdQueries),
                         [](const auto& query) { return query.param.name; });

class HalfBuiltRecords : public HalfBuilt {
protected:
    static constexpr int kCount = 3;
    static constexpr int kStepsOfOne = 9; // creation, stamping, seven values

    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(HalfBuilt::SetUp());
        StoreLog({{.id = 1}, {.id = 2}, {.id = 3}});
    }
    HRESULT Fetch(std::map<int, HRESULT> failures, CVariant& answer) {
        Containers().Restart(std::move(failures));
        CVariant ids = MakeArray<LONG>(std::vector<LONG>{1, 2, 3});
        ids.Address()->vt = VT_ARRAY | VT_UI4;
        return Ask(0x0400000901000000, ContainerBuilder().Set(kIdList, std::move(ids)),
                   answer.Address());
    }
};

TEST_F(HalfBuiltRecords, AreNeverHandedOutIncomplete) {
    int step = 1;
    for (;; ++step) {
        SCOPED_TRACE(step);
        CVariant answer = CVariant::FromUi4(42);
        const HRESULT result = Fetch({{step, kRefused}}, answer);
        if (!Failed()) {
            EXPECT_EQ(S_OK, result);
            EXPECT_EQ(3u, Unpack(answer.Get()).size());
            break;
        }
        EXPECT_EQ(kRefused, result);
        ExpectUntouched(answer);
        EXPECT_EQ(0, Containers().live);
    }
    EXPECT_EQ(kCount * kStepsOfOne + 1, step);
}

TEST_F(HalfBuiltRecords, ReportTheFirstFailureAndGoOnToTheLastRow) {
    CVariant answer = CVariant::FromUi4(42);
    EXPECT_EQ(kRefused, Fetch({{1, kRefused}, {3, E_FAIL}, {4, E_OUTOFMEMORY}}, answer));
    ExpectUntouched(answer);
    EXPECT_EQ(4, Containers().steps) << "the third row was still tried";
    EXPECT_EQ(0, Containers().live);
}

class HalfBuiltTake : public HalfBuilt {
protected:
    static constexpr int kSteps = 10; // creation, stamping, eight values

    HRESULT Take(std::map<int, HRESULT> failures, CVariant& answer) {
        StoreTaken({{.id = 5,
                     .user = 1,
                     .parameters = "'ullValues={1,2}&intValues={1,2,3}&stringValues={a}'"}});
        Containers().Restart(std::move(failures));
        return Ask(0x0400000501000000, ContainerBuilder().Ui8(kIdToTake, 5), answer.Address());
    }
};

TEST_F(HalfBuiltTake, IsNoAnswerAndTheRecordGoesAllTheSame) {
    int step = 1;
    for (;; ++step) {
        SCOPED_TRACE(step);
        CVariant answer = CVariant::FromUi4(42);
        EXPECT_EQ(S_OK, Take({{step, kRefused}}, answer));
        EXPECT_EQ(0, CountRows(ActionLogPath(), kTakenRows));
        if (!Failed()) {
            EXPECT_EQ(1u, Unpack(answer.Get()).size());
            break;
        }
        ExpectUntouched(answer);
        EXPECT_EQ(0, Containers().live);
    }
    EXPECT_EQ(kSteps + 1, step);
}

} // namespace tsl::test
