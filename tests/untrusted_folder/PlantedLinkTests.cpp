// A link in the place of each file and folder of the store: what it leads to stays as it is, and
// nothing comes into being there.
#include "console/Text.h"
#include "files/UserIdList.h"
#include "store/Schema.h"
#include "tests/support/Failures.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"
#include "tests/untrusted_folder/Calls.h"
#include "tests/untrusted_folder/Links.h"

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

constexpr HRESULT kCannotOpen = static_cast<HRESULT>(0x8004160D);

fs::path UserListFolder() {
    return StoreFolder().parent_path() / L"UID";
}

// A file or folder of the store, and the calls that cannot do without it.
struct Place {
    const char* name;
    fs::path path;
    std::map<std::string, HRESULT> refused;
    bool isOfALog = false; // a write-ahead log
};

std::vector<Place> Files() {
    return {
        {"counter", CounterPath(), {{"next id", E_ACCESSDENIED}}},
        {"user list",
         UserListFolder() / kUserIdFileName,
         {{"all ids of the system's user", E_ACCESSDENIED},
          {"delete one of the system's user", E_ACCESSDENIED}}},
        {"action log", ActionLogPath(), {{"ids by time", kCannotOpen}, {"take", kCannotOpen}}},
        {"replay log", ReplayPath(), {{"record", kCannotOpen}}},
        {"journal", fs::path(ActionLogPath()) += L"-journal", {}},
        {"replay journal", fs::path(ReplayPath()) += L"-journal", {}},
        {"write-ahead log", fs::path(ActionLogPath()) += L"-wal", {}, true},
        {"index of the write-ahead log", fs::path(ActionLogPath()) += L"-shm", {}, true},
    };
}

std::vector<Place> Folders() {
    const fs::path product = StoreFolder().parent_path();
    const std::map<std::string, HRESULT> all = {
        {"next id", E_ACCESSDENIED}, {"record", kCannotOpen}, {"ids by time", kCannotOpen}};
    return {
        {"store folder", StoreFolder(), all},
        {"product folder", product, all},
        {"company folder", product.parent_path(), all},
        {"folder of the user list",
         UserListFolder(),
         {{"all ids of the system's user", E_ACCESSDENIED}}},
    };
}

} // namespace

class PlantedLink : public PluginTest {
protected:
    // Whole files of a store in use, so that calls do what they always do.
    void FillStore() {
        MakeCounterFile();
        for (const auto& [call, result] : MakeAllCalls(Plugin()))
            ASSERT_TRUE(SUCCEEDED(result) || result == E_INVALIDARG) << call << ' ' << result;
    }
    static void ExpectRefused(const Place& place, const std::map<std::string, HRESULT>& results) {
        for (const auto& [call, expected] : place.refused)
            EXPECT_EQ(expected, results.at(call)) << call;
    }
};

TEST_F(PlantedLink, InThePlaceOfAFileLeadsNowhere) {
    for (const LinkKind kind : kLinkKinds) {
        for (const Place& place : Files()) {
            SCOPED_TRACE(std::string(NameOf(kind)) + " as " + place.name);
            fs::remove_all(StoreFolder());
            ASSERT_NO_FATAL_FAILURE(FillStore());
            // Only such a database has the engine look at its log.
            if (place.isOfALog) FileDatabase(ActionLogPath()).Query("PRAGMA journal_mode = WAL");
            // What is a database there has a table that fits.
            const bool isDatabase = place.path.extension() == L".db";
            const ForeignFolder foreign(isDatabase ? ReadBytes(place.path) : Bytes{'x'});
            foreign.PlantAt(place.path, kind);
            ExpectRefused(place, MakeAllCalls(Plugin()));
            foreign.ExpectUntouched();
            RemoveLink(place.path);
        }
    }
}

TEST_F(PlantedLink, InThePlaceOfAFolderLeadsNowhere) {
    enum class Leads { ToNothing, ToAFolder, ToTheSameTree };
    for (const Leads leads : {Leads::ToNothing, Leads::ToAFolder, Leads::ToTheSameTree}) {
        for (const Place& place : Folders()) {
            SCOPED_TRACE(std::string(place.name) + ' ' + std::to_string(static_cast<int>(leads)));
            fs::remove_all(StoreFolder().parent_path().parent_path());
            const ForeignFolder foreign(leads == Leads::ToTheSameTree);
            fs::create_directories(place.path.parent_path());
            if (leads == Leads::ToNothing) {
                MakeDanglingLink(place.path, foreign.Path() / L"nothing");
            } else {
                MakeSymbolicLink(place.path, foreign.Path());
            }
            const auto results = MakeAllCalls(Plugin());
            if (leads == Leads::ToTheSameTree) ExpectRefused(place, results);
            for (const auto& [call, result] : place.refused)
                EXPECT_TRUE(FAILED(results.at(call))) << call;
            foreign.ExpectUntouched();
            RemoveLink(place.path);
        }
    }
}

TEST_F(PlantedLink, InThePlaceOfAnOlderStoresNewCounterLeadsNowhere) {
    MakeStoreFolder();
    {
        const FileDatabase old(ActionLogPath(), /*create=*/true);
        old.Query(ToUtf8(CreateActionTableText(kTablePrefix, kActionLogTable)));
        old.Query(
            "CREATE TABLE TslIf_ActionRecordId (CurrentRecordId INTEGER, ActionLogId INTEGER)");
        old.Query("INSERT INTO TslIf_ActionRecordId VALUES (1, 41)");
    }
    const ForeignFolder foreign;
    foreign.PlantAt(fs::path(CounterPath()) += L".new", LinkKind::Symbolic);
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    EXPECT_EQ(43u, NextId());
    MakeAllCalls(Plugin());
    foreign.ExpectUntouched();
    RemoveLink(fs::path(CounterPath()) += L".new");
}

} // namespace tsl::test
