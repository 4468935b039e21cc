#include "upkeep/recovery/FreeList.h"

#include <unordered_set>

namespace tsl {

FreeList ReadFreeList(const CPageFile& file) {
    constexpr size_t kTrunkHeaderSize = 8;
    FreeList list;
    std::unordered_set<UINT32> seen;
    const auto isNew = [&](UINT32 page) {
        return page > 1 && page <= file.PageCount() && seen.insert(page).second;
    };
    PageBytes trunk;
    for (UINT32 next = file.Header().firstFreeTrunk; next != 0 && list.isWhole;) {
        list.isWhole = isNew(next) && file.Read(next, trunk) && trunk.size() >= kTrunkHeaderSize;
        if (!list.isWhole) break;
        const size_t count = ReadBigEndian(trunk, 4, 4);
        list.isWhole = count <= (trunk.size() - kTrunkHeaderSize) / sizeof(UINT32);
        std::vector<UINT32> pages = {next};
        for (size_t index = 0; list.isWhole && index < count; ++index) {
            pages.push_back(ReadBigEndian(trunk, kTrunkHeaderSize + 4 * index, 4));
            list.isWhole = isNew(pages.back());
        }
        // A page that lists what cannot be is no part of the list.
        if (list.isWhole) list.pages.insert(list.pages.end(), pages.begin(), pages.end());
        next = ReadBigEndian(trunk, 0, 4);
    }
    list.isWhole = list.isWhole && list.pages.size() == file.Header().freeCount;
    return list;
}

} // namespace tsl
