// Base of the query tests: rows put into the store by an engine of the tests' own, the real DLL,
// and a counted container class. Each test must leave no container alive, no lock held and the DLL
// ready to be unloaded.
#pragma once

#include <string>
#include <vector>

#include "component/host/CommandCodes.h"
#include "console/ComInitialization.h"
#include "console/PluginLibrary.h"
#include "tests/support/Containers.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/HostContainers.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

inline constexpr HRESULT kEngineError = static_cast<HRESULT>(0x80041600);
inline constexpr HRESULT kEngineBusy = static_cast<HRESULT>(0x80041604);
inline constexpr HRESULT kEngineCorrupt = static_cast<HRESULT>(0x8004160A);
inline constexpr HRESULT kEngineCannotOpen = static_cast<HRESULT>(0x8004160D);
inline constexpr HRESULT kEngineNotADatabase = static_cast<HRESULT>(0x80041619);

// What of a row the tests choose. Texts are SQL literals.
struct StoredRow {
    INT64 id = 1;
    INT64 user = 7;
    double time = 1000.0; // PluginLoggedTime
    INT64 logKind = 1;
    std::string parameters = "''";
    std::string name = "'playItem'";
    INT64 app = 3;
    double appTime = 500.0;
};

using Ids = std::vector<UINT64>;
using AnswerContainers = std::vector<CComPtr<ITslParamContainer>>;

// The containers of an answer, in order. Fails the test when the VARIANT is no one-dimensional
// VT_ARRAY of VT_UNKNOWN with lower bound 0.
AnswerContainers Unpack(const VARIANT& answer);

// The value of a key; empty when it is absent.
CVariant ValueOf(ITslParamContainer& container, UINT64 key);
std::wstring TextOf(ITslParamContainer& container, UINT64 key);
std::vector<UINT64> KeysOf(ITslParamContainer& container);
UINT64 CodeOf(ITslParamContainer& container);

class QueryTest : public StoreTest {
protected:
    void SetUp() override;
    void TearDown() override;

    ITslPluginDb2& Plugin() { return *m_plugin; }
    HostContainers& Containers() { return m_containers; }

    // Puts rows into a table of the action log, which is made when it is missing.
    static void Store(const std::string& table, const std::vector<StoredRow>& rows);
    static void StoreLog(const std::vector<StoredRow>& rows) { Store(kActionLogRows, rows); }
    static void StoreTaken(const std::vector<StoredRow>& rows) { Store(kTakenRows, rows); }

    // The ids left in a table, in ascending order.
    static Ids IdsIn(const std::string& table);

    HRESULT Ask(UINT64 code, IUnknown* parameters, VARIANT* result) {
        return Plugin().Request(code, parameters, nullptr, result);
    }
    // The query succeeds with just these ids in this order, each in a container of its own.
    void ExpectIds(const Ids& expected, UINT64 code, IUnknown* parameters);
    // The query answers so and leaves its result as it was.
    void ExpectNoAnswer(HRESULT expected, UINT64 code, IUnknown* parameters);

private:
    CComInitialization m_com;
    CPluginLibrary m_library{(ProgramFolder() / L"TslIfDbActionLog.dll").wstring()};
    HostContainers m_containers;
    ClassRegistration m_registration;
    CComPtr<ITslPluginDb2> m_plugin;

public:
    QueryTest();
};

} // namespace tsl::test
