#pragma once

// The files that a source of OpenCL C includes, as far as their text changes what a build gives.

#include <vorn/mero/easy/builder.hpp>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorn::mero::easy::detail {

/// The words of OpenCL's options; quotation marks hold blanks together.
inline std::vector<std::string> words_of(std::string_view options) {
    std::vector<std::string> words(1);
    bool is_quoted = false;
    for (char const each : options) {
        if (each == '"') {
            is_quoted = !is_quoted;
        } else if (is_quoted || (each != ' ' && each != '\t')) {
            words.back() += each;
        } else if (!words.back().empty()) {
            words.emplace_back();
        }
    }
    return words;
}

/// The folders that `-I` names, and the one that the compiler starts in.
inline std::vector<std::string> include_folders(std::string_view options) {
    std::vector<std::string> folders{"."};
    auto const words = words_of(options);
    for (std::size_t i = 0; i != words.size(); ++i) {
        if (words[i] == "-I" && i + 1 != words.size()) {
            folders.push_back(words[i + 1]);
        } else if (words[i].compare(0, 2, "-I") == 0) {
            folders.push_back(words[i].substr(2));
        }
    }
    return folders;
}

/// Collects the names in the `#include` lines of a source, also of those that a condition leaves out. False if one
/// names a macro.
inline bool collect_includes(std::string_view source, std::vector<std::string>& names) {
    auto const skip_blanks = [&source](std::size_t at) {
        return std::min(source.find_first_not_of(" \t", at), source.size());
    };
    for (std::size_t at = source.find('#'); at != std::string_view::npos; at = source.find('#', at + 1)) {
        std::size_t const word = skip_blanks(at + 1);
        if (source.compare(word, 7, "include") != 0) {
            continue;
        }
        std::size_t const open = skip_blanks(word + 7);
        char const mark = open < source.size() ? source[open] : '\n';
        std::size_t const close = source.find(mark == '<' ? '>' : '"', open + 1);
        if ((mark != '"' && mark != '<') || close == std::string_view::npos) {
            return false;
        }
        names.emplace_back(source.substr(open + 1, close - open - 1));
    }
    return true;
}

/// The texts of all files that a source includes, directly or not, wherever a folder has one of the name.
/// Nothing where they cannot be told because of a macro.
inline std::optional<std::string> included_files(std::string_view source, std::string_view options) {
    auto const folders = include_folders(options);
    std::vector<std::string> names;
    if (!collect_includes(source, names)) {
        return std::nullopt;
    }
    std::string all;
    std::vector<std::string> seen;
    while (!names.empty()) {
        std::string const name = std::move(names.back());
        names.pop_back();
        for (std::string const& folder : folders) {
            std::string const meant = !name.empty() && name.front() == '/' ? name : folder + "/" + name;
            std::unique_ptr<char, void (*)(void*)> const real(::realpath(meant.c_str(), nullptr), &std::free);
            std::string const path = real != nullptr ? real.get() : "";
            if (path.empty() || std::find(seen.begin(), seen.end(), path) != seen.end()) {
                continue;
            }
            seen.push_back(path);
            std::string text;
            try {
                text = content_of(path);
            } catch (file_error const&) { // then no compiler reads it either
                continue;
            }
            all += joined({std::to_string(text.size()), ":", text});
            std::vector<std::string> inner;
            if (!collect_includes(text, inner)) {
                return std::nullopt;
            }
            for (std::string& each : inner) { // may be meant from the folder of the file
                names.push_back(joined({folder_of(path), "/", each}));
                names.push_back(std::move(each));
            }
        }
    }
    return all;
}

} // namespace vorn::mero::easy::detail
