#include "tests/query/QueryFixture.h"

#include <cstdio>

#include "component/host/Identities.h"

namespace tsl::test {

namespace {

constexpr char kColumns[] =
    "(ActionLogId INTEGER, UsedLog INTEGER, AppId INTEGER, AppName TEXT, UserId INTEGER, "
    "ActionName TEXT, ActionParameters TEXT, AppLoggedTime REAL, PluginLoggedTime REAL, "
    "PreActionName TEXT, PreActionParameters TEXT, PreLoggedTime INTEGER, LogKind INTEGER)";

std::string Real(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string ValuesText(const StoredRow& row) {
    return "(" + std::to_string(row.id) + ", 0, " + std::to_string(row.app) + ", NULL, " +
           std::to_string(row.user) + ", " + row.name + ", " + row.parameters + ", " +
           Real(row.appTime) + ", " + Real(row.time) + ", NULL, NULL, 0, " +
           std::to_string(row.logKind) + ")";
}

} // namespace

AnswerContainers Unpack(const VARIANT& answer) {
    AnswerContainers containers;
    EXPECT_EQ(0x200D, answer.vt);
    if (answer.vt != 0x200D || !answer.parray) return containers;
    EXPECT_EQ(1u, SafeArrayGetDim(answer.parray));
    EXPECT_EQ(0, answer.parray->rgsabound[0].lLbound);
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(answer.parray, &type));
    EXPECT_EQ(VT_UNKNOWN, type);
    const LONG count = static_cast<LONG>(answer.parray->rgsabound[0].cElements);
    for (LONG index = 0; index < count; ++index) {
        CComPtr<IUnknown> element;
        EXPECT_EQ(S_OK, SafeArrayGetElement(answer.parray, &index, element.Put()));
        auto container = QueryFor<ITslParamContainer>(element.Get(), IID_ITslParamContainer);
        EXPECT_TRUE(container);
        if (container) containers.push_back(std::move(container));
    }
    return containers;
}

CVariant ValueOf(ITslParamContainer& container, UINT64 key) {
    CVariant value;
    container.GetValue(key, value.Address());
    return value;
}

std::wstring TextOf(ITslParamContainer& container, UINT64 key) {
    const CVariant value = ValueOf(container, key);
    EXPECT_EQ(VT_BSTR, value.Type());
    return value.Type() == VT_BSTR ? std::wstring(BstrView(value.Get().bstrVal)) : L"(no text)";
}

std::vector<UINT64> KeysOf(ITslParamContainer& container) {
    CVariant keys;
    EXPECT_EQ(S_OK, container.GetKeys(keys.Address()));
    CValueView<ULONGLONG> view;
    EXPECT_EQ(S_OK, view.Open(*keys.Address()));
    return {view.Values().begin(), view.Values().end()};
}

UINT64 CodeOf(ITslParamContainer& container) {
    UINT64 code = 0;
    EXPECT_EQ(S_OK, container.GetCommandCode(&code));
    return code;
}

QueryTest::QueryTest() : m_registration(CLSID_TslParamContainer, &m_containers) {}

void QueryTest::SetUp() {
    ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
    m_plugin = m_library.CreatePlugin();
    // Looks for a store of the older form, and leaves an empty file behind.
    ASSERT_EQ(S_OK, Plugin().SetRecordingEnabled(1));
    std::filesystem::remove(ActionLogPath());
}

void QueryTest::TearDown() {
    EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
    EXPECT_TRUE(MutexIsFree(kLogIdLock));
    EXPECT_EQ(0, m_containers.live) << "a reference to a container was not given back";
    m_plugin.Reset();
    EXPECT_TRUE(m_library.CanUnload()) << "something of the component is still in use";
    StoreTest::TearDown();
}

void QueryTest::Store(const std::string& table, const std::vector<StoredRow>& rows) {
    MakeStoreFolder();
    const FileDatabase database(ActionLogPath(), /*create=*/true);
    database.Query("CREATE TABLE IF NOT EXISTS " + table + " " + kColumns);
    database.Query("BEGIN");
    for (const StoredRow& row : rows)
        database.Query("INSERT INTO " + table + " VALUES " + ValuesText(row));
    database.Query("COMMIT");
}

Ids QueryTest::IdsIn(const std::string& table) {
    Ids ids;
    for (const Row& row : FileDatabase(ActionLogPath())
                              .Query("SELECT ActionLogId FROM " + table + " ORDER BY ActionLogId"))
        ids.push_back(std::stoull(row[0].value_or("0")));
    return ids;
}

void QueryTest::ExpectIds(const Ids& expected, UINT64 code, IUnknown* parameters) {
    const bool all = code == 0x0400000b01000000;
    const UINT64 key = all ? 0x0200001000000015 : 0x0200002200000013;
    CVariant answer = CVariant::FromText(L"replaced");
    ASSERT_EQ(S_OK, Ask(code, parameters, answer.Address()));
    Ids found;
    for (const auto& container : Unpack(answer.Get())) {
        EXPECT_EQ(code, CodeOf(*container));
        EXPECT_EQ(std::vector<UINT64>{key}, KeysOf(*container));
        const CVariant value = ValueOf(*container, key);
        EXPECT_EQ(all ? VT_UI8 : VT_UI4, value.Type());
        found.push_back(all ? value.Get().ullVal : value.Get().ulVal);
    }
    EXPECT_EQ(expected, found);
}

void QueryTest::ExpectNoAnswer(HRESULT expected, UINT64 code, IUnknown* parameters) {
    CVariant answer = CVariant::FromUi4(42);
    EXPECT_EQ(expected, Ask(code, parameters, answer.Address()));
    EXPECT_EQ(VT_UI4, answer.Type());
    EXPECT_EQ(42u, answer.Get().ulVal);
}

} // namespace tsl::test
