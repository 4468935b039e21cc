#include "tslhost/UpkeepOutput.h"

#include <cstdio>
#include <iterator>

namespace tsl {

std::string SizeText(UINT64 bytes) {
    if (bytes < 1024) return std::to_string(bytes) + " bytes";
    double size = static_cast<double>(bytes) / 1024;
    const char* unit = "KB";
    for (const char* const larger : {"MB", "GB"}) {
        if (size < 1024) break;
        size /= 1024;
        unit = larger;
    }
    char text[40];
    std::snprintf(text, std::size(text), "%.1f %s", size, unit);
    return text;
}

Progress ShownOn(CProgress& line) {
    return [&line](const std::string& what, UINT64 done, UINT64 all) {
        constexpr size_t kWidth = 60; // covers what was shown before
        std::string text = what;
        if (all != 0) text += ": " + SizeText(done) + " of " + SizeText(all);
        if (text.size() < kWidth) text.resize(kWidth, ' ');
        line.Show(text);
    };
}

} // namespace tsl
