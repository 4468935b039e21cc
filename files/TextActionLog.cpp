#include "files/TextActionLog.h"

#include <cwchar>
#include <cwctype>

#include "files/AccessRights.h"
#include "files/Paths.h"
#include "files/Utf16TextFile.h"

namespace tsl {

namespace {

std::wstring FormatLine(UINT32 counter) {
    wchar_t line[16];
    const int length =
        std::swprintf(line, std::size(line), L"%08lu\t\r\n", static_cast<unsigned long>(counter));
    return std::wstring(line, static_cast<size_t>(length));
}

UINT32 ParseLine(std::wstring_view line) {
    while (!line.empty() && std::iswspace(line.back()))
        line.remove_suffix(1);
    while (!line.empty() && std::iswspace(line.front()))
        line.remove_prefix(1);
    return std::wcstoul(std::wstring(line).c_str(), /*end=*/nullptr, /*base=*/10);
}

} // namespace

HRESULT WriteCounter(const std::wstring& path, UINT32 counter) {
    const OpenedTextFile opened = CreateTextFile(path);
    if (!opened.file) return opened.status;
    GrantFileAccess(path);
    return WriteText(opened.file, FormatLine(counter)) ? S_OK : opened.status;
}

HRESULT ReadCounter(const std::wstring& path, UINT32& counter) {
    if (!FileExists(LongPathPrefix(path, /*force=*/false, /*directory=*/false))) {
        return E_INVALIDARG;
    }
    const OpenedTextFile opened = OpenTextFileForReading(path);
    if (!opened.file) return opened.status;
    HRESULT result = opened.status;
    for (const std::wstring& line : SplitLines(ReadText(opened.file))) {
        counter = ParseLine(line);
        result = S_OK;
    }
    return result;
}

} // namespace tsl
