#include "files/Utf16TextFile.h"

#include <cstddef>
#include <cstring>
#include <new>

#include "base/Hresult.h"

namespace tsl {

namespace {

constexpr wchar_t kByteOrderMark = 0xFEFF;
constexpr DWORD kByteOrderMarkSize = sizeof kByteOrderMark;

OpenedTextFile Open(const std::wstring& path, DWORD access, DWORD disposition, DWORD flags = 0) {
    OpenedTextFile opened;
    // The status is read after successes too, so an older error must not be taken for it.
    SetLastError(ERROR_SUCCESS);
    opened.file = CHandle(CreateFileW(path.c_str(), access, /*shareMode=*/0,
                                      /*securityAttributes=*/nullptr, disposition,
                                      FILE_ATTRIBUTE_NORMAL | flags, /*templateFile=*/nullptr));
    opened.status = HresultFromLastError();
    return opened;
}

bool WriteBytes(const CHandle& file, const void* bytes, DWORD size) noexcept {
    DWORD written = 0;
    return WriteFile(file.Get(), bytes, size, &written, /*overlapped=*/nullptr) && written == size;
}

} // namespace

OpenedTextFile OpenTextFileForReading(const std::wstring& path) {
    return Open(path, GENERIC_READ, OPEN_EXISTING);
}

OpenedTextFile OpenTextFileForWriting(const std::wstring& path) {
    return Open(path, GENERIC_READ | GENERIC_WRITE, OPEN_ALWAYS);
}

OpenedTextFile OpenTextFileForUpdate(const std::wstring& path) {
    return Open(path, GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
}

OpenedTextFile OpenTextFileToMove(const std::wstring& path) {
    // Its move is on the disk when it is done.
    return Open(path, GENERIC_READ | GENERIC_WRITE | DELETE, CREATE_ALWAYS,
                FILE_FLAG_WRITE_THROUGH);
}

HRESULT MoveTextFile(const CHandle& file, const std::wstring& path) {
    const size_t bytes = path.size() * sizeof(wchar_t);
    std::vector<std::byte> room(sizeof(FILE_RENAME_INFO) + bytes);
    auto* const request = new (room.data()) FILE_RENAME_INFO{};
    request->ReplaceIfExists = TRUE;
    request->FileNameLength = static_cast<DWORD>(bytes);
    std::memcpy(room.data() + offsetof(FILE_RENAME_INFO, FileName), path.data(), bytes);
    return SetFileInformationByHandle(file.Get(), FileRenameInfo, request,
                                      static_cast<DWORD>(room.size()))
               ? S_OK
               : HresultFromLastError();
}

void DiscardTextFile(const CHandle& file) noexcept {
    FILE_DISPOSITION_INFO request{TRUE};
    SetFileInformationByHandle(file.Get(), FileDispositionInfo, &request, sizeof request);
}

std::optional<std::wstring> ReadText(const CHandle& file) {
    DWORD size = GetFileSize(file.Get(), nullptr);
    if (size == INVALID_FILE_SIZE) return std::nullopt;
    wchar_t mark = 0;
    DWORD read = 0;
    if (!ReadFile(file.Get(), &mark, kByteOrderMarkSize, &read, nullptr)) return std::nullopt;
    if (read == kByteOrderMarkSize && mark == kByteOrderMark) {
        size -= read;
    } else {
        SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    }
    std::wstring text(size / sizeof(wchar_t), L'\0');
    const DWORD wanted = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (!ReadFile(file.Get(), text.data(), wanted, &read, nullptr)) return std::nullopt;
    text.resize(read / sizeof(wchar_t));
    return text;
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
