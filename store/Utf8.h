// UTF-16 text as UTF-8, for the one call of the engine that takes a path in it.
#pragma once

#include <array>
#include <string>
#include <vector>

namespace tsl {

// Holds the converted text; short ones need no memory of the heap. Unpaired surrogates become
// U+FFFD. Construction throws the Win32 error of a failed conversion.
class CUtf8Text {
public:
    explicit CUtf8Text(const std::wstring& text);
    CUtf8Text(const CUtf8Text&) = delete;
    CUtf8Text& operator=(const CUtf8Text&) = delete;

    const char* Get() const noexcept { return m_large.empty() ? m_small.data() : m_large.data(); }

private:
    std::array<char, 128> m_small{};
    std::vector<char> m_large;
};

} // namespace tsl
