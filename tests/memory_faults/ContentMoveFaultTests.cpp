// Memory runs out while content is moved: no property of the host's is lost or half changed.

#include "tests/content_move/PluginMoveFixture.h"
#include "tests/memory_faults/MemoryFaultFixture.h"
#include "tests/memory_faults/StoredRows.h"
#include "tests/query/QueryFixture.h"

namespace tsl::test {

class ContentMoveFaults : public MemoryFaultTest {
protected:
    void TearDown() override {
        ReleasePlugin();
        EXPECT_EQ(0u, store.Held()) << "a reference to the content store was not given back";
        MemoryFaultTest::TearDown();
    }

    // "first, second, number" of each property of an item.
    std::vector<std::wstring> Properties(size_t item) {
        std::vector<std::wstring> texts;
        for (const CComPtr<IUnknown>& property : store.items.at(item).properties) {
            const auto container =
                QueryFor<ITslParamContainer>(property.Get(), IID_ITslParamContainer);
            texts.push_back(TextOf(*container, kFirstText) + L", " +
                            TextOf(*container, kSecondText) + L", " +
                            std::to_wstring(ValueOf(*container, kNumber).Get().lVal));
        }
        return texts;
    }
    void PrepareItems() {
        store.items.clear();
        store.calls.clear();
        store.Hold(7, {Property(L"old one", L"old two", 1), Property(L"x", L"y", 2)});
        store.Hold(8, {Property(L"old one", L"old two", 3)});
    }

    ContentStoreDouble store;

private:
    ContentStoreClass m_class{store};
    ClassRegistration m_storeRegistration{CLSID_TslContentStore, &m_class};
};

TEST_F(ContentMoveFaults, LeaveEachItemMovedOrAsItWas) {
    using testing::AnyOf;
    using testing::ElementsAre;
    const std::wstring moved = L"new one, new two, 9";
    UINT32 recordId = 1000;
    ContainerBuilder action;
    FailEachAllocation({
        .name = "content move",
        .prepare =
            [&] {
                PrepareItems();
                RenewPlugin(1); // forgets the content store
                if (++recordId % 100 == 0) ++recordId;
                action = MoveActionOf(recordId);
            },
        .run = [&] { return Plugin().Notify(kCommandRecordAction, action); },
        .allowed = {},
        .check =
            [&](const Outcome& outcome) {
                EXPECT_LE(store.Held(), 1u);
                EXPECT_THAT(Properties(0), AnyOf(ElementsAre(L"old one, old two, 1", L"x, y, 2"),
                                                 ElementsAre(moved, L"x, y, 2")));
                EXPECT_THAT(Properties(1),
                            AnyOf(ElementsAre(L"old one, old two, 3"), ElementsAre(moved)));
                EXPECT_EQ(outcome.result == S_OK ? 1u : 0u,
                          RowsOf(ReplayPath(), kReplayRows, recordId).size());
                // A name that cannot be read as text is not a move's.
                if (!outcome.FailedIn("VariantChangeType")) {
                    EXPECT_EQ(std::vector<Row>(),
                              RowsOf(ActionLogPath(), kActionLogRows, recordId));
                }
                if (outcome.NothingFailed()) {
                    EXPECT_THAT(Properties(0), ElementsAre(moved, L"x, y, 2"));
                    EXPECT_THAT(Properties(1), ElementsAre(moved));
                }
                store.items.clear(); // they hold containers
            },
    });
}

} // namespace tsl::test
