// The container that an answer travels in: how it is made, and what becomes of its failures.
#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "console/PluginLibrary.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/StoreFixture.h"

namespace tsl::test {

namespace {

// Gives every creation what the test has ready; counts the creations.
class ScriptedFactory final : public IClassFactory {
public:
    HRESULT creationResult = S_OK;
    ScriptedContainer container{CTslParamContainer::Create()};
    int creations = 0;
    IUnknown* outer = nullptr;
    IID iid{};

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID asked, void** result) override {
        const bool known = asked == IID_IUnknown || asked == IID_IClassFactory;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outerObject, REFIID asked,
                                             void** result) override {
        ++creations;
        outer = outerObject;
        iid = asked;
        *result = nullptr;
        return FAILED(creationResult) ? creationResult : container.QueryInterface(asked, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }
};

} // namespace

// COM is initialised, but the host's container class is the test's own.
class AnswerContainer : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        m_plugin = m_library.CreatePlugin();
    }
    void TearDown() override {
        m_plugin.Reset();
        EXPECT_TRUE(m_library.CanUnload());
        EXPECT_EQ(1u, m_factory.container.References()) << "every reference is given back";
        Revoke();
        StoreTest::TearDown();
    }

    void Register() {
        ASSERT_EQ(S_OK, CoRegisterClassObject(CLSID_TslParamContainer, &m_factory,
                                              CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie));
    }
    void Revoke() {
        if (m_cookie) CoRevokeClassObject(m_cookie);
        m_cookie = 0;
    }
    HRESULT AskForId(VARIANT* result) {
        return m_plugin->Request(kCommandNextRecordId, ContainerBuilder(), nullptr, result);
    }
    // A request that fails and leaves the result as it was.
    void ExpectFailure(HRESULT expected) {
        CVariant answer = CVariant::FromUi4(42);
        EXPECT_EQ(expected, AskForId(answer.Address()));
        EXPECT_EQ(VT_UI4, answer.Type());
        EXPECT_EQ(42u, answer.Get().ulVal);
    }

    CComInitialization m_com;
    CPluginLibrary m_library{(ProgramFolder() / L"TslIfDbActionLog.dll").wstring()};
    CComPtr<ITslPluginDb2> m_plugin;
    ScriptedFactory m_factory;
    DWORD m_cookie = 0;
};

TEST_F(AnswerContainer, IsCreatedByTheHostsClass) {
    Register();
    CVariant answer;
    ASSERT_EQ(S_OK, AskForId(answer.Address()));
    EXPECT_EQ(1, m_factory.creations);
    EXPECT_EQ(nullptr, m_factory.outer);
    EXPECT_EQ(IID_ITslParamContainer, m_factory.iid);
}

TEST_F(AnswerContainer, CarriesTheCommandCodeAndTheValue) {
    Register();
    CVariant answer;
    ASSERT_EQ(S_OK, AskForId(answer.Address()));
    ASSERT_EQ(VT_UNKNOWN, answer.Type());
    EXPECT_EQ(2u, m_factory.container.References()) << "the answer holds one";
    UINT64 code = 0;
    EXPECT_EQ(S_OK, m_factory.container.GetCommandCode(&code));
    EXPECT_EQ(0x0400000102000000u, code);
    CVariant id;
    EXPECT_EQ(S_OK, m_factory.container.GetValue(0x0200002200000013, id.Address()));
    EXPECT_EQ(VT_UI4, id.Type());
    EXPECT_EQ(1u, id.Get().ulVal);
    CVariant keys;
    ASSERT_EQ(S_OK, m_factory.container.GetKeys(keys.Address()));
    EXPECT_EQ(1u, keys.Get().parray->rgsabound[0].cElements);
}

TEST_F(AnswerContainer, ReplacesWhatTheResultHeld) {
    Register();
    CVariant answer;
    answer.Address()->bstrVal = AllocateBstr(L"before");
    answer.Address()->vt = VT_BSTR;
    ASSERT_EQ(S_OK, AskForId(answer.Address()));
    EXPECT_EQ(VT_UNKNOWN, answer.Type());
}

TEST_F(AnswerContainer, IsNotCreatedForANullResult) {
    Register();
    EXPECT_EQ(E_POINTER, AskForId(nullptr));
    EXPECT_EQ(0, m_factory.creations);
}

TEST_F(AnswerContainer, ReportsThatTheClassIsMissing) {
    ExpectFailure(REGDB_E_CLASSNOTREG);
}

TEST_F(AnswerContainer, ReportsAFailedCreation) {
    Register();
    m_factory.creationResult = CO_E_SERVER_EXEC_FAILURE;
    ExpectFailure(CO_E_SERVER_EXEC_FAILURE);
}

TEST_F(AnswerContainer, ReportsARefusedCommandCodeAndSetsNoValue) {
    Register();
    m_factory.container.setCommandCodeResult = E_ACCESSDENIED;
    ExpectFailure(E_ACCESSDENIED);
    CVariant id;
    EXPECT_EQ(S_FALSE, m_factory.container.GetValue(0x0200002200000013, id.Address()));
}

TEST_F(AnswerContainer, ReportsARefusedValue) {
    Register();
    m_factory.container.setValueResult = DISP_E_TYPEMISMATCH;
    ExpectFailure(DISP_E_TYPEMISMATCH);
}

TEST_F(AnswerContainer, LeavesAGapInTheIdsWhenItFails) {
    Register();
    m_factory.container.setValueResult = E_FAIL;
    ExpectFailure(E_FAIL);
    m_factory.container.setValueResult = S_OK;
    CVariant answer;
    ASSERT_EQ(S_OK, AskForId(answer.Address()));
    CVariant id;
    EXPECT_EQ(S_OK, m_factory.container.GetValue(0x0200002200000013, id.Address()));
    EXPECT_EQ(2u, id.Get().ulVal);
}

} // namespace tsl::test
