#include "tslhost/HelpFormatter.h"

#include <sstream>

namespace tsl {

namespace {

constexpr size_t kWidth = 79; // a full line of 80 would wrap on some terminals

// Breaks the lines between words; what is indented, or follows "Example: ", stays as it is: it is
// to be copied.
std::string Wrap(const std::string& text, size_t width) {
    std::istringstream lines(text);
    std::string wrapped;
    for (std::string line; std::getline(lines, line);) {
        if (!wrapped.empty()) wrapped += '\n';
        if (line.starts_with(' ') || line.starts_with("Example")) {
            wrapped += line;
            continue;
        }
        std::istringstream words(line);
        size_t column = 0;
        for (std::string word; words >> word;) {
            const bool fits = column + 1 + word.size() <= width;
            if (column > 0) wrapped += fits ? ' ' : '\n';
            column = column > 0 && fits ? column + 1 + word.size() : word.size();
            wrapped += word;
        }
    }
    return wrapped;
}

} // namespace

std::string CHelpFormatter::make_description(const CLI::App* app) const {
    return Wrap(app->get_description(), kWidth) + "\n";
}

std::string CHelpFormatter::make_subcommand(const CLI::App* app) const {
    std::ostringstream out;
    CLI::detail::format_help(out, app->get_name(),
                             Wrap(app->get_description(), kWidth - get_column_width()),
                             get_column_width());
    return out.str();
}

std::string CHelpFormatter::make_option_desc(const CLI::Option* option) const {
    return Wrap(option->get_description(), kWidth - get_column_width());
}

std::string CHelpFormatter::make_footer(const CLI::App* app) const {
    const std::string footer = Wrap(app->get_footer(), kWidth);
    return footer.empty() ? footer : footer + "\n";
}

} // namespace tsl
