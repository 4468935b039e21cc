// Paths and folders: special folders, long-path prefixes, tests of existence, folder trees. Pure
// functions over the file system; callable from any thread. None reports an error code.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace tsl {

// Path of a special folder (CSIDL number) followed by the company folder and the sub-path, each
// where it is not empty. Ends in a backslash. Returns false, with the current directory and none of
// the sub-folders in path, when the shell does not know the folder; path is left as it is when not
// even that can be had.
bool SpecialFolderPath(int specialFolder, std::wstring& path, std::wstring_view subPath = {},
                       std::wstring_view companyFolder = {});

// The path with the prefix that lifts the length limit ("\\?\" or "\\?\UNC"): always when forced,
// else only from the limit on (260 characters for a file, 248 for a directory).
std::wstring LongPathPrefix(std::wstring_view path, bool force, bool directory);

// Length of that prefix in characters: 0, 4 or 7.
size_t LongPathPrefixLength(std::wstring_view path) noexcept;

// True when something is there and it is no directory.
bool FileExists(const std::wstring& path) noexcept;

// True when a directory is there.
bool FolderExists(const std::wstring& path);

// Creates the folder with all its missing parents; only the folder itself gets the security
// attributes. True when the folder exists afterwards, whoever made it. A root, or a folder right
// below one, is made by CreateDirectoryW without the attributes, and its result is given as it is.
// Nothing is made behind a link that may not be followed: see PlainFile.h.
bool CreateFolderTree(const std::wstring& path, SECURITY_ATTRIBUTES* attributes = nullptr);

// A name beside the path that nobody can guess, for what is moved to the path when it is whole.
// Throws CHresultError when there is no chance to be had.
std::wstring NameBeside(const std::wstring& path);

// Path of a module's file, however long. False, with an empty path, when it cannot be had.
bool ModuleFilePath(std::wstring& path, HMODULE module);

} // namespace tsl
