// How long a plug-in object keeps the host's content store.
#include <thread>

#include "tests/content_move/PluginMoveFixture.h"

namespace tsl::test {

class PluginStoreLife : public PluginMoveTest {};

TEST_F(PluginStoreLife, BeginsWithTheFirstMove) {
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(4, L"playItem")));
    EXPECT_EQ(0, storeClass.creations);
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(1, storeClass.creations);
    EXPECT_EQ(1u, store.Held());
}

TEST_F(PluginStoreLife, LastsForMoreMoves) {
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(S_OK, Notify(6));
    Plugin().SetRecordingEnabled(0);
    Plugin().SetRecordingEnabled(2);
    EXPECT_EQ(S_OK, Notify(7));
    EXPECT_EQ(1, storeClass.creations);
    EXPECT_EQ(1u, store.Held());
}

TEST_F(PluginStoreLife, EndsWithTheObject) {
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(1u, store.Held());
    ReleasePlugin();
    EXPECT_EQ(0u, store.Held());
    EXPECT_TRUE(Library().CanUnload());
}

TEST_F(PluginStoreLife, IsEachObjectsOwn) {
    CComPtr<ITslPluginDb2> other = Library().CreatePlugin();
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(S_OK, other->Notify(kCommandRecordAction, MoveActionOf(6)));
    EXPECT_EQ(S_OK, Notify(7));
    EXPECT_EQ(2, storeClass.creations);
    EXPECT_EQ(2u, store.Held());
    other.Reset();
    EXPECT_EQ(1u, store.Held());
    EXPECT_EQ(S_OK, Notify(8));
    EXPECT_EQ(2, storeClass.creations);
}

TEST_F(PluginStoreLife, MayEndOnAnotherThread) {
    EXPECT_EQ(S_OK, Notify(5));
    std::thread([&] { ReleasePlugin(); }).join();
    EXPECT_EQ(0u, store.Held());
}

TEST_F(PluginStoreLife, EndsEachTimeAnew) {
    ReleasePlugin();
    for (UINT32 turn = 1; turn <= 10; ++turn) {
        CComPtr<ITslPluginDb2> plugin = Library().CreatePlugin();
        EXPECT_EQ(S_OK, plugin->SetRecordingEnabled(1));
        EXPECT_EQ(S_OK, plugin->Notify(kCommandRecordAction, MoveActionOf(turn)));
        EXPECT_EQ(1u, store.Held());
        plugin.Reset();
        ASSERT_EQ(0u, store.Held());
        ASSERT_TRUE(Library().CanUnload());
    }
    EXPECT_EQ(10, storeClass.creations);
}

} // namespace tsl::test
