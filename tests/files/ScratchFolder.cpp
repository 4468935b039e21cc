#include "tests/files/ScratchFolder.h"

#include <aclapi.h>
#include <sddl.h>

#include <optional>
#include <stdexcept>

#include "base/LocalMemory.h"

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

// The mask of the first entry for Everyone; nothing without one.
std::optional<DWORD> EntryOfEveryone(const std::wstring& path) {
    PACL list = nullptr;
    PSECURITY_DESCRIPTOR read = nullptr;
    const DWORD error =
        GetNamedSecurityInfoW(path.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr,
                              nullptr, &list, nullptr, &read);
    const LocalMemory<std::remove_pointer_t<PSECURITY_DESCRIPTOR>> descriptor(read);
    if (error != ERROR_SUCCESS || !list) throw std::runtime_error("no access list");
    PSID found = nullptr;
    if (!ConvertStringSidToSidW(L"S-1-1-0", &found)) throw std::runtime_error("no SID");
    const LocalMemory<void> everyone(found);
    for (WORD index = 0; index < list->AceCount; ++index) {
        void* ace = nullptr;
        if (!GetAce(list, index, &ace)) throw std::runtime_error("no entry");
        auto* const allowed = static_cast<ACCESS_ALLOWED_ACE*>(ace);
        if (EqualSid(&allowed->SidStart, everyone.get())) return allowed->Mask;
    }
    return std::nullopt;
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

bool NamesEveryone(const std::wstring& path) {
    return EntryOfEveryone(path).has_value();
}

DWORD MaskOfEveryone(const std::wstring& path) {
    return EntryOfEveryone(path).value_or(0);
}

} // namespace tsl::test
