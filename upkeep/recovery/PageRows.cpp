#include "upkeep/recovery/PageRows.h"

#include <algorithm>

#include "upkeep/recovery/FreeList.h"
#include "upkeep/recovery/OrphanRows.h"
#include "upkeep/recovery/TableRoots.h"

namespace tsl {

namespace {

class CPageRows {
public:
    CPageRows(const CPageFile& file, const PageProgress& onProgress)
        : m_file(file), m_onProgress(onProgress), m_use(file.PageCount()),
          m_overflow(file.PageCount()), m_roots(ReadTableRoots(file, m_use)) {}

    TableRead ReadOwnPages(CFoundTable* rows, const std::string& name, Unread& unread) {
        if (!rows) return {};
        const auto root = m_roots.roots.find(name);
        if (root == m_roots.roots.end()) return {rows, !m_roots.isWhole};
        const TreeWalk walk =
            WalkTable(m_file, root->second, m_use, [&](const CBtreePage& page, UINT32) {
                CountPage();
                return AddRows(m_file, page, m_overflow, *rows, unread);
            });
        unread.pages += walk.unreadablePages;
        return {rows, walk.hasGaps};
    }

    void ReadOrphans(const TableRead& main, const TableRead& kept, PageRowsResult& result) {
        const FreeList free = ReadFreeList(m_file);
        for (const UINT32 page : free.pages)
            m_use.Use(page);
        const std::vector<OrphanTree> trees = FindOrphans(m_file, m_use);
        UINT64 pages = 0;
        for (const OrphanTree& tree : trees)
            pages += tree.leaves.size();
        const UINT64 freePages = m_file.Header().freeCount;
        const UINT64 unlisted = freePages - std::min<UINT64>(freePages, free.pages.size());
        const bool mayBeFree = !free.isWhole && pages <= unlisted;
        COrphanRows orphans(m_file, m_overflow, main, kept, mayBeFree);
        for (const OrphanTree& tree : trees) {
            const bool isAdded = orphans.Add(tree);
            (isAdded ? result.orphanPages : result.skippedPages) += tree.leaves.size();
            CountPage();
        }
        result.orphans.rows = orphans.Unreadable().rows;
    }

    UINT32 UnreadableSchemaPages() const { return m_roots.unreadablePages; }

private:
    void CountPage() {
        if (m_onProgress) m_onProgress(++m_pages);
    }

    const CPageFile& m_file;
    const PageProgress& m_onProgress;
    CPageUse m_use;
    CPageUse m_overflow; // pages of chains that rows have used
    TableRoots m_roots;
    UINT64 m_pages = 0;
};

} // namespace

PageRowsResult ReadRowsOfPages(const CPageFile& file, const DatabaseTables& tables,
                               CFreshDatabase& fresh, const PageProgress& onProgress) {
    PageRowsResult result;
    if (file.PageCount() == 0) return result;
    CPageRows rows(file, onProgress);
    result.orphans.pages = rows.UnreadableSchemaPages();
    const TableRead main = rows.ReadOwnPages(&fresh.Main(), tables.main, result.main);
    const TableRead kept = rows.ReadOwnPages(fresh.Kept(), tables.kept, result.kept);
    rows.ReadOrphans(main, kept, result);
    return result;
}

} // namespace tsl
