#include "tests/support/StoreFixture.h"

#include <shlobj.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

namespace tsl::test {

namespace fs = std::filesystem;

namespace {

fs::path CompanyFolder() {
    wchar_t folder[MAX_PATH];
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_COMMON_APPDATA, nullptr, 0, folder))) {
        throw std::runtime_error("no folder for all-users application data");
    }
    return fs::path(folder) / L"Corvane Corporation";
}

void WipeStore() {
    SetFileAttributesW(StoreFolder().c_str(), FILE_ATTRIBUTE_NORMAL);
    std::error_code error;
    if (fs::is_directory(StoreFolder(), error)) {
        for (const auto& entry : fs::directory_iterator(StoreFolder())) {
            SetFileAttributesW(entry.path().c_str(), FILE_ATTRIBUTE_NORMAL);
        }
    }
    fs::remove_all(CompanyFolder());
}

} // namespace

fs::path ProgramFolder() {
    wchar_t path[MAX_PATH * 4];
    GetModuleFileNameW(nullptr, path, std::size(path));
    return fs::path(path).parent_path() / L"";
}

fs::path StoreFolder() {
    return CompanyFolder() / L"Tessaly" / L"TslIfDbActionLog";
}
fs::path CounterPath() {
    return StoreFolder() / L"actionLog.txt";
}
fs::path ActionLogPath() {
    return StoreFolder() / L"ualog.db";
}
fs::path ReplayPath() {
    return StoreFolder() / L"uareplay.db";
}

std::vector<std::filesystem::path> FilesInTheMaking(const std::filesystem::path& folder) {
    std::vector<std::filesystem::path> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
        if (entry.path().extension() == L".new") found.push_back(entry.path());
    }
    return found;
}

Bytes ReadBytes(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    Bytes bytes(file ? fs::file_size(path) : 0);
    if (!file.read(reinterpret_cast<char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()))) {
        throw std::runtime_error("cannot read " + path.string());
    }
    return bytes;
}

void WriteBytes(const fs::path& path, const Bytes& bytes) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file) throw std::runtime_error("cannot write " + path.string());
}

Bytes Utf16Bytes(std::wstring_view text) {
    const auto* const first = reinterpret_cast<const unsigned char*>(text.data());
    return Bytes(first, first + text.size() * sizeof(wchar_t));
}

Bytes Utf16FileBytes(std::wstring_view text) {
    return Utf16Bytes(L'\xFEFF' + std::wstring(text));
}

void StoreTest::SetUp() {
    const char* const allowed = std::getenv("TSL_TEST_STORE_MAY_BE_WIPED");
    ASSERT_TRUE(allowed && std::string(allowed) == "1")
        << "these tests delete the machine's action log; set TSL_TEST_STORE_MAY_BE_WIPED=1";
    WipeStore();
}

void StoreTest::TearDown() {
    WipeStore();
}

void StoreTest::MakeStoreFolder() {
    fs::create_directories(StoreFolder());
}

void StoreTest::MakeCounterFile(std::wstring_view lastId) {
    MakeStoreFolder();
    WriteBytes(CounterPath(), Utf16FileBytes(std::wstring(lastId) + L"\t\r\n"));
}

} // namespace tsl::test
