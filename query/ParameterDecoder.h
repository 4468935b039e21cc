// Reads typed value lists back out of a stored parameter text. Pure functions; callable from any
// thread.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

namespace tsl {

// Each fills values from the list of its name and returns S_OK; S_FALSE, with no values, when the
// name or one of its braces is missing. Numbers are read as far as they are numbers: what is none
// counts as 0, and what is out of range as the nearest number. Texts are taken as they stand.
HRESULT DecodeUllValues(std::wstring_view parameters, std::vector<UINT64>& values);
HRESULT DecodeIntValues(std::wstring_view parameters, std::vector<INT32>& values);
HRESULT DecodeStringValues(std::wstring_view parameters, std::vector<std::wstring>& values);

} // namespace tsl
