// Base of every test that touches the machine-wide folders: each test finds them empty.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tsl::test {

// The folder of the test program, with a trailing backslash: the component lies in it.
std::filesystem::path ProgramFolder();

// The machine-wide folder of the databases and the counter file, as the component must choose it.
std::filesystem::path StoreFolder();
std::filesystem::path CounterPath();
std::filesystem::path ActionLogPath();
std::filesystem::path ReplayPath();

// Files that are to be moved into place when they are whole; those of the store, unless another
// folder is named.
std::vector<std::filesystem::path>
FilesInTheMaking(const std::filesystem::path& folder = StoreFolder());

// The page size of the store's databases.
inline constexpr size_t kPageSize = 2048;

using Bytes = std::vector<unsigned char>;
Bytes ReadBytes(const std::filesystem::path& path);
void WriteBytes(const std::filesystem::path& path, const Bytes& bytes);

// The bytes of a text in UTF-16LE, without and with a leading byte order mark.
Bytes Utf16Bytes(std::wstring_view text);
Bytes Utf16FileBytes(std::wstring_view text);

// Wipes the folder of the company below the all-users application data before and after each test.
// Fails unless TSL_TEST_STORE_MAY_BE_WIPED=1 is set, so that no real store is lost by accident.
class StoreTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Makes the store folder, for tests that put files into it beforehand.
    static void MakeStoreFolder();

    // Makes a store of today's form, of which the last id was handed out: one without a counter
    // file is taken for an older one, which SetRecordingEnabled converts.
    static void MakeCounterFile(std::wstring_view lastId = L"00000000");
};

} // namespace tsl::test
