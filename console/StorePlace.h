// Where the files lie that messages name, and where the program lies. The component finds its files
// by itself; these paths are only shown.
#pragma once

#include <string>

namespace tsl {

// Below the machine's folder of application data, between two backslashes.
inline constexpr wchar_t kStoreFolders[] = L"\\Corvane Corporation\\Tessaly\\TslIfDbActionLog\\";

// Folder of the running program, with a trailing backslash.
std::wstring ProgramFolder();

// The path made absolute.
std::wstring FullPath(const std::wstring& path);

// The folder of the databases and the counter file, and that of the user id list, with a trailing
// backslash. Neither is created. All of these throw std::runtime_error where the system does not
// know the folder that they are in.
std::wstring StoreFolderPath();
std::wstring UserIdFolderPath();

std::wstring CounterFilePath();
std::wstring ActionLogPath();
std::wstring ReplayLogPath();
std::wstring UserIdListPath();

} // namespace tsl
