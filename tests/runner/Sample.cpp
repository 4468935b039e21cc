// Tests that end in each way a test can, for the tests of what runs them.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

int g_testsBefore = 0;

class CEndsBadly {
public:
    ~CEndsBadly() { _exit(7); }
};

// Where the file is there that SAMPLE_DIES_AT names: once, as if Wine had never begun with it.
const bool g_lives = [] {
    const char* const file = std::getenv("SAMPLE_DIES_AT");
    if (file && DeleteFileA(file)) TerminateProcess(GetCurrentProcess(), 3);
    return true;
}();

constexpr wchar_t kHanging[] = L"runner_sample_hangs";

bool IsOneHanging() {
    const HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, kHanging);
    if (event) CloseHandle(event);
    return event != nullptr;
}

} // namespace

class Sample : public ::testing::Test {
protected:
    void TearDown() override { ++g_testsBefore; }
};

TEST_F(Sample, APasses) {}

TEST_F(Sample, BFails) {
    EXPECT_EQ(1, 2) << "as it should";
}

TEST_F(Sample, CPassesOnlyAlone) {
    EXPECT_EQ(0, g_testsBefore);
}

TEST_F(Sample, DIsSkipped) {
    GTEST_SKIP() << "never possible";
}

TEST_F(Sample, EEndsTheProcessWithoutAWord) {
    ExitProcess(0);
}

TEST_F(Sample, FSpeaksAndCrashes) {
    std::puts("last words");
    std::fflush(stdout);
    *static_cast<volatile int*>(nullptr) = 1;
}

TEST_F(Sample, GHangs) {
    CreateEventW(nullptr, FALSE, FALSE, kHanging);
    Sleep(INFINITE);
}

TEST_F(Sample, HPrintsWithoutEndingItsLine) {
    std::printf("half a line");
    std::fflush(stdout);
}

TEST_F(Sample, IDiesAndLeavesAProcess) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring command = L"\"" + std::wstring(program) + L"\" --gtest_filter=*.GHangs";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES; // none: it prints nothing
    PROCESS_INFORMATION started{};
    ASSERT_TRUE(CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                               nullptr, &startup, &started));
    while (!IsOneHanging())
        Sleep(10);
    ExitProcess(0);
}

TEST_F(Sample, JFindsNoProcessThatHangs) {
    EXPECT_FALSE(IsOneHanging());
}

class SampleOf : public ::testing::TestWithParam<int> {};

TEST_P(SampleOf, Passes) {}

INSTANTIATE_TEST_SUITE_P(Some, SampleOf, ::testing::Values(3, 4),
                         [](const auto& number) { return "N" + std::to_string(number.param); });

TEST_F(Sample, ZPassesAtTheEnd) {}

TEST(Ending, IsBadAfterAllTestsHavePassed) {
    static const CEndsBadly endsBadly;
}
