// A content store that calls the plug-in while the plug-in calls it.
#include <functional>
#include <utility>

#include "tests/content_move/PluginMoveFixture.h"

namespace tsl::test {

class Callback : public PluginMoveTest {
protected:
    // Runs a callback when it is called first, and never again.
    static std::function<void()> Once(std::function<void()> callback) {
        return [callback = std::move(callback), done = false]() mutable {
            if (!std::exchange(done, true)) callback();
        };
    }
    HRESULT Record(UINT32 recordId) {
        return Plugin().Notify(kCommandRecordAction, Action(recordId, L"playItem"));
    }
};

TEST_F(Callback, MayRecordAnAction) {
    UINT32 recordId = 50;
    store.onCall = [&] { EXPECT_EQ(S_OK, Record(++recordId)); };
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(WholeMove(), store.calls);
    EXPECT_EQ("51 playItem, 52 playItem, 53 playItem, 54 playItem, 55 playItem", Logged());
    EXPECT_EQ("5 viaMoveContent, " + Logged(), Replayed());
}

TEST_F(Callback, MayAskForARecordId) {
    UINT32 lastId = 0;
    store.onCall = [&] { EXPECT_EQ(++lastId, NextId()); };
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(5u, lastId);
    EXPECT_EQ(WholeMove(), store.calls);
    EXPECT_EQ("", Logged());
    EXPECT_EQ("5 viaMoveContent", Replayed());
}

TEST_F(Callback, MayAskForRecordsAndDeleteThem) {
    ASSERT_EQ(S_OK, Record(4));
    store.onCall = [&] {
        CVariant answer;
        const ContainerBuilder ofUser = ContainerBuilder().Ui4(kKeyUserId, 7);
        Plugin().Request(kCommandQueryAllIds, ofUser, nullptr, answer.Address());
        ContainerBuilder range = ContainerBuilder().Ui4(kKeyUserId, 7);
        range.Ui4(kKeyFirstRecordId, 0).Ui4(kKeyLastRecordId, 0xFFFFFFFF);
        EXPECT_EQ(S_OK, Plugin().Delete(kCommandDeleteRecords, range));
    };
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(WholeMove(), store.calls);
    EXPECT_EQ("", Logged());
    EXPECT_EQ("4 playItem, 5 viaMoveContent", Replayed());
}

TEST_F(Callback, MayMoveContentWhileItemsAreFound) {
    store.onCall = Once([&] { EXPECT_EQ(S_OK, Notify(6)); });
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(1, storeClass.creations);
    EXPECT_EQ("", Logged());
    EXPECT_EQ("5 viaMoveContent, 6 viaMoveContent", Replayed());
    EXPECT_EQ(L"set 8 " + Written(L"new one", L"new two", 9), store.calls.back());
}

TEST_F(Callback, MayMoveContentWhileTheStoreIsCreated) {
    storeClass.onCreation = Once([&] { EXPECT_EQ(S_OK, Notify(6)); });
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(1u, store.Held()) << "one is kept, whichever it is";
    EXPECT_EQ("5 viaMoveContent, 6 viaMoveContent", Replayed());
}

TEST_F(Callback, MaySwitchRecordingOff) {
    store.onCall = Once([&] { Plugin().SetRecordingEnabled(0); });
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(WholeMove(), store.calls);
    EXPECT_EQ(E_NOTIMPL, Notify(6));
    EXPECT_EQ("", Logged());
}

TEST_F(Callback, MayUseAnotherPlugin) {
    CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    store.onCall = Once([&] {
        EXPECT_EQ(S_OK, other->Notify(kCommandRecordAction, MoveActionOf(6)));
        other.Reset();
    });
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(2, storeClass.creations);
    EXPECT_EQ(1u, store.Held());
    EXPECT_EQ("5 viaMoveContent, 6 viaMoveContent", Replayed());
}

TEST_F(Callback, MayTouchThePluginThatEnds) {
    ITslPluginDb2& plugin = Plugin();
    EXPECT_EQ(S_OK, Notify(5));
    int released = 0;
    store.onRelease = [&] {
        ++released;
        plugin.AddRef();
        void* found = nullptr;
        EXPECT_EQ(S_OK, plugin.QueryInterface(IID_ITslPluginDb2, &found));
        plugin.Release();
        plugin.Release();
        EXPECT_EQ(S_OK, plugin.Reserved1());
    };
    ReleasePlugin();
    store.onRelease = nullptr;
    EXPECT_EQ(1, released) << "it ended once";
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(Callback, MayGiveCommandsToThePluginThatEnds) {
    ITslPluginDb2& plugin = Plugin();
    EXPECT_EQ(S_OK, Notify(5));
    CVariant answer;
    store.onRelease = [&] {
        plugin.SetRecordingEnabled(1);
        plugin.Notify(kCommandRecordAction, Action(6, L"playItem"));
        plugin.Request(kCommandNextRecordId, ContainerBuilder(), nullptr, answer.Address());
        plugin.Delete(kCommandDeleteRecords, nullptr);
        plugin.SetHost(nullptr);
    };
    ReleasePlugin();
    store.onRelease = nullptr;
    EXPECT_FALSE(MutexExists(kSqliteAccessLock));
    EXPECT_FALSE(MutexExists(kLogIdLock));
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(Callback, MayMoveContentWithThePluginThatEnds) {
    ITslPluginDb2& plugin = Plugin();
    EXPECT_EQ(S_OK, Notify(5));
    int told = 0;
    store.onRelease = Once([&] {
        ++told;
        plugin.Notify(kCommandRecordAction, MoveActionOf(6));
    });
    ReleasePlugin();
    store.onRelease = nullptr;
    EXPECT_EQ(1, told);
    EXPECT_EQ(0u, store.Held()) << "a store that is created meanwhile is given back too";
    EXPECT_TRUE(Library().CanUnload());
}

} // namespace tsl::test
