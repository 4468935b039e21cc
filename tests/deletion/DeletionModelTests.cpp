// Random deletions of all forms leave what a model in memory leaves.
#include <random>

#include "tests/deletion/DeletionFixture.h"

namespace tsl::test {

namespace {

constexpr UINT32 kCurrentUser = 3;
constexpr UINT32 kLogKinds[] = {1, 2, 4};

// What one request asks for; what is absent is left out of the container.
struct Request {
    std::optional<UINT64> oneId;
    bool idRange = false;
    std::optional<UINT32> firstId, lastId;
    std::optional<double> start, end;
    std::optional<UINT32> user;
    bool userOfAnotherType = false;
    bool boundsOfAnotherType = false;
};

bool Matches(const Request& request, UINT32 logKind, const StoredRow& row) {
    if (request.oneId) {
        return row.id == *request.oneId && row.userId == (logKind == 2 ? kCurrentUser : 1);
    }
    if (!request.user || request.userOfAnotherType) return false;
    if (row.userId != *request.user || row.logKind != logKind) return false;
    if (request.idRange) {
        if (request.boundsOfAnotherType) return row.id >= 1 && row.id <= 0xFFFFFFFF;
        return row.id >= request.firstId.value_or(1) &&
               row.id <= request.lastId.value_or(0xFFFFFFFF);
    }
    if (request.boundsOfAnotherType) return row.pluginTime >= 0;
    return row.pluginTime >= request.start.value_or(0.0) &&
           row.pluginTime <= request.end.value_or(4294967295.0);
}

ContainerBuilder ToContainer(const Request& request) {
    ContainerBuilder container;
    const auto setDate = [&](UINT64 key, std::optional<double> date) {
        if (!date) return;
        if (request.boundsOfAnotherType) {
            container.Text(key, L"40010");
        } else {
            container.Date(key, *date);
        }
    };
    const auto setId = [&](UINT64 key, std::optional<UINT32> id) {
        if (!id) return;
        if (request.boundsOfAnotherType) {
            container.Ui8(key, *id);
        } else {
            container.Ui4(key, *id);
        }
    };
    if (request.oneId) container.Ui8(kKeyRecordToTake, *request.oneId);
    setId(kKeyFirstRecordId, request.firstId);
    setId(kKeyLastRecordId, request.lastId);
    setDate(kKeyStartTime, request.start);
    setDate(kKeyEndTime, request.end);
    if (request.user && request.userOfAnotherType) {
        container.I4(kKeyUserId, static_cast<INT32>(*request.user));
    } else if (request.user) {
        container.Ui4(kKeyUserId, *request.user);
    }
    return container;
}

} // namespace

class DeletionModel : public DeletionTest {
protected:
    UINT32 Below(UINT32 end) { return std::uniform_int_distribution<UINT32>(0, end - 1)(m_random); }
    bool Chance(UINT32 oneIn) { return Below(oneIn) == 0; }

    // Times are multiples of an eighth, exact in the file and in texts.
    double Time() { return 40000 + Below(800) / 8.0; }

    std::vector<StoredRow> Fill() {
        std::vector<StoredRow> rows;
        for (int count = 0; count < 500; ++count) {
            const double time = Chance(50) ? -1.5 : Time();
            rows.push_back({Below(400), 1 + Below(3), kLogKinds[Below(3)], time});
        }
        Prepare(rows);
        return rows;
    }

    Request Make() {
        Request request;
        const UINT32 form = Below(3);
        if (form == 0) request.oneId = Below(400);
        request.idRange = form == 1;
        if (request.idRange) {
            if (!Chance(8)) request.firstId = Below(400);
            if (!request.firstId || !Chance(8)) {
                request.lastId = request.firstId.value_or(Below(400)) + Below(40);
            }
        }
        if (form == 2 || Chance(10)) {
            if (!Chance(10)) request.start = Time();
            if (!Chance(10)) request.end = request.start.value_or(Time()) + Below(80) / 8.0;
        }
        if (!Chance(12)) request.user = 1 + Below(3);
        request.userOfAnotherType = Chance(15);
        request.boundsOfAnotherType = Chance(25);
        return request;
    }

    static std::vector<std::string> Expected(const std::vector<StoredRow>& rows) {
        std::vector<std::string> texts;
        for (const StoredRow& row : rows) {
            texts.push_back(std::to_string(row.id) + " " + std::to_string(row.userId) + " " +
                            std::to_string(row.logKind) + " " +
                            std::to_string(static_cast<int>(row.pluginTime * 8)));
        }
        return texts;
    }
    static std::vector<std::string> Stored() {
        std::vector<std::string> texts;
        for (const Row& row : FileDatabase(ActionLogPath())
                                  .Query("SELECT ActionLogId||' '||UserId||' '||LogKind||' '||"
                                         "CAST(PluginLoggedTime*8 AS INTEGER) "
                                         "FROM TslIf_DbActionLog ORDER BY rowid")) {
            texts.push_back(row[0].value_or("NULL"));
        }
        return texts;
    }

private:
    std::mt19937 m_random{4711};
};

TEST_F(DeletionModel, EqualsTheStoreAfterEachOfThreeHundredDeletions) {
    PrepareUserIdList(Utf16FileBytes(L"0x00000003\t" + TokenSid() + L"\t\r\n"));
    std::vector<StoredRow> rows = Fill();
    ASSERT_EQ(Expected(rows), Stored());
    size_t deleted[3] = {};
    for (int step = 0; step < 300; ++step) {
        SCOPED_TRACE(step);
        if (rows.size() < 250) rows = Fill();
        const UINT32 logKind = kLogKinds[Below(3)];
        SetLogKind(logKind);
        const Request request = Make();
        EXPECT_EQ(S_OK, Delete(ToContainer(request)));
        const size_t form = request.oneId ? 0 : request.idRange ? 1 : 2;
        deleted[form] += std::erase_if(
            rows, [&](const StoredRow& row) { return Matches(request, logKind, row); });
        ASSERT_EQ(Expected(rows), Stored());
    }
    for (const size_t count : deleted)
        EXPECT_GT(count, 10u) << "each form must have had something to delete";
    SetLogKind(1);
}

} // namespace tsl::test
