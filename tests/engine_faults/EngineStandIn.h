// A copy of the component whose engine is the stand-in, with the real engine behind it.
#pragma once

#include "base/LoadedLibrary.h"
#include "console/PluginLibrary.h"
#include "tests/engine_faults/StandInState.h"
#include "tests/support/ComponentCopy.h"

namespace tsl::test {

// Release every object of the component first. Used by one thread.
class EngineStandIn {
public:
    // Leaves a function of the engine out, if one is named. Throws std::runtime_error.
    explicit EngineStandIn(EngineEntry leftOut = EngineEntry::None);
    EngineStandIn(const EngineStandIn&) = delete;
    EngineStandIn& operator=(const EngineStandIn&) = delete;
    ~EngineStandIn() { ReleaseLeftOpen(); }

    const CPluginLibrary& Component() const { return m_component; }

    // Sets the fault that is to come, or none, and counts from here on.
    void Arm(const EngineFault& fault);
    void Disarm() { Arm({}); }
    const StandInState& State() const { return *m_state; }

    // Ends the statements and connections that the component left open.
    void ReleaseLeftOpen() { m_releaseLeftOpen(); }

private:
    // The copy with its engine made ready.
    struct Copy : ComponentCopy {
        explicit Copy(EngineEntry leftOut);
        std::wstring RealEngine() const;
        std::wstring Component() const;
    };

    Copy m_copy;
    CLoadedLibrary m_realEngine;
    CLoadedLibrary m_standIn;
    CPluginLibrary m_component;
    StandInState* m_state = nullptr;
    void (*m_releaseLeftOpen)() = nullptr;
};

} // namespace tsl::test
