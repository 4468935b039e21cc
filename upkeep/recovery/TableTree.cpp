#include "upkeep/recovery/TableTree.h"

#include <algorithm>

namespace tsl {

TreeWalk WalkTable(const CPageFile& file, UINT32 root, CPageUse& use, const LeafSink& onLeaf) {
    TreeWalk walk;
    std::vector<UINT32> waiting = {root};
    PageBytes bytes;
    while (!waiting.empty()) {
        const UINT32 number = waiting.back();
        waiting.pop_back();
        const bool isPage = number > 0 && number <= file.PageCount();
        if (isPage && use.IsUsed(number)) {
            walk.hasGaps = true; // the page that should be in its place is somewhere else
            continue;
        }
        if (isPage) use.Use(number);
        if (!isPage || !file.Read(number, bytes)) {
            ++walk.unreadablePages;
            walk.hasGaps = true;
            continue;
        }
        const CBtreePage page(bytes, number, file.Layout());
        if (page.Kind() == PageKind::Interior) {
            const std::vector<UINT32> children = page.Children();
            waiting.insert(waiting.end(), children.rbegin(), children.rend());
        } else if (!onLeaf(page, number) && page.Kind() != PageKind::Leaf) {
            ++walk.unreadablePages;
            walk.hasGaps = true;
        }
    }
    return walk;
}

} // namespace tsl
