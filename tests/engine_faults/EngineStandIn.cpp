#include "tests/engine_faults/EngineStandIn.h"

#include <stdexcept>

#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace fs = std::filesystem;

EngineStandIn::Copy::Copy(EngineEntry leftOut) {
    AddEngine();
    fs::rename(EngineLibrary(), RealEngine());
    fs::copy_file(ProgramFolder() / L"engine-stand-in" / L"SQLite3.dll", EngineLibrary());
    if (leftOut != EngineEntry::None) RenameEngineExport(NameOf(leftOut));
}

std::wstring EngineStandIn::Copy::RealEngine() const {
    return EngineLibrary().parent_path() / L"RealEngine.dll";
}

std::wstring EngineStandIn::Copy::Component() const {
    return EngineLibrary().parent_path().parent_path() / L"TslIfDbActionLog.dll";
}

EngineStandIn::EngineStandIn(EngineEntry leftOut)
    : m_copy(leftOut), m_realEngine(m_copy.RealEngine()),
      m_standIn(m_copy.EngineLibrary().wstring()), m_component(m_copy.Component()) {
    if (!m_realEngine || !m_standIn) throw std::runtime_error("an engine cannot be loaded");
    const HMODULE realEngine = GetModuleHandleW(m_copy.RealEngine().c_str());
    const auto useEngine = m_standIn.Find<bool (*)(HMODULE)>("use_engine");
    if (!useEngine || !useEngine(realEngine)) throw std::runtime_error("no stand-in or no engine");
    for (int index = 0; index < kEntryCount; ++index) {
        const bool isLeftOut = index == static_cast<int>(leftOut);
        if ((m_standIn.Find<FARPROC>(kEntryNames[index]) == nullptr) != isLeftOut) {
            throw std::runtime_error(std::string(kEntryNames[index]) + " is left out wrongly");
        }
    }
    m_state = m_standIn.Find<StandInState* (*)()>("fault_state")();
    m_releaseLeftOpen = m_standIn.Find<void (*)()>("release_left_open");
}

void EngineStandIn::Arm(const EngineFault& fault) {
    const int connections = m_state->openConnections;
    const int statements = m_state->openStatements;
    *m_state = StandInState();
    m_state->fault = fault;
    m_state->openConnections = connections;
    m_state->openStatements = statements;
}

} // namespace tsl::test
