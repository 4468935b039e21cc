// Parameter texts that no encoder wrote: read by the component, by a model of its rules and by the
// console, written again, and read again.
#include <gtest/gtest.h>

#include <cmath>
#include <cwctype>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "base/PercentEncoding.h"
#include "console/ParameterLists.h"
#include "console/Text.h"
#include "query/ParameterDecoder.h"
#include "recording/ValueEncoders.h"
#include "tests/hostile_input/InputLoop.h"
#include "tests/hostile_input/Mutation.h"
#include "tests/support/FullForm.h"

namespace tsl::test {

namespace {

using Json = nlohmann::ordered_json;
using TextList = std::vector<std::wstring>;

// Where each allocation counts: in the checked build it takes as long as a hundred others.
constexpr size_t kUsualLength = 500;
constexpr size_t kInputsPerConsoleRead = 10;
#ifdef _GLIBCXX_ASSERTIONS
constexpr size_t kBriefly = 4'000;
#else
constexpr size_t kBriefly = 20'000;
#endif

// What a parameter text holds of the three kinds that the component reads; texts as they stand.
struct Lists {
    std::vector<UINT64> ids;
    std::vector<INT32> numbers;
    TextList texts;

    bool operator==(const Lists&) const = default;
    friend void PrintTo(const Lists& lists, std::ostream* output) {
        *output << testing::PrintToString(std::tie(lists.ids, lists.numbers, lists.texts));
    }
};

Lists Decode(const std::wstring& parameters) {
    Lists lists{{99}, {99}, {L"left over"}};
    const HRESULT ids = DecodeUllValues(parameters, lists.ids);
    const HRESULT numbers = DecodeIntValues(parameters, lists.numbers);
    const HRESULT texts = DecodeStringValues(parameters, lists.texts);
    EXPECT_TRUE(ids == S_OK || (ids == S_FALSE && lists.ids.empty()));
    EXPECT_TRUE(numbers == S_OK || (numbers == S_FALSE && lists.numbers.empty()));
    EXPECT_TRUE(texts == S_OK || (texts == S_FALSE && lists.texts.empty()));
    return lists;
}

// The items of a list by the rules of the format, unit by unit.
TextList ModelItems(const std::wstring& parameters, const wchar_t* name) {
    TextList items;
    std::wstring item;
    bool open = false;
    for (size_t at = parameters.find(name); at < parameters.size(); ++at) {
        const wchar_t unit = parameters[at];
        if (!open) {
            open = unit == L'{';
        } else if (unit == L'}') {
            if (!item.empty()) items.push_back(item);
            return items;
        } else if (unit == L',') {
            while (!item.empty() && std::iswspace(item.back()))
                item.pop_back();
            items.push_back(item);
            item.clear();
        } else {
            item += unit;
        }
    }
    return {}; // a brace is missing
}

Lists ModelDecode(const std::wstring& parameters) {
    Lists lists;
    for (const std::wstring& item : ModelItems(parameters, L"ullValues="))
        lists.ids.push_back(_wcstoui64(item.c_str(), nullptr, 10));
    for (const std::wstring& item : ModelItems(parameters, L"intValues="))
        lists.numbers.push_back(std::wcstol(item.c_str(), nullptr, 10));
    lists.texts = ModelItems(parameters, L"stringValues=");
    return lists;
}

Lists WithPlainTexts(Lists lists) {
    for (std::wstring& text : lists.texts)
        text = PercentDecode(text);
    return lists;
}

std::wstring Encode(const Lists& lists) {
    std::wstring output;
    output.reserve(kUsualLength);
    EncodeUllValues(lists.ids, output, !output.empty(), false);
    const std::vector<LONG> numbers(lists.numbers.begin(), lists.numbers.end());
    EncodeIntValues(numbers, output, !output.empty(), false);
    const std::vector<std::wstring_view> texts(lists.texts.begin(), lists.texts.end());
    EncodeStringValues(texts, output, !output.empty(), false, /*isUserLocation=*/false);
    return output;
}

// What is written and read again is the same, but for one thing that the format cannot tell: an
// empty text at the end of a list.
void ExpectItComesBack(Lists lists) {
    const std::wstring written = Encode(lists);
    const Lists again = WithPlainTexts(Decode(written));
    if (!lists.texts.empty() && lists.texts.back().empty()) {
        lists.texts.pop_back();
    } else {
        EXPECT_EQ(written, Encode(again));
    }
    EXPECT_EQ(lists, again) << testing::PrintToString(written);
}

// A number, or the text that stands for one that JSON does not have, as a host that read it would
// hand it in.
FLOAT ToFloat(const Json& value) {
    const double number =
        value.is_string() ? std::stod(value.get<std::string>()) : value.get<double>();
    constexpr double kHighest = std::numeric_limits<FLOAT>::max();
    if (std::abs(number) <= kHighest || std::isnan(number)) return static_cast<FLOAT>(number);
    return std::copysign(std::numeric_limits<FLOAT>::infinity(),
                         static_cast<FLOAT>(number > 0 ? 1 : -1));
}

template <class T, class Get>
std::vector<T> ListOf(const Json& lists, const char* name, Get get) {
    std::vector<T> values;
    if (!lists.contains(name)) return values;
    for (const Json& value : lists[name])
        values.push_back(get(value));
    return values;
}

// All six kinds, as the console reads them.
std::wstring EncodeAll(const Json& lists) {
    std::wstring output;
    const auto number = []<class T>(T) { return [](const Json& value) { return value.get<T>(); }; };
    EncodeUllValues(ListOf<ULONGLONG>(lists, "ullValues", number(ULONGLONG{})), output,
                    !output.empty(), false);
    EncodeUsValues(ListOf<USHORT>(lists, "usValues", number(USHORT{})), output, !output.empty(),
                   false);
    EncodeIntValues(ListOf<LONG>(lists, "intValues", number(LONG{})), output, !output.empty(),
                    false);
    EncodeBoolValues(ListOf<VARIANT_BOOL>(lists, "boolValues",
                                          [](const Json& value) -> VARIANT_BOOL {
                                              return value.get<bool>() ? VARIANT_TRUE
                                                                       : VARIANT_FALSE;
                                          }),
                     output, !output.empty(), false);
    const TextList texts = ListOf<std::wstring>(lists, "stringValues", [](const Json& value) {
        return ToUtf16(value.get_ref<const std::string&>());
    });
    const std::vector<std::wstring_view> views(texts.begin(), texts.end());
    EncodeStringValues(views, output, !output.empty(), false, /*isUserLocation=*/false);
    EncodeFloatValues(ListOf<FLOAT>(lists, "floatValues", ToFloat), output, !output.empty(), false);
    return output;
}

void ExpectTheConsoleReadsIt(const std::wstring& parameters) {
    const Json lists = DecodeParameterLists(parameters);
    EXPECT_FALSE(lists.dump().empty()); // throws for a text that cannot be shown
    const std::wstring written = EncodeAll(lists);
    EXPECT_EQ(written, EncodeAll(DecodeParameterLists(written)))
        << testing::PrintToString(parameters);
}

const TextList kPieces = {L"ullValues={",
                          L"usValues={",
                          L"intValues={",
                          L"boolValues={",
                          L"stringValues={",
                          L"floatValues={",
                          L"ullValues=",
                          L"intValues",
                          L"stringValues=",
                          L"}&",
                          L"},",
                          L"{}",
                          L"{,}",
                          L",,",
                          L"&",
                          L"}",
                          L"{",
                          L"=",
                          L"%",
                          L"%2",
                          L"%7",
                          L"%%",
                          L"%25",
                          L"%252c",
                          L"%2c",
                          L"%2C",
                          L"%7d",
                          L"%7D",
                          L"%zz",
                          L"%u0041",
                          L"%00",
                          L" \t",
                          L" ,",
                          L"\t,",
                          std::wstring(1, L'\0'),
                          L"\xD800",
                          L"\xDC00",
                          L"nullValues={1}",
                          L"1.5",
                          L"0",
                          L"1"};

std::vector<std::wstring> Samples() {
    std::vector<std::wstring> samples = {
        L"",
        L"ullValues={1234567890,7}&intValues={1,-2}&stringValues={a%2cb,,%25x}"
        L"&floatValues={0.500000}",
        L"ullValues={ 12 , 34 }",
        L"stringValues={a ,b }",
        L"stringValues={,}",
        L"intValues={}",
        L"ullValues={18446744073709551615,0}&usValues={65535,0}&intValues={-2147483648,2147483647}"
        L"&boolValues={1,0}&stringValues={JPN}&floatValues={-"
        L"340282346638528859811704183484516925440"
        L".000000,nan,inf}",
        L"stringValues={%2,%,%7,%25%32%63,%e6%97%a5}",
        L"floatValues={nan,-inf,1e999,-0.000000,0.0000004,12.3456789}",
        L"ullValues=intValues=stringValues={5}",
        L"no list at all",
    };
    Chance chance(TestSeed());
    while (samples.size() < 200) {
        Lists lists;
        for (size_t left = chance.Below(4); left > 0; --left)
            lists.ids.push_back(chance.Bits() >> chance.Below(64));
        for (size_t left = chance.Below(4); left > 0; --left)
            lists.numbers.push_back(static_cast<INT32>(chance.Bits()));
        for (size_t left = chance.Below(4); left > 0; --left)
            lists.texts.push_back(AnyText(chance, 12));
        std::wstring sample = Encode(lists);
        std::vector<FLOAT> floats(chance.Below(4));
        for (FLOAT& number : floats)
            number =
                static_cast<FLOAT>(std::ldexp(1.0 + 1.0 / static_cast<double>(1 + chance.Below(99)),
                                              static_cast<int>(chance.Below(200)) - 100));
        EncodeFloatValues(floats, sample, !sample.empty(), false);
        samples.push_back(std::move(sample));
    }
    return samples;
}

} // namespace

TEST(HostileParameterTexts, AreReadByTheRulesAndComeBackAsTheyWereRead) {
    const TextSpoiler spoiler(Samples(), kPieces);
    TryInputs("parameter texts", InForm<size_t>(kBriefly, 1'000'000),
              [&](Chance& chance, size_t input) {
                  const std::wstring parameters = spoiler.Make(chance);
                  Lists lists = Decode(parameters);
                  EXPECT_EQ(ModelDecode(parameters), lists) << testing::PrintToString(parameters);
                  ExpectItComesBack(WithPlainTexts(std::move(lists)));
                  if (input % kInputsPerConsoleRead == 0) ExpectTheConsoleReadsIt(parameters);
              });
}

} // namespace tsl::test
