#include "query/ParameterDecoder.h"

#include <cwchar>
#include <cwctype>

namespace tsl {

namespace {

// Part of the stored format: not to be changed.
constexpr std::wstring_view kUllList = L"ullValues=";
constexpr std::wstring_view kIntList = L"intValues=";
constexpr std::wstring_view kStringList = L"stringValues=";

// Cuts the text between the first braces after the name out of the parameters.
bool FindList(std::wstring_view parameters, std::wstring_view name, std::wstring_view& list) {
    const size_t start = parameters.find(name);
    if (start == std::wstring_view::npos) return false;
    const size_t open = parameters.find(L'{', start);
    if (open == std::wstring_view::npos) return false;
    const size_t close = parameters.find(L'}', open + 1);
    if (close == std::wstring_view::npos) return false;
    list = parameters.substr(open + 1, close - open - 1);
    return true;
}

std::wstring_view WithoutTrailingSpace(std::wstring_view item) noexcept {
    while (!item.empty() && std::iswspace(item.back()))
        item.remove_suffix(1);
    return item;
}

// Items before a comma lose their trailing white space; the last one keeps it, and is no item when
// it is empty.
template <class T, class Convert>
HRESULT DecodeList(std::wstring_view parameters, std::wstring_view name, std::vector<T>& values,
                   Convert convert) {
    values.clear();
    std::wstring_view list;
    if (!FindList(parameters, name, list)) return S_FALSE;
    for (size_t comma = list.find(L','); comma != std::wstring_view::npos;
         comma = list.find(L',')) {
        values.push_back(convert(std::wstring(WithoutTrailingSpace(list.substr(0, comma)))));
        list.remove_prefix(comma + 1);
    }
    if (!list.empty()) values.push_back(convert(std::wstring(list)));
    return S_OK;
}

} // namespace

HRESULT DecodeUllValues(std::wstring_view parameters, std::vector<UINT64>& values) {
    return DecodeList(parameters, kUllList, values, [](const std::wstring& item) -> UINT64 {
        return _wcstoui64(item.c_str(), /*end=*/nullptr, /*base=*/10);
    });
}

HRESULT DecodeIntValues(std::wstring_view parameters, std::vector<INT32>& values) {
    return DecodeList(parameters, kIntList, values, [](const std::wstring& item) -> INT32 {
        return std::wcstol(item.c_str(), /*end=*/nullptr, /*base=*/10);
    });
}

HRESULT DecodeStringValues(std::wstring_view parameters, std::vector<std::wstring>& values) {
    return DecodeList(parameters, kStringList, values, [](std::wstring item) { return item; });
}

} // namespace tsl
