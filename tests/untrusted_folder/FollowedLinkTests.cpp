// Links that an administrator makes are followed: those above the vendor's folder. And where the
// shell knows no folder, the rights of whatever folder is current stay as they are.
#include "files/UserIdList.h"
#include "tests/files/MovedDataFolder.h"
#include "tests/support/EveryoneAccess.h"
#include "tests/support/PluginFixture.h"
#include "tests/untrusted_folder/Calls.h"
#include "tests/untrusted_folder/Links.h"

namespace tsl::test {

namespace fs = std::filesystem;

class FollowedLink : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        fs::remove_all(folder);
        fs::create_directories(folder / L"moved");
    }
    void TearDown() override {
        RemoveLink(folder / L"data");
        fs::remove_all(folder);
        PluginTest::TearDown();
    }

    const fs::path folder = fs::temp_directory_path() / L"tsl_followed_link_tests";
};

TEST_F(FollowedLink, AboveTheVendorsFolderLeadsToTheStore) {
    const fs::path usual = ActionLogPath();
    MakeSymbolicLink(folder / L"data", folder / L"moved");
    const MovedDataFolder moved((folder / L"data").wstring());
    for (const auto& [call, result] : MakeAllCalls(Plugin()))
        EXPECT_TRUE(SUCCEEDED(result) || result == E_INVALIDARG) << call << ' ' << result;
    const fs::path product = folder / L"moved" / L"Corvane Corporation" / L"Tessaly";
    for (const wchar_t* const file :
         {L"TslIfDbActionLog\\ualog.db", L"TslIfDbActionLog\\uareplay.db",
          L"TslIfDbActionLog\\actionLog.txt", L"UID\\UserIdList.dat"}) {
        EXPECT_TRUE(fs::exists(product / file)) << file;
    }
    EXPECT_TRUE(NamesEveryone((product / L"TslIfDbActionLog").wstring()));
    EXPECT_FALSE(fs::exists(usual)) << "the data folder was not moved";
}

TEST_F(FollowedLink, BelowTheVendorsFolderIsNotMadeUpForByOneAboveIt) {
    MakeSymbolicLink(folder / L"data", folder / L"moved");
    const MovedDataFolder moved((folder / L"data").wstring());
    const ForeignFolder foreign(/*hasTree=*/true);
    const fs::path company = folder / L"moved" / L"Corvane Corporation";
    MakeSymbolicLink(company, foreign.Path());
    EXPECT_EQ(E_ACCESSDENIED, MakeAllCalls(Plugin()).at("next id"));
    foreign.ExpectUntouched();
    RemoveLink(company);
}

} // namespace tsl::test
