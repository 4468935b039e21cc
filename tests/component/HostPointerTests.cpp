// SetHost: which host is held, by how many references, and when it is let go.
#include "tests/component/HostDouble.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

class HostPointer : public PluginTest {
protected:
    void TearDown() override {
        PluginTest::TearDown();
        EXPECT_EQ(0u, m_first.Held());
        EXPECT_EQ(0u, m_second.Held());
    }

    HostDouble m_first;
    HostDouble m_second;
};

TEST_F(HostPointer, NullIsAnsweredFalseWhenNoneWasHeld) {
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
}

TEST_F(HostPointer, IsTheResultOfAQueryAndHeldByOneReference) {
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(1, m_first.queries);
    EXPECT_EQ(1u, m_first.Held());
}

TEST_F(HostPointer, NullReleasesTheHeldHost) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    EXPECT_EQ(0u, m_first.Held());
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    EXPECT_EQ(0u, m_first.Held());
}

TEST_F(HostPointer, HeldHostIsTakenForGrantedWithoutAQuery) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(1, m_first.queries);
    EXPECT_EQ(1u, m_first.Held());
}

TEST_F(HostPointer, HeldHostUnderAnotherPointerIsQueriedAgain) {
    HostFace face(m_first);
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(S_OK, Plugin().SetHost(&face));
    EXPECT_EQ(2, m_first.queries);
    EXPECT_EQ(1u, m_first.Held());
}

TEST_F(HostPointer, AnotherHostReplacesTheHeldOne) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_second));
    EXPECT_EQ(0u, m_first.Held());
    EXPECT_EQ(1u, m_second.Held());
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(1u, m_first.Held());
    EXPECT_EQ(0u, m_second.Held());
}

TEST_F(HostPointer, FailedQueryLeavesNone) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    m_second.queryResult = E_NOINTERFACE;
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_second));
    EXPECT_EQ(0u, m_first.Held());
    EXPECT_EQ(0u, m_second.Held());
    EXPECT_EQ(1, m_second.queries);

    EXPECT_EQ(S_OK, Plugin().SetHost(&m_first)) << "none was held, so it is queried again";
    EXPECT_EQ(2, m_first.queries);
    EXPECT_EQ(1u, m_first.Held());
}

TEST_F(HostPointer, WhateverAFailedQueryLeavesBehindIsNotHeld) {
    m_first.queryResult = E_ACCESSDENIED;
    m_first.leftByFailedQuery = &m_first;
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_first));
    EXPECT_EQ(2, m_first.queries) << "nothing is held, so it is queried again";
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    EXPECT_EQ(1u, m_first.references) << "a reference that was never given is not given back";
    m_first.references = 1;
}

TEST_F(HostPointer, GoesWithThePlugin) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    ReleasePlugin();
    EXPECT_EQ(0u, m_first.Held());
}

TEST_F(HostPointer, IsOneForEachPlugin) {
    CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    ASSERT_EQ(S_OK, other->SetHost(&m_first));
    EXPECT_EQ(2u, m_first.Held());
    EXPECT_EQ(S_OK, other->SetHost(&m_second));
    EXPECT_EQ(1u, m_first.Held());
    EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr));
    EXPECT_EQ(1u, m_second.Held());
}

TEST_F(HostPointer, IsReplacedAlreadyWhenTheOldHostCallsBack) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    HRESULT seen = E_UNEXPECTED;
    m_first.onRelease = [&] { seen = Plugin().SetHost(&m_second); };
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_second));
    EXPECT_EQ(S_OK, seen);
    EXPECT_EQ(0u, m_first.Held());
    EXPECT_EQ(1u, m_second.Held());
    EXPECT_EQ(1, m_second.queries) << "it was held when the old host called back";
}

TEST_F(HostPointer, MayBeSetToNullByTheOldHost) {
    ASSERT_EQ(S_OK, Plugin().SetHost(&m_first));
    m_first.onRelease = [&] { EXPECT_EQ(S_FALSE, Plugin().SetHost(nullptr)); };
    EXPECT_EQ(S_OK, Plugin().SetHost(&m_second));
    EXPECT_EQ(0u, m_first.Held());
    EXPECT_EQ(0u, m_second.Held());
}

} // namespace tsl::test
