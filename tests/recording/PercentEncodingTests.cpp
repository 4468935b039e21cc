// Percent-encoding of texts: every reserved character both ways, and what must stay as it is.
#include "base/PercentEncoding.h"

#include <gtest/gtest.h>

#include <random>

namespace tsl::test {

namespace {

struct Code {
    std::wstring character;
    std::wstring lower;
    std::wstring upper;
};

const Code kCodes[] = {
    {L"%", L"%25", L"%25"},  {L" ", L"%20", L"%20"},  {L"!", L"%21", L"%21"},
    {L"\"", L"%22", L"%22"}, {L"#", L"%23", L"%23"},  {L"$", L"%24", L"%24"},
    {L"&", L"%26", L"%26"},  {L"'", L"%27", L"%27"},  {L"(", L"%28", L"%28"},
    {L")", L"%29", L"%29"},  {L"*", L"%2a", L"%2A"},  {L"+", L"%2b", L"%2B"},
    {L",", L"%2c", L"%2C"},  {L"/", L"%2f", L"%2F"},  {L":", L"%3a", L"%3A"},
    {L";", L"%3b", L"%3B"},  {L"<", L"%3c", L"%3C"},  {L"=", L"%3d", L"%3D"},
    {L">", L"%3e", L"%3E"},  {L"?", L"%3f", L"%3F"},  {L"@", L"%40", L"%40"},
    {L"[", L"%5b", L"%5B"},  {L"\\", L"%5c", L"%5C"}, {L"]", L"%5d", L"%5D"},
    {L"^", L"%5e", L"%5E"},  {L"`", L"%60", L"%60"},  {L"{", L"%7b", L"%7B"},
    {L"|", L"%7c", L"%7C"},  {L"}", L"%7d", L"%7D"},  {L"~", L"%7e", L"%7E"},
};
static_assert(std::size(kCodes) == 30);

std::wstring Encode(std::wstring_view text) {
    std::wstring encoded;
    AppendPercentEncoded(encoded, text);
    return encoded;
}

void ReplaceAll(std::wstring& text, const std::wstring& from, const std::wstring& to) {
    size_t position = 0;
    while ((position = text.find(from, position)) != std::wstring::npos) {
        text.replace(position, from.size(), to);
        position += to.size();
    }
}

// The definition, one character after the other.
std::wstring EncodeStepByStep(std::wstring text) {
    for (const Code& code : kCodes)
        ReplaceAll(text, code.character, code.lower);
    return text;
}

std::wstring DecodeStepByStep(std::wstring text) {
    for (const Code& code : kCodes) {
        if (code.character == L"%") continue;
        ReplaceAll(text, code.lower, code.character);
        ReplaceAll(text, code.upper, code.character);
    }
    ReplaceAll(text, L"%25", L"%");
    return text;
}

// Texts of any UTF-16 units, zeros and lone surrogates included, with many that look like codes.
class RandomTexts {
public:
    std::wstring Next() {
        std::wstring text(Below(40), L'\0');
        for (wchar_t& unit : text)
            unit = NextUnit();
        return text;
    }

private:
    size_t Below(size_t limit) {
        return std::uniform_int_distribution<size_t>(0, limit - 1)(m_engine);
    }
    wchar_t NextUnit() {
        static constexpr std::wstring_view kCodeLike = L"%%%%2345670abcdefABCDEF";
        switch (Below(4)) {
        case 0:
            return static_cast<wchar_t>(Below(0x10000));
        case 1:
            return static_cast<wchar_t>(0xD800 + Below(0x800));
        case 2:
            return kCodes[Below(std::size(kCodes))].character[0];
        default:
            return kCodeLike[Below(kCodeLike.size())];
        }
    }

    std::mt19937 m_engine{20240305};
};

constexpr int kRandomTexts = 2000;

} // namespace

TEST(PercentEncoding, EncodesEveryReservedCharacterInLowerCase) {
    for (const Code& code : kCodes) {
        EXPECT_EQ(code.lower, Encode(code.character));
        EXPECT_EQ(L"a" + code.lower + L"b", Encode(L"a" + code.character + L"b"));
    }
}

TEST(PercentEncoding, DecodesEveryReservedCharacterInBothCases) {
    for (const Code& code : kCodes) {
        EXPECT_EQ(code.character, PercentDecode(code.lower));
        EXPECT_EQ(code.character, PercentDecode(code.upper));
        EXPECT_EQ(L"a" + code.character + L"b", PercentDecode(L"a" + code.upper + L"b"));
    }
}

TEST(PercentEncoding, EncodesExactlyTheReservedCharacters) {
    std::wstring reserved;
    for (const Code& code : kCodes)
        reserved += code.character;
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const std::wstring text(1, static_cast<wchar_t>(unit));
        const bool isReserved = reserved.find(text) != std::wstring::npos;
        ASSERT_EQ(isReserved, Encode(text) != text) << "unit " << unit;
    }
}

TEST(PercentEncoding, DecodesExactlyTheReservedCharacters) {
    std::wstring reserved;
    for (const Code& code : kCodes)
        reserved += code.character;
    constexpr wchar_t kLower[] = L"0123456789abcdef";
    constexpr wchar_t kUpper[] = L"0123456789ABCDEF";
    for (unsigned value = 0; value < 256; ++value) {
        const std::wstring text(1, static_cast<wchar_t>(value));
        const bool isReserved = reserved.find(text) != std::wstring::npos;
        for (const wchar_t* digits : {kLower, kUpper}) {
            const std::wstring code = {L'%', digits[value >> 4], digits[value & 15]};
            ASSERT_EQ(isReserved ? text : code, PercentDecode(code)) << "code " << value;
        }
    }
}

TEST(PercentEncoding, AppendsToWhatIsThere) {
    std::wstring output = L"x y,";
    AppendPercentEncoded(output, L"a,b");
    EXPECT_EQ(L"x y,a%2cb", output);
}

TEST(PercentEncoding, EncodesAnEmptyTextAsNothing) {
    EXPECT_EQ(L"", Encode(L""));
    EXPECT_EQ(L"", PercentDecode(L""));
}

TEST(PercentEncoding, EncodesCommaAndPercentSign) {
    EXPECT_EQ(L"a%2cb", Encode(L"a,b"));
    EXPECT_EQ(L"100%25", Encode(L"100%"));
    EXPECT_EQ(L"%25x", Encode(L"%x"));
}

TEST(PercentEncoding, DoesNotEncodeThePercentSignsOfItsOwnCodes) {
    EXPECT_EQ(L"%25%20%25", Encode(L"% %"));
    EXPECT_EQ(L"%252c", Encode(L"%2c"));
}

TEST(PercentEncoding, DecodesACommaInBothCases) {
    EXPECT_EQ(L",,", PercentDecode(L"%2C%2c"));
}

TEST(PercentEncoding, DecodesThePercentSignLast) {
    EXPECT_EQ(L"%2c", PercentDecode(L"%252c"));
    EXPECT_EQ(L"%25", PercentDecode(L"%2525"));
    EXPECT_EQ(L"%20", PercentDecode(L"%2520"));
}

TEST(PercentEncoding, LeavesWhatIsNoCodeWhenDecoding) {
    for (const std::wstring text : {L"%", L"%%", L"%2", L"a%", L"%zz", L"%41", L"%7f", L"%00",
                                    L"%2g", L"%\xFF12\x63", L"plain-text_1.0"}) {
        EXPECT_EQ(text, PercentDecode(text));
    }
    EXPECT_EQ(L"%,", PercentDecode(L"%%2c"));
}

TEST(PercentEncoding, BringsBackRandomTexts) {
    RandomTexts texts;
    for (int index = 0; index < kRandomTexts; ++index) {
        const std::wstring text = texts.Next();
        ASSERT_EQ(text, PercentDecode(Encode(text))) << "text " << index;
    }
}

TEST(PercentEncoding, WorksAsIfOneCharacterWereReplacedAfterTheOther) {
    RandomTexts texts;
    for (int index = 0; index < kRandomTexts; ++index) {
        const std::wstring text = texts.Next();
        ASSERT_EQ(EncodeStepByStep(text), Encode(text)) << "text " << index;
        ASSERT_EQ(DecodeStepByStep(text), PercentDecode(text)) << "text " << index;
    }
}

} // namespace tsl::test
