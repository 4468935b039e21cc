// Reading the counter file: every text that may stand in it, and every way in which there is none.
#include "files/Paths.h"
#include "files/TextActionLog.h"
#include "tests/files/ScratchFolder.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

constexpr UINT32 kUntouched = 77;
constexpr UINT32 kHighest = 0xFFFFFFFF;

struct Case {
    const char* name;
    std::wstring text;
    UINT32 expected;
};

} // namespace

class ReadCounterTest : public ScratchTest {
protected:
    std::wstring Path() const { return At(kCounterFileName); }

    // Reads a file of these bytes; anything but S_OK fails the test.
    UINT32 ReadFrom(const Bytes& bytes) {
        WriteBytes(Path(), bytes);
        UINT32 counter = kUntouched;
        EXPECT_EQ(S_OK, ReadCounter(Path(), counter));
        EXPECT_EQ(bytes, ReadBytes(Path())) << "reading changed the file";
        return counter;
    }

    // Each text is read with and without a byte order mark.
    void ExpectAll(std::initializer_list<Case> cases) {
        for (const Case& c : cases) {
            SCOPED_TRACE(c.name);
            EXPECT_EQ(c.expected, ReadFrom(Utf16FileBytes(c.text)));
            EXPECT_EQ(c.expected, ReadFrom(Utf16Bytes(c.text))) << "without byte order mark";
        }
    }
};

TEST_F(ReadCounterTest, NumberOfOneLineIsRead) {
    ExpectAll({{"as written", L"00000041\t\r\n", 41},
               {"nine digits", L"123456789\t\r\n", 123456789},
               {"without break", L"00000041\t", 41},
               {"digits alone", L"41", 41},
               {"one digit", L"7", 7},
               {"many zeros", std::wstring(500, L'0') + L"41", 41}});
}

TEST_F(ReadCounterTest, BlanksAroundTheNumberAreIgnored) {
    ExpectAll({{"leading", L" \t 41\r\n", 41},
               {"trailing", L"41 \t \t\r\n", 41},
               {"both", L"\t\t 41 \t\r\n", 41},
               {"vertical tab and form feed", L"\v\f41\f\v\r\n", 41},
               {"within", L"4 1\r\n", 4}});
}

TEST_F(ReadCounterTest, LineThatIsNoNumberCountsAsZero) {
    ExpectAll({{"letters", L"abc\r\n", 0},
               {"letters behind a number line", L"41\t\r\nabc\r\n", 0},
               {"blanks", L" \t \r\n", 0},
               {"sign alone", L"-\r\n", 0},
               {"number after letters", L"x41\r\n", 0},
               {"letters after the number", L"41x\r\n", 41},
               {"fraction", L"41.9\r\n", 41},
               {"hexadecimal", L"0x10\r\n", 0},
               {"plus sign", L"+41\r\n", 41}});
}

TEST_F(ReadCounterTest, NumberBeyondThirtyTwoBitsIsTheHighest) {
    ExpectAll({{"highest", L"4294967295\t\r\n", kHighest},
               {"one more", L"4294967296\t\r\n", kHighest},
               {"beyond 64 bits", L"99999999999999999999999\t\r\n", kHighest}});
}

TEST_F(ReadCounterTest, LastLineOfCounterFileWins) {
    ExpectAll({{"two lines", L"41\t\r\n42\t\r\n", 42},
               {"lower last line", L"42\r\n7\r\n", 7},
               {"no break behind the last", L"1\r\n2\r\n3", 3},
               {"blank last line", L"41\r\n\t", 0}});
}

TEST_F(ReadCounterTest, LineEndsAtCrLfAndAllFurtherBreaksBelongToIt) {
    ExpectAll({{"empty lines", L"41\r\n\r\n\r\n42\r\n\r\n", 42},
               {"any mix behind CR LF", L"41\r\n\n\r\r\n\n42", 42},
               {"breaks at the end", L"41\r\n\n\n\r\r", 41},
               {"LF alone is within the line", L"41\n42\r\n", 41},
               {"CR alone is within the line", L"41\r42\r\n", 41},
               {"LF CR is within the line", L"41\n\r42", 41},
               {"leading LF", L"\n41\r\n42\r\n", 42}});
}

TEST_F(ReadCounterTest, LeadingCrLfIsNoBreak) {
    // The whole text is then one line, whose first number counts.
    ExpectAll({{"alone", L"\r\n", 0},
               {"twice", L"\r\n\r\n", 0},
               {"before a number", L"\r\n41\r\n", 41},
               {"before two numbers", L"\r\n41\r\n42\r\n", 41}});
}

TEST_F(ReadCounterTest, FileWithoutALineLeavesTheCounterAlone) {
    for (const Bytes& bytes :
         {Bytes{}, Bytes{0xFF, 0xFE}, Bytes{'4'}, Bytes{0xFF}, Bytes{0xFF, 0xFE, '4'}}) {
        SCOPED_TRACE(bytes.size());
        EXPECT_EQ(kUntouched, ReadFrom(bytes));
    }
}

TEST_F(ReadCounterTest, OddLastByteIsIgnored) {
    Bytes bytes = Utf16FileBytes(L"41");
    bytes.push_back('9');
    EXPECT_EQ(41u, ReadFrom(bytes));
    bytes.erase(bytes.begin(), bytes.begin() + 2);
    EXPECT_EQ(41u, ReadFrom(bytes)) << "without byte order mark";
}

TEST_F(ReadCounterTest, OtherEncodingsAreNoNumber) {
    EXPECT_EQ(0u, ReadFrom({'0', '0', '0', '4', '1', '\t', '\r', '\n'})) << "one byte a character";
    EXPECT_EQ(0u, ReadFrom({0xFE, 0xFF, 0, '4', 0, '1'})) << "big-endian";
    EXPECT_EQ(0u, ReadFrom({0xEF, 0xBB, 0xBF, '4', '1', 0})) << "UTF-8 with a mark";
}

TEST_F(ReadCounterTest, OddCharactersAreNoNumber) {
    ExpectAll({{"lone high surrogate", L"\xD800", 0},
               {"lone low surrogate before digits",
                L"\xDC00"
                L"41",
                0},
               {"surrogate behind digits", L"41\xD800", 41},
               {"NUL alone", std::wstring(1, L'\0'), 0},
               {"NUL before digits",
                std::wstring(L"\0"
                             L"41",
                             3),
                0},
               {"NUL behind digits",
                std::wstring(L"41\0"
                             L"9\r\n",
                             6),
                41},
               {"only NULs", std::wstring(10'000, L'\0'), 0}});
}

TEST_F(ReadCounterTest, LargeFilesAreReadToTheEnd) {
    constexpr size_t kNearlyTheLimit = 60 << 10;
    EXPECT_EQ(kHighest, ReadFrom(Bytes(Utf16FileBytes(std::wstring(kNearlyTheLimit / 2, L'9')))));
    std::wstring lines;
    while (lines.size() < kNearlyTheLimit / 2)
        lines += L"00000041\t\r\n";
    EXPECT_EQ(42u, ReadFrom(Utf16FileBytes(lines + L"00000042\t\r\n")));
}

TEST_F(ReadCounterTest, WithoutAFileTheArgumentIsInvalid) {
    std::filesystem::create_directory(At(L"folder"));
    for (const std::wstring& path :
         {Path(), At(L"folder"), At(L"none\\actionLog.txt"), std::wstring()}) {
        SCOPED_TRACE(path);
        UINT32 counter = kUntouched;
        EXPECT_EQ(E_INVALIDARG, ReadCounter(path, counter));
        EXPECT_EQ(kUntouched, counter);
    }
    EXPECT_FALSE(std::filesystem::exists(Path())) << "reading made a file";
}

TEST_F(ReadCounterTest, LockedFileIsASharingViolation) {
    WriteBytes(Path(), Utf16FileBytes(L"41"));
    const CHandle open = OpenExclusively(Path());
    UINT32 counter = kUntouched;
    EXPECT_EQ(kSharingViolation, ReadCounter(Path(), counter));
    EXPECT_EQ(kUntouched, counter);
}

TEST_F(ReadCounterTest, FileThatOthersHaveOpenIsNotShared) {
    WriteBytes(Path(), Utf16FileBytes(L"41"));
    const CHandle open(CreateFileW(Path().c_str(), GENERIC_READ,
                                   FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                   OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(open);
    UINT32 counter = kUntouched;
    EXPECT_EQ(kSharingViolation, ReadCounter(Path(), counter));
}

TEST_F(ReadCounterTest, ReadOnlyFileIsReadAndReleased) {
    WriteBytes(Path(), Utf16FileBytes(L"41"));
    ASSERT_TRUE(SetFileAttributesW(Path().c_str(), FILE_ATTRIBUTE_READONLY));
    UINT32 counter = kUntouched;
    EXPECT_EQ(S_OK, ReadCounter(Path(), counter));
    EXPECT_EQ(41u, counter);
    EXPECT_TRUE(OpenExclusively(Path()));
}

TEST_F(ReadCounterTest, FileBeyondThePathLimitIsFoundButOpenedByItsPlainPath) {
    const std::wstring path = PathOfLength(Scratch(), 300);
    const std::wstring prefixed = LongPathPrefix(path, false, false);
    ASSERT_TRUE(CreateFolderTree(prefixed.substr(0, prefixed.rfind(L'\\'))));
    const CHandle made(
        CreateFileW(prefixed.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
    ASSERT_TRUE(made);
    const Bytes bytes = Utf16FileBytes(L"41");
    DWORD written = 0;
    ASSERT_TRUE(
        WriteFile(made.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    // Held open, so a path that can be opened at all is a sharing violation; a system that keeps to
    // the limit, unlike the emulator, does not find the path. Either way the file is not missing.
    UINT32 counter = kUntouched;
    const HRESULT result = ReadCounter(path, counter);
    EXPECT_TRUE(result == kSharingViolation || result == kPathNotFound) << std::hex << result;
    EXPECT_EQ(kUntouched, counter);
}

} // namespace tsl::test
