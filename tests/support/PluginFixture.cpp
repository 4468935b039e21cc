#include "tests/support/PluginFixture.h"

#include "component/host/CommandCodes.h"

namespace tsl::test {

void PluginTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    m_session.emplace();
    m_library.emplace((ProgramFolder() / L"TslIfDbActionLog.dll").wstring());
    m_plugin = m_library->CreatePlugin();
}

void PluginTest::TearDown() {
    m_plugin.Reset();
    if (m_library) {
        EXPECT_TRUE(m_library->CanUnload()) << "something of the component is still in use";
    }
    m_library.reset();
    m_session.reset();
    StoreTest::TearDown();
}

UINT32 PluginTest::NextId() {
    const ContainerBuilder request;
    CVariant answer;
    EXPECT_EQ(S_OK, Plugin().Request(kCommandNextRecordId, request, nullptr, answer.Address()));
    EXPECT_EQ(VT_UNKNOWN, answer.Type());
    if (answer.Type() != VT_UNKNOWN) return 0;
    CVariant id;
    auto* const container = static_cast<ITslParamContainer*>(answer.Get().punkVal);
    EXPECT_EQ(S_OK, container->GetValue(kKeyRecordId, id.Address()));
    EXPECT_EQ(VT_UI4, id.Type());
    return id.Get().ulVal;
}

} // namespace tsl::test
