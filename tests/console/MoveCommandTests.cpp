// tslhost move, run as a user runs it.
#include <filesystem>

#include "tests/console/ConsoleRun.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class MoveCommand : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        WriteItems(R"({"items": [{"id": 7, "properties": [
            {"first": "Albums/", "second": "a.jpg", "number": 1},
            {"first": "Albums/", "second": "b.jpg", "number": 2}]},
            {"id": 8, "properties": [{"first": "ALBUMS/"}]}]})");
    }
    void TearDown() override {
        std::error_code error;
        std::filesystem::remove(ItemsPath(), error);
        StoreTest::TearDown();
    }

    static std::filesystem::path ItemsPath() {
        return std::filesystem::temp_directory_path() /
               (L"items_" + std::to_wstring(GetCurrentProcessId()) + L".json");
    }
    static void WriteItems(const std::string& text) {
        WriteBytes(ItemsPath(), Bytes(text.begin(), text.end()));
    }
    static std::string Items() {
        const Bytes bytes = ReadBytes(ItemsPath());
        return std::string(bytes.begin(), bytes.end());
    }
    static ConsoleResult Move(const std::wstring& texts, const std::wstring& more = {}) {
        return RunConsole(L"move " + texts + L" --number 5 --items \"" + ItemsPath().wstring() +
                          L"\" " + more);
    }
};

TEST_F(MoveCommand, ShowsEachPropertyThatChanged) {
    const ConsoleResult moved = Move(L"Albums/ a.jpg Archive c.jpg");
    EXPECT_EQ(0, moved.exitCode) << moved.errors;
    EXPECT_EQ("item  property  before               after\n"
              "   7         1  Albums/ | a.jpg | 1  Archive | c.jpg | 5\n"
              "   8         1  ALBUMS/ | - | -      Archive | c.jpg | 5\n",
              moved.output);
}

TEST_F(MoveCommand, IsRecordedInTheReplayLogOnly) {
    ASSERT_EQ(0, Move(L"Albums/ a.jpg Archive c.jpg").exitCode);
    EXPECT_EQ(0, CountRows(ActionLogPath(), kActionLogRows));
    EXPECT_EQ("viaMoveContent|stringValues={Albums%2f,a.jpg,Archive,c.jpg}",
              FileDatabase(ReplayPath())
                  .Value("SELECT ActionName || '|' || ActionParameters FROM TslIf_ActionReplay"));
}

TEST_F(MoveCommand, LeavesTheFileAloneUntilItIsToldToSave) {
    const std::string before = Items();
    ASSERT_EQ(0, Move(L"Albums/ a.jpg Archive c.jpg").exitCode);
    EXPECT_EQ(before, Items());
    ASSERT_EQ(0, Move(L"Albums/ a.jpg Archive c.jpg", L"--save").exitCode);
    EXPECT_NE(before, Items());
    EXPECT_EQ(1, Move(L"Albums/ a.jpg Archive c.jpg").exitCode) << "it has been moved already";
}

TEST_F(MoveCommand, PrintsTheWholeContentAsJson) {
    const ConsoleResult moved = Move(L"albums/ A.JPG N1 N2", L"--json");
    EXPECT_EQ("{\"items\":[{\"id\":7,\"properties\":["
              "{\"first\":\"N1\",\"second\":\"N2\",\"number\":5},"
              "{\"first\":\"Albums/\",\"second\":\"b.jpg\",\"number\":2}]},"
              "{\"id\":8,\"properties\":[{\"first\":\"N1\",\"second\":\"N2\",\"number\":5}]}]}\n",
              moved.output);
}

TEST_F(MoveCommand, FindsNothingForUnknownTexts) {
    const ConsoleResult moved = Move(L"Videos/ a.jpg N1 N2");
    EXPECT_EQ(1, moved.exitCode);
    EXPECT_EQ("", moved.output);
}

TEST_F(MoveCommand, NamesWhatIsWrongWithTheItems) {
    struct Wrong {
        const char* text;
        const char* told;
    };
    for (const Wrong& wrong :
         {Wrong{"[]", "not a JSON object"}, Wrong{"{}", "\"items\" is missing"},
          Wrong{R"({"items":[{"properties":[]}]})", "\"id\" is missing"},
          Wrong{R"({"items":[{"id":-1,"properties":[]}]})", "\"id\" must be"},
          Wrong{R"({"items":[{"id":1,"properties":[{"number":"5"}]}]})", "\"number\" must be"},
          Wrong{R"({"items":[{"id":1,"properties":[]},{"id":1,"properties":[]}]})",
                "there are two items 1"},
          Wrong{R"({"items":[{"id":1,"properties":[{"third":"5"}]}]})",
                "\"third\" is not known"}}) {
        SCOPED_TRACE(wrong.text);
        WriteItems(wrong.text);
        const ConsoleResult moved = Move(L"Albums/ a.jpg N1 N2");
        EXPECT_EQ(2, moved.exitCode);
        EXPECT_NE(std::string::npos, moved.errors.find(wrong.told)) << moved.errors;
        EXPECT_NE(std::string::npos, moved.errors.find("items_")) << "names the file";
    }
    EXPECT_FALSE(std::filesystem::exists(ReplayPath())) << "nothing was recorded";
}

TEST_F(MoveCommand, WantsTheFileOfItems) {
    const ConsoleResult moved = RunConsole(L"move a b c d --number 1 --items no-such-file.json");
    EXPECT_EQ(5, moved.exitCode);
    EXPECT_NE(std::string::npos, moved.errors.find("no-such-file.json: 0x80070002"))
        << moved.errors;
}

} // namespace tsl::test
