// Hundreds of damaged files: an examination never calls one whole that the engine's own check or
// the component refuses, changes none of them, and survives all.
#include <algorithm>
#include <numeric>

#include "component/host/CommandCodes.h"
#include "files/UserIdList.h"
#include "tests/hostile_input/TextFileModel.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/FullForm.h"
#include "tests/upkeep/DoctorFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr UINT32 kNextId = kSampleRecords + 1;

struct Tally {
    size_t files = 0;
    size_t refused = 0;      // by the engine or the component
    size_t calledOk = 0;     // of these, by doctor
    size_t onlyByDoctor = 0; // and by neither of these
    size_t undetectable = 0; // it has another meaning now, but is as good as the whole one

    std::string Text() const {
        return std::to_string(files) + " files, " + std::to_string(refused) +
               " refused by engine or component, of these called ok: " + std::to_string(calledOk) +
               "; " + std::to_string(onlyByDoctor) + " damaged for doctor alone, " +
               std::to_string(undetectable) + " of another meaning but of perfect form";
    }
};

bool EngineRefuses(const std::wstring& path) {
    try {
        return FileDatabase(path).Value("PRAGMA integrity_check") != "ok";
    } catch (const std::runtime_error&) {
        return true;
    }
}

// Record ids from the first to the last.
CVariant Ids(UINT32 first, UINT32 last) {
    std::vector<LONG> numbers(last - first + 1);
    std::iota(numbers.begin(), numbers.end(), static_cast<LONG>(first));
    CVariant ids = MakeArray<LONG>(numbers);
    ids.Address()->vt = VT_ARRAY | VT_UI4;
    return ids;
}

} // namespace

class DoctorOfDamage : public DoctorTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(DoctorTest::SetUp());
        m_whole = StateOf(StoreFolder().parent_path());
    }

    // The whole store, with a damaged file in the place of one.
    void Put(const DamagedFile& file, const std::wstring& path) const {
        for (const auto& entry : fs::directory_iterator(StoreFolder()))
            fs::remove_all(entry.path());
        fs::remove_all(Store().userIds);
        for (const auto& [name, state] : m_whole) {
            if (!state.bytes.empty()) WriteBytes(name, state.bytes);
        }
        PutInPlace(file, path);
    }

    bool ComponentRefusesActionLog() {
        Plugin().SetRecordingEnabled(1);
        const auto ask = [&](UINT64 code, const ContainerBuilder& request) {
            CVariant answer;
            const HRESULT result = Plugin().Request(code, request, nullptr, answer.Address());
            // There is no record of the kind.
            return SUCCEEDED(result) || result == E_INVALIDARG;
        };
        const ContainerBuilder user = ContainerBuilder().Ui4(kKeyUserId, 1);
        const ContainerBuilder range = ContainerBuilder()
                                           .Ui4(kKeyUserId, 1)
                                           .Ui4(kKeyFirstRecordId, 1)
                                           .Ui4(kKeyLastRecordId, kSampleRecords);
        const ContainerBuilder all = ContainerBuilder().Set(kKeyRecordIds, Ids(1, kSampleRecords));
        return !ask(kCommandQueryIds, user) || !ask(kCommandQueryIds, range) ||
               !ask(kCommandQueryRecords, all) || !ask(kCommandQueryAllIds, user) ||
               !Records(kNextId) || !Records(3) || !Deletes(range);
    }

    bool ComponentRefusesReplayLog() {
        Plugin().SetRecordingEnabled(1);
        // The one of 600 looks through the records.
        for (const UINT32 id : {kNextId, 600u}) {
            if (Plugin().Notify(kCommandRecordAction, Action(id, L"playItem")) != S_OK) return true;
        }
        return false;
    }

    template <class Refuses>
    Tally CompareDatabases(const std::wstring& path, const char* subject, size_t step,
                           Refuses componentRefuses) {
        constexpr size_t kAlways = 7; // those that are not cut and not flipped
        Tally tally;
        const std::vector<DamagedFile> files = DamagedDatabases(ReadBytes(path), 200);
        for (size_t index = 0; index < files.size(); ++index) {
            if (index >= kAlways && index % step != 0) continue;
            SCOPED_TRACE(files[index].how + ", file " + std::to_string(index));
            Put(files[index], path);
            const Finding worst = Worst(subject);
            const bool engine = EngineRefuses(path);
            Put(files[index], path);
            const bool component = componentRefuses();
            ++tally.files;
            if (engine || component) {
                ++tally.refused;
                tally.calledOk += worst.level == Level::Ok;
                EXPECT_TRUE(worst.damage)
                    << ::testing::PrintToString(worst) << (engine ? " engine" : "")
                    << (component ? " component" : "");
            } else if (worst.damage) {
                ++tally.onlyByDoctor;
            }
        }
        return tally;
    }

private:
    // Whether a record can be written and found again.
    bool Records(UINT32 id) {
        Plugin().Notify(kCommandRecordAction, Action(id, L"newItem"));
        CVariant answer;
        const HRESULT result = Plugin().Request(kCommandQueryRecords,
                                                ContainerBuilder().Set(kKeyRecordIds, Ids(id, id)),
                                                nullptr, answer.Address());
        return SUCCEEDED(result) && answer.Type() != VT_EMPTY;
    }

    bool Deletes(const ContainerBuilder& range) {
        return SUCCEEDED(Plugin().Delete(kCommandDeleteRecords, range));
    }

    FolderState m_whole;
};

TEST_F(DoctorOfDamage, NeverCallsAnActionLogWholeThatIsRefused) {
    const Tally tally = CompareDatabases(Store().actionLog, "ualog.db", InForm<size_t>(9, 1),
                                         [&] { return ComponentRefusesActionLog(); });
    EXPECT_GT(tally.refused, tally.files / 2);
    Measured("doctor, action logs: " + tally.Text());
}

TEST_F(DoctorOfDamage, NeverCallsAReplayLogWholeThatIsRefused) {
    const Tally tally = CompareDatabases(Store().replayLog, "uareplay.db", InForm<size_t>(18, 3),
                                         [&] { return ComponentRefusesReplayLog(); });
    EXPECT_GT(tally.refused, tally.files / 2);
    Measured("doctor, replay logs: " + tally.Text());
}

TEST_F(DoctorOfDamage, NeverCallsACounterWholeThatGivesAnIdInUse) {
    Tally tally;
    for (const DamagedFile& file :
         DamagedTextFiles(ReadBytes(Store().counter), InForm<size_t>(30, 100))) {
        SCOPED_TRACE(file.how + " " + ::testing::PrintToString(file.bytes));
        Put(file, Store().counter);
        const Finding worst = Worst("actionLog.txt");
        CVariant answer;
        const ContainerBuilder request;
        const HRESULT result =
            Plugin().Request(kCommandNextRecordId, request, nullptr, answer.Address());
        UINT32 next = 0;
        if (SUCCEEDED(result)) {
            CVariant id;
            static_cast<ITslParamContainer*>(answer.Get().punkVal)
                ->GetValue(kKeyRecordId, id.Address());
            next = id.Get().ulVal;
        }
        ++tally.files;
        if (FAILED(result) || next <= kSampleRecords) {
            ++tally.refused;
            tally.calledOk += worst.level == Level::Ok;
            // At its end the counter begins again, which is told but no damage of the file.
            const bool atItsEnd = SUCCEEDED(result) && next == 0;
            EXPECT_TRUE(worst.damage || atItsEnd) << ::testing::PrintToString(worst);
            EXPECT_NE(Level::Ok, worst.level);
        } else if (next != kNextId) {
            const bool perfect = file.bytes == ModelCounterFile(next - 1);
            tally.undetectable += perfect;
            EXPECT_TRUE(perfect || worst.level != Level::Ok) << ::testing::PrintToString(worst);
        } else {
            tally.onlyByDoctor += worst.damage;
        }
    }
    EXPECT_GT(tally.refused, tally.files / 4);
    Measured("doctor, counter files: " + tally.Text());
}

TEST_F(DoctorOfDamage, NeverCallsAUserListWholeThatGivesUsersOtherIds) {
    const std::vector<std::wstring> users = {L"S-1-5-21-1-2-3-1001", L"S-1-5-21-1-2-3-1002",
                                             L"S-1-5-18"};
    Tally tally;
    for (const DamagedFile& file :
         DamagedTextFiles(ReadBytes(Store().userIds), InForm<size_t>(30, 100))) {
        SCOPED_TRACE(file.how + " " + ::testing::PrintToString(file.bytes));
        Put(file, Store().userIds);
        const Finding worst = Worst("UserIdList.dat");
        bool sameIds = true;
        for (size_t index = 0; index < users.size(); ++index) {
            PutInPlace(file, Store().userIds);
            std::vector<UserIdEntry> entries;
            UINT64 id = 0;
            LookUpOrAssignUserId(users[index], entries, id);
            // A folder cannot be read: the first user is given the right id by chance.
            sameIds = sameIds && id == index + 1;
        }
        ++tally.files;
        // What the component would write for the users that it finds in it.
        const std::wstring another = L"S-1-5-20";
        Bytes rewritten = ModelLookUp(file.bytes, another).file;
        const size_t lastLine = Utf16Bytes(L"0x00000000\t" + another + L"\t\r\n").size();
        rewritten.resize(rewritten.size() - std::min(lastLine, rewritten.size()));
        const bool perfect = !file.isFolder && rewritten == file.bytes;
        if (!sameIds) {
            ++tally.refused;
            tally.undetectable += perfect && worst.level == Level::Ok;
            tally.calledOk += !perfect && worst.level == Level::Ok;
            EXPECT_TRUE(perfect || worst.damage) << ::testing::PrintToString(worst);
        } else {
            tally.onlyByDoctor += worst.damage;
        }
    }
    EXPECT_GT(tally.refused, tally.files / 4);
    Measured("doctor, user lists: " + tally.Text());
}

} // namespace tsl::test
