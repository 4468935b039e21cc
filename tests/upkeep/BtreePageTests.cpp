// Pages and rows are found as the engine lays them down; whatever a page holds, reading it ends.
#include "tests/hostile_input/Mutation.h"
#include "tests/support/FileDatabase.h"
#include "tests/upkeep/DamagedStore.h"
#include "upkeep/recovery/FreeList.h"
#include "upkeep/recovery/LeafRows.h"
#include "upkeep/recovery/TableRoots.h"

namespace tsl::test {

namespace {

using RowTally = std::pair<size_t, size_t>;

class BtreePage : public StoreTest {
protected:
    void SetUp() override {
        ASSERT_NO_FATAL_FAILURE(StoreTest::SetUp());
        MakeStoreFolder();
        m_store = StoreIn(StoreFolder().wstring());
        MakeSampleStore(m_store);
    }

    // How many rows the table's leaves have, and how many of them are whole.
    RowTally CountRows(const std::string& table) const {
        const CPageFile file(m_store.actionLog);
        CPageUse use(file.PageCount());
        const TableRoots tables = ReadTableRoots(file, use);
        CPageUse overflow(file.PageCount());
        size_t rows = 0;
        size_t whole = 0;
        const auto root = tables.roots.find(table);
        if (root == tables.roots.end()) return {};
        Unread unread;
        const auto count = [&](const StoredRow& row) {
            ++rows;
            whole += row.whole ? 1 : 0;
        };
        WalkTable(file, root->second, use, [&](const CBtreePage& page, UINT32) {
            ForEachRow(file, page, &overflow, /*isActionTable=*/true, count, unread);
            return true;
        });
        return {rows, whole};
    }

    StorePaths m_store;
};

TEST_F(BtreePage, EveryRowIsFoundFromTheRootsOn) {
    EXPECT_EQ(RowTally(600, 600), CountRows("TslIf_DbActionLog"));
    EXPECT_EQ(RowTally(40, 40), CountRows("TslIf_ContentDeleteProperty"));
}

TEST_F(BtreePage, FreeListIsAsLongAsTheEngineSays) {
    const CPageFile file(m_store.actionLog);
    const FreeList list = ReadFreeList(file);
    EXPECT_TRUE(list.isWhole);
    EXPECT_EQ(FileDatabase(m_store.actionLog).Value("PRAGMA freelist_count"),
              std::to_string(list.pages.size()));
}

TEST_F(BtreePage, FreeListThatGoesRoundInACircleIsNotWhole) {
    Bytes bytes = ReadBytes(m_store.actionLog);
    const UINT32 trunk = CPageFile(m_store.actionLog).Header().firstFreeTrunk;
    bytes[(trunk - 1) * kPageSize + 3] = static_cast<unsigned char>(trunk);
    bytes[(trunk - 1) * kPageSize + 2] = static_cast<unsigned char>(trunk >> 8);
    WriteBytes(m_store.actionLog, bytes);
    EXPECT_FALSE(ReadFreeList(CPageFile(m_store.actionLog)).isWhole);
}

TEST_F(BtreePage, TreeThatGoesRoundInACircleIsWalkedOnce) {
    Bytes bytes = ReadBytes(m_store.actionLog);
    ASSERT_EQ(0x05, bytes[kPageSize]) << "the root of the main table";
    const size_t cell = kPageSize + ReadBigEndian(bytes, kPageSize + 12, 2);
    const Bytes root = {0, 0, 0, 2};
    std::ranges::copy(root, bytes.begin() + static_cast<std::ptrdiff_t>(cell));
    WriteBytes(m_store.actionLog, bytes);
    const size_t left = CountRows("TslIf_DbActionLog").first;
    EXPECT_LT(left, 600u);
    EXPECT_GT(left, 500u);
}

TEST_F(BtreePage, OverflowThatBitesItsTailEnds) {
    Bytes bytes = ReadBytes(m_store.actionLog);
    // The first page of nothing but hex digits, behind its pointer.
    size_t page = 2;
    const auto isOverflow = [&](size_t number) {
        const auto first =
            bytes.begin() + static_cast<std::ptrdiff_t>((number - 1) * kPageSize + 4);
        return std::all_of(first, first + 1000, [](unsigned char byte) { return byte == '0'; });
    };
    while (page * kPageSize < bytes.size() && !isOverflow(page))
        ++page;
    ASSERT_LT(page * kPageSize, bytes.size());
    bytes[(page - 1) * kPageSize + 2] = static_cast<unsigned char>(page >> 8);
    bytes[(page - 1) * kPageSize + 3] = static_cast<unsigned char>(page);
    WriteBytes(m_store.actionLog, bytes);
    EXPECT_EQ(RowTally(600, 599), CountRows("TslIf_DbActionLog"));
}

TEST_F(BtreePage, SpoiledPagesAreReadWithinTheirBytes) {
    const CPageFile file(m_store.actionLog);
    Chance chance(7);
    PageBytes bytes;
    Unread unread;
    size_t rows = 0;
    const auto count = [&](const StoredRow&) { ++rows; };
    for (int round = 0; round < 3'000; ++round) {
        const auto number = static_cast<UINT32>(1 + chance.Below(file.PageCount()));
        ASSERT_TRUE(file.Read(number, bytes));
        SpoilBytes(bytes, chance, 20);
        const CBtreePage page(bytes, number, file.Layout());
        page.Children();
        CPageUse overflow(file.PageCount());
        ForEachRow(file, page, &overflow, /*isActionTable=*/round % 2 == 0, count, unread);
    }
    EXPECT_GT(rows, 0u);
    EXPECT_GT(unread.rows, 0u);
}

} // namespace

} // namespace tsl::test
