// The shared text files: the mark, the text behind it and its lines.
#include "files/Utf16TextFile.h"

#include <gmock/gmock.h>

#include "tests/files/ScratchFolder.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

using ::testing::ElementsAreArray;

constexpr DWORD kLimit = 4'000'000;

std::wstring ReadAll(const CHandle& file) {
    std::wstring text;
    EXPECT_EQ(S_OK, ReadText(file, kLimit, text));
    return text;
}

std::wstring TextOf(const std::wstring& path) {
    return ReadAll(OpenTextFileForReading(path).file);
}

CHandle OpenShared(const std::wstring& path, DWORD access) {
    CHandle file(CreateFileW(path.c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                             OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_TRUE(file);
    return file;
}

// A pipe with room for a few bytes, whose reader reads none.
struct SmallPipe {
    static constexpr wchar_t kName[] = L"\\\\.\\pipe\\tsl_files_tests";
    static constexpr DWORD kRoom = 8;

    SmallPipe()
        : writer(CreateNamedPipeW(kName, PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE | PIPE_NOWAIT,
                                  /*maxInstances=*/1, kRoom, kRoom, /*timeout=*/0, nullptr)),
          reader(CreateFileW(kName, GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr)) {
        EXPECT_TRUE(writer);
        EXPECT_TRUE(reader);
    }
    void Fill() const {
        DWORD written = 0;
        do {
            ASSERT_TRUE(WriteFile(writer.Get(), "x", 1, &written, nullptr));
        } while (written == 1);
    }

    CHandle writer;
    CHandle reader;
};

} // namespace

class Utf16TextFileTest : public ScratchTest {
protected:
    int CountFiles() const {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(Scratch()), {}));
    }
};

TEST_F(Utf16TextFileTest, WrittenTextIsReadBack) {
    for (const std::wstring& text :
         {std::wstring(), std::wstring(L"x"), std::wstring(L"a\tb\r\nc\r\n"),
          std::wstring(L"\xFEFF"
                       L"second mark"),
          std::wstring(L"a\0b", 3), std::wstring(L"\xD800 lone \xDC00"),
          std::wstring(1'000'000, L'\x6F22')}) {
        SCOPED_TRACE(text.size());
        EXPECT_TRUE(WriteText(OpenTextFileForWriting(At(L"file")).file, text));
        EXPECT_EQ(Utf16FileBytes(text), ReadBytes(At(L"file")));
        EXPECT_EQ(text, TextOf(At(L"file")));
    }
}

TEST_F(Utf16TextFileTest, MarkIsLeftOutOnlyAtTheStart) {
    WriteBytes(At(L"file"), Utf16Bytes(L"no mark"));
    EXPECT_EQ(L"no mark", TextOf(At(L"file")));
    WriteBytes(At(L"file"), Utf16Bytes(L"x\xFEFF"));
    EXPECT_EQ(L"x\xFEFF", TextOf(At(L"file")));
}

TEST_F(Utf16TextFileTest, StatusTellsWhetherAFileWasThere) {
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, OpenTextFileForWriting(At(L"file")).status);
    EXPECT_EQ(kAlreadyExists, OpenTextFileForWriting(At(L"file")).status);
    SetLastError(ERROR_ACCESS_DENIED);
    EXPECT_EQ(S_OK, OpenTextFileForReading(At(L"file")).status);
    const OpenedFile missing = OpenTextFileForReading(At(L"none"));
    EXPECT_FALSE(missing.file);
    EXPECT_EQ(kFileNotFound, missing.status);
}

TEST_F(Utf16TextFileTest, OpeningLeavesTheOldTextAndWritingReplacesAllOfIt) {
    WriteBytes(At(L"file"), Utf16FileBytes(L"a longer text"));
    {
        const OpenedFile opened = OpenTextFileForWriting(At(L"file"));
        ASSERT_TRUE(opened.file);
        EXPECT_EQ(L"a longer text", ReadAll(opened.file));
        EXPECT_TRUE(WriteText(opened.file, L"new"));
    }
    EXPECT_EQ(Utf16FileBytes(L"new"), ReadBytes(At(L"file")));
}

TEST_F(Utf16TextFileTest, OnlyAFileThatIsThereIsOpenedForAnUpdate) {
    EXPECT_EQ(kFileNotFound, OpenTextFileForUpdate(At(L"none")).status);
    EXPECT_FALSE(std::filesystem::exists(At(L"none")));
}

TEST_F(Utf16TextFileTest, FileThatIsOpenForReadingTakesNoText) {
    WriteBytes(At(L"file"), {1, 2, 3});
    EXPECT_FALSE(WriteText(OpenTextFileForReading(At(L"file")).file, L"x"));
    EXPECT_EQ((Bytes{1, 2, 3}), ReadBytes(At(L"file")));
}

TEST_F(Utf16TextFileTest, FileCutWhileItIsReadGivesTheTextThatCame) {
    WriteBytes(At(L"file"), Utf16FileBytes(L"12345678"));
    const CHandle file = OpenShared(At(L"file"), GENERIC_READ);
    const CHandle writer = OpenShared(At(L"file"), GENERIC_WRITE);
    int reads = 0;
    int cuts = 0;
    Calls().readFile = [&](DWORD) -> DWORD {
        // Behind the mark and before the text; the new end lies within the fourth character.
        if (++reads == 2 && SetFilePointer(writer.Get(), 2 + 7, nullptr, FILE_BEGIN) == 2 + 7) {
            cuts += SetEndOfFile(writer.Get());
        }
        return ERROR_SUCCESS;
    };
    EXPECT_EQ(L"123", ReadAll(file));
    EXPECT_EQ(1, cuts);
}

TEST_F(Utf16TextFileTest, WriteThatStopsHalfwayIsAFailure) {
    // A pipe that does not wait for its reader takes what it has room for and calls it a success.
    const SmallPipe pipe;
    int writes = 0;
    Calls().writeFile = [&](DWORD) -> DWORD {
        ++writes;
        return ERROR_SUCCESS;
    };
    EXPECT_FALSE(WriteText(pipe.writer, L"12345"));
    EXPECT_EQ(2, writes) << "there was room for the mark";
    pipe.Fill();
    writes = 0;
    EXPECT_FALSE(WriteText(pipe.writer, L"12345"));
    EXPECT_EQ(1, writes) << "there was no room for the mark";
}

TEST_F(Utf16TextFileTest, MovedFileTakesThePlaceOfTheOther) {
    for (const bool isThere : {false, true}) {
        SCOPED_TRACE(isThere);
        if (isThere) WriteBytes(At(L"file"), Utf16FileBytes(L"old"));
        {
            const OpenedFile made = OpenTextFileToMove(At(L"file"));
            ASSERT_TRUE(WriteText(made.file, L"new"));
            EXPECT_EQ(isThere, std::filesystem::exists(At(L"file"))) << "before the move";
            EXPECT_EQ(S_OK, MoveOpened(made.file, At(L"file")));
        }
        EXPECT_EQ(L"new", TextOf(At(L"file")));
        EXPECT_EQ(1, CountFiles());
    }
}

TEST_F(Utf16TextFileTest, FileToMoveHasANameThatNobodyCanGuess) {
    const OpenedFile one = OpenTextFileToMove(At(L"file"));
    const OpenedFile other = OpenTextFileToMove(At(L"file"));
    ASSERT_TRUE(one.file);
    ASSERT_TRUE(other.file);
    EXPECT_EQ(2, CountFiles());
    EXPECT_FALSE(std::filesystem::exists(At(L"file.new")));
}

TEST_F(Utf16TextFileTest, MoveThatFailsLeavesBothFilesAndIsDiscarded) {
    WriteBytes(At(L"file"), Utf16FileBytes(L"old"));
    {
        const OpenedFile made = OpenTextFileToMove(At(L"file"));
        ASSERT_TRUE(WriteText(made.file, L"new"));
        const CHandle owner(CreateFileW(At(L"file").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                        OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(owner);
        const HRESULT moved = MoveOpened(made.file, At(L"file"));
        EXPECT_TRUE(moved == kAccessDenied || moved == kSharingViolation) << std::hex << moved;
        EXPECT_EQ(2, CountFiles());
        DiscardOpened(made.file);
    }
    EXPECT_EQ(1, CountFiles());
    EXPECT_EQ(L"old", TextOf(At(L"file")));
}

TEST_F(Utf16TextFileTest, MoreBytesThanTheLimitAreNotRead) {
    WriteBytes(At(L"file"), Bytes(100, 'x'));
    const OpenedFile opened = OpenTextFileForReading(At(L"file"));
    std::wstring text = L"before";
    EXPECT_EQ(kFileTooLarge, ReadText(opened.file, 99, text));
    EXPECT_EQ(L"", text);
    EXPECT_EQ(S_OK, ReadText(opened.file, 100, text));
    EXPECT_EQ(50u, text.size());
}

TEST(SplitLines, CutsAtCrLfAndSkipsFurtherBreaks) {
    struct Case {
        std::wstring text;
        std::vector<std::wstring> lines;
    };
    for (const Case& c : {
             Case{L"", {}},
             Case{L"a", {L"a"}},
             Case{L"a\r\n", {L"a"}},
             Case{L"a\r\nb", {L"a", L"b"}},
             Case{L"a\r\n\r\n\n\rb\r\n", {L"a", L"b"}},
             Case{L"a\nb\rc\n\rd\r\n", {L"a\nb\rc\n\rd"}},
             Case{L"a \t\r\n b", {L"a \t", L" b"}},
             Case{L"a\r", {L"a\r"}},
             Case{L"a\r\r\nb", {L"a\r", L"b"}},
             Case{L"\r\n", {L"\r\n"}},
             Case{L"\r\na\r\nb", {L"\r\na\r\nb"}},
             Case{L"\na\r\nb", {L"\na", L"b"}},
         }) {
        SCOPED_TRACE(c.text);
        std::vector<std::wstring> lines;
        for (const std::wstring_view line : SplitLines(c.text))
            lines.emplace_back(line);
        EXPECT_THAT(lines, ElementsAreArray(c.lines));
    }
}

} // namespace tsl::test
