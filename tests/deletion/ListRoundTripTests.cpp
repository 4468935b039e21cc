// Random value lists, written by an encoder of the tests' own, are read back as they were.
#include "query/ParameterDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace tsl::test {

namespace {

class RandomLists {
public:
    explicit RandomLists(unsigned seed) : m_random(seed) {}

    int Below(int end) { return std::uniform_int_distribution(0, end - 1)(m_random); }

    // Numbers of all lengths.
    UINT64 Number() { return UINT64{m_random()} >> Below(64); }

    std::wstring Blanks() {
        std::wstring blanks;
        for (int count = Below(4); count > 0; --count)
            blanks += L" \t\r\n"[Below(4)];
        return blanks;
    }

    // Neither ends in a blank nor holds what ends an item.
    std::wstring Text() {
        static constexpr std::wstring_view kCharacters = L"ab Z%{=;0\t\u00e4\u6f22\"'";
        std::wstring text;
        for (int count = Below(12); count > 0; --count)
            text += kCharacters[static_cast<size_t>(Below(static_cast<int>(kCharacters.size())))];
        return text + L"x";
    }

    template <class Make>
    auto Many(Make make) {
        std::vector<decltype(make())> values(static_cast<size_t>(Below(10)));
        std::ranges::generate(values, make);
        return values;
    }

    void Shuffle(std::vector<std::wstring>& parts) { std::ranges::shuffle(parts, m_random); }

private:
    std::mt19937_64 m_random;
};

// Puts a comma between the items, blanks around them where they are asked for.
std::wstring Encode(const wchar_t* name, const std::vector<std::wstring>& items) {
    std::wstring list = std::wstring(name) + L"={";
    for (size_t index = 0; index < items.size(); ++index)
        list += (index == 0 ? L"" : L",") + items[index];
    return list + L"}";
}

} // namespace

TEST(ListRoundTrip, GivesAThousandRandomListsBack) {
    RandomLists random(20240611);
    for (int round = 0; round < 1000; ++round) {
        const auto ulls = random.Many([&] { return random.Number(); });
        const auto ints = random.Many([&] { return static_cast<INT32>(random.Number()); });
        const auto texts = random.Many([&] { return random.Text(); });

        std::vector<std::wstring> ullItems;
        for (const UINT64 value : ulls)
            ullItems.push_back(random.Blanks() + std::to_wstring(value) + random.Blanks());
        std::vector<std::wstring> intItems;
        for (const INT32 value : ints)
            intItems.push_back(random.Blanks() + std::to_wstring(value) + random.Blanks());
        std::vector<std::wstring> textItems = texts;
        for (size_t index = 0; index + 1 < textItems.size(); ++index)
            textItems[index] += random.Blanks();

        std::vector<std::wstring> parts = {Encode(L"ullValues", ullItems),
                                           Encode(L"intValues", intItems),
                                           Encode(L"stringValues", textItems),
                                           L"usValues={1,2}",
                                           L"floatValues={0.5}",
                                           L"x,y"};
        random.Shuffle(parts);
        std::wstring parameters;
        for (const std::wstring& part : parts)
            parameters += part + random.Blanks();

        SCOPED_TRACE(testing::PrintToString(parameters));
        std::vector<UINT64> readUlls;
        EXPECT_EQ(S_OK, DecodeUllValues(parameters, readUlls));
        EXPECT_EQ(ulls, readUlls);
        std::vector<INT32> readInts;
        EXPECT_EQ(S_OK, DecodeIntValues(parameters, readInts));
        EXPECT_EQ(ints, readInts);
        std::vector<std::wstring> readTexts;
        EXPECT_EQ(S_OK, DecodeStringValues(parameters, readTexts));
        EXPECT_EQ(texts, readTexts);
        if (HasFailure()) break;
    }
}

} // namespace tsl::test
