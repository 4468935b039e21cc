#include "tslhost/commandline/Manual.h"

#include <sstream>

#include "tslhost/commandline/HelpFormatter.h"

namespace tsl {

namespace {

std::string CodeBlock(const std::string& text) {
    return "```\n" + text + "\n```\n\n";
}

// The paragraphs below a help text: indented lines and examples are code, the rest is text.
std::string Footer(const CLI::App& app) {
    constexpr std::string_view kExample = "Example: ";
    std::istringstream lines(app.get_footer());
    std::string manual;
    std::string code;
    const auto finishCode = [&] {
        if (!code.empty()) manual += "\n" + CodeBlock(code);
        code.clear();
    };
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("  ")) {
            code += (code.empty() ? "" : "\n") + line.substr(2);
            continue;
        }
        finishCode();
        if (line.starts_with(kExample)) {
            manual += "Example:\n";
            code = line.substr(kExample.size());
        } else {
            manual += line + "\n";
        }
    }
    finishCode();
    if (!manual.empty() && !manual.ends_with("\n\n")) manual += '\n';
    return manual;
}

class CManual {
public:
    explicit CManual(const CLI::App& app) : m_app(app) {}

    std::string Text() const {
        std::string text = "# tslhost\n\n" + m_app.get_description() + ".\n\n" +
                           CodeBlock("tslhost [OPTIONS] COMMAND [OPTIONS]") +
                           "Options of every command, before or behind its name:\n\n" +
                           Options(m_app) + Footer(m_app) + "\n## Commands\n";
        std::string group;
        for (const CLI::App* const command : Commands()) {
            if (command->get_group() != group) text += "\n" + command->get_group() + ":\n\n";
            group = command->get_group();
            text += Link(*command);
        }
        text += '\n';
        for (const CLI::App* const command : Commands())
            text += Section(*command);
        text.erase(text.find_last_not_of('\n') + 1);
        return text;
    }

private:
    std::vector<const CLI::App*> Commands() const { return m_app.get_subcommands({}); }

    static std::string Link(const CLI::App& command) {
        const std::string& name = command.get_name();
        return "- [" + name + "](#" + name + "): " + command.get_description() + "\n";
    }

    std::string Section(const CLI::App& command) const {
        const std::string& name = command.get_name();
        std::string usage = m_formatter.make_usage(&command, "tslhost " + name);
        usage = usage.substr(usage.find("tslhost"));
        usage.erase(usage.find_last_not_of('\n') + 1);
        return "### " + name + "\n\n" + command.get_description() + ".\n\n" + CodeBlock(usage) +
               Options(command) + Footer(command);
    }

    // What is put on a place of its own first, then the options.
    std::string Options(const CLI::App& app) const {
        std::string list;
        for (const bool positional : {true, false}) {
            for (const CLI::Option* const option : app.get_options()) {
                if (option->get_positional() != positional || IsHelp(*option)) continue;
                list += "- `" + m_formatter.make_option_name(option, positional) +
                        m_formatter.make_option_opts(option) + "`: " + option->get_description() +
                        "\n";
            }
        }
        return list.empty() ? list : list + "\n";
    }

    static bool IsHelp(const CLI::Option& option) { return option.check_name("--help"); }

    // Its parts are not to be called from outside.
    struct Formatter : CHelpFormatter {
        using CHelpFormatter::make_option_name;
        using CHelpFormatter::make_option_opts;
        using CHelpFormatter::make_usage;
    };
    const CLI::App& m_app;
    Formatter m_formatter;
};

} // namespace

std::string MakeManual(const CLI::App& app) {
    return CManual(app).Text();
}

} // namespace tsl
