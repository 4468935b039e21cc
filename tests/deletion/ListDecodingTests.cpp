// Reading the value lists back out of a parameter text: where a list begins and ends, what an item
// is, and what a number is.
#include "query/ParameterDecoder.h"

#include <gtest/gtest.h>

#include <cwctype>

namespace tsl::test {

namespace {

using Texts = std::vector<std::wstring>;
using Ulls = std::vector<UINT64>;
using Ints = std::vector<INT32>;

// The values of a text that has the list. What was in the vector before must go.
Ulls UllsOf(std::wstring_view parameters) {
    Ulls values = {99};
    EXPECT_EQ(S_OK, DecodeUllValues(parameters, values));
    return values;
}
Ints IntsOf(std::wstring_view parameters) {
    Ints values = {99};
    EXPECT_EQ(S_OK, DecodeIntValues(parameters, values));
    return values;
}
Texts TextsOf(std::wstring_view parameters) {
    Texts values = {L"left over"};
    EXPECT_EQ(S_OK, DecodeStringValues(parameters, values));
    return values;
}

} // namespace

TEST(ListDecoding, MissingNameOrBraceIsFalseWithoutValues) {
    const wchar_t* const endings[] = {L"", L"12", L"12}", L"{12", L"{12,13,", L"}12{", L" {"};
    for (const wchar_t* ending : endings) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(ending)));
        Ulls ulls = {99};
        EXPECT_EQ(S_FALSE, DecodeUllValues(std::wstring(L"ullValues=") + ending, ulls));
        EXPECT_TRUE(ulls.empty());
        Ints ints = {99};
        EXPECT_EQ(S_FALSE, DecodeIntValues(std::wstring(L"intValues=") + ending, ints));
        EXPECT_TRUE(ints.empty());
        Texts texts = {L"x"};
        EXPECT_EQ(S_FALSE, DecodeStringValues(std::wstring(L"stringValues=") + ending, texts));
        EXPECT_TRUE(texts.empty());
    }
    for (const wchar_t* text : {L"", L"{1}", L"ullvalues={1}intvalues={1}stringvalues={1}",
                                L"ullValues {1}intValues {1}stringValues {1}",
                                L"UllValues={1}IntValues={1}StringValues={1}"}) {
        Ulls ulls = {99};
        EXPECT_EQ(S_FALSE, DecodeUllValues(text, ulls));
        EXPECT_TRUE(ulls.empty());
        Ints ints = {99};
        EXPECT_EQ(S_FALSE, DecodeIntValues(text, ints));
        EXPECT_TRUE(ints.empty());
        Texts texts = {L"x"};
        EXPECT_EQ(S_FALSE, DecodeStringValues(text, texts));
        EXPECT_TRUE(texts.empty());
    }
}

TEST(ListDecoding, TextWithoutIntegersHasNoIntegers) {
    Ints ints;
    EXPECT_EQ(S_FALSE, DecodeIntValues(L"ullValues={1,2}stringValues={a}", ints));
    EXPECT_TRUE(ints.empty());
}

TEST(ListDecoding, FindsEachListByItsName) {
    const wchar_t text[] = L"usValues={7}stringValues={a,b},intValues={-1,2} ullValues={3,4}";
    EXPECT_EQ((Ulls{3, 4}), UllsOf(text));
    EXPECT_EQ((Ints{-1, 2}), IntsOf(text));
    EXPECT_EQ((Texts{L"a", L"b"}), TextsOf(text));
}

TEST(ListDecoding, TakesTheFirstListOfAName) {
    EXPECT_EQ((Ulls{1}), UllsOf(L"ullValues={1}ullValues={2}"));
    EXPECT_EQ((Ulls{1}), UllsOf(L"moreullValues={1}ullValues={2}"));
}

TEST(ListDecoding, TakesTheFirstBracesBehindTheName) {
    EXPECT_EQ((Ulls{5}), UllsOf(L"{1}ullValues= and so on {5}"));
    EXPECT_EQ((Ulls{5}), UllsOf(L"ullValues=}{5}"));
    EXPECT_EQ((Ulls{0, 3}), UllsOf(L"ullValues=;stringValues={a,3}"));
}

TEST(ListDecoding, FirstClosingBraceEndsTheList) {
    EXPECT_EQ((Texts{L"a", L"b"}), TextsOf(L"stringValues={a,b},c}"));
    EXPECT_EQ((Texts{L"a{b", L"{"}), TextsOf(L"stringValues={a{b,{}c}"));
    EXPECT_EQ((Ulls{12}), UllsOf(L"ullValues={12}34}"));
}

TEST(ListDecoding, EmptyBracesHoldNothing) {
    EXPECT_EQ(Ulls{}, UllsOf(L"ullValues={}"));
    EXPECT_EQ(Ints{}, IntsOf(L"intValues={}"));
    EXPECT_EQ(Texts{}, TextsOf(L"stringValues={}"));
}

TEST(ListDecoding, SingleCommaIsOneEmptyItem) {
    EXPECT_EQ(Ulls{0}, UllsOf(L"ullValues={,}"));
    EXPECT_EQ(Ints{0}, IntsOf(L"intValues={,}"));
    EXPECT_EQ(Texts{L""}, TextsOf(L"stringValues={,}"));
}

TEST(ListDecoding, EmptyLastItemAddsNothing) {
    EXPECT_EQ((Ulls{1, 2}), UllsOf(L"ullValues={1,2,}"));
    EXPECT_EQ((Ints{0, 0, 3}), IntsOf(L"intValues={,,3,}"));
    EXPECT_EQ((Texts{L"", L"a", L""}), TextsOf(L"stringValues={,a,,}"));
}

TEST(ListDecoding, LastItemKeepsItsTrailingBlanks) {
    EXPECT_EQ((Texts{L"a", L"b "}), TextsOf(L"stringValues={a ,b }"));
    EXPECT_EQ((Texts{L"b \t\r\n"}), TextsOf(L"stringValues={b \t\r\n}"));
    EXPECT_EQ((Texts{L"", L" "}), TextsOf(L"stringValues={ , }")) << "blanks alone are an item";
}

TEST(ListDecoding, LeadingAndInnerBlanksOfTextsStay) {
    EXPECT_EQ((Texts{L" a b", L"\tc", L"  d"}), TextsOf(L"stringValues={ a b  ,\tc\t,  d}"));
}

TEST(ListDecoding, TrimsWhatTheSystemTakesForWhiteSpace) {
    ASSERT_TRUE(std::iswspace(L' ') && std::iswspace(L'\t') && std::iswspace(L'\n'));
    ASSERT_FALSE(std::iswspace(L'x') || std::iswspace(L'_') || std::iswspace(L'\x1'));
    for (const wchar_t last : std::wstring(L" \t\n\v\f\rx_\x1\x85\xA0\x2003\x3000\xFEFF")) {
        SCOPED_TRACE(testing::PrintToString(static_cast<int>(last)));
        const std::wstring item = std::wstring(L"a") + last + last;
        EXPECT_EQ((Texts{std::iswspace(last) ? L"a" : item, L"b"}),
                  TextsOf(L"stringValues={" + item + L",b}"));
    }
}

TEST(ListDecoding, BlanksAroundNumbersDoNotMatter) {
    EXPECT_EQ((Ulls{12, 34}), UllsOf(L"ullValues={ 12 , 34 }"));
    EXPECT_EQ((Ints{12, -34}), IntsOf(L"intValues={\t12\t,\r\n-34\t}"));
    EXPECT_EQ((Ints{0, 0}), IntsOf(L"intValues={  ,  }"));
}

TEST(ListDecoding, ReadsLongNumbers) {
    const struct {
        const wchar_t* item;
        UINT64 value;
    } cases[] = {
        {L"0", 0},
        {L"00012", 12},
        {L"+12", 12},
        {L"4294967296", 4294967296},
        {L"18446744073709551615", 0xFFFFFFFFFFFFFFFF},
        {L"18446744073709551616", 0xFFFFFFFFFFFFFFFF},
        {L"99999999999999999999999", 0xFFFFFFFFFFFFFFFF},
        {L"-1", 0xFFFFFFFFFFFFFFFF},
        {L"-5", 0xFFFFFFFFFFFFFFFB},
        {L"abc", 0},
        {L"12abc", 12},
        {L"1 2", 1},
        {L"1.9", 1},
        {L"0x10", 0},
        {L"010", 10},
        {L"--1", 0},
        {L"+", 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(each.item)));
        const std::wstring item = each.item;
        EXPECT_EQ((Ulls{each.value, each.value}),
                  UllsOf(L"ullValues={" + item + L"," + item + L"}"));
    }
}

TEST(ListDecoding, ReadsIntegers) {
    const struct {
        const wchar_t* item;
        INT32 value;
    } cases[] = {
        {L"0", 0},
        {L"-0", 0},
        {L"00012", 12},
        {L"+12", 12},
        {L"-12", -12},
        {L"2147483647", INT32_MAX},
        {L"2147483648", INT32_MAX},
        {L"4294967295", INT32_MAX},
        {L"99999999999999999999999", INT32_MAX},
        {L"-2147483648", INT32_MIN},
        {L"-2147483649", INT32_MIN},
        {L"-99999999999999999999999", INT32_MIN},
        {L"abc", 0},
        {L"12abc", 12},
        {L"1 2", 1},
        {L"-1.9", -1},
        {L"0x10", 0},
        {L"010", 10},
        {L"- 1", 0},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(testing::PrintToString(std::wstring(each.item)));
        const std::wstring item = each.item;
        EXPECT_EQ((Ints{each.value, each.value}),
                  IntsOf(L"intValues={" + item + L"," + item + L"}"));
    }
}

TEST(ListDecoding, TakesTextsAsTheyStand) {
    EXPECT_EQ((Texts{L"%2C%7d", L"\"q\"", L"\u00e4\u6f22\xD83D\xDE00"}),
              TextsOf(L"stringValues={%2C%7d,\"q\",\u00e4\u6f22\xD83D\xDE00}"));
}

} // namespace tsl::test
