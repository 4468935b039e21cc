#include "files/TextActionLog.h"

#include <cwchar>
#include <cwctype>

#include "base/Hresult.h"
#include "files/AccessRights.h"
#include "files/Paths.h"
#include "files/Utf16TextFile.h"

namespace tsl {

namespace {

// Needs no memory: a file that has been made is written in any case.
class CounterLine {
public:
    explicit CounterLine(UINT32 counter) noexcept
        : m_length(std::swprintf(m_text, std::size(m_text), L"%08lu\t\r\n",
                                 static_cast<unsigned long>(counter))) {}

    std::wstring_view Text() const noexcept { return {m_text, static_cast<size_t>(m_length)}; }

private:
    wchar_t m_text[16];
    int m_length;
};

UINT32 ParseLine(std::wstring_view line) {
    while (!line.empty() && std::iswspace(line.back()))
        line.remove_suffix(1);
    while (!line.empty() && std::iswspace(line.front()))
        line.remove_prefix(1);
    return std::wcstoul(std::wstring(line).c_str(), /*end=*/nullptr, /*base=*/10);
}

// The number on the last line; left alone where there is no line.
bool ParseLastLine(std::wstring_view text, UINT32& counter) {
    const std::vector<std::wstring> lines = SplitLines(text);
    if (lines.empty()) return false;
    counter = ParseLine(lines.back());
    return true;
}

HRESULT Write(const OpenedTextFile& opened, const std::wstring& path, UINT32 counter) {
    // Whatever becomes of the rights, the file is written.
    AtBoundary([&] { return GrantFileAccess(path) ? S_OK : S_FALSE; });
    return WriteText(opened.file, CounterLine(counter).Text()) ? S_OK : opened.status;
}

// A failed write is not always told.
HRESULT CheckWritten(const CHandle& file, UINT32 counter) {
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    const std::optional<std::wstring> text = ReadText(file);
    UINT32 written = ~counter;
    const bool whole = text && ParseLastLine(*text, written) && written == counter;
    return whole ? S_OK : HresultFromWin32(ERROR_WRITE_FAULT);
}

// Others look at files when these have just been made or closed, virus scanners first of all: what
// they keep from being opened or moved is tried again, for a second.
template <class Attempt>
HRESULT Persistently(Attempt attempt) {
    constexpr int kAttempts = 20;
    constexpr DWORD kPauseMilliseconds = 50;
    HRESULT result = attempt();
    for (int made = 1; made < kAttempts; ++made) {
        if (result != HresultFromWin32(ERROR_SHARING_VIOLATION) &&
            result != HresultFromWin32(ERROR_ACCESS_DENIED)) {
            break;
        }
        Sleep(kPauseMilliseconds);
        result = attempt();
    }
    return result;
}

} // namespace

HRESULT WriteCounter(const std::wstring& path, UINT32 counter) {
    const OpenedTextFile opened = OpenTextFileForWriting(path);
    return opened.file ? Write(opened, path, counter) : opened.status;
}

HRESULT AdvanceCounter(const std::wstring& path, UINT32& counter, MissingFile missing) {
    const HRESULT wasThere = HresultFromWin32(ERROR_ALREADY_EXISTS);
    OpenedTextFile opened =
        missing == MissingFile::IsMade ? OpenTextFileForWriting(path) : OpenTextFileForUpdate(path);
    if (!opened.file) return opened.status;
    if (missing == MissingFile::IsTold) opened.status = wasThere;
    counter = 1;
    if (opened.status == wasThere) {
        ParseLastLine(ReadText(opened.file).value_or(L""), counter);
        ++counter;
    }
    return Write(opened, path, counter);
}

void RaiseCounter(const std::wstring& path, UINT32 counter) {
    const OpenedTextFile opened = OpenTextFileForUpdate(path);
    if (!opened.file) return;
    const std::optional<std::wstring> text = ReadText(opened.file);
    if (!text) return;
    UINT32 present = 0;
    ParseLastLine(*text, present);
    if (present <= counter) Write(opened, path, counter);
}

HRESULT WriteCounterAtOnce(const std::wstring& path, UINT32 counter) {
    const std::wstring made = path + L".new";
    OpenedTextFile opened;
    // One handle for all of it: nobody else can come between.
    HRESULT result = Persistently([&] {
        opened = OpenTextFileToMove(made);
        return opened.file ? S_OK : opened.status;
    });
    if (FAILED(result)) return result;
    result = AtBoundary([&] {
        HRESULT step = Write(opened, made, counter);
        if (SUCCEEDED(step)) step = CheckWritten(opened.file, counter);
        // Moving a file into place does not bring what it holds to the disk.
        if (SUCCEEDED(step) && !FlushFileBuffers(opened.file.Get())) step = HresultFromLastError();
        return FAILED(step) ? step : Persistently([&] { return MoveTextFile(opened.file, path); });
    });
    if (FAILED(result)) DiscardTextFile(opened.file);
    return result;
}

HRESULT ReadCounter(const std::wstring& path, UINT32& counter) {
    if (!FileExists(LongPathPrefix(path, /*force=*/false, /*directory=*/false))) {
        return E_INVALIDARG;
    }
    const OpenedTextFile opened = OpenTextFileForReading(path);
    if (!opened.file) return opened.status;
    return ParseLastLine(ReadText(opened.file).value_or(L""), counter) ? S_OK : opened.status;
}

} // namespace tsl
