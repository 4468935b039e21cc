#include "recording/ValueEncoders.h"

#include <charconv>

#include "base/PercentEncoding.h"

namespace tsl {

namespace {

// Part of the stored format: not to be changed.
constexpr wchar_t kUllName[] = L"ullValues";
constexpr wchar_t kUsName[] = L"usValues";
constexpr wchar_t kIntName[] = L"intValues";
constexpr wchar_t kBoolName[] = L"boolValues";
constexpr wchar_t kStringName[] = L"stringValues";
constexpr wchar_t kFloatName[] = L"floatValues";
constexpr wchar_t kDefaultCountry[] = L"JPN";

constexpr int kFloatDecimals = 6;

// Appends the characters of an ASCII number that was written into a buffer.
void AppendAscii(std::wstring& output, const char* first, const char* last) {
    output.append(first, last);
}

template <class Integer>
void AppendInteger(std::wstring& output, Integer number) {
    char digits[24];
    AppendAscii(output, digits, std::to_chars(digits, std::end(digits), number).ptr);
}

void AppendFloat(std::wstring& output, FLOAT number) {
    char digits[64];
    const double widened = number;
    AppendAscii(
        output, digits,
        std::to_chars(digits, std::end(digits), widened, std::chars_format::fixed, kFloatDecimals)
            .ptr);
}

// appendValue appends the value of an index.
template <class AppendValue>
HRESULT EncodeGroup(const wchar_t* name, size_t count, std::wstring& output, bool textBefore,
                    bool omitName, AppendValue appendValue) {
    if (count == 0) return E_INVALIDARG;
    if (textBefore) output += L'&';
    if (!omitName) output += name;
    output += L"={";
    for (size_t index = 0; index < count; ++index) {
        if (index > 0) output += L',';
        appendValue(index);
    }
    output += L'}';
    return S_OK;
}

} // namespace

HRESULT EncodeUllValues(std::span<const ULONGLONG> values, std::wstring& output, bool textBefore,
                        bool omitName) {
    return EncodeGroup(kUllName, values.size(), output, textBefore, omitName,
                       [&](size_t index) { AppendInteger(output, values[index]); });
}

HRESULT EncodeUsValues(std::span<const USHORT> values, std::wstring& output, bool textBefore,
                       bool omitName) {
    return EncodeGroup(kUsName, values.size(), output, textBefore, omitName,
                       [&](size_t index) { AppendInteger(output, values[index]); });
}

HRESULT EncodeIntValues(std::span<const LONG> values, std::wstring& output, bool textBefore,
                        bool omitName) {
    return EncodeGroup(kIntName, values.size(), output, textBefore, omitName,
                       [&](size_t index) { AppendInteger(output, values[index]); });
}

HRESULT EncodeBoolValues(std::span<const VARIANT_BOOL> values, std::wstring& output,
                         bool textBefore, bool omitName) {
    return EncodeGroup(kBoolName, values.size(), output, textBefore, omitName, [&](size_t index) {
        output += values[index] == VARIANT_FALSE ? L'0' : L'1';
    });
}

HRESULT EncodeStringValues(std::span<const std::wstring_view> values, std::wstring& output,
                           bool textBefore, bool omitName, bool isUserLocation) {
    // Room for the texts with one character in four encoded, so that most grow no more.
    size_t size = 0;
    for (const std::wstring_view value : values)
        size += value.size() + 1;
    output.reserve(output.size() + std::size(kStringName) + size + size / 2);
    return EncodeGroup(kStringName, values.size(), output, textBefore, omitName, [&](size_t index) {
        const bool useDefault = isUserLocation && index == 0 && values[index].empty();
        AppendPercentEncoded(output, useDefault ? kDefaultCountry : values[index]);
    });
}

HRESULT EncodeFloatValues(std::span<const FLOAT> values, std::wstring& output, bool textBefore,
                          bool omitName) {
    return EncodeGroup(kFloatName, values.size(), output, textBefore, omitName,
                       [&](size_t index) { AppendFloat(output, values[index]); });
}

} // namespace tsl
