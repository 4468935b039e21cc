#include "files/Utf16TextFile.h"

#include "files/Paths.h"

namespace tsl {

namespace {

constexpr wchar_t kByteOrderMark = 0xFEFF;
constexpr DWORD kByteOrderMarkSize = sizeof kByteOrderMark;

bool WriteBytes(const CHandle& file, const void* bytes, DWORD size) noexcept {
    DWORD written = 0;
    return WriteFile(file.Get(), bytes, size, &written, /*overlapped=*/nullptr) && written == size;
}

} // namespace

OpenedFile OpenTextFileForReading(const std::wstring& path) {
    return OpenChecked(path, GENERIC_READ, /*shareMode=*/0, OPEN_EXISTING);
}

OpenedFile OpenTextFileForWriting(const std::wstring& path) {
    return OpenChecked(path, GENERIC_READ | GENERIC_WRITE, /*shareMode=*/0, OPEN_ALWAYS);
}

OpenedFile OpenTextFileForUpdate(const std::wstring& path) {
    return OpenChecked(path, GENERIC_READ | GENERIC_WRITE, /*shareMode=*/0, OPEN_EXISTING);
}

OpenedFile OpenTextFileToMove(const std::wstring& path) {
    // Its move is on the disk when it is done.
    return OpenChecked(NameBeside(path), GENERIC_READ | GENERIC_WRITE, /*shareMode=*/0, CREATE_NEW,
                       FILE_FLAG_WRITE_THROUGH);
}

HRESULT ReadText(const CHandle& file, DWORD limit, std::wstring& text) {
    text.clear();
    SetLastError(ERROR_SUCCESS);
    DWORD high = 0;
    DWORD size = GetFileSize(file.Get(), &high);
    if (size == INVALID_FILE_SIZE && GetLastError() != ERROR_SUCCESS) return S_FALSE;
    if (high != 0 || size > limit) return kFileTooLarge;
    wchar_t mark = 0;
    DWORD read = 0;
    if (!ReadFile(file.Get(), &mark, kByteOrderMarkSize, &read, nullptr)) return S_FALSE;
    if (read == kByteOrderMarkSize && mark == kByteOrderMark) {
        size -= read;
    } else {
        SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    }
    text.resize(size / sizeof(wchar_t));
    const DWORD wanted = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    const bool isRead = ReadFile(file.Get(), text.data(), wanted, &read, nullptr) != 0;
    text.resize(isRead ? read / sizeof(wchar_t) : 0);
    return isRead ? S_OK : S_FALSE;
}

bool WriteText(const CHandle& file, std::wstring_view text) {
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    return WriteBytes(file, &kByteOrderMark, kByteOrderMarkSize) &&
           WriteBytes(file, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t))) &&
           SetEndOfFile(file.Get());
}

std::vector<std::wstring> SplitLines(std::wstring_view text) {
    std::vector<std::wstring> lines;
    size_t position = 0;
    while (position < text.size()) {
        size_t end = text.find(L"\r\n", position);
        if (end == std::wstring_view::npos || end == 0) end = text.size();
        lines.emplace_back(text.substr(position, end - position));
        position = text.find_first_not_of(L"\r\n", end);
        if (position == std::wstring_view::npos) break;
    }
    return lines;
}

} // namespace tsl
