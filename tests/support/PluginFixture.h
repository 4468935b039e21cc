// Base of every test that drives the real DLL through its class factory. Each test must leave the
// DLL ready to be unloaded.
#pragma once

#include <optional>

#include "console/PluginLibrary.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class PluginTest : public StoreTest {
protected:
    void SetUp() override;
    // Releases the plug-in, proves that the module can be unloaded, and unloads it.
    void TearDown() override;

    CPluginLibrary& Library() { return *m_library; }
    ITslPluginDb2& Plugin() { return *m_plugin.Get(); }
    void ReleasePlugin() { m_plugin.Reset(); }

    // The next record id by way of the interface; fails the test when there is none.
    UINT32 NextId();

private:
    std::optional<ComSession> m_session;
    std::optional<CPluginLibrary> m_library;
    CComPtr<ITslPluginDb2> m_plugin;
};

} // namespace tsl::test
