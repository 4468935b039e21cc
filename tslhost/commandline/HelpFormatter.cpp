#include "tslhost/commandline/HelpFormatter.h"

#include <sstream>

#include "console/WordWrap.h"

namespace tsl {

namespace {

constexpr size_t kWidth = 77; // with the indent of a list, less than the 80 of a terminal

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
        const char* const next = line.starts_with("- ") ? "\n  " : "\n";
        const std::vector<std::string> rows = WrapWords(line, width);
        for (const std::string& row : rows)
            wrapped += (&row == &rows.front() ? "" : next) + row;
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

// As NAME TYPE=DEFAULT, whichever way the version of the library has.
std::string CHelpFormatter::make_option_opts(const CLI::Option* option) const {
    const std::string type = option->get_type_name();
    if (type.empty()) return {}; // a flag
    std::string text = " " + type;
    if (const std::string value = option->get_default_str(); !value.empty()) text += "=" + value;
    if (option->get_expected_max() == CLI::detail::expected_max_vector_size) text += " ...";
    if (option->get_required()) text += " REQUIRED";
    return text;
}

std::string CHelpFormatter::make_option_desc(const CLI::Option* option) const {
    return Wrap(option->get_description(), kWidth - get_column_width());
}

std::string CHelpFormatter::make_footer(const CLI::App* app) const {
    const std::string footer = Wrap(app->get_footer(), kWidth);
    return footer.empty() ? footer : footer + "\n";
}

} // namespace tsl
