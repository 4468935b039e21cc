// The colours of the report can be told apart, light, dark and printed.
#include "upkeep/statistics/ReportStyle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <regex>
#include <string>
#include <vector>

namespace tsl::test {

namespace {

using Colours = std::map<std::string, std::string>;

// Of each block ":root { ... }": light, dark, print.
std::vector<Colours> Schemes() {
    std::vector<Colours> schemes;
    const std::string style = kReportStyle;
    for (size_t start = style.find(":root"); start != std::string::npos;
         start = style.find(":root", start + 1)) {
        const std::string block = style.substr(start, style.find('}', start) - start);
        const std::regex colour("--([a-z0-9]+): #([0-9a-f]+);");
        Colours colours;
        for (std::sregex_iterator found(block.begin(), block.end(), colour), end; found != end;
             ++found) {
            std::string digits = (*found)[2];
            if (digits.size() == 3) {
                digits = {digits[0], digits[0], digits[1], digits[1], digits[2], digits[2]};
            }
            colours[(*found)[1]] = digits;
        }
        schemes.push_back(std::move(colours));
    }
    return schemes;
}

double Luminance(const std::string& colour) {
    constexpr double kWeights[] = {0.2126, 0.7152, 0.0722};
    double luminance = 0;
    for (size_t part = 0; part < 3; ++part) {
        const double value = std::stoi(colour.substr(part * 2, 2), nullptr, 16) / 255.0;
        luminance += kWeights[part] *
                     (value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4));
    }
    return luminance;
}

double Contrast(const std::string& one, const std::string& other) {
    const auto [darker, lighter] = std::minmax({Luminance(one), Luminance(other)});
    return (lighter + 0.05) / (darker + 0.05);
}

TEST(ReportStyle, TextsAndLinesStandOutInEveryScheme) {
    ASSERT_EQ(3u, Schemes().size());
    for (Colours& colours : Schemes()) {
        SCOPED_TRACE(colours["page"]);
        EXPECT_GE(Contrast(colours["text"], colours["page"]), 7.0);
        EXPECT_GE(Contrast(colours["quiet"], colours["page"]), 4.5);
        EXPECT_GE(Contrast(colours["accent"], colours["page"]), 3.0);
    }
}

TEST(ReportStyle, FieldsOfTheWeekAreToldByLightnessAlone) {
    for (Colours& colours : Schemes()) {
        SCOPED_TRACE(colours["page"]);
        for (int step = 1; step <= 6; ++step) {
            const std::string& paler = colours["h" + std::to_string(step - 1)];
            const std::string& stronger = colours["h" + std::to_string(step)];
            EXPECT_GE(Contrast(paler, stronger), 1.15) << step;
            EXPECT_GT(Contrast(stronger, colours["page"]), Contrast(paler, colours["page"]))
                << step;
        }
    }
}

TEST(ReportStyle, PrintsOnWhite) {
    EXPECT_EQ("ffffff", Schemes().back()["page"]);
}

} // namespace

} // namespace tsl::test
