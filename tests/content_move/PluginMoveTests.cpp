// A move as a host tells the plug-in of it.
#include <gmock/gmock.h>

#include "tests/content_move/PluginMoveFixture.h"

namespace tsl::test {

class PluginMove : public PluginMoveTest {
protected:
    // What the move is called with in place of what it needs; it is recorded all the same.
    void ExpectNoMove(const ContainerBuilder& action) {
        EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, action));
        EXPECT_EQ(0, storeClass.creations);
        EXPECT_EQ("", Logged());
        EXPECT_EQ("5 viaMoveContent", Replayed());
    }
};

TEST_F(PluginMove, ChangesTheItemsOfTheHost) {
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(WholeMove(), store.calls);
}

TEST_F(PluginMove, IsRecordedForReplayAlone) {
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ("", Logged());
    EXPECT_EQ("5 viaMoveContent", Replayed());
}

TEST_F(PluginMove, IsRecordedWithItsTexts) {
    EXPECT_EQ(S_OK, Notify(5));
    const std::string parameters =
        FileDatabase(ReplayPath()).Value("SELECT ActionParameters FROM TslIf_ActionReplay");
    EXPECT_THAT(parameters, testing::HasSubstr("old%20one"));
    EXPECT_THAT(parameters, testing::HasSubstr("new%20two"));
}

TEST_F(PluginMove, IsCarriedOutWithAnyLogKind) {
    for (const UINT32 kind : {1, 2, 8, 16, 77}) {
        store.calls.clear();
        Plugin().SetRecordingEnabled(kind);
        EXPECT_EQ(S_OK, Notify(kind));
        EXPECT_EQ(L"find 'old one'", store.calls.at(0));
    }
    EXPECT_EQ("", Logged());
}

TEST_F(PluginMove, IsNotCarriedOutWhileRecordingIsOff) {
    Plugin().SetRecordingEnabled(0);
    EXPECT_EQ(E_NOTIMPL, Notify(5));
    EXPECT_EQ(0, storeClass.creations);
    EXPECT_EQ("", Replayed());
}

TEST_F(PluginMove, HasANameInJustThisCase) {
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction,
                                    MoveActionOf(5).Text(kKeyActionName, L"ViaMoveContent")));
    EXPECT_EQ(0, storeClass.creations);
    EXPECT_EQ("5 ViaMoveContent", Logged());
    EXPECT_EQ("5 ViaMoveContent", Replayed());
}

TEST_F(PluginMove, WithoutListsOrNumberMovesNothing) {
    ExpectNoMove(Action(5, L"viaMoveContent"));
    ExpectNoMove(MoveActionOf(5).Ui4(0x0200004200000003, 9));
    ExpectNoMove(MoveActionOf(5).Texts(0x0200003400002008, {L"old one"}));
    ExpectNoMove(MoveActionOf(5).Texts(0x0200005100002008, {L"new one"}));
}

TEST_F(PluginMove, IsRecordedEvenIfTheStoreCannotBeCreated) {
    storeClass.creationResult = E_ACCESSDENIED;
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(S_OK, Notify(6));
    EXPECT_EQ(2, storeClass.creations) << "it is tried each time";
    EXPECT_EQ("", Logged());
    EXPECT_EQ("5 viaMoveContent, 6 viaMoveContent", Replayed());
}

TEST_F(PluginMove, IsRecordedWhicheverCallFails) {
    std::string expected;
    for (size_t failing = 1; failing <= WholeMove().size(); ++failing) {
        SCOPED_TRACE(failing);
        store.items.clear();
        store.Hold(7, {Property(L"old one", L"old two", 1), Property(L"x", L"y", 2)});
        store.Hold(8, {Property(L"old one", L"old two", 3)});
        store.calls.clear();
        store.results = {{failing, E_ACCESSDENIED}};
        EXPECT_EQ(S_OK, Notify(static_cast<UINT32>(failing)));
        EXPECT_GE(store.calls.size(), failing) << "the call that fails was made";
        expected += (failing > 1 ? ", " : "") + std::to_string(failing) + " viaMoveContent";
        EXPECT_EQ("", Logged());
        EXPECT_EQ(expected, Replayed());
    }
}

TEST_F(PluginMove, HoldsNoLockWhileItCallsTheHost) {
    int looks = 0;
    const auto look = [&] {
        ++looks;
        EXPECT_TRUE(MutexExists(kSqliteAccessLock));
        EXPECT_TRUE(MutexIsFree(kSqliteAccessLock));
        EXPECT_TRUE(MutexIsFree(kLogIdLock));
    };
    storeClass.onCreation = look;
    store.onCall = look;
    store.onRelease = look;
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_LE(1 + 5, looks);
    ReleasePlugin();
    store.onRelease = nullptr;
}

TEST_F(PluginMove, LeavesTheNextActionItsPlaces) {
    EXPECT_EQ(S_OK, Notify(5));
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, Action(6, L"playItem")));
    EXPECT_EQ("6 playItem", Logged());
    EXPECT_EQ("5 viaMoveContent, 6 playItem", Replayed());
}

TEST_F(PluginMove, GivesBackWhatItWasGiven) {
    ScriptedContainer property(Property(L"old one", L"old two", 1).Get());
    ScriptedContainer action(MoveActionOf(5).Get());
    store.items.clear();
    store.Hold(7, {&property});
    EXPECT_EQ(S_OK, Plugin().Notify(kCommandRecordAction, &action));
    EXPECT_EQ(1u, action.References());
    EXPECT_EQ(1u, property.References());
    EXPECT_EQ(L"set 7 " + kMoved, store.calls.back());
    store.items.clear();
}

} // namespace tsl::test
