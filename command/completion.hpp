#pragma once

// Completes command lines for shells.

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace nq::command {

/// What the last word can be, of the words after the command's name: subcommands, options. Empty where a file may
/// stand.
std::vector<std::string> completions(CLI::App const& app, std::vector<std::string> const& words);

} // namespace nq::command
