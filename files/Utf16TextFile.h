// The small UTF-16LE text files that the processes share: byte order mark, lines ended by CR LF,
// read whole and rewritten whole, opened for nobody else meanwhile. The callers hold the lock that
// serialises the processes.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Handle.h"

namespace tsl {

// An opened file and the thread's last error right after opening, as an HRESULT: also after a
// success it tells something, that a file was there before (ERROR_ALREADY_EXISTS).
struct OpenedTextFile {
    CHandle file;
    HRESULT status = S_OK;
};

OpenedTextFile OpenTextFileForReading(const std::wstring& path);

// Creates the file or opens what is there, for reading and writing. Nothing is cut off yet, so that
// a process that is ended before it writes leaves the old text.
OpenedTextFile OpenTextFileForWriting(const std::wstring& path);
// The same, but for a file that is there.
OpenedTextFile OpenTextFileForUpdate(const std::wstring& path);

// Makes the file anew, to be moved over another one by MoveTextFile once it is whole.
OpenedTextFile OpenTextFileToMove(const std::wstring& path);
// Moves the opened file, over what is there. Readers find the old text or the new one. S_OK, or the
// Win32 error with both files as they were.
HRESULT MoveTextFile(const CHandle& file, const std::wstring& path);
// Takes the opened file away when it is closed, as far as it can be.
void DiscardTextFile(const CHandle& file) noexcept;

// The text behind the byte order mark, or from the first byte where there is none. An odd last byte
// is left out. None when it cannot be read.
std::optional<std::wstring> ReadText(const CHandle& file);

// Makes byte order mark and text all that the file holds; false when any of it could not be
// written.
bool WriteText(const CHandle& file, std::wstring_view text);

// The lines of a text, without their breaks. A break at the very start of the text is no break, and
// further CR and LF characters behind one belong to it.
std::vector<std::wstring> SplitLines(std::wstring_view text);

} // namespace tsl
