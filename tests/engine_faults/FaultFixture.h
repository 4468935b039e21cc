// Base of the tests whose engine fails: the component's copy with the stand-in, the host's classes,
// and a store of which every operation starts from the same files.
#pragma once

#include <memory>
#include <optional>

#include "component/host/Identities.h"
#include "console/ComInitialization.h"
#include "tests/engine_faults/EngineStandIn.h"
#include "tests/engine_faults/FaultRules.h"
#include "tests/engine_faults/StoreSnapshot.h"
#include "tests/query/SinkClass.h"
#include "tests/support/ContentStoreDouble.h"
#include "tests/support/HostContainers.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

// "untouched", or each value of each container in order; nothing for an empty array.
using Answer = std::vector<std::string>;
inline const Answer kNoAnswer = {"untouched"};

// What a host sees of an operation.
struct Performed {
    HRESULT result = S_OK;
    Answer answer;
};

// What a run without a fault starts from, answers and leaves.
struct Learned {
    StoreSnapshot before;
    StoreContents after;
    Answer answer;
    std::vector<int> calls; // of each function
};

class EngineFaultTest : public StoreTest {
protected:
    void SetUp() override;
    void TearDown() override;

    // Puts a component with another stand-in in the place of the one there is.
    void UseEngineWithout(EngineEntry leftOut);
    EngineStandIn& Engine() { return *m_engine; }
    ITslPluginDb2& Plugin() { return *m_plugin; }
    void ReleasePlugin() { m_plugin.Reset(); }

    // Makes the files from which an operation starts and performs it without a fault.
    void Learn(const Operation& operation);
    const Learned& WhatWasLearned() const { return m_learned; }
    void Recall(const Learned& learned) { m_learned = learned; }

    // Performs it with the fault, or with none, and counts the calls.
    Performed Perform(const Operation& operation, const EngineFault& fault = {});

    // What the store holds after the stages that are done.
    StoreContents After(const Operation& operation, StoreContents contents,
                        const std::vector<bool>& done) const;

    // No connection, statement, lock or container is left.
    void ExpectNothingIsLeft();
    static void ExpectLocksAreFree() {
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        EXPECT_TRUE(MutexIsFree(kLogIdLock));
    }

private:
    CComInitialization m_com;
    HostContainers m_containers;
    ClassRegistration m_containerClass{CLSID_TslParamContainer, &m_containers};
    SinkClass m_sink;
    ClassRegistration m_sinkRegistration{CLSID_TslContentPropertySink, &m_sink};
    ContentStoreDouble m_contentStore;
    ContentStoreClass m_contentStoreClass{m_contentStore};
    ClassRegistration m_contentStoreRegistration{CLSID_TslContentStore, &m_contentStoreClass};

    std::optional<EngineStandIn> m_engine;
    CComPtr<ITslPluginDb2> m_plugin;
    Learned m_learned;
};

} // namespace tsl::test
