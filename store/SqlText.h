// The text of a statement as it is handed on, without a copy: a literal, or a string that outlives
// the call.
#pragma once

#include <cstddef>
#include <string>

namespace tsl {

class CSqlText {
public:
    template <size_t Size>
    constexpr CSqlText(const wchar_t (&literal)[Size]) noexcept
        : m_text(literal), m_length(Size - 1) {}
    CSqlText(const std::wstring& text) noexcept : m_text(text.c_str()), m_length(text.size()) {}

    const wchar_t* Get() const noexcept { return m_text; }
    // With the zero that ends it.
    size_t BytesWithTerminator() const noexcept { return (m_length + 1) * sizeof(wchar_t); }

private:
    const wchar_t* m_text;
    size_t m_length;
};

} // namespace tsl
