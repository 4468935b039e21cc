// An empty folder of the test's own, and what the tests here ask of files in it.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "base/Handle.h"
#include "tests/files/SystemCalls.h"
#include "tests/support/EveryoneAccess.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

// Each test finds the folder empty and all system calls let through.
class ScratchTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Without a trailing backslash.
    const std::filesystem::path& Scratch() const { return m_folder; }
    // The path of something in the folder.
    std::wstring At(std::wstring_view name) const { return (m_folder / name).wstring(); }

private:
    SystemCallsReset m_reset;
    std::filesystem::path m_folder;
};

// Another current directory until it goes.
class CurrentDirectory {
public:
    explicit CurrentDirectory(const std::filesystem::path& path)
        : m_before(std::filesystem::current_path()) {
        EXPECT_TRUE(SetCurrentDirectoryW(path.c_str()));
    }
    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;
    ~CurrentDirectory() { EXPECT_TRUE(SetCurrentDirectoryW(m_before.c_str())); }

private:
    std::filesystem::path m_before;
};

// Opens a file for nobody else, as another process would that is at work on it.
CHandle OpenExclusively(const std::wstring& path);

// A path of exactly the given length below the folder; no name in it is too long for a file system.
std::wstring PathOfLength(const std::filesystem::path& folder, size_t length);

} // namespace tsl::test
