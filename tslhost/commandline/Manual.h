// The manual of the console host, made from the texts that its help prints.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace tsl {

// As Markdown: the options of all commands, then each command with its options and its example.
std::string MakeManual(const CLI::App& app);

} // namespace tsl
