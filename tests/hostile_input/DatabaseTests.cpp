// Every operation on database files that are damaged, or somebody else's: each ends soon, with one
// of the promised answers, and leaves no lock, no file and no container behind.
#include <algorithm>
#include <optional>

#include "component/host/Identities.h"
#include "tests/hostile_input/HostileDatabase.h"
#include "tests/hostile_input/HostileStore.h"
#include "tests/hostile_input/InputLoop.h"
#include "tests/hostile_input/Mutation.h"
#include "tests/query/SinkClass.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

constexpr ULONGLONG kLongestOperationMilliseconds = 10'000;

// What the engine's results become, and what the operations answer themselves.
bool IsPromised(HRESULT answer) {
    const auto code = static_cast<UINT32>(answer);
    const bool ofTheEngine = (code >= 0x80041600 && code <= 0x80041619) || code == 0x80041700 ||
                             code == 0x80041701 || answer == E_FAIL;
    return answer == S_OK || answer == E_INVALIDARG || answer == E_POINTER || ofTheEngine;
}

CVariant IdList() {
    CVariant ids = MakeFilledArray<LONG>(40, [](std::span<LONG> made) {
        for (size_t index = 0; index < made.size(); ++index)
            made[index] = static_cast<LONG>(index);
    });
    ids.Address()->vt = VT_ARRAY | VT_UI4;
    return ids;
}

struct Files {
    Bytes actionLog;
    Bytes replay;
};

} // namespace

class HostileDatabases : public HostileStoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(HostileStoreTest::SetUp());
        m_sinkClass.emplace(CLSID_TslContentPropertySink, &m_sinks);
        MakeGoodFiles();
    }
    void TearDown() override {
        m_sinkClass.reset();
        HostileStoreTest::TearDown();
    }

    void TryFiles(Chance& chance) {
        WipeFiles();
        if (!chance.OneIn(6)) MakeCounterFile();
        MakeHostileFiles(chance);
        if (chance.OneIn(10)) MakeJournal(chance);
        constexpr UINT32 kLogKinds[] = {1, 1, 2, 4};
        TryAllOperations(chance.Of(kLogKinds));
        Containers().Restart(); // forgets the calls
        m_sinks.texts.clear();
        EXPECT_TRUE(NobodyHasOpenOrItIsMissing(ActionLogPath()));
        EXPECT_TRUE(NobodyHasOpenOrItIsMissing(ReplayPath()));
        EXPECT_EQ(0, Containers().live);
        ExpectLocksAreFree();
    }

    void ExpectItStillWorks() {
        WipeFiles();
        ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
        ExpectAGoodActionIsRecorded(Plugin());
    }

private:
    static void WipeFiles() {
        for (const auto& entry : std::filesystem::directory_iterator(StoreFolder()))
            std::filesystem::remove(entry.path());
    }

    static bool NobodyHasOpenOrItIsMissing(const std::filesystem::path& file) {
        return !std::filesystem::is_regular_file(file) || NobodyHasOpen(file);
    }

    // Both databases as the component makes them, with rows in all tables.
    void MakeGoodFiles() {
        MakeCounterFile();
        for (UINT32 id = 1; id <= 30; ++id) {
            ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(id % 3 == 0 ? 2 : 1));
            ContainerBuilder action = Action(id, id % 2 == 0 ? L"deleteItem" : L"playItem");
            action.Ui4(kKeyUserId, id % 5 == 0 ? 7 : 1)
                .Array<ULONGLONG>(kKeyUllValues, {id, id + 1})
                .Array<LONG>(kKeyIntValues, {1, 2, 3})
                .Texts(kKeyStringValues, {L"first", std::wstring(id * 20, L'x')});
            ASSERT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
        }
        m_good = {ReadBytes(ActionLogPath()), ReadBytes(ReplayPath())};
    }

    void MakeHostileFiles(Chance& chance) {
        constexpr const char* kTables[] = {kActionLogRows, kTakenRows, "TslIf_ActionRecordId"};
        WriteBytes(ActionLogPath(), m_good.actionLog);
        WriteBytes(ReplayPath(), m_good.replay);
        switch (chance.Below(4)) {
        case 0:
            std::filesystem::remove(ActionLogPath());
            MakeForeignDatabase(ActionLogPath(), chance.Of(kTables), chance);
            break;
        case 1:
            SpoilRows(ActionLogPath(), chance.OneIn(2) ? kActionLogRows : kTakenRows, chance);
            break;
        default:
            Damage(ActionLogPath(), chance);
            return Damage(ReplayPath(), chance);
        }
        if (chance.OneIn(4)) Damage(ActionLogPath(), chance);
        if (chance.OneIn(2)) {
            std::filesystem::remove(ReplayPath());
            MakeForeignDatabase(ReplayPath(), kReplayRows, chance);
        } else {
            SpoilRows(ReplayPath(), kReplayRows, chance);
        }
    }

    static void Damage(const std::filesystem::path& path, Chance& chance) {
        Bytes file = ReadBytes(path);
        DamageDatabase(file, chance);
        WriteBytes(path, file);
    }

    // What a process that ended in the middle of a change leaves: a journal with the first pages of
    // a good file, in which some bytes may be wrong.
    void MakeJournal(Chance& chance) const {
        Bytes journal = {0xD9, 0xD5, 0x05, 0xF9, 0x20, 0xA1, 0x63, 0xD7};
        const auto append = [&](UINT32 number) {
            for (int shift = 24; shift >= 0; shift -= 8)
                journal.push_back(static_cast<unsigned char>(number >> shift));
        };
        append(1);   // pages in the journal
        append(0);   // start of the checksums
        append(4);   // pages of the database before the change
        append(512); // bytes that are written at once
        append(kPageSize);
        journal.resize(512, 0);
        append(1 + static_cast<UINT32>(chance.Below(4))); // the page that follows
        journal.insert(journal.end(), m_good.replay.begin(), m_good.replay.begin() + kPageSize);
        UINT32 checksum = 0;
        for (size_t at = kPageSize - 200; at > 0 && at < kPageSize; at -= 200)
            checksum += m_good.replay[at];
        append(checksum);
        if (chance.OneIn(2)) SpoilBytes(journal, chance, 8);
        const auto database = chance.OneIn(2) ? ActionLogPath() : ReplayPath();
        WriteBytes(database.wstring() + (chance.OneIn(4) ? L"-wal" : L"-journal"), journal);
    }

    template <class Operation>
    void Try(const char* name, Operation operation) {
        const ULONGLONG start = GetTickCount64();
        const HRESULT answer = operation();
        EXPECT_LT(GetTickCount64() - start, kLongestOperationMilliseconds) << name;
        EXPECT_TRUE(IsPromised(answer)) << name << " answered " << std::hex << answer;
        m_slowest = std::max(m_slowest, GetTickCount64() - start);
    }

    void TryRequest(const char* name, UINT64 code, const ContainerBuilder& request) {
        Try(name, [&] {
            CVariant answer;
            return Ask(code, request, answer.Address());
        });
    }

    void TryAllOperations(UINT32 logKind) {
        Try("switch", [&] { return Plugin().SetRecordingEnabled(logKind); });
        const auto record = [&](UINT32 id, const wchar_t* name) {
            Try("record", [&] {
                return Plugin().Notify(kCommandRecordAction,
                                       Action(id, name).Array<ULONGLONG>(kKeyUllValues, {1, 2}));
            });
        };
        record(3, L"playItem");
        record(31, L"deleteItem");
        record(100, L"playItem"); // the replay log is looked through
        record(0xFFFFFFFF, L"deleteItem");
        const ContainerBuilder user = ContainerBuilder().Ui4(kKeyUserId, 1);
        const auto range = [](UINT32 first, UINT32 last) {
            return ContainerBuilder()
                .Ui4(kKeyUserId, 1)
                .Ui4(kKeyFirstRecordId, first)
                .Ui4(kKeyLastRecordId, last);
        };
        const auto one = [](UINT64 id) { return ContainerBuilder().Ui8(kKeyRecordToTake, id); };
        TryRequest("next id", kCommandNextRecordId, ContainerBuilder());
        TryRequest("ids by time", kCommandQueryIds, user);
        TryRequest("ids by id", kCommandQueryIds, range(1, 20));
        TryRequest("ids across the wrap", kCommandQueryIds, range(20, 2));
        TryRequest("all ids", kCommandQueryAllIds, user);
        TryRequest("records", kCommandQueryRecords,
                   ContainerBuilder().Set(kKeyRecordIds, IdList()));
        TryRequest("take", kCommandTakeRecord, one(4));
        TryRequest("take again", kCommandTakeRecord, one(4));
        Try("reset",
            [&] { return Plugin().Notify(kCommandRecordAction, Action(32, L"veSettingReset")); });
        Try("delete one", [&] { return Plugin().Delete(kCommandDeleteRecords, one(5)); });
        Try("delete ids", [&] { return Plugin().Delete(kCommandDeleteRecords, range(6, 9)); });
        Try("delete times", [&] { return Plugin().Delete(kCommandDeleteRecords, user); });
    }

protected:
    ULONGLONG m_slowest = 0;

private:
    Files m_good;
    // There, because under the emulator a search for a class that nobody has leaves two handles.
    SinkClass m_sinks;
    std::optional<ClassRegistration> m_sinkClass;
};

TEST_F(HostileDatabases, EndEveryOperationSoonWithAPromisedAnswer) {
    TryInputs("databases", InForm<size_t>(60, 2000),
              [&](Chance& chance, size_t) { TryFiles(chance); });
    Measured("hostile_input databases: slowest operation " + std::to_string(m_slowest) + " ms");
    ExpectItStillWorks();
}

} // namespace tsl::test
