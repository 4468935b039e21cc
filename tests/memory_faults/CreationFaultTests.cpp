// Memory runs out while an object is created or told of its host: there is an object that works, or
// none.
#include "tests/component/HostDouble.h"
#include "tests/memory_faults/MemoryFaultFixture.h"

namespace tsl::test {

namespace {

// Holds the object inside; the test owns it.
class OuterObject final : public IUnknown {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = iid == IID_IUnknown ? this : nullptr;
        if (*result) AddRef();
        return *result ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }

    ULONG references = 1;
};

// An out-pointer that nobody touched.
IUnknown* const kUntouched = reinterpret_cast<IUnknown*>(~UINT_PTR{15});

const std::vector<AllowedResult> kOfCreations = {
    {HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY), "InitializeCriticalSectionAndSpinCount",
     "the system's own error"},
};

} // namespace

class CreationFaults : public MemoryFaultTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(MemoryFaultTest::SetUp());
        ReleasePlugin();
    }
    void Create(const char* name, IUnknown* outer, REFIID iid) {
        CComPtr<IClassFactory> factory;
        ASSERT_EQ(S_OK,
                  Library().ClassObject(CLSID_PluginDb, IID_IClassFactory, factory.PutVoid()));
        IUnknown* created = nullptr;
        FailEachAllocation({
            .name = name,
            .prepare =
                [&] {
                    // Of the rounds that are not checked.
                    CComPtr<IUnknown>::FromOwned(std::exchange(created, nullptr));
                },
            .run = [&] { return factory->CreateInstance(outer, iid, PutCreated(created)); },
            .allowed = kOfCreations,
            .check = [&](const Outcome& outcome) { ExpectObject(outcome, created, outer); },
            .countHandles = true,
        });
        CComPtr<IUnknown>::FromOwned(std::exchange(created, nullptr));
    }

private:
    static void** PutCreated(IUnknown*& created) {
        created = kUntouched;
        return reinterpret_cast<void**>(&created);
    }
    void ExpectObject(const Outcome& outcome, IUnknown*& created, IUnknown* outer) {
        ASSERT_NE(kUntouched, created);
        if (FAILED(outcome.result)) {
            EXPECT_EQ(nullptr, created);
            return;
        }
        auto object = CComPtr<IUnknown>::FromOwned(std::exchange(created, nullptr));
        CComPtr<ITslPluginDb2> plugin;
        ASSERT_EQ(S_OK, object->QueryInterface(IID_ITslPluginDb2, plugin.PutVoid()));
        CVariant answer;
        EXPECT_EQ(S_OK, plugin->Request(kCommandNextRecordId, ContainerBuilder(), nullptr,
                                        answer.Address()));
        // An object whose engine could not be had works but for its databases.
        const HRESULT queried =
            plugin->Request(kCommandQueryAllIds, ContainerBuilder(), nullptr, answer.Address());
        const bool hasEngine =
            !outcome.FailedIn("CreateActCtxW") && !outcome.FailedIn("LoadLibraryW");
        EXPECT_EQ(hasEngine ? E_INVALIDARG : E_POINTER, queried);
        if (outer) outer->AddRef(), outer->Release();
    }
};

TEST_F(CreationFaults, GiveAnObjectThatWorksOrNone) {
    Create("creation", nullptr, IID_ITslPluginDb2);
}

TEST_F(CreationFaults, GiveAnAggregatedObjectThatWorksOrNone) {
    OuterObject outer;
    Create("aggregated creation", &outer, IID_IUnknown);
    EXPECT_EQ(1u, outer.references);
}

TEST_F(CreationFaults, AlwaysGiveTheFactory) {
    CComPtr<IClassFactory> factory;
    FailEachAllocation({
        .name = "class object",
        .prepare = {},
        .run =
            [&] {
                return Library().ClassObject(CLSID_PluginDb, IID_IClassFactory, factory.PutVoid());
            },
        .allowed = {},
        .check = [&](const Outcome&) { EXPECT_TRUE(factory); },
    });
}

TEST_F(CreationFaults, AlwaysTakeTheHost) {
    HostDouble host;
    RenewPlugin(1);
    FailEachAllocation({
        .name = "host",
        .prepare = [&] { Plugin().SetHost(nullptr); },
        .run = [&] { return Plugin().SetHost(&host); },
        .allowed = {},
        .check = [&](const Outcome&) { EXPECT_EQ(1u, host.Held()); },
    });
    Plugin().SetHost(nullptr);
    EXPECT_EQ(0u, host.Held());
}

} // namespace tsl::test
