// The object model beneath the plug-in: constructions that fail, and the end of an object.
#include <gtest/gtest.h>

#include <stdexcept>

#include "base/ComPtr.h"
#include "component/com/ComClassFactory.h"
#include "component/com/ComCoClass.h"

namespace tsl::test {

namespace {

constexpr CLSID kWitnessClsid = {
    0x2F6B5A90, 0x4C1D, 0x4B07, {0x8A, 0x11, 0x92, 0x5D, 0x6E, 0x3F, 0x70, 0xC8}};

// What every witness does and has done.
struct WitnessScript {
    HRESULT constructionResult = S_OK;
    void (*duringConstruction)(IUnknown* self) = nullptr;
    void (*duringRelease)(IUnknown* self) = nullptr;
    int alive = 0;
    int constructed = 0;
    int finallyReleased = 0;
};
WitnessScript g_script;

class CWitness : public CComObjectRootEx<CComMultiThreadModel>,
                 public CComCoClass<CWitness, &kWitnessClsid>,
                 public IPersist {
public:
    using ThreadModel = CComMultiThreadModel;

    CWitness() { ++g_script.alive; }
    ~CWitness() { --g_script.alive; }

    HRESULT FinalConstruct() {
        ++g_script.constructed;
        if (g_script.duringConstruction) g_script.duringConstruction(this);
        return g_script.constructionResult;
    }
    void FinalRelease() noexcept {
        ++g_script.finallyReleased;
        if (g_script.duringRelease) g_script.duringRelease(this);
    }
    IUnknown* FindInterface(REFIID iid) noexcept {
        return iid == IID_IUnknown || iid == IID_IPersist ? static_cast<IPersist*>(this) : nullptr;
    }
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* clsid) override {
        Lock();
        *clsid = ObjectClsid();
        Unlock();
        return S_OK;
    }
};

class Outer final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = iid == IID_IUnknown ? this : nullptr;
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

void TakeAndGiveBack(IUnknown* self) {
    self->AddRef();
    self->Release();
}

} // namespace

// Every test runs for an object on its own and for an aggregated one.
class ComLayer : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override { g_script = WitnessScript(); }
    void TearDown() override {
        EXPECT_EQ(0, g_script.alive);
        EXPECT_EQ(1u, m_outer.references);
        EXPECT_TRUE(g_comModule.CanUnload());
    }

    HRESULT Create(void** result) {
        return m_factory.CreateInstance(GetParam() ? &m_outer : nullptr, IID_IUnknown, result);
    }
    void ExpectFailedCreation(HRESULT expected) {
        void* created = this;
        EXPECT_EQ(expected, Create(&created));
        EXPECT_EQ(nullptr, created);
        EXPECT_EQ(1, g_script.constructed);
        EXPECT_EQ(0, g_script.alive);
        EXPECT_TRUE(g_comModule.CanUnload());
    }

    Outer m_outer;
    CComClassFactory m_factory{&CWitness::CreateInstance};
};

INSTANTIATE_TEST_SUITE_P(, ComLayer, ::testing::Bool(), [](const auto& tested) {
    return std::string(tested.param ? "Aggregated" : "Alone");
});

TEST_P(ComLayer, CreatesAnObjectThatHoldsTheModule) {
    CComPtr<IUnknown> created;
    ASSERT_EQ(S_OK, Create(created.PutVoid()));
    EXPECT_EQ(1, g_script.alive);
    EXPECT_FALSE(g_comModule.CanUnload());
    created.Reset();
    EXPECT_EQ(1, g_script.finallyReleased);
    EXPECT_EQ(0, g_script.alive);
}

TEST_P(ComLayer, ReturnsTheFailureOfTheConstruction) {
    g_script.constructionResult = HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_QUOTA);
    ExpectFailedCreation(HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_QUOTA));
}

TEST_P(ComLayer, TurnsExhaustedMemoryIntoItsResult) {
    g_script.duringConstruction = [](IUnknown*) { throw std::bad_alloc(); };
    ExpectFailedCreation(E_OUTOFMEMORY);
}

TEST_P(ComLayer, TurnsACarriedResultIntoItself) {
    g_script.duringConstruction = [](IUnknown*) { throw CHresultError(E_ACCESSDENIED); };
    ExpectFailedCreation(E_ACCESSDENIED);
}

TEST_P(ComLayer, TurnsAnyOtherExceptionIntoAFailure) {
    g_script.duringConstruction = [](IUnknown*) { throw std::runtime_error("unexpected"); };
    ExpectFailedCreation(E_FAIL);
}

TEST_P(ComLayer, SurvivesReferencesTakenDuringItsConstruction) {
    g_script.duringConstruction = TakeAndGiveBack;
    CComPtr<IUnknown> created;
    ASSERT_EQ(S_OK, Create(created.PutVoid()));
    EXPECT_EQ(1, g_script.alive);
    EXPECT_EQ(2u, created->AddRef());
    EXPECT_EQ(1u, created->Release());
}

TEST_P(ComLayer, EndsOnceThoughReferencesAreTakenDuringItsEnd) {
    g_script.duringRelease = TakeAndGiveBack;
    CComPtr<IUnknown> created;
    ASSERT_EQ(S_OK, Create(created.PutVoid()));
    created.Reset();
    EXPECT_EQ(1, g_script.finallyReleased);
}

TEST_P(ComLayer, HoldsTheModuleUntilItsEndIsOver) {
    static bool couldUnload;
    couldUnload = true;
    g_script.duringRelease = [](IUnknown*) { couldUnload = g_comModule.CanUnload(); };
    CComPtr<IUnknown> created;
    ASSERT_EQ(S_OK, Create(created.PutVoid()));
    created.Reset();
    EXPECT_FALSE(couldUnload);
    EXPECT_TRUE(g_comModule.CanUnload());
}

TEST(ComObject, HasACriticalSectionThatIsReady) {
    g_script = WitnessScript();
    CComPtr<IPersist> witness;
    ASSERT_EQ(S_OK, CWitness::CreateInstance(nullptr, IID_IPersist, witness.PutVoid()));
    CLSID clsid{};
    EXPECT_EQ(S_OK, witness->GetClassID(&clsid));
    EXPECT_EQ(kWitnessClsid, clsid);
}

TEST(ComObject, IsUndoneWhenItDoesNotHaveTheInterface) {
    g_script = WitnessScript();
    void* created = &g_script;
    EXPECT_EQ(E_NOINTERFACE, CWitness::CreateInstance(nullptr, IID_IStream, &created));
    EXPECT_EQ(nullptr, created);
    EXPECT_EQ(0, g_script.alive);
    EXPECT_TRUE(g_comModule.CanUnload());
}

} // namespace tsl::test
