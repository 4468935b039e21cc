#include "tests/files/ScratchFolder.h"

#include <stdexcept>

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

// Removes a folder, named with the long-path prefix, and all in it. The standard library's own
// removal stops at the path limit.
void Wipe(const std::wstring& folder) {
    WIN32_FIND_DATAW found{};
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) return;
    do {
        const std::wstring name = found.cFileName;
        if (name == L"." || name == L"..") continue;
        const std::wstring path = folder + L'\\' + name;
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
            Wipe(path);
        } else {
            DeleteFileW(path.c_str());
        }
    } while (FindNextFileW(search, &found));
    FindClose(search);
    if (!RemoveDirectoryW(folder.c_str())) throw std::runtime_error("scratch folder stays");
}

} // namespace

void ScratchTest::SetUp() {
    m_folder = fs::temp_directory_path() / L"tsl_files_tests";
    Wipe(L"\\\\?\\" + m_folder.wstring());
    fs::create_directories(m_folder);
}

void ScratchTest::TearDown() {
    Calls() = SystemCalls();
    Wipe(L"\\\\?\\" + m_folder.wstring());
}

CHandle OpenExclusively(const std::wstring& path) {
    CHandle file(CreateFileW(path.c_str(), GENERIC_READ, /*shareMode=*/0, nullptr, OPEN_EXISTING,
                             FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) throw std::runtime_error("cannot be opened exclusively");
    return file;
}

std::wstring PathOfLength(const fs::path& folder, size_t length) {
    constexpr size_t kNameLength = 50;
    std::wstring path = folder.wstring();
    while (path.size() + kNameLength + 2 < length)
        path += L'\\' + std::wstring(kNameLength, L'n');
    path += L'\\';
    path.append(length - path.size(), L'x');
    return path;
}

} // namespace tsl::test
