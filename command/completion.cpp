#include "completion.hpp"

#include <algorithm>

namespace nq::command {
namespace {

// The names of subcommands, or of options if the word begins with one.
std::vector<std::string> names_of(CLI::App const& app, bool options) {
    std::vector<std::string> names;
    if (!options) {
        for (CLI::App const* const each : app.get_subcommands({})) {
            names.push_back(each->get_name());
        }
        return names;
    }
    for (CLI::Option const* const each : app.get_options()) {
        for (std::string const& name : each->get_snames()) {
            names.push_back('-' + name);
        }
        for (std::string const& name : each->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

} // namespace

std::vector<std::string> completions(CLI::App const& app, std::vector<std::string> const& words) {
    if (words.empty() || std::find(words.begin(), words.end() - 1, "--") != words.end() - 1) {
        return {};
    }
    auto const all = app.get_subcommands({});
    auto const chosen = std::find_if(all.begin(), all.end(), [&](CLI::App const* each) {
        return std::find(words.begin(), words.end() - 1, each->get_name()) != words.end() - 1;
    });
    std::string const& word = words.back();
    auto names = names_of(chosen != all.end() ? **chosen : app, word.starts_with('-'));
    names.erase(std::remove_if(names.begin(), names.end(),
                               [&](std::string const& each) { return !each.starts_with(word) || each == "--"; }),
                names.end());
    return names;
}

} // namespace nq::command
