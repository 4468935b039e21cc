#include "tests/hostile_input/Mutation.h"

#include <algorithm>

namespace tsl::test {

namespace {

constexpr size_t kLongestText = 4000;
constexpr size_t kLongestPart = 12;

// Works on texts and on bytes.
template <class Sequence>
void EraseSome(Sequence& sequence, Chance& chance) {
    const size_t start = chance.Below(sequence.size());
    const size_t count = std::min(1 + chance.Below(kLongestPart), sequence.size() - start);
    const auto first = sequence.begin() + static_cast<std::ptrdiff_t>(start);
    sequence.erase(first, first + static_cast<std::ptrdiff_t>(count));
}

template <class Sequence>
void RepeatSome(Sequence& sequence, Chance& chance) {
    const size_t start = chance.Below(sequence.size());
    const size_t count = std::min(1 + chance.Below(kLongestPart * 4), sequence.size() - start);
    const auto first = sequence.begin() + static_cast<std::ptrdiff_t>(start);
    const Sequence part(first, first + static_cast<std::ptrdiff_t>(count));
    const auto place =
        sequence.begin() + static_cast<std::ptrdiff_t>(chance.Below(sequence.size() + 1));
    sequence.insert(place, part.begin(), part.end());
}

void Insert(std::wstring& text, Chance& chance, const std::wstring& part) {
    text.insert(chance.Below(text.size() + 1), part);
}

// Numbers that do not fit into any type, barely fit, or are none.
const std::vector<std::wstring> kOddNumbers = {
    L"0",
    L"-0",
    L"-1",
    L"+7",
    L"4294967295",
    L"4294967296",
    L"2147483647",
    L"2147483648",
    L"-2147483649",
    L"18446744073709551615",
    L"18446744073709551616",
    L"-9223372036854775809",
    std::wstring(300, L'9'),
    L"-" + std::wstring(300, L'9'),
    std::wstring(300, L'0') + L"5",
    L"0x7F",
    L"0xffffffffffffffff",
    L"010",
    L"08",
    L"nan",
    L"-nan",
    L"inf",
    L"-infinity",
    L"1e999",
    L"-1e999",
    L"1e-999",
    L"3.5e38",
    L"0.0000005",
    L"." + std::wstring(400, L'3'),
    L"1.",
    L"1e",
    L"--5",
    L"5x",
    L"\u0661\u0662\u0663",
    L"\uff11\uff12",
};

} // namespace

wchar_t AnyUnit(Chance& chance) {
    static constexpr std::wstring_view kTelling =
        L"{}=,&%{}=,&% \t\r\n\v\u00a0\u3000\u2028-+.0123456789abcxyzABC\"'();";
    switch (chance.Below(8)) {
    case 0:
        return static_cast<wchar_t>(chance.Bits());
    case 1:
        return static_cast<wchar_t>(0xD800 + chance.Below(0x800)); // half of a pair
    case 2:
        return chance.OneIn(4) ? L'\0' : L'\xFEFF';
    default:
        return kTelling[chance.Below(kTelling.size())];
    }
}

std::wstring AnyText(Chance& chance, size_t longest) {
    std::wstring text(chance.Below(longest + 1), L'\0');
    for (wchar_t& unit : text)
        unit = AnyUnit(chance);
    return text;
}

std::wstring TextSpoiler::Make(Chance& chance) const {
    std::wstring text = m_samples[chance.Below(m_samples.size())];
    for (size_t left = chance.Below(9); left > 0; --left)
        Spoil(text, chance);
    if (text.size() > kLongestText) text.resize(kLongestText);
    return text;
}

void TextSpoiler::Spoil(std::wstring& text, Chance& chance) const {
    if (text.empty()) return Insert(text, chance, m_pieces[chance.Below(m_pieces.size())]);
    switch (chance.Below(9)) {
    case 0:
        chance.Of(text) ^= static_cast<wchar_t>(1 << chance.Below(16));
        break;
    case 1:
        EraseSome(text, chance);
        break;
    case 2:
        Insert(text, chance, AnyText(chance, kLongestPart));
        break;
    case 3:
        RepeatSome(text, chance);
        break;
    case 4: { // the start of this one and the end of another
        const std::wstring& other = m_samples[chance.Below(m_samples.size())];
        text.resize(chance.Below(text.size() + 1));
        text.append(other, chance.Below(other.size() + 1));
        break;
    }
    case 5:
        if (chance.OneIn(3)) text.resize(chance.Below(text.size()));
        break;
    case 6:
        Insert(text, chance, kOddNumbers[chance.Below(kOddNumbers.size())]);
        break;
    case 7:
        chance.Of(text) = AnyUnit(chance);
        break;
    default:
        Insert(text, chance, m_pieces[chance.Below(m_pieces.size())]);
        break;
    }
}

void SpoilBytes(Bytes& bytes, Chance& chance, size_t places) {
    for (size_t left = 1 + chance.Below(places); left > 0; --left) {
        if (bytes.empty()) {
            bytes.push_back(static_cast<unsigned char>(chance.Bits()));
            continue;
        }
        switch (chance.Below(6)) {
        case 0:
            EraseSome(bytes, chance);
            break;
        case 1:
            RepeatSome(bytes, chance);
            break;
        case 2: // shifts what follows to an odd place
            bytes.insert(bytes.begin() + static_cast<std::ptrdiff_t>(chance.Below(bytes.size())),
                         static_cast<unsigned char>(chance.Bits()));
            break;
        case 3:
            chance.Of(bytes) = static_cast<unsigned char>(chance.Bits());
            break;
        default:
            chance.Of(bytes) ^= static_cast<unsigned char>(1 << chance.Below(8));
            break;
        }
    }
}

} // namespace tsl::test
