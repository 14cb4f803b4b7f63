#pragma once

// What the tests call things.

#include <map>
#include <string>
#include <string_view>

namespace names {

/// The name of an entry point: "clFinish" for `nq::block::clFinish`.
template <class Block>
constexpr std::string_view name_of() {
    std::string_view name = __PRETTY_FUNCTION__;
    name.remove_prefix(name.find("nq::block::") + std::string_view("nq::block::").size());
    return name.substr(0, name.find_first_of(";]"));
}

/// The short names of the OpenCL implementations that the tests know, by the names of their platforms.
inline std::map<std::string, std::string> const short_names{{"Portable Computing Language", "pocl"},
                                                            {"rusticl", "rusticl"},
                                                            {"Oclgrind", "oclgrind"},
                                                            {"Intel(R) OpenCL", "intel"}};

} // namespace names
