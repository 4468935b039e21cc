// Paths as UTF-8, and conversions that the system refuses.
#include "store/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/Hresult.h"
#include "tests/support/ImportHook.h"

namespace tsl::test {

namespace {

// Lets the first calls fail with an error, then works as ever. Notes the room of each call.
struct Conversion {
    decltype(&WideCharToMultiByte) original = &WideCharToMultiByte;
    int failures = 0;
    DWORD error = 0;
    std::vector<int> rooms;
    UINT codePage = 0;
    int length = 0;
};
Conversion* g_conversion = nullptr;

int WINAPI FailFirst(UINT codePage, DWORD flags, const wchar_t* text, int length, char* buffer,
                     int room, const char* defaultChar, BOOL* usedDefault) {
    g_conversion->rooms.push_back(room);
    g_conversion->codePage = codePage;
    g_conversion->length = length;
    if (room != 0 && g_conversion->failures > 0) {
        --g_conversion->failures;
        SetLastError(g_conversion->error);
        return 0;
    }
    return g_conversion->original(codePage, flags, text, length, buffer, room, defaultChar,
                                  usedDefault);
}

class Utf8Conversion : public ::testing::Test {
protected:
    void SetUp() override { g_conversion = &m_conversion; }
    void TearDown() override { g_conversion = nullptr; }

    // The converted text, or nothing with m_result set.
    std::string Convert(const std::wstring& text) {
        const ImportHook hook("WideCharToMultiByte", &FailFirst);
        try {
            return CUtf8Text(text).Get();
        } catch (const CHresultError& error) {
            m_result = error.Result();
            return {};
        }
    }

    Conversion m_conversion;
    HRESULT m_result = S_OK;
};

struct Sample {
    const wchar_t* wide;
    const char* utf8;
};

} // namespace

TEST(Utf8, ConvertsCharactersOfEveryLength) {
    const Sample samples[] = {
        {L"", ""},
        {L"C:\\data\\ualog.db", "C:\\data\\ualog.db"},
        {L"\x00E4", "\xC3\xA4"},
        {L"\x65E5\x672C", "\xE6\x97\xA5\xE6\x9C\xAC"},
        {L"\xD83D\xDE00", "\xF0\x9F\x98\x80"},
        {L"a\xD83Dz", "a\xEF\xBF\xBDz"},
    };
    for (const Sample& sample : samples)
        EXPECT_STREQ(sample.utf8, CUtf8Text(sample.wide).Get());
}

// Up to 31 characters and the terminator fit into the room that the text itself brings.
TEST(Utf8, ConvertsTextsAroundTheInlineRoom) {
    for (const size_t length : {0, 30, 31, 32, 33, 126, 127, 128, 129, 5000}) {
        EXPECT_EQ(std::string(length, 'x'), CUtf8Text(std::wstring(length, L'x')).Get()) << length;
        std::string expected;
        for (size_t index = 0; index < length; ++index)
            expected += "\xE6\x97\xA5";
        EXPECT_EQ(expected, CUtf8Text(std::wstring(length, L'\x65E5')).Get()) << length;
    }
}

TEST_F(Utf8Conversion, GivesFourBytesPerCharacterWithTheTerminator) {
    EXPECT_EQ("abc", Convert(L"abc"));
    EXPECT_EQ(std::vector<int>{16}, m_conversion.rooms);
    EXPECT_EQ(4, m_conversion.length);
    EXPECT_EQ(65001u, m_conversion.codePage);
}

TEST_F(Utf8Conversion, AsksForTheSizeAndRepeatsWhenTheRoomWasTooSmall) {
    m_conversion.failures = 1;
    m_conversion.error = ERROR_INSUFFICIENT_BUFFER;
    const std::wstring text(3, L'\x65E5');
    EXPECT_EQ("\xE6\x97\xA5\xE6\x97\xA5\xE6\x97\xA5", Convert(text));
    EXPECT_EQ(S_OK, m_result);
    EXPECT_EQ((std::vector<int>{16, 0, 10}), m_conversion.rooms);
}

TEST_F(Utf8Conversion, ThatFailsAgainThrowsItsError) {
    m_conversion.failures = 2;
    m_conversion.error = ERROR_INSUFFICIENT_BUFFER;
    Convert(L"abc");
    EXPECT_EQ(static_cast<HRESULT>(0x8007007A), m_result);
}

TEST_F(Utf8Conversion, ThatFailsOtherwiseThrowsItsErrorAtOnce) {
    m_conversion.failures = 1;
    m_conversion.error = ERROR_NO_UNICODE_TRANSLATION;
    Convert(L"abc");
    EXPECT_EQ(static_cast<HRESULT>(0x80070459), m_result);
    EXPECT_EQ(1u, m_conversion.rooms.size());
}

} // namespace tsl::test
