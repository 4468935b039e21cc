#include "tests/engine_faults/Operations.h"

#include <numeric>
#include <ostream>

#include "component/host/CommandCodes.h"
#include "tests/dispatch/FullAction.h"
#include "tests/dispatch/Tables.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

constexpr UINT32 kTweets = 16; // under this log kind tweets go to the replay log alone

constexpr char kTableColumns[] =
    " (ActionLogId INTEGER,UsedLog INTEGER,AppId INTEGER,AppName TEXT,UserId INTEGER,"
    "ActionName TEXT,ActionParameters TEXT,AppLoggedTime REAL,PluginLoggedTime REAL,"
    "PreActionName TEXT, PreActionParameters TEXT,PreLoggedTime INTEGER,LogKind INTEGER)";

struct OldRecord {
    INT64 id;
    INT64 user;
    INT64 logKind;
    double time;
};

// The ids 5, 6, 1 and 2 follow one another in time, as those around a wrap-around do.
const std::vector<OldRecord> kLogged = {{1, 7, 1, 1002}, {2, 7, 1, 1003}, {3, 7, 1, 1004},
                                        {4, 7, 1, 999},  {5, 7, 1, 1000}, {6, 7, 1, 1001},
                                        {7, 8, 1, 1005}, {8, 7, 2, 1006}, {9, 1, 1, 1007}};
const std::vector<OldRecord> kKept = {{11, 1, 1, 1000}, {12, 1, 1, 1001}, {13, 1, 1, 1002}};
const std::vector<OldRecord> kReplayed = {{1, 7, 1, 1002}, {2, 7, 1, 1003}, {3, 7, 1, 1004}};

constexpr int kManyRecords = 1000;
constexpr INT64 kFirstOfMany = 1001;

std::string InsertText(const std::string& table, const OldRecord& record) {
    const std::string id = std::to_string(record.id);
    return "INSERT INTO " + table + " VALUES (" + id + ",0,3,NULL," + std::to_string(record.user) +
           ",'old" + id + "','ullValues={" + id + ",6}&intValues={1,2,3}&stringValues={a,b}'," +
           "45000.5," + std::to_string(record.time) + ",NULL,NULL,0," +
           std::to_string(record.logKind) + ");";
}

void MakeTable(const std::string& table, const std::vector<OldRecord>& records) {
    std::string text = "BEGIN; CREATE TABLE " + table + kTableColumns + ";";
    for (const OldRecord& record : records)
        text += InsertText(table, record);
    FileDatabase(FileOf(table), /*create=*/true).Query(text + "COMMIT");
}

void SetMark(const char* table, INT64 mark) {
    FileDatabase(FileOf(table)).Query("PRAGMA user_version = " + std::to_string(mark));
}

std::vector<INT64> ManyIds() {
    std::vector<INT64> ids(kManyRecords);
    std::iota(ids.begin(), ids.end(), kFirstOfMany);
    for (const OldRecord& record : kReplayed)
        ids.push_back(record.id);
    return ids;
}

auto Record(UINT32 recordId, const wchar_t* name) {
    return [=](ITslPluginDb2& plugin, VARIANT*) {
        return plugin.Notify(kCommandRecordAction, FullAction(recordId, name));
    };
}

auto Ask(UINT64 command, const ContainerBuilder& request) {
    return [=](ITslPluginDb2& plugin, VARIANT* answer) {
        return plugin.Request(command, request, nullptr, answer);
    };
}

auto Delete(const ContainerBuilder& request) {
    return [=](ITslPluginDb2& plugin, VARIANT*) {
        return plugin.Delete(kCommandDeleteRecords, request);
    };
}

ContainerBuilder OfUser() {
    return ContainerBuilder().Ui4(kKeyUserId, 7);
}

ContainerBuilder IdRange(UINT32 first, UINT32 last) {
    return OfUser().Ui4(kKeyFirstRecordId, first).Ui4(kKeyLastRecordId, last);
}

ContainerBuilder TimeRange() {
    return OfUser().Date(kKeyStartTime, 1001).Date(kKeyEndTime, 1003);
}

// Of a record only the write to the replay log is heard of.
Stage Write(const char* table, INT64 id) {
    return {StageKind::Write,
            table,
            {id},
            table == std::string(kReplayRows) ? Report::Mapped : Report::Nowhere};
}

Stage ReadAnswer(const char* table) {
    return {StageKind::Read, table, {}, Report::Mapped};
}

std::vector<Operation> Recordings() {
    return {
        {.name = "NewRecord",
         .logKind = 2,
         .stages = {Write(kActionLogRows, 20), Write(kReplayRows, 20)},
         .run = Record(20, L"playItem")},
        {.name = "RecordAgain",
         .logKind = 1,
         .stages = {Write(kActionLogRows, 2), Write(kReplayRows, 2)},
         .run = Record(2, L"playItem"),
         .briefStride = 2},
        {.name = "RecordAgainInFilesWithoutMark",
         .logKind = 1,
         .stages = {Write(kActionLogRows, 2), Write(kReplayRows, 2)},
         .run = Record(2, L"playItem"),
         .prepare =
             [] {
                 SetMark(kActionLogRows, 0);
                 SetMark(kReplayRows, 0);
             }},
        {.name = "FirstRecordOfAll",
         .logKind = 1,
         .stages = {Write(kActionLogRows, 1), Write(kReplayRows, 1)},
         .run = Record(1, L"playItem"),
         .makesTables = true},
        {.name = "RecordThatIsKept",
         .logKind = 1,
         .stages = {Write(kTakenRows, 12), Write(kActionLogRows, 12), Write(kReplayRows, 12)},
         .run = Record(12, L"deleteItem")},
        {.name = "RecordOfReplayLogAlone",
         .logKind = kTweets,
         .stages = {Write(kReplayRows, 21)},
         .run = Record(21, L"tweet")},
        {.name = "ContentMove",
         .logKind = 1,
         .stages = {Write(kReplayRows, 2)},
         .run =
             [](ITslPluginDb2& plugin, VARIANT*) {
                 return plugin.Notify(kCommandRecordAction,
                                      Action(2, L"viaMoveContent")
                                          .Date(kKeyActionTime, 45000.5)
                                          .Texts(kKeyStringValues, {L"old one", L"old two"})
                                          .Texts(kKeyMoreStringValues, {L"new one", L"new two"})
                                          .I4(kKeyNumber, 9));
             },
         .contentCalls = 3},
        {.name = "UserReset",
         .logKind = 1,
         .stages = {{StageKind::Delete, kActionLogRows, {1, 2, 3, 4, 5, 6}, Report::Nowhere},
                    Write(kActionLogRows, 23),
                    Write(kReplayRows, 23)},
         .run = Record(23, L"veSettingReset")},
        {.name = "RecordThatTrimsTheReplayLog",
         .logKind = 1,
         .stages = {Write(kActionLogRows, 300),
                    {StageKind::Count, kReplayRows, {}, Report::Nowhere},
                    {StageKind::Delete, kReplayRows, ManyIds(), Report::Nowhere},
                    Write(kReplayRows, 300)},
         .run = Record(300, L"playItem"),
         .prepare =
             [] {
                 Fill(kReplayRows, {.firstId = kFirstOfMany, .count = kManyRecords});
                 SetMark(kReplayRows, kFirstOfMany + kManyRecords - 1);
             },
         .briefStride = 20,
         .isHeavy = true},
    };
}

std::vector<Operation> Queries() {
    return {
        {.name = "IdsOfTimeRange",
         .logKind = 1,
         .stages = {ReadAnswer(kActionLogRows)},
         .run = Ask(kCommandQueryIds, TimeRange()),
         .answers = 3},
        {.name = "IdsOfIdRange",
         .logKind = 1,
         .stages = {ReadAnswer(kActionLogRows)},
         .run = Ask(kCommandQueryIds, IdRange(2, 4)),
         .answers = 3},
        {.name = "IdsOfWrappedRange",
         .logKind = 1,
         .stages = {ReadAnswer(kActionLogRows)},
         .run = Ask(kCommandQueryIds, IdRange(5, 2)),
         .answers = 4},
        {.name = "AllIds",
         .logKind = 1,
         .stages = {ReadAnswer(kTakenRows)},
         .run = Ask(kCommandQueryAllIds, ContainerBuilder()),
         .answers = 3},
        {.name = "RecordsByIds",
         .logKind = 1,
         .stages = {ReadAnswer(kActionLogRows)},
         .run = Ask(kCommandQueryRecords, ContainerBuilder().Array<ULONG>(kKeyRecordIds, {3, 1})),
         .answers = 2},
        {.name = "TakenRecord",
         .logKind = 1,
         .stages = {{StageKind::Fetch, kTakenRows, {}, Report::Mapped},
                    {StageKind::Delete, kTakenRows, {12}, Report::Nowhere}},
         .run = Ask(kCommandTakeRecord, ContainerBuilder().Ui8(kKeyRecordToTake, 12)),
         .answers = 1},
    };
}

std::vector<Operation> Deletions() {
    return {
        {.name = "DeletionById",
         .logKind = 1,
         .stages = {{StageKind::Delete, kActionLogRows, {9}, Report::Mapped}},
         .run = Delete(ContainerBuilder().Ui8(kKeyRecordToTake, 9))},
        {.name = "DeletionByIdRange",
         .logKind = 1,
         .stages = {{StageKind::Delete, kActionLogRows, {2, 3, 4}, Report::AsPointer}},
         .run = Delete(IdRange(2, 4))},
        {.name = "DeletionByTimeRange",
         .logKind = 1,
         .stages = {{StageKind::Delete, kActionLogRows, {1, 2, 6}, Report::Mapped}},
         .run = Delete(TimeRange())},
    };
}

} // namespace

void PrintTo(const OperationGroup& group, std::ostream* stream) {
    *stream << group.name;
}

const std::vector<OperationGroup>& OperationGroups() {
    static const std::vector<OperationGroup> groups = [] {
        std::vector<OperationGroup> made = {
            {"Recordings", Recordings()}, {"Queries", Queries()}, {"Deletions", Deletions()}};
#ifdef _GLIBCXX_ASSERTIONS
        if (!IsFullForm()) std::erase_if(made[0].operations, std::mem_fn(&Operation::isHeavy));
#endif
        return made;
    }();
    return groups;
}

void MakeFilledStore() {
    MakeTable(kActionLogRows, kLogged);
    MakeTable(kTakenRows, kKept);
    MakeTable(kReplayRows, kReplayed);
    SetMark(kActionLogRows, kLogged.back().id);
    SetMark(kReplayRows, kReplayed.back().id);
}

} // namespace tsl::test
