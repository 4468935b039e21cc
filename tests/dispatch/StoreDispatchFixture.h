// Base of the tests that dispatch actions to a store of their own, to see what the host is not
// told: log kind 1, the engine, and a counted container class that fails on demand.
#pragma once

#include "recording/ActionDispatch.h"

#include <memory>

#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "tests/dispatch/Tables.h"
#include "tests/recording/RecordStore.h"
#include "tests/support/Containers.h"
#include "tests/support/HostContainers.h"

namespace tsl::test {

class StoreDispatchTest : public RecordStoreTest {
protected:
    void TearDown() override {
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        EXPECT_EQ(0, m_containers.live) << "a container is still held";
        RecordStoreTest::TearDown();
    }

    HostContainers& Containers() { return m_containers; }
    void RevokeContainerClass() { m_class.reset(); }

    HRESULT Dispatch(ITslParamContainer* action) {
        return DispatchAction(Store(), m_target, *action);
    }

    // Makes the three tables, without rows, and forgets the containers that it took.
    void MakeTables() {
        ASSERT_EQ(S_OK, Dispatch(Action(1, L"deleteItem")));
        EmptyTables();
        m_containers.Restart();
    }

private:
    CComInitialization m_com;
    HostContainers m_containers;
    std::unique_ptr<ClassRegistration> m_class =
        std::make_unique<ClassRegistration>(CLSID_TslParamContainer, &m_containers);
};

} // namespace tsl::test
