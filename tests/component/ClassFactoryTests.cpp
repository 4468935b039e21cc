// The class factory: what DllGetClassObject hands out and what it creates.
#include "component/host/Identities.h"
#include "tests/support/PluginFixture.h"

namespace tsl::test {

namespace {

constexpr IID kUnknownIid = {
    0x7A0B4E52, 0x0D1C, 0x4C5E, {0x9B, 0x2F, 0x51, 0x6A, 0x33, 0x80, 0xC4, 0x1D}};

// What an out-pointer holds before a call that must null it.
void* Garbage() {
    static int target;
    return &target;
}

} // namespace

class ClassFactory : public PluginTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(PluginTest::SetUp());
        ReleasePlugin();
        ASSERT_TRUE(Library().CanUnload());
    }

    CComPtr<IClassFactory> Factory() {
        CComPtr<IClassFactory> factory;
        EXPECT_EQ(S_OK,
                  Library().ClassObject(CLSID_PluginDb, IID_IClassFactory, factory.PutVoid()));
        return factory;
    }
};

TEST_F(ClassFactory, IsNotAvailableForAnyOtherClass) {
    for (const CLSID& clsid : {CLSID_TslParamContainer, IID_ITslPluginDb2, GUID_NULL}) {
        void* result = Garbage();
        EXPECT_EQ(CLASS_E_CLASSNOTAVAILABLE,
                  Library().ClassObject(clsid, IID_IClassFactory, &result));
        EXPECT_EQ(nullptr, result);
    }
}

TEST_F(ClassFactory, AnswersForUnknownAndForClassFactoryOnly) {
    for (const IID& iid : {IID_IUnknown, IID_IClassFactory}) {
        CComPtr<IUnknown> factory;
        EXPECT_EQ(S_OK, Library().ClassObject(CLSID_PluginDb, iid, factory.PutVoid()));
        EXPECT_TRUE(factory);
    }
    for (const IID& iid : {kUnknownIid, IID_ITslPluginDb2, IID_IDispatch}) {
        void* result = Garbage();
        EXPECT_EQ(E_NOINTERFACE, Library().ClassObject(CLSID_PluginDb, iid, &result));
        EXPECT_EQ(nullptr, result);
    }
}

TEST_F(ClassFactory, RefusesANullOutPointer) {
    EXPECT_EQ(E_POINTER, Library().ClassObject(CLSID_PluginDb, IID_IClassFactory, nullptr));
    const CComPtr<IClassFactory> factory = Factory();
    EXPECT_EQ(E_POINTER, factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, factory->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(ClassFactory, IsTheSameOneEachTime) {
    const CComPtr<IClassFactory> first = Factory();
    const CComPtr<IClassFactory> second = Factory();
    EXPECT_EQ(first.Get(), second.Get());
}

TEST_F(ClassFactory, HasOneIdentity) {
    const CComPtr<IClassFactory> factory = Factory();
    const auto unknown = QueryFor<IUnknown>(factory.Get(), IID_IUnknown);
    ASSERT_TRUE(unknown);
    const auto back = QueryFor<IClassFactory>(unknown.Get(), IID_IClassFactory);
    EXPECT_EQ(factory.Get(), back.Get());
}

TEST_F(ClassFactory, KeepsTheModuleByEachReference) {
    CComPtr<IClassFactory> first = Factory();
    CComPtr<IClassFactory> second = Factory();
    EXPECT_FALSE(Library().CanUnload());
    first.Reset();
    EXPECT_FALSE(Library().CanUnload());
    second.Reset();
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(ClassFactory, KeepsTheModuleByEachServerLock) {
    CComPtr<IClassFactory> factory = Factory();
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    EXPECT_EQ(S_OK, factory->LockServer(TRUE));
    factory.Reset();
    EXPECT_FALSE(Library().CanUnload());

    factory = Factory();
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    factory.Reset();
    EXPECT_FALSE(Library().CanUnload());

    factory = Factory();
    EXPECT_EQ(S_OK, factory->LockServer(FALSE));
    factory.Reset();
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(ClassFactory, CreatesUnderEachInterface) {
    const CComPtr<IClassFactory> factory = Factory();
    for (const IID& iid : {IID_IUnknown, IID_ITslPluginDb, IID_ITslPluginDb2}) {
        CComPtr<IUnknown> created;
        ASSERT_EQ(S_OK, factory->CreateInstance(nullptr, iid, created.PutVoid()));
        CComPtr<ITslPluginDb2> plugin;
        ASSERT_EQ(S_OK, created->QueryInterface(IID_ITslPluginDb2, plugin.PutVoid()));
        EXPECT_EQ(S_OK, plugin->Reserved1());
    }
}

TEST_F(ClassFactory, CreatesNothingUnderAnotherInterface) {
    CComPtr<IClassFactory> factory = Factory();
    for (const IID& iid : {kUnknownIid, IID_IClassFactory, IID_ITslParamContainer}) {
        void* created = Garbage();
        EXPECT_EQ(E_NOINTERFACE, factory->CreateInstance(nullptr, iid, &created));
        EXPECT_EQ(nullptr, created);
    }
    factory.Reset();
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(ClassFactory, CreatesANewObjectEachTime) {
    const CComPtr<ITslPluginDb2> first = Library().CreatePlugin();
    const CComPtr<ITslPluginDb2> second = Library().CreatePlugin();
    EXPECT_NE(first.Get(), second.Get());
}

TEST_F(ClassFactory, LeavesItsObjectsToKeepTheModule) {
    CComPtr<ITslPluginDb2> first = Library().CreatePlugin();
    CComPtr<ITslPluginDb2> second = Library().CreatePlugin();
    EXPECT_FALSE(Library().CanUnload());
    first.Reset();
    EXPECT_FALSE(Library().CanUnload());
    second.Reset();
    EXPECT_TRUE(Library().CanUnload());
}

} // namespace tsl::test
