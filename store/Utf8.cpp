#include "store/Utf8.h"

#include "base/Hresult.h"

namespace tsl {

namespace {

// The text goes with its terminator. 0 after a failure.
int Convert(const std::wstring& text, char* buffer, int room) noexcept {
    return WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size() + 1), buffer,
                               room, /*defaultChar=*/nullptr, /*usedDefault=*/nullptr);
}

} // namespace

CUtf8Text::CUtf8Text(const std::wstring& text) {
    constexpr size_t kMostBytesPerCharacter = 4;
    const size_t room = (text.size() + 1) * kMostBytesPerCharacter;
    if (room > m_small.size()) m_large.resize(room);
    char* const buffer = m_large.empty() ? m_small.data() : m_large.data();
    if (Convert(text, buffer, static_cast<int>(room)) != 0) return;

    if (GetLastError() == ERROR_INSUFFICIENT_BUFFER) {
        m_large.resize(static_cast<size_t>(Convert(text, nullptr, 0)));
        if (Convert(text, m_large.data(), static_cast<int>(m_large.size())) != 0) return;
    }
    throw CHresultError(HresultFromLastError());
}

} // namespace tsl
