// Tests that end in each way a test can, for the tests of what runs them.
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstdlib>

namespace {

int g_testsBefore = 0;

class CEndsBadly {
public:
    ~CEndsBadly() { _exit(7); }
};

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
    Sleep(INFINITE);
}

TEST_F(Sample, HPrintsWithoutEndingItsLine) {
    std::printf("half a line");
    std::fflush(stdout);
}

TEST_F(Sample, ZPassesAtTheEnd) {}

TEST(Ending, IsBadAfterAllTestsHavePassed) {
    static const CEndsBadly endsBadly;
}
