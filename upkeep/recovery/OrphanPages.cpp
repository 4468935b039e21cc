#include "upkeep/recovery/OrphanPages.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "upkeep/recovery/BtreePage.h"

namespace tsl {

namespace {

using Parents = std::unordered_map<UINT32, UINT32>;

UINT32 RootOf(UINT32 page, const Parents& parents) {
    constexpr int kDeepest = 20; // of the engine's trees; also ends a circle
    for (int depth = 0; depth < kDeepest; ++depth) {
        const auto found = parents.find(page);
        if (found == parents.end()) break;
        page = found->second;
    }
    return page;
}

} // namespace

std::vector<OrphanTree> FindOrphans(const CPageFile& file, const CPageUse& use) {
    std::vector<UINT32> leaves;
    Parents parents;
    PageBytes bytes;
    for (UINT32 number = 2; number <= file.PageCount(); ++number) {
        if (use.IsUsed(number) || !file.Read(number, bytes)) continue;
        const CBtreePage page(bytes, number, file.Layout());
        if (page.Kind() == PageKind::Leaf && page.CellCount() > 0) leaves.push_back(number);
        for (const UINT32 child : page.Children())
            parents.emplace(child, number);
    }
    std::map<UINT32, OrphanTree> trees;
    for (const UINT32 leaf : leaves) {
        const UINT32 root = RootOf(leaf, parents);
        trees[root].root = root;
        trees[root].leaves.push_back(leaf);
    }
    std::vector<OrphanTree> sorted;
    sorted.reserve(trees.size());
    for (auto& [root, tree] : trees)
        sorted.push_back(std::move(tree));
    std::ranges::stable_sort(sorted, std::ranges::greater(),
                             [](const OrphanTree& tree) { return tree.leaves.size(); });
    return sorted;
}

} // namespace tsl
