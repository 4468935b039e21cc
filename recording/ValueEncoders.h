// The groups of a parameter text: one encoder per kind of value. Each appends one group, with an
// "&" before it when the text is already non-empty, and returns S_OK; for an empty list it appends
// nothing and returns E_INVALIDARG. With omitName the kind's name is left out. Pure functions;
// callable from any thread.
#pragma once

#include <windows.h>

#include <oleauto.h>

#include <span>
#include <string>
#include <string_view>

namespace tsl {

HRESULT EncodeUllValues(std::span<const ULONGLONG> values, std::wstring& output, bool textBefore,
                        bool omitName);
HRESULT EncodeUsValues(std::span<const USHORT> values, std::wstring& output, bool textBefore,
                       bool omitName);
HRESULT EncodeIntValues(std::span<const LONG> values, std::wstring& output, bool textBefore,
                        bool omitName);

// Any value but 0 is written as 1.
HRESULT EncodeBoolValues(std::span<const VARIANT_BOOL> values, std::wstring& output,
                         bool textBefore, bool omitName);

// Each text percent-encoded. In the parameters of a user location, an empty first text stands for
// the default country.
HRESULT EncodeStringValues(std::span<const std::wstring_view> values, std::wstring& output,
                           bool textBefore, bool omitName, bool isUserLocation);

// Six decimals, whatever the locale of the host; "inf" and "nan" for what is no number.
HRESULT EncodeFloatValues(std::span<const FLOAT> values, std::wstring& output, bool textBefore,
                          bool omitName);

} // namespace tsl
