// Creating a folder with its missing parents: which folders are made, in which order, and how it
// ends when one of them cannot be made.
#include <functional>
#include <thread>

#include "files/Paths.h"
#include "tests/files/ScratchFolder.h"

namespace tsl::test {

namespace {

using Paths = std::vector<std::wstring>;

constexpr wchar_t kNoFolder[] = L"C:\\tsl_files_tests_none";

// A drive letter that nothing is connected to, with its colon.
std::wstring FreeDrive() {
    std::wstring root = L"A:\\";
    while (root[0] <= L'Z' && GetDriveTypeW(root.c_str()) != DRIVE_NO_ROOT_DIR)
        ++root[0];
    EXPECT_LE(root[0], L'Z') << "every drive letter is taken";
    return root.substr(0, 2);
}

// Notes every folder that is tried before the system is asked for it.
class FolderTreeTest : public ScratchTest {
protected:
    void SetUp() override {
        ScratchTest::SetUp();
        Calls().createDirectory = [this](LPCWSTR path, LPSECURITY_ATTRIBUTES attributes) -> DWORD {
            tried.push_back(path);
            if (attributes) withAttributes.push_back(path);
            if (meanwhile) meanwhile(path);
            return refuseAll || path == refused ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
        };
    }

    // What somebody else does right before a folder is made.
    std::function<void(const std::wstring& path)> meanwhile;
    std::wstring refused;
    bool refuseAll = false;
    Paths tried;
    Paths withAttributes;
};

} // namespace

TEST_F(FolderTreeTest, ParentsAreMadeFromTheTopDown) {
    struct Case {
        const wchar_t* tree;
        Paths expected;
    };
    for (const std::wstring prefix : {L"", L"\\\\?\\"}) {
        for (const Case& c :
             {Case{L"a", {L"a"}}, Case{L"a\\", {L"a\\"}}, Case{L"a\\b", {L"a", L"a\\b"}},
              Case{L"a\\b\\c\\", {L"a", L"a\\b", L"a\\b\\c\\"}}}) {
            SCOPED_TRACE(prefix + c.tree);
            tried.clear();
            EXPECT_TRUE(CreateFolderTree(prefix + At(c.tree)));
            EXPECT_TRUE(std::filesystem::is_directory(At(c.tree)));
            Paths expected;
            for (const std::wstring& folder : c.expected)
                expected.push_back(prefix + At(folder));
            EXPECT_EQ(expected, tried);
            EXPECT_TRUE(CreateFolderTree(prefix + At(c.tree))) << "a second time";
            EXPECT_EQ(expected, tried) << "nothing was left to make";
            std::filesystem::remove_all(At(L"a"));
        }
    }
}

TEST_F(FolderTreeTest, RelativeTreesAreMadeInTheCurrentDirectory) {
    const CurrentDirectory here(Scratch());
    for (const Paths& expected :
         {Paths{L"d"}, Paths{L"de"}, Paths{L"a", L"a\\b", L"a\\b\\c"}, Paths{L"x", L"x\\y\\"}}) {
        SCOPED_TRACE(expected.back());
        tried.clear();
        EXPECT_TRUE(CreateFolderTree(expected.back()));
        EXPECT_EQ(expected, tried);
        EXPECT_TRUE(std::filesystem::is_directory(At(expected.back())));
    }
}

TEST_F(FolderTreeTest, RootIsTriedItselfAndItsResultIsGivenAsItIs) {
    for (const wchar_t* const root : {L"C:\\", L"C:", L"\\", L"\\\\?\\C:\\", L"\\\\?\\C:"}) {
        SCOPED_TRACE(root);
        // False for a root that is there; for the last one the emulator's answer is true.
        const bool answer = CreateDirectoryW(root, nullptr) != 0;
        tried.clear();
        // The root cannot be seen until it has been tried.
        const auto hidden = [this](auto) -> DWORD {
            return tried.empty() ? ERROR_FILE_NOT_FOUND : ERROR_SUCCESS;
        };
        Calls().getFileAttributes = hidden;
        Calls().getFileAttributesAnsi = hidden;
        EXPECT_EQ(answer, CreateFolderTree(root));
        EXPECT_EQ(Paths{root}, tried);
    }
}

TEST_F(FolderTreeTest, DriveThatIsNotThereIsAFailure) {
    const std::wstring drive = FreeDrive();
    for (const std::wstring prefix : {L"", L"\\\\?\\"}) {
        for (const wchar_t* const root : {L"", L"\\"}) {
            SCOPED_TRACE(prefix + drive + root);
            tried.clear();
            EXPECT_FALSE(CreateFolderTree(prefix + drive + root));
            EXPECT_EQ(Paths{prefix + drive + root}, tried);
        }
        tried.clear();
        EXPECT_FALSE(CreateFolderTree(prefix + drive + L"\\a\\b"));
        EXPECT_EQ(Paths{prefix + drive + L"\\a"}, tried) << "nothing above and nothing below";
    }
}

TEST_F(FolderTreeTest, NothingAboveAFolderRightBelowARootIsTried) {
    const std::wstring folder = kNoFolder;
    ASSERT_FALSE(FolderExists(folder));
    refuseAll = true;
    for (const std::wstring& path : {folder, folder + L"\\", L"\\\\?\\" + folder}) {
        SCOPED_TRACE(path);
        tried.clear();
        EXPECT_FALSE(CreateFolderTree(path));
        EXPECT_EQ(Paths{path}, tried);
    }
}

TEST_F(FolderTreeTest, ShareIsNeverTriedAsAParent) {
    // There is no share here: what is shown is the first folder that is tried.
    const auto unreachable = [](auto) -> DWORD { return ERROR_BAD_NETPATH; };
    Calls().getFileAttributes = unreachable;
    Calls().getFileAttributesAnsi = unreachable;
    refuseAll = true;
    struct Case {
        const wchar_t* below;
        const wchar_t* first;
    };
    for (const std::wstring server : {L"\\\\server", L"\\\\?\\UNC\\server"}) {
        for (const Case& c :
             {Case{L"\\share\\a\\b\\c", L"\\share\\a"}, Case{L"\\share\\a\\b", L"\\share\\a"},
              Case{L"\\share\\a", L"\\share\\a"}, Case{L"\\share\\a\\", L"\\share\\a\\"},
              Case{L"\\share\\", L"\\share\\"}, Case{L"\\share", L"\\share"}, Case{L"", L""}}) {
            SCOPED_TRACE(server + c.below);
            tried.clear();
            EXPECT_FALSE(CreateFolderTree(server + c.below));
            EXPECT_EQ(Paths{server + c.first}, tried);
        }
    }
}

TEST_F(FolderTreeTest, OnlyWhatIsMissingIsMade) {
    std::filesystem::create_directories(At(L"a\\b"));
    EXPECT_TRUE(CreateFolderTree(At(L"a\\b\\c\\d")));
    EXPECT_EQ((Paths{At(L"a\\b\\c"), At(L"a\\b\\c\\d")}), tried);
}

TEST_F(FolderTreeTest, NothingIsMadeWhereTheFolderIsThere) {
    EXPECT_TRUE(CreateFolderTree(Scratch().wstring()));
    EXPECT_TRUE(CreateFolderTree(L"C:\\"));
    EXPECT_FALSE(CreateFolderTree(L""));
    EXPECT_EQ(Paths{}, tried);
}

TEST_F(FolderTreeTest, OnlyTheFolderItselfGetsTheSecurityAttributes) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, FALSE};
    EXPECT_TRUE(CreateFolderTree(At(L"a\\b\\c"), &attributes));
    EXPECT_EQ(3u, tried.size());
    EXPECT_EQ(Paths{At(L"a\\b\\c")}, withAttributes);
}

TEST_F(FolderTreeTest, FolderWithOnlyARootAboveItIsMadeWithoutTheSecurityAttributes) {
    SECURITY_ATTRIBUTES attributes{sizeof attributes, nullptr, FALSE};
    const CurrentDirectory here(Scratch());
    EXPECT_TRUE(CreateFolderTree(L"d", &attributes));
    refused = kNoFolder;
    EXPECT_FALSE(CreateFolderTree(kNoFolder, &attributes));
    EXPECT_EQ((Paths{L"d", kNoFolder}), tried);
    EXPECT_EQ(Paths{}, withAttributes);
}

TEST_F(FolderTreeTest, NothingIsTriedBelowAParentThatCannotBeMade) {
    refused = At(L"a\\b");
    EXPECT_FALSE(CreateFolderTree(At(L"a\\b\\c\\d")));
    EXPECT_EQ((Paths{At(L"a"), At(L"a\\b")}), tried);
    EXPECT_TRUE(std::filesystem::is_empty(At(L"a")));
}

TEST_F(FolderTreeTest, RefusedFolderIsAFailure) {
    refused = At(L"a\\b");
    EXPECT_FALSE(CreateFolderTree(refused));
    EXPECT_EQ((Paths{At(L"a"), At(L"a\\b")}), tried);
}

TEST_F(FolderTreeTest, FolderMadeMeanwhileBySomebodyElseCounts) {
    for (const wchar_t* const name : {L"a\\b\\c", L"a\\b"}) {
        SCOPED_TRACE(name);
        tried.clear();
        bool appeared = false;
        meanwhile = [&](const std::wstring& path) {
            if (path == At(name)) appeared = CreateDirectoryW(path.c_str(), nullptr) != 0;
        };
        EXPECT_TRUE(CreateFolderTree(At(L"a\\b\\c")));
        EXPECT_TRUE(appeared);
        EXPECT_EQ((Paths{At(L"a"), At(L"a\\b"), At(L"a\\b\\c")}), tried);
        std::filesystem::remove_all(At(L"a"));
    }
}

TEST_F(FolderTreeTest, FolderThatIsThereAfterItsParentFailedCounts) {
    // Somebody else is done with the whole tree before the parent is made.
    const CurrentDirectory here(Scratch());
    meanwhile = [](const std::wstring&) { std::filesystem::create_directories(L"a\\b"); };
    EXPECT_TRUE(CreateFolderTree(L"a\\b"));
    EXPECT_EQ(Paths{L"a"}, tried);
}

TEST_F(FolderTreeTest, TreeBeyondThePathLimitIsMadeThroughThePrefix) {
    const std::wstring path = LongPathPrefix(PathOfLength(Scratch(), 400), false, true);
    ASSERT_EQ(404u, path.size());
    EXPECT_TRUE(CreateFolderTree(path));
    EXPECT_TRUE(FolderExists(path));
}

TEST_F(FolderTreeTest, FileInTheWayIsAFailure) {
    WriteBytes(At(L"file"), {1});
    EXPECT_FALSE(CreateFolderTree(At(L"file")));
    EXPECT_FALSE(CreateFolderTree(At(L"file\\a\\b")));
    EXPECT_EQ(Bytes{1}, ReadBytes(At(L"file")));
}

TEST_F(FolderTreeTest, ThreadsThatMakeTheSameTreeAllSucceed) {
    Calls() = SystemCalls();
    constexpr int kRounds = 20;
    for (int round = 0; round < kRounds; ++round) {
        const std::wstring path = At(std::to_wstring(round) + L"\\a\\b\\c\\d");
        bool made[4] = {};
        std::vector<std::thread> threads;
        for (bool& result : made)
            threads.emplace_back([&] { result = CreateFolderTree(path); });
        for (std::thread& thread : threads)
            thread.join();
        for (const bool result : made)
            EXPECT_TRUE(result);
        EXPECT_TRUE(FolderExists(path));
    }
}

} // namespace tsl::test
