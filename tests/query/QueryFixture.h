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
#include "tests/support/Failures.h"
#include "tests/support/FileDatabase.h"
#include "tests/support/HostContainers.h"
#include "tests/support/StoreChecks.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

// Command codes and keys as hosts send them: numbers, not taken from the code under test.
inline constexpr UINT64 kAskForIds = 0x0400000801000000;
inline constexpr UINT64 kAskForAllIds = 0x0400000b01000000;
inline constexpr UINT64 kAskForRecords = 0x0400000901000000;
inline constexpr UINT64 kTake = 0x0400000501000000;
inline constexpr UINT64 kUser = 0x0200002100000013;
inline constexpr UINT64 kStart = 0x0200001600000007;
inline constexpr UINT64 kEnd = 0x0200001700000007;
inline constexpr UINT64 kFirst = 0x0200001800000013;
inline constexpr UINT64 kLast = 0x0200001900000013;
inline constexpr UINT64 kIdList = 0x0200002300002013;
inline constexpr UINT64 kIdToTake = 0x0200001100002015;

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
