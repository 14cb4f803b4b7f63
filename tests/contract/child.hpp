#pragma once

// The test program run again in a process of its own, for what needs its own environment or may not come back.

#include <map>
#include <string>
#include <vector>

namespace contract {

struct outcome {
    bool ended_well; // exited with 0 within the time limit
    std::string output;
};

/// Runs a mode of this program with variables added to the environment; an empty value removes one. 60 s at most.
outcome run_self(std::vector<std::string> arguments, std::map<std::string, std::string> const& environment = {});

/// The value of a variable of colon-separated options, such as a sanitizer's, with one more of them.
std::string with_option(char const* variable, std::string const& option);

/// The last lines of an output, which tell what was under way when a child died.
std::string tail(outcome const& child);

/// Performs a mode: its exit status.
int run_mode(std::vector<std::string> const& words);

} // namespace contract
