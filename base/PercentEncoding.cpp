#include "base/PercentEncoding.h"

#include <array>

namespace tsl {

namespace {

// Part of the stored format: not to be changed.
constexpr std::wstring_view kReserved = L"% !\"#$&'()*+,/:;<=>?@[\\]^`{|}~";
static_assert(kReserved.size() == 30);

constexpr std::wstring_view kHexDigits = L"0123456789abcdef";
constexpr size_t kCodeLength = 3;

constexpr std::array<bool, 128> ReservedTable() {
    std::array<bool, 128> table{};
    for (const wchar_t character : kReserved)
        table[character] = true;
    return table;
}

bool IsReserved(unsigned code) noexcept {
    static constexpr std::array<bool, 128> table = ReservedTable();
    return code < table.size() && table[code];
}

// 16 for what is no hexadecimal digit.
unsigned HexValue(wchar_t digit) noexcept {
    if (digit >= L'0' && digit <= L'9') return static_cast<unsigned>(digit - L'0');
    if (digit >= L'a' && digit <= L'f') return static_cast<unsigned>(digit - L'a') + 10;
    if (digit >= L'A' && digit <= L'F') return static_cast<unsigned>(digit - L'A') + 10;
    return 16;
}

// The reserved character whose code stands at the position, or 0.
wchar_t CodedCharacter(std::wstring_view text, size_t position) noexcept {
    if (text.size() - position < kCodeLength) return 0;
    const unsigned high = HexValue(text[position + 1]);
    const unsigned low = HexValue(text[position + 2]);
    const unsigned code = high * 16 + low;
    return high < 16 && low < 16 && IsReserved(code) ? static_cast<wchar_t>(code) : L'\0';
}

} // namespace

void AppendPercentEncoded(std::wstring& output, std::wstring_view text) {
    size_t plainStart = 0;
    for (size_t position = 0; position < text.size(); ++position) {
        const unsigned code = text[position];
        if (!IsReserved(code)) continue;
        output.append(text, plainStart, position - plainStart);
        const wchar_t encoded[kCodeLength] = {L'%', kHexDigits[code >> 4], kHexDigits[code & 15]};
        output.append(encoded, kCodeLength);
        plainStart = position + 1;
    }
    output.append(text, plainStart);
}

std::wstring PercentDecode(std::wstring_view text) {
    std::wstring decoded;
    decoded.reserve(text.size());
    for (size_t position = 0; position < text.size();) {
        const wchar_t coded = text[position] == L'%' ? CodedCharacter(text, position) : L'\0';
        decoded += coded ? coded : text[position];
        position += coded ? kCodeLength : 1;
    }
    return decoded;
}

} // namespace tsl
