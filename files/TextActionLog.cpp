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

// The file is one line: what is much larger is no counter, and no reason to begin anew.
constexpr DWORD kMostCounterBytes = 64 * 1024;

HRESULT Write(const OpenedFile& opened, UINT32 counter) {
    // Whatever becomes of the rights, the file is written.
    AtBoundary([&] { return GrantAccess(opened.file) ? S_OK : S_FALSE; });
    return WriteText(opened.file, CounterLine(counter).Text()) ? S_OK : opened.status;
}

// A failed write is not always told.
HRESULT CheckWritten(const CHandle& file, UINT32 counter) {
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    std::wstring text;
    ReadText(file, kMostCounterBytes, text);
    UINT32 written = ~counter;
    const bool whole = ParseLastLine(text, written) && written == counter;
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
    const OpenedFile opened = OpenTextFileForWriting(path);
    return opened.file ? Write(opened, counter) : opened.status;
}

HRESULT AdvanceCounter(const std::wstring& path, UINT32& counter, MissingFile missing) {
    const HRESULT wasThere = HresultFromWin32(ERROR_ALREADY_EXISTS);
    OpenedFile opened =
        missing == MissingFile::IsMade ? OpenTextFileForWriting(path) : OpenTextFileForUpdate(path);
    if (!opened.file) return opened.status;
    if (missing == MissingFile::IsTold) opened.status = wasThere;
    counter = 1;
    if (opened.status == wasThere) {
        std::wstring text;
        const HRESULT read = ReadText(opened.file, kMostCounterBytes, text);
        if (FAILED(read)) return read;
        ParseLastLine(text, counter);
        ++counter;
    }
    return Write(opened, counter);
}

void RaiseCounter(const std::wstring& path, UINT32 counter) {
    const OpenedFile opened = OpenTextFileForUpdate(path);
    if (!opened.file) return;
    std::wstring text;
    if (ReadText(opened.file, kMostCounterBytes, text) != S_OK) return;
    UINT32 present = 0;
    ParseLastLine(text, present);
    if (present <= counter) Write(opened, counter);
}

HRESULT WriteCounterAtOnce(const std::wstring& path, UINT32 counter) {
    OpenedFile opened;
    // One handle for all of it: nobody else can come between.
    HRESULT result = Persistently([&] {
        opened = OpenTextFileToMove(path);
        return opened.file ? S_OK : opened.status;
    });
    if (FAILED(result)) return result;
    result = AtBoundary([&] {
        HRESULT step = Write(opened, counter);
        if (SUCCEEDED(step)) step = CheckWritten(opened.file, counter);
        // Moving a file into place does not bring what it holds to the disk.
        if (SUCCEEDED(step) && !FlushFileBuffers(opened.file.Get())) step = HresultFromLastError();
        return FAILED(step) ? step : Persistently([&] { return MoveOpened(opened.file, path); });
    });
    if (FAILED(result)) DiscardOpened(opened.file);
    return result;
}

HRESULT ReadCounter(const std::wstring& path, UINT32& counter) {
    if (!FileExists(LongPathPrefix(path, /*force=*/false, /*directory=*/false))) {
        return E_INVALIDARG;
    }
    const OpenedFile opened = OpenTextFileForReading(path);
    if (!opened.file) return opened.status;
    std::wstring text;
    const HRESULT read = ReadText(opened.file, kMostCounterBytes, text);
    if (FAILED(read)) return read;
    return ParseLastLine(text, counter) ? S_OK : opened.status;
}

} // namespace tsl
