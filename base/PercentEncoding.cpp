#include "base/PercentEncoding.h"

#include <array>
#include <cstring>

namespace tsl {

namespace {

// Part of the stored format: not to be changed.
constexpr std::wstring_view kReserved = L"% !\"#$&'()*+,/:;<=>?@[\\]^`{|}~";
static_assert(kReserved.size() == 30);

constexpr std::wstring_view kHexDigits = L"0123456789abcdef";
constexpr size_t kCodeLength = 3;

// What stands for a character: itself, or its code.
struct Encoded {
    wchar_t text[kCodeLength];
    wchar_t length;
};

// Of all characters that can be reserved.
constexpr std::array<Encoded, 128> EncodedTable() {
    std::array<Encoded, 128> table{};
    for (size_t character = 0; character < table.size(); ++character)
        table[character] = {{static_cast<wchar_t>(character)}, 1};
    for (const wchar_t character : kReserved) {
        table[character] = {{L'%', kHexDigits[character >> 4], kHexDigits[character & 15]},
                            kCodeLength};
    }
    return table;
}

constexpr std::array<Encoded, 128> kEncoded = EncodedTable();

bool IsReserved(unsigned code) noexcept {
    return code < kEncoded.size() && kEncoded[code].length == kCodeLength;
}

// Writes what stands for the character and returns where that ends. What lies behind, up to the
// size of an entry, is written over: so it need not be asked whether the character is reserved.
wchar_t* PutEncoded(wchar_t* place, wchar_t character) noexcept {
    if (character >= kEncoded.size()) {
        *place = character;
        return place + 1;
    }
    const Encoded& encoded = kEncoded[character];
    std::memcpy(place, &encoded, sizeof encoded);
    return place + encoded.length;
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
    constexpr size_t kPiece = 128;
    wchar_t encoded[kPiece * kCodeLength + sizeof(Encoded) / sizeof(wchar_t)];
    while (!text.empty()) {
        const std::wstring_view piece = text.substr(0, kPiece);
        wchar_t* end = encoded;
        for (const wchar_t character : piece)
            end = PutEncoded(end, character);
        output.append(encoded, end);
        text.remove_prefix(piece.size());
    }
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
