// The file "actionLog.txt": one line that holds the record id handed out last. All operations
// REQUIRE that the LogId lock is held or that its wait has timed out.
#pragma once

#include <windows.h>

#include <string>

namespace tsl {

inline constexpr wchar_t kCounterFileName[] = L"actionLog.txt";

// Rewrites the file with the counter. S_OK when it was written. A failed open gives its Win32
// error; a failed write gives the status of the open, which is S_OK for a new file and 0x800700B7
// for one that was there. A process that is ended meanwhile leaves the old counter or the new one.
HRESULT WriteCounter(const std::wstring& path, UINT32 counter);

// Adds one to the counter, which it hands out: 1 where there is no file, 2 where it has no line.
// The file is open for nobody else from the reading to the writing, so that no counter is handed
// out twice even when the wait for the lock has timed out. Results as those of WriteCounter.
// A file that is missing is made unless that is to be told, by its Win32 error.
enum class MissingFile { IsMade, IsTold };
HRESULT AdvanceCounter(const std::wstring& path, UINT32& counter,
                       MissingFile missing = MissingFile::IsMade);

// Rewrites a file that is there with the counter unless its own is higher, in one piece like
// AdvanceCounter. A file that cannot be opened or read stays as it is.
void RaiseCounter(const std::wstring& path, UINT32 counter);

// The same in one step: a process that ends meanwhile leaves the old file, or none, and never half
// a one. S_OK, or the Win32 error with the file as it was.
HRESULT WriteCounterAtOnce(const std::wstring& path, UINT32 counter);

// Reads the number on the last line; a line that is no number counts as 0. E_INVALIDARG when there
// is no file, the Win32 error of a failed open; the counter is left as it is then, and also when
// the file has no line.
HRESULT ReadCounter(const std::wstring& path, UINT32& counter);

} // namespace tsl
