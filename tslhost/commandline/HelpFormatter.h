// The help texts as a terminal of 80 columns shows them.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tsl {

class CHelpFormatter : public CLI::Formatter {
public:
    std::string make_description(const CLI::App* app) const override;
    std::string make_subcommand(const CLI::App* app) const override;
    std::string make_option_opts(const CLI::Option* option) const override;
    std::string make_option_desc(const CLI::Option* option) const override;
    std::string make_footer(const CLI::App* app) const override;
};

} // namespace tsl
