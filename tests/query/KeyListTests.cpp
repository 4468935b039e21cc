// The list of keys that tells a range of ids from one of times, whatever the host gives for it.
#include <functional>

#include "tests/query/QueryFixture.h"

namespace tsl::test {

namespace {

// A container of user 7 whose key list is the test's own.
class ListedContainer final : public ITslParamContainer {
public:
    std::function<HRESULT(VARIANT*)> giveKeys;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID /*iid*/, void** found) override {
        *found = static_cast<ITslParamContainer*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE GetCommandCode(UINT64* /*code*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetCommandCode(UINT64 /*code*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetValue(UINT64 key, VARIANT* value) override {
        return m_values->GetValue(key, value);
    }
    HRESULT STDMETHODCALLTYPE SetValue(UINT64 /*key*/, VARIANT* /*value*/) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE RemoveValue(UINT64 /*key*/) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetKeys(VARIANT* keys) override { return giveKeys(keys); }

private:
    CComPtr<CTslParamContainer> m_values = ContainerBuilder().Ui4(kUser, 7).Get();
};

HRESULT GiveKeys(VARIANT* keys, VARTYPE type, const std::vector<ULONGLONG>& values,
                 LONG lowerBound = 0) {
    CVariant made = MakeArray<ULONGLONG>(values);
    made.Get().parray->rgsabound[0].lLbound = lowerBound;
    made.Address()->vt = type;
    return made.MoveTo(keys);
}

} // namespace

class KeyList : public QueryTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(QueryTest::SetUp());
        StoreLog({{.id = 1}, {.id = 2, .logKind = 16}});
    }
    // Only a range of ids goes by the log kind.
    void ExpectIdRange() { ExpectIds({1}, kAskForIds, &m_request); }
    void ExpectTimeRange() { ExpectIds({1, 2}, kAskForIds, &m_request); }

    ListedContainer m_request;
};

TEST_F(KeyList, WithEitherBoundChoosesTheIdRange) {
    for (const UINT64 bound : {kFirst, kLast}) {
        m_request.giveKeys = [&](VARIANT* keys) {
            return GiveKeys(keys, VT_ARRAY | VT_UI8, {kUser, bound});
        };
        ExpectIdRange();
    }
}

TEST_F(KeyList, MayStartAtAnyLowerBound) {
    m_request.giveKeys = [](VARIANT* keys) {
        return GiveKeys(keys, VT_ARRAY | VT_UI8, {kUser, kLast}, 3);
    };
    ExpectIdRange();
}

TEST_F(KeyList, WithoutBoundChoosesTheTimeRange) {
    m_request.giveKeys = [](VARIANT* keys) {
        return GiveKeys(keys, VT_ARRAY | VT_UI8, {kUser, 0, kFirst + 1, kFirst & 0xFFFFFFFF});
    };
    ExpectTimeRange();
    m_request.giveKeys = [](VARIANT* keys) { return GiveKeys(keys, VT_ARRAY | VT_UI8, {}); };
    ExpectTimeRange();
}

TEST_F(KeyList, ThatIsNoListChoosesTheTimeRange) {
    m_request.giveKeys = [](VARIANT* /*keys*/) { return S_OK; };
    ExpectTimeRange();
    m_request.giveKeys = [](VARIANT* keys) {
        keys->vt = VT_ARRAY | VT_UI8; // an array that is null
        return S_OK;
    };
    ExpectTimeRange();
    m_request.giveKeys = [](VARIANT* keys) { return CVariant::FromText(L"keys").MoveTo(keys); };
    ExpectTimeRange();
}

TEST_F(KeyList, ThatBeliesItsArrayChoosesTheTimeRange) {
    m_request.giveKeys = [](VARIANT* keys) {
        CVariant made = MakeArray<LONG>(std::vector<LONG>{static_cast<LONG>(kFirst)});
        made.Address()->vt = VT_ARRAY | VT_UI8;
        return made.MoveTo(keys);
    };
    ExpectTimeRange();
}

TEST_F(KeyList, ThatFailedIsNotLookedAt) {
    m_request.giveKeys = [](VARIANT* keys) {
        GiveKeys(keys, VT_ARRAY | VT_UI8, {kFirst});
        return E_FAIL;
    };
    ExpectTimeRange();
}

TEST_F(KeyList, ThatCannotBeHadForWantOfMemoryIsNotTakenForNone) {
    m_request.giveKeys = [](VARIANT*) { return E_OUTOFMEMORY; };
    ExpectNoAnswer(E_OUTOFMEMORY, kAskForIds, &m_request);
}

} // namespace tsl::test
