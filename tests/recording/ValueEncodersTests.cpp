// The groups of a parameter text, one encoder at a time.
#include "recording/ValueEncoders.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace tsl::test {

namespace {

using Texts = std::vector<std::wstring_view>;

constexpr bool kNoTextBefore = false;
constexpr bool kTextBefore = true;
constexpr bool kWithName = false;
constexpr bool kWithoutName = true;

HRESULT EncodeTexts(std::span<const std::wstring_view> values, std::wstring& output,
                    bool textBefore, bool omitName) {
    return EncodeStringValues(values, output, textBefore, omitName, /*isUserLocation=*/false);
}

template <class T, class Encoder>
std::wstring Group(Encoder encode, const std::vector<T>& values) {
    std::wstring output;
    EXPECT_EQ(S_OK, encode(values, output, kNoTextBefore, kWithName));
    return output;
}

std::wstring UserLocationGroup(const Texts& values) {
    std::wstring output;
    EXPECT_EQ(S_OK, EncodeStringValues(values, output, kNoTextBefore, kWithName,
                                       /*isUserLocation=*/true));
    return output;
}

// What must hold for the encoder of every kind.
template <class T, class Encoder>
void ExpectGroupRules(Encoder encode, const std::wstring& name, const std::vector<T>& values,
                      const std::wstring& braced) {
    SCOPED_TRACE(std::string(name.begin(), name.end()));
    std::wstring output;
    EXPECT_EQ(E_INVALIDARG, encode({}, output, kNoTextBefore, kWithName));
    EXPECT_EQ(E_INVALIDARG, encode({}, output, kTextBefore, kWithName));
    EXPECT_EQ(E_INVALIDARG, encode({}, output, kTextBefore, kWithoutName));
    EXPECT_EQ(L"", output) << "an empty list appends nothing";

    EXPECT_EQ(S_OK, encode(values, output, kNoTextBefore, kWithName));
    EXPECT_EQ(name + L"=" + braced, output);
    EXPECT_EQ(S_OK, encode(values, output, kTextBefore, kWithName));
    EXPECT_EQ(name + L"=" + braced + L"&" + name + L"=" + braced, output);

    std::wstring nameless;
    EXPECT_EQ(S_OK, encode(values, nameless, kNoTextBefore, kWithoutName));
    EXPECT_EQ(std::wstring::npos, nameless.find(name));
    EXPECT_TRUE(nameless.ends_with(braced));
}

} // namespace

TEST(ValueEncoders, FollowTheSameRulesForEveryKind) {
    ExpectGroupRules<ULONGLONG>(EncodeUllValues, L"ullValues", {1, 2}, L"{1,2}");
    ExpectGroupRules<USHORT>(EncodeUsValues, L"usValues", {1, 2}, L"{1,2}");
    ExpectGroupRules<LONG>(EncodeIntValues, L"intValues", {1, 2}, L"{1,2}");
    ExpectGroupRules<VARIANT_BOOL>(EncodeBoolValues, L"boolValues", {VARIANT_TRUE, 0}, L"{1,0}");
    ExpectGroupRules<std::wstring_view>(EncodeTexts, L"stringValues", {L"a", L"b"}, L"{a,b}");
    ExpectGroupRules<FLOAT>(EncodeFloatValues, L"floatValues", {1, 2}, L"{1.000000,2.000000}");
}

TEST(ValueEncoders, WriteTheWholeRangeOfEachInteger) {
    EXPECT_EQ(L"ullValues={0,18446744073709551615,9223372036854775808}",
              Group<ULONGLONG>(EncodeUllValues, {0, ~0ull, 1ull << 63}));
    EXPECT_EQ(L"usValues={0,65535,32768}", Group<USHORT>(EncodeUsValues, {0, 65535, 32768}));
    EXPECT_EQ(L"intValues={0,2147483647,-2147483648,-1}",
              Group<LONG>(EncodeIntValues, {0, std::numeric_limits<LONG>::max(),
                                            std::numeric_limits<LONG>::min(), -1}));
}

TEST(ValueEncoders, WriteAnyBoolButZeroAsOne) {
    EXPECT_EQ(L"boolValues={1,0,1,1,1}",
              Group<VARIANT_BOOL>(EncodeBoolValues, {VARIANT_TRUE, VARIANT_FALSE, 1, 2, 0x100}));
}

TEST(ValueEncoders, WriteFloatsWithSixDecimals) {
    EXPECT_EQ(L"floatValues={1.500000,2.000000}", Group<FLOAT>(EncodeFloatValues, {1.5f, 2.0f}));
    EXPECT_EQ(L"floatValues={0.100000,-0.333333,0.000000,16777216.000000}",
              Group<FLOAT>(EncodeFloatValues, {0.1f, -1.0f / 3.0f, 1e-8f, 16777216.0f}));
    EXPECT_EQ(L"floatValues={340282346638528859811704183484516925440.000000}",
              Group<FLOAT>(EncodeFloatValues, {std::numeric_limits<FLOAT>::max()}));
    EXPECT_EQ(L"floatValues={-0.000000}", Group<FLOAT>(EncodeFloatValues, {-0.0f}));
}

TEST(ValueEncoders, RoundTheLastDecimal) {
    EXPECT_EQ(L"floatValues={3.141593,0.000001,2.718282,1048575.937500}",
              Group<FLOAT>(EncodeFloatValues, {3.14159265f, 1e-6f, 2.71828183f, 1048575.9375f}));
}

TEST(ValueEncoders, EncodeTextsAndKeepEmptyOnes) {
    EXPECT_EQ(L"stringValues={a%2cb,,%25x}",
              Group<std::wstring_view>(EncodeTexts, Texts{L"a,b", L"", L"%x"}));
    EXPECT_EQ(L"stringValues={}", Group<std::wstring_view>(EncodeTexts, Texts{L""}));
    EXPECT_EQ(L"stringValues={,}", Group<std::wstring_view>(EncodeTexts, Texts{L"", L""}));
}

TEST(ValueEncoders, WriteTheDefaultCountryForAnEmptyFirstTextOfAUserLocation) {
    EXPECT_EQ(L"stringValues={JPN}", UserLocationGroup({L""}));
    EXPECT_EQ(L"stringValues={JPN,,x}", UserLocationGroup({L"", L"", L"x"}));
}

TEST(ValueEncoders, KeepOtherTextsOfAUserLocation) {
    EXPECT_EQ(L"stringValues={DEU,}", UserLocationGroup({L"DEU", L""}));
}

TEST(ValueEncoders, WriteNothingForAUserLocationWithoutTexts) {
    std::wstring output;
    EXPECT_EQ(E_INVALIDARG,
              EncodeStringValues({}, output, kNoTextBefore, kWithName, /*isUserLocation=*/true));
    EXPECT_EQ(L"", output);
}

} // namespace tsl::test
