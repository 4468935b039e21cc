// Base of the tests that write records or issue ids: one store with the engine, nothing on disk.
#pragma once

#include <optional>

#include "store/ActionLogStore.h"
#include "store/Target.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

class RecordStoreTest : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        m_store.emplace(GetModuleHandleW(nullptr));
        ASSERT_NE(nullptr, m_store->Engine());
    }
    void TearDown() override {
        m_store.reset();
        StoreTest::TearDown();
    }

    const CActionLogStore& Store() { return *m_store; }

    // The single value that a query of the action log yields.
    static std::string Logged(const std::string& sql) {
        return FileDatabase(ActionLogPath()).Value(sql);
    }
    static std::string RowCount() { return Logged("SELECT COUNT(*) FROM TslIf_DbActionLog"); }

    // What is written to unless a test wants something else.
    Target m_target{kActionLogFileName, kActionLogTable, /*logKind=*/1};

private:
    std::optional<const CActionLogStore> m_store;
};

} // namespace tsl::test
