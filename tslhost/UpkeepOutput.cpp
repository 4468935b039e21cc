#include "tslhost/UpkeepOutput.h"

#include "upkeep/statistics/Figures.h"

namespace tsl {

Progress ShownOn(CProgress& line) {
    return [&line](const std::string& what, UINT64 done, UINT64 all) {
        constexpr size_t kCovered = 60; // what was shown before
        std::string text = what;
        if (all != 0) text += ": " + FileSize(done) + " of " + FileSize(all);
        if (text.size() < kCovered) text.resize(kCovered, ' ');
        line.Show(text);
    };
}

} // namespace tsl
