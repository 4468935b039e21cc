// The container that a record id is answered in, and answers that cannot be made.
#include "recording/RecordIds.h"

#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "tests/recording/RecordStore.h"
#include "tests/support/ComSession.h"
#include "tests/support/Containers.h"
#include "tests/support/Failures.h"

namespace tsl::test {

namespace {

// The host's container class, as the test wants it.
class ScriptedClass final : public IClassFactory {
public:
    explicit ScriptedClass(ITslParamContainer& instance) : m_instance(instance) {
        const HRESULT registered = CoRegisterClassObject(
            CLSID_TslParamContainer, this, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &m_cookie);
        if (FAILED(registered)) throw CHresultError(registered);
    }
    ScriptedClass(const ScriptedClass&) = delete;
    ScriptedClass& operator=(const ScriptedClass&) = delete;
    ~ScriptedClass() { CoRevokeClassObject(m_cookie); }

    HRESULT createResult = S_OK;
    unsigned created = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        const bool known = iid == IID_IUnknown || iid == IID_IClassFactory;
        *result = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
        *result = nullptr;
        EXPECT_EQ(nullptr, outer);
        EXPECT_TRUE(iid == IID_ITslParamContainer || iid == IID_IUnknown);
        if (FAILED(createResult)) return createResult;
        ++created;
        return m_instance.QueryInterface(iid, result);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL /*lock*/) override { return S_OK; }

private:
    ITslParamContainer& m_instance;
    DWORD m_cookie = 0;
};

CVariant Text(std::wstring_view text) {
    CVariant value;
    value.Address()->bstrVal = AllocateBstr(text);
    value.Address()->vt = VT_BSTR;
    return value;
}

} // namespace

class RecordIdAnswer : public RecordStoreTest {
protected:
    HRESULT Next(CVariant& answer) {
        return NextRecordId(Store(), ContainerBuilder(), answer.Address());
    }

    // Requests an id and expects the failure, an untouched result and a free lock.
    void ExpectNoAnswer(HRESULT result) {
        CVariant answer;
        EXPECT_EQ(result, Next(answer));
        EXPECT_EQ(VT_EMPTY, answer.Type());
        EXPECT_TRUE(MutexIsFree(kLogIdMutexName));
    }

    CTslParamContainer& Values() { return *m_values.Get(); }
    ScriptedContainer& Instance() { return m_instance; }

private:
    CComInitialization m_com;
    CComPtr<CTslParamContainer> m_values = CTslParamContainer::Create();
    ScriptedContainer m_instance{m_values};
};

TEST_F(RecordIdAnswer, HoldsTheIdAndTheCommand) {
    ScriptedClass containers(Instance());
    CVariant answer;
    ASSERT_EQ(S_OK, Next(answer));
    EXPECT_EQ(1u, containers.created);
    ASSERT_EQ(VT_UNKNOWN, answer.Type());
    EXPECT_EQ(static_cast<IUnknown*>(&Instance()), answer.Get().punkVal);

    UINT64 command = 0;
    EXPECT_EQ(S_OK, Values().GetCommandCode(&command));
    EXPECT_EQ(0x0400000102000000u, command);
    CVariant id;
    EXPECT_EQ(S_OK, Values().GetValue(0x0200002200000013, id.Address()));
    EXPECT_EQ(VT_UI4, id.Type());
    EXPECT_EQ(1u, id.Get().ulVal);
    CVariant keys;
    EXPECT_EQ(S_OK, Values().GetKeys(keys.Address()));
    EXPECT_EQ(1u, keys.Get().parray->rgsabound[0].cElements) << "nothing else is answered";
}

TEST_F(RecordIdAnswer, BelongsToTheCallerAlone) {
    const ScriptedClass containers(Instance());
    {
        CVariant answer;
        ASSERT_EQ(S_OK, Next(answer));
        EXPECT_EQ(2u, Instance().References()) << "the result's reference, and the test's";
    }
    EXPECT_EQ(1u, Instance().References());
}

TEST_F(RecordIdAnswer, ReplacesWhatTheResultHolds) {
    const ScriptedClass containers(Instance());
    CVariant answer = Text(L"left over");
    ASSERT_EQ(S_OK, Next(answer));
    EXPECT_EQ(VT_UNKNOWN, answer.Type());
}

TEST_F(RecordIdAnswer, NeedsAResult) {
    const ScriptedClass containers(Instance());
    EXPECT_EQ(E_POINTER, NextRecordId(Store(), ContainerBuilder(), nullptr));
    EXPECT_EQ(0u, containers.created);
    EXPECT_TRUE(MutexIsFree(kLogIdMutexName));
}

TEST_F(RecordIdAnswer, FailsWithTheCreation) {
    ScriptedClass containers(Instance());
    containers.createResult = kFailure;
    ExpectNoAnswer(kFailure);
}

TEST_F(RecordIdAnswer, FailsWithoutTheClass) {
    ExpectNoAnswer(REGDB_E_CLASSNOTREG);
}

TEST_F(RecordIdAnswer, FailsWithTheCommandCodeBeforeAnyValueIsSet) {
    const ScriptedClass containers(Instance());
    Instance().setCommandCodeResult = kFailure;
    ExpectNoAnswer(kFailure);
    CVariant id;
    EXPECT_EQ(S_FALSE, Values().GetValue(kKeyRecordId, id.Address()));
    EXPECT_EQ(1u, Instance().References());
}

TEST_F(RecordIdAnswer, FailsWithTheValue) {
    const ScriptedClass containers(Instance());
    Instance().setValueResult = kFailure;
    ExpectNoAnswer(kFailure);
    EXPECT_EQ(1u, Instance().References());
}

TEST_F(RecordIdAnswer, LeavesAGapInTheIdsWhenItFails) {
    ScriptedClass containers(Instance());
    containers.createResult = kFailure;
    ExpectNoAnswer(kFailure);
    EXPECT_EQ(Utf16FileBytes(L"00000001\t\r\n"), ReadBytes(CounterPath()));
    containers.createResult = S_OK;
    CVariant answer;
    EXPECT_EQ(S_OK, Next(answer));
    EXPECT_EQ(Utf16FileBytes(L"00000002\t\r\n"), ReadBytes(CounterPath()));
}

} // namespace tsl::test
