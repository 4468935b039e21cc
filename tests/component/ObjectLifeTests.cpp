// Identity, reference counts and the end of a plug-in object.
#include <thread>
#include <vector>

#include "component/host/CommandCodes.h"
#include "tests/component/HostDouble.h"
#include "tests/support/PluginFixture.h"
#include "tests/support/StoreChecks.h"

namespace tsl::test {

namespace {

bool EngineIsLoaded() {
    return GetModuleHandleW(L"SQLite3.dll") != nullptr;
}

} // namespace

class ObjectLife : public PluginTest {};

TEST_F(ObjectLife, HasOneIdentityUnderEveryInterface) {
    IUnknown* first = nullptr;
    for (const IID& iid : {IID_IUnknown, IID_ITslPluginDb, IID_ITslPluginDb2}) {
        CComPtr<IUnknown> face;
        ASSERT_EQ(S_OK, Plugin().QueryInterface(iid, face.PutVoid()));
        CComPtr<IUnknown> identity;
        ASSERT_EQ(S_OK, face->QueryInterface(IID_IUnknown, identity.PutVoid()));
        if (!first) first = identity.Get();
        EXPECT_EQ(first, identity.Get());
    }
}

TEST_F(ObjectLife, RefusesOtherInterfacesAndNullsTheOutPointer) {
    for (const IID& iid : {IID_IClassFactory, IID_ITslHost, IID_ITslParamContainer, GUID_NULL}) {
        void* found = this;
        EXPECT_EQ(E_NOINTERFACE, Plugin().QueryInterface(iid, &found));
        EXPECT_EQ(nullptr, found);
    }
    EXPECT_EQ(E_POINTER, Plugin().QueryInterface(IID_IUnknown, nullptr));
    EXPECT_EQ(2u, Plugin().AddRef()) << "a refused query takes no reference";
    EXPECT_EQ(1u, Plugin().Release());
}

TEST_F(ObjectLife, CountsItsReferences) {
    EXPECT_EQ(2u, Plugin().AddRef());
    EXPECT_EQ(3u, Plugin().AddRef());
    EXPECT_EQ(2u, Plugin().Release());
    void* found = nullptr;
    ASSERT_EQ(S_OK, Plugin().QueryInterface(IID_ITslPluginDb, &found));
    EXPECT_EQ(2u, static_cast<IUnknown*>(found)->Release());
    EXPECT_EQ(1u, Plugin().Release());
}

TEST_F(ObjectLife, EndsWithTheLastReference) {
    ITslPluginDb2* const plugin = &Plugin();
    plugin->AddRef();
    ReleasePlugin();
    EXPECT_FALSE(Library().CanUnload());
    EXPECT_EQ(S_OK, plugin->Reserved1());
    EXPECT_EQ(0u, plugin->Release());
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(ObjectLife, KeepsBothLocksOpenAndTheEngineLoadedUntilItEnds) {
    EXPECT_TRUE(MutexExists(kSqliteAccessLock));
    EXPECT_TRUE(MutexExists(kLogIdLock));
    EXPECT_TRUE(EngineIsLoaded());
    ReleasePlugin();
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
    EXPECT_FALSE(MutexExists(kLogIdLock));
    EXPECT_FALSE(EngineIsLoaded());
}

TEST_F(ObjectLife, LeavesTheEngineToOtherObjects) {
    const CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    ReleasePlugin();
    EXPECT_TRUE(EngineIsLoaded());
    EXPECT_TRUE(MutexExists(kSqliteAccessLock));
    EXPECT_EQ(S_OK, other->SetRecordingEnabled(1));
    EXPECT_EQ(S_OK, other->Notify(kCommandRecordAction, Action(1, L"playItem")));
    EXPECT_EQ(1, CountRows(ActionLogPath(), kActionLogRows));
}

TEST_F(ObjectLife, SurvivesAHostThatTouchesItWhileItEnds) {
    HostDouble host;
    ITslPluginDb2& plugin = Plugin();
    int released = 0;
    host.onRelease = [&] {
        ++released;
        plugin.AddRef();
        void* found = nullptr;
        EXPECT_EQ(S_OK, plugin.QueryInterface(IID_ITslPluginDb2, &found));
        plugin.Release();
        plugin.Release();
        EXPECT_EQ(S_FALSE, plugin.SetHost(nullptr));
        EXPECT_EQ(S_OK, plugin.Reserved1());
    };
    ASSERT_EQ(S_OK, plugin.SetHost(&host));
    ReleasePlugin();
    EXPECT_EQ(1, released) << "it ended once";
    EXPECT_EQ(0u, host.Held());
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(ObjectLife, LetsGoOfAHostThatItIsGivenWhileItEnds) {
    HostDouble host;
    HostDouble another;
    ITslPluginDb2& plugin = Plugin();
    host.onRelease = [&] { EXPECT_EQ(S_OK, plugin.SetHost(&another)); };
    ASSERT_EQ(S_OK, plugin.SetHost(&host));
    ReleasePlugin();
    EXPECT_EQ(0u, host.Held());
    EXPECT_EQ(0u, another.Held());
}

TEST_F(ObjectLife, SurvivesAHostThatGivesCommandsWhileItEnds) {
    HostDouble host;
    ITslPluginDb2& plugin = Plugin();
    CVariant answer;
    host.onRelease = [&] {
        plugin.SetRecordingEnabled(1);
        plugin.Notify(kCommandRecordAction, Action(1, L"playItem"));
        plugin.Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address());
        plugin.Delete(kCommandDeleteRecords, nullptr);
    };
    ASSERT_EQ(S_OK, plugin.SetHost(&host));
    ReleasePlugin();
    EXPECT_EQ(0u, host.Held());
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
    EXPECT_FALSE(MutexExists(kLogIdLock));
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(ObjectLife, CountsReferencesOfManyThreads) {
    ITslPluginDb2& plugin = Plugin();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int turn = 0; turn < 20000; ++turn) {
                plugin.AddRef();
                plugin.Release();
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(2u, plugin.AddRef());
    EXPECT_EQ(1u, plugin.Release());
}

TEST_F(ObjectLife, MayEndOnAnotherThread) {
    std::thread([&] { ReleasePlugin(); }).join();
    EXPECT_TRUE(Library().CanUnload());
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
}

TEST_F(ObjectLife, EndsEachTimeAnew) {
    ReleasePlugin();
    for (int turn = 0; turn < 20; ++turn) {
        CComPtr<ITslPluginDb2> plugin = Library().CreatePlugin();
        EXPECT_EQ(S_OK, plugin->Reserved2());
        plugin.Reset();
        ASSERT_TRUE(Library().CanUnload());
    }
}

} // namespace tsl::test
