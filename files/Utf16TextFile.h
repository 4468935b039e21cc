// The small UTF-16LE text files that the processes share: byte order mark, lines ended by CR LF,
// read whole and rewritten whole, opened for nobody else meanwhile. The callers hold the lock that
// serialises the processes.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "base/Hresult.h"
#include "files/CheckedOpen.h"

namespace tsl {

// All of these as OpenChecked, for nobody else.
OpenedFile OpenTextFileForReading(const std::wstring& path);

// Creates the file or opens what is there, for reading and writing. Nothing is cut off yet, so that
// a process that is ended before it writes leaves the old text.
OpenedFile OpenTextFileForWriting(const std::wstring& path);
// The same, but for a file that is there.
OpenedFile OpenTextFileForUpdate(const std::wstring& path);

// Makes a file beside the path, to be moved there by MoveOpened once it is whole. Throws
// CHresultError.
OpenedFile OpenTextFileToMove(const std::wstring& path);

// The text behind the byte order mark, or from the first byte where there is none. An odd last byte
// is left out. S_OK; S_FALSE, and no text, when it cannot be read; kFileTooLarge, and nothing read,
// for more bytes than the limit.
HRESULT ReadText(const CHandle& file, DWORD limit, std::wstring& text);
inline constexpr HRESULT kFileTooLarge = HresultFromWin32(ERROR_FILE_TOO_LARGE);

// Makes byte order mark and text all that the file holds; false when any of it could not be
// written.
bool WriteText(const CHandle& file, std::wstring_view text);

// The lines of a text, without their breaks. A break at the very start of the text is no break, and
// further CR and LF characters behind one belong to it.
std::vector<std::wstring> SplitLines(std::wstring_view text);

} // namespace tsl
