// The folder of the databases and the counter: where it is, and that it is there and open to all.
#include "files/DataFolders.h"

#include <gmock/gmock.h>

#include "files/Paths.h"
#include "files/TextActionLog.h"
#include "tests/files/MovedDataFolder.h"
#include "tests/files/ScratchFolder.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAre;

class DbFolderTest : public StoreTest {
protected:
    void TearDown() override {
        Calls() = SystemCalls();
        StoreTest::TearDown();
    }
};

class MovedDbFolder : public ScratchTest {
protected:
    // Notes every folder before it is made.
    void NoteFolders() {
        Calls().createDirectory = [this](LPCWSTR path, LPSECURITY_ATTRIBUTES) -> DWORD {
            created.push_back(path);
            return ERROR_SUCCESS;
        };
    }

    std::vector<std::wstring> created;
};

} // namespace

TEST_F(DbFolderTest, LiesBelowTheDataOfAllUsersAndEndsInABackslash) {
    const std::wstring folder = DbFolder();
    EXPECT_EQ(StoreFolder().wstring() + L"\\", folder);
    EXPECT_TRUE(folder.ends_with(L"\\Corvane Corporation\\Tessaly\\TslIfDbActionLog\\"));
}

TEST_F(DbFolderTest, IsMadeAgainOnEveryCall) {
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        const std::wstring folder = DbFolder();
        EXPECT_TRUE(std::filesystem::is_directory(folder));
        EXPECT_TRUE(NamesEveryone(folder));
        std::filesystem::remove_all(folder);
    }
}

TEST_F(DbFolderTest, ThatWasThereBeforeIsOpenedToEveryone) {
    MakeStoreFolder();
    ASSERT_FALSE(NamesEveryone(StoreFolder())) << "these tests need a server with umask 077";
    DbFolder();
    EXPECT_TRUE(NamesEveryone(StoreFolder()));
}

TEST_F(DbFolderTest, KeepsWhatIsInIt) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), {1, 2, 3});
    DbFolder();
    EXPECT_EQ((Bytes{1, 2, 3}), ReadBytes(CounterPath()));
}

TEST_F(DbFolderTest, IsNamedEvenWhenItCannotBeMadeOrOpened) {
    std::filesystem::create_directories(StoreFolder().parent_path());
    WriteBytes(StoreFolder(), {1});
    EXPECT_EQ(StoreFolder().wstring() + L"\\", DbFolder());
    EXPECT_EQ(Bytes{1}, ReadBytes(StoreFolder()));
    std::filesystem::remove(StoreFolder());

    Calls().getSecurity = [](auto...) -> DWORD { return ERROR_ACCESS_DENIED; };
    EXPECT_EQ(StoreFolder().wstring() + L"\\", DbFolder());
}

TEST_F(MovedDbFolder, IsTheCurrentDirectoryWhenTheShellKnowsNoFolder) {
    const CurrentDirectory here(Scratch());
    Calls().getSpecialFolderLocation = [](int) { return E_FAIL; };
    const std::wstring folder = DbFolder();
    EXPECT_EQ(Scratch().wstring() + L"\\", folder);
    EXPECT_EQ(S_OK, WriteCounter(folder + kCounterFileName, 1));
    EXPECT_TRUE(std::filesystem::exists(Scratch() / L"actionLog.txt"));
    EXPECT_FALSE(NamesEveryone(Scratch())) << "it is not the component's folder";
}

TEST_F(MovedDbFolder, IsEmptyAndNothingIsMadeWhenNothingIsKnown) {
    Calls().getSpecialFolderLocation = [](int) { return E_FAIL; };
    Calls().getCurrentDirectory = [](DWORD) -> DWORD { return ERROR_ACCESS_DENIED; };
    NoteFolders();
    EXPECT_EQ(L"", DbFolder());
    EXPECT_THAT(created, ElementsAre());
}

TEST_F(MovedDbFolder, IsMadeThroughTheLongPathPrefixFromTheFileLimitOn) {
    const std::wstring company = L"\\Corvane Corporation";
    const std::wstring product = company + L"\\Tessaly";
    const std::wstring tail = product + L"\\TslIfDbActionLog\\";
    for (const size_t length : {259u, 260u}) {
        SCOPED_TRACE(length);
        const std::wstring base = PathOfLength(Scratch(), length - tail.size());
        ASSERT_TRUE(CreateFolderTree(base));
        created.clear();
        NoteFolders();
        const MovedDataFolder moved(base);
        EXPECT_EQ(base + tail, DbFolder());
        const std::wstring start = (length < 260 ? L"" : L"\\\\?\\") + base;
        EXPECT_THAT(created, ElementsAre(start + company, start + product, start + tail));
        EXPECT_TRUE(FolderExists(start + tail));
        EXPECT_TRUE(NamesEveryone(start + tail));
        Calls() = SystemCalls();
    }
}

} // namespace tsl::test
