// Aggregated creation: the identity rules between an outer object and the plug-in inside it.
#include "component/host/CommandCodes.h"
#include "component/host/Identities.h"
#include "tests/component/HostDouble.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

namespace {

// {5E0C3C1B-6A1E-4E0B-9E55-0F3B7C8A2D44}: an interface of the outer object's own.
constexpr IID kOuterIid = {
    0x5E0C3C1B, 0x6A1E, 0x4E0B, {0x9E, 0x55, 0x0F, 0x3B, 0x7C, 0x8A, 0x2D, 0x44}};

// Answers for itself and hands everything else to the object inside. The test owns it; it only
// counts.
class OuterObject final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (iid != IID_IUnknown && iid != kOuterIid) return inner->QueryInterface(iid, result);
        *result = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
    CComPtr<IUnknown> inner;
};

} // namespace

class Aggregation : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ReleasePlugin();
        ASSERT_EQ(S_OK, Create(IID_IUnknown, m_outer.inner.PutVoid()));
    }
    void TearDown() override {
        EXPECT_EQ(1u, m_outer.references) << "every reference that was taken is given back";
        m_outer.inner.Reset();
        PluginTest::TearDown();
    }

    HRESULT Create(REFIID iid, void** result) {
        CComPtr<IClassFactory> factory;
        EXPECT_EQ(S_OK,
                  Library().ClassObject(CLSID_PluginDb, IID_IClassFactory, factory.PutVoid()));
        return factory->CreateInstance(&m_outer, iid, result);
    }
    CComPtr<ITslPluginDb2> Aggregated() {
        CComPtr<ITslPluginDb2> plugin;
        EXPECT_EQ(S_OK, m_outer.QueryInterface(IID_ITslPluginDb2, plugin.PutVoid()));
        return plugin;
    }

    OuterObject m_outer;
};

TEST_F(Aggregation, IsRefusedUnlessUnknownIsAskedFor) {
    for (const IID& iid : {IID_ITslPluginDb, IID_ITslPluginDb2, kOuterIid}) {
        void* created = &m_outer;
        EXPECT_EQ(CLASS_E_NOAGGREGATION, Create(iid, &created));
        EXPECT_EQ(nullptr, created);
    }
}

TEST_F(Aggregation, HoldsNoReferenceToTheOuterObject) {
    EXPECT_EQ(1u, m_outer.references);
}

TEST_F(Aggregation, GivesTheOuterObjectAnUnknownOfItsOwn) {
    EXPECT_NE(static_cast<IUnknown*>(&m_outer), m_outer.inner.Get());
    CComPtr<IUnknown> again;
    ASSERT_EQ(S_OK, m_outer.inner->QueryInterface(IID_IUnknown, again.PutVoid()));
    EXPECT_EQ(m_outer.inner.Get(), again.Get());
    EXPECT_EQ(1u, m_outer.references);
}

TEST_F(Aggregation, CountsReferencesToTheInnerUnknownByItself) {
    EXPECT_EQ(2u, m_outer.inner->AddRef());
    EXPECT_EQ(1u, m_outer.inner->Release());
    EXPECT_EQ(1u, m_outer.references);
}

TEST_F(Aggregation, DelegatesReferencesToTheOuterObject) {
    CComPtr<ITslPluginDb2> plugin = Aggregated();
    EXPECT_EQ(2u, m_outer.references);
    EXPECT_EQ(3u, plugin->AddRef());
    EXPECT_EQ(3u, m_outer.references);
    EXPECT_EQ(2u, plugin->Release());
    plugin.Reset();
    EXPECT_EQ(1u, m_outer.references);
    EXPECT_EQ(2u, m_outer.inner->AddRef()) << "only the outer object owns the inner one";
    m_outer.inner->Release();
}

TEST_F(Aggregation, DelegatesQueriesToTheOuterObject) {
    const CComPtr<ITslPluginDb2> plugin = Aggregated();
    for (const IID& iid : {IID_IUnknown, kOuterIid}) {
        CComPtr<IUnknown> found;
        ASSERT_EQ(S_OK, plugin->QueryInterface(iid, found.PutVoid()));
        EXPECT_EQ(static_cast<IUnknown*>(&m_outer), found.Get());
    }
    CComPtr<ITslPluginDb> base;
    ASSERT_EQ(S_OK, plugin->QueryInterface(IID_ITslPluginDb, base.PutVoid()));
    EXPECT_EQ(static_cast<ITslPluginDb*>(plugin.Get()), base.Get());
}

TEST_F(Aggregation, RefusesAnUnknownInterfaceAndANullOutPointer) {
    void* found = &m_outer;
    EXPECT_EQ(E_NOINTERFACE, m_outer.inner->QueryInterface(IID_IDispatch, &found));
    EXPECT_EQ(nullptr, found);
    EXPECT_EQ(E_POINTER, m_outer.inner->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(Aggregation, WorksAsThePluginDoes) {
    const CComPtr<ITslPluginDb2> plugin = Aggregated();
    EXPECT_EQ(S_OK, plugin->SetRecordingEnabled(1));
    CVariant answer;
    EXPECT_EQ(S_OK,
              plugin->Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address()));
    EXPECT_EQ(VT_UNKNOWN, answer.Type());
    EXPECT_EQ(S_OK, plugin->Notify(kCommandRecordAction, Action(1, L"playItem")));
    EXPECT_EQ(S_FALSE, plugin->SetHost(nullptr));
    EXPECT_EQ(S_OK, plugin->SetRecordingEnabled(0));
}

TEST_F(Aggregation, LetsTheModuleGoWithTheOuterObject) {
    Aggregated()->Reserved1();
    EXPECT_FALSE(Library().CanUnload());
    m_outer.inner.Reset();
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(Aggregation, ReleasesAHostThatCallsBackWithTheInnerObject) {
    HostDouble host;
    CComPtr<ITslPluginDb2> plugin = Aggregated();
    ITslPluginDb2& called = *plugin.Get();
    host.onRelease = [&] {
        called.AddRef();
        EXPECT_EQ(S_FALSE, called.SetHost(nullptr));
        called.Release();
    };
    ASSERT_EQ(S_OK, plugin->SetHost(&host));
    EXPECT_EQ(1u, host.Held());
    plugin.Reset();
    m_outer.inner.Reset();
    EXPECT_EQ(0u, host.Held());
    EXPECT_TRUE(Library().CanUnload());
}

} // namespace tsl::test
