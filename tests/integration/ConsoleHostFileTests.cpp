// tslhost.exe as a file that administrators run on what others have written.
#include <windows.h>

#include "tests/integration/PeFile.h"

namespace tsl::test {

namespace {

std::filesystem::path ConsoleHostPath() {
    return ProgramFolder() / L"tslhost.exe";
}

} // namespace

class ConsoleHostFile : public StoreTest {};

TEST_F(ConsoleHostFile, ExportsNothing) {
    const IMAGE_NT_HEADERS64 headers = PeFile(ConsoleHostPath()).Headers();
    EXPECT_EQ(0u, headers.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT].Size);
}

TEST_F(ConsoleHostFile, GuardsItsStackAndChecksItsContainers) {
    const PeFile file(ConsoleHostPath());
    EXPECT_GT(file.CallsOf("__stack_chk_fail"), 500u);
    EXPECT_GT(file.CallsOf("_ZSt21__glibcxx_assert_failPKciS0_S0_"), 100u);
}

TEST_F(ConsoleHostFile, ChecksCopiesIntoBuffersOfKnownSizes) {
    const PeFile file(ConsoleHostPath());
    // It takes the same option, but leaves no copy whose length is not known when it compiles.
    if (file.CallsOf("__clang_call_terminate") > 0) GTEST_SKIP() << "clang has nothing to check";
    EXPECT_GT(file.CallsOf("__memcpy_chk"), 0u);
}

} // namespace tsl::test
