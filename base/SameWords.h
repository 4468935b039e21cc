// Compares texts as words.
#pragma once

#include <windows.h>

#include <string>

namespace tsl {

// Whether two texts are the same words in any case, by the rules of no language in particular. Each
// is read up to its first zero.
inline bool SameWords(const std::wstring& left, const std::wstring& right) noexcept {
    return CompareStringW(LOCALE_INVARIANT, NORM_IGNORECASE, left.c_str(), /*count=*/-1,
                          right.c_str(), /*count=*/-1) == CSTR_EQUAL;
}

} // namespace tsl
