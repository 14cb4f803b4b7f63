#include "info.hpp"

#include <vorn/mero/easy.hpp>

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace nq::command {
namespace {

using nlohmann::ordered_json;

// What a query answers; null if the device has no answer.
template <class Query>
void put(ordered_json& to, char const* name, Query query) {
    try {
        to[name] = query();
    } catch (std::exception const&) {
        to[name] = nullptr;
    }
}

template <class Device>
std::string type_of(Device const& device) {
    return device.is_type_gpu()           ? "GPU"
           : device.is_type_cpu()         ? "CPU"
           : device.is_type_accelerator() ? "accelerator"
                                          : "other";
}

template <class Device>
void put_common(ordered_json& to, Device const& device) {
    put(to, "type", [&] { return type_of(device); });
    put(to, "vendor", [&] { return device.vendor(); });
    put(to, "version", [&] { return device.device_version(); });
    put(to, "driver", [&] { return device.driver_version(); });
    put(to, "available", [&] { return device.available(); });
    put(to, "compiler", [&] { return device.compiler_available(); });
    put(to, "compute units", [&] { return device.max_compute_units(); });
    put(to, "clock in MHz", [&] { return device.max_clock_frequency(); });
    put(to, "address bits", [&] { return device.address_bits(); });
    put(to, "global memory in bytes", [&] { return device.global_mem_size(); });
    put(to, "largest buffer in bytes", [&] { return device.max_mem_alloc_size(); });
    put(to, "local memory in bytes", [&] { return device.local_mem_size(); });
    put(to, "constant buffer in bytes", [&] { return device.max_constant_buffer_size(); });
    put(to, "largest work-group", [&] { return device.max_work_group_size(); });
    put(to, "largest work-group by dimension", [&] { return device.max_work_item_sizes(); });
    put(to, "images", [&] { return device.image_support(); });
    put(to, "double", [&] { return device.double_fp_fma_supported(); });
    put(to, "extensions", [&] {
        auto const all = device.extensions();
        return std::set<std::string>(all.begin(), all.end());
    });
}

// What OpenCL 2.0 to 2.2 added, which a device of OpenCL 3.0 may lack.
template <class Api, class Device>
void put_newer(ordered_json& to, Device const& device) {
    if constexpr (Api::number >= 200) {
        put(to, "SVM, coarse-grained buffers", [&] { return device.svm_coarse_grain_buffer_supported(); });
        put(to, "SVM, fine-grained buffers", [&] { return device.svm_fine_grain_buffer_supported(); });
        put(to, "SVM, fine-grained system", [&] { return device.svm_fine_grain_system_supported(); });
        put(to, "SVM, atomics", [&] { return device.svm_atomics_supported(); });
        put(to, "queues on the device", [&] { return device.max_on_device_queues(); });
        put(to, "pipe arguments of a kernel", [&] { return device.max_pipe_args(); });
        put(to, "read-write images of a kernel", [&] { return device.max_read_write_image_args(); });
        put(to, "largest global variable in bytes", [&] { return device.max_global_variable_size(); });
    }
    if constexpr (Api::number >= 210) {
        put(to, "intermediate languages", [&] { return device.il_version(); });
        put(to, "sub-groups in a work-group", [&] { return device.max_num_sub_groups(); });
        put(to, "sub-groups progress independently", [&] { return device.sub_group_independent_forward_progress(); });
    }
}

// In the order of discovery. A device has the same raw handle in all namespaces; the newest has the last word.
ordered_json collect() {
    ordered_json all = {{"platforms", ordered_json::array()}};
    std::map<void*, std::size_t> platforms;
    std::map<void*, std::pair<std::size_t, std::size_t>> devices;
    vorn::mero::easy::for_each_version([&]<class Api>(Api) {
        for (auto const& each : Api::get_all_devices()) {
            auto const platform = each.get_platform();
            auto& list = all["platforms"];
            auto const [owner, is_new_platform] =
                platforms.try_emplace(Api::get_raw_platform_id(platform), list.size());
            if (is_new_platform) {
                list.push_back({{"name", platform.name()},
                                {"vendor", platform.vendor()},
                                {"version", platform.version()},
                                {"devices", ordered_json::array()}});
            }
            auto& siblings = list[owner->second]["devices"];
            auto const [place, is_new] =
                devices.try_emplace(Api::get_raw_device_id(each), owner->second, siblings.size());
            if (is_new) {
                siblings.push_back({{"name", each.name()}, {"namespaces", ordered_json::array()}});
            }
            auto& device = list[place->second.first]["devices"][place->second.second];
            device["namespaces"].push_back(std::to_string(Api::number / 100) + '.' +
                                           std::to_string(Api::number / 10 % 10));
            put_common(device, each);
            put_newer<Api>(device, each);
        }
    });
    return all;
}

std::string text_of(ordered_json const& value) {
    if (value.is_string()) {
        return value.get<std::string>();
    }
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    if (!value.is_array()) {
        return value.is_null() ? "not told" : value.dump();
    }
    std::string text;
    for (auto const& each : value) {
        text += (text.empty() ? "" : " ") + text_of(each);
    }
    return text.empty() ? "none" : text;
}

void print_text(ordered_json const& all) {
    for (auto const& platform : all.at("platforms")) {
        std::printf("%s (%s, %s)\n", text_of(platform.at("name")).c_str(), text_of(platform.at("vendor")).c_str(),
                    text_of(platform.at("version")).c_str());
        for (auto const& device : platform.at("devices")) {
            std::printf("  %s\n", text_of(device.at("name")).c_str());
            for (auto const& [name, value] : device.items()) {
                if (name != "name") {
                    std::printf("    %-36s %s\n", name.c_str(), text_of(value).c_str());
                }
            }
        }
    }
}

using leaves = std::map<std::string, std::string>; // the path of a value, and the value

// Lists of named objects go by the names, other lists by what is in them.
void flatten(ordered_json const& value, std::string const& path, leaves& into) {
    auto const below = [&](std::string const& name) { return path.empty() ? name : path + ", " + name; };
    if (value.is_object()) {
        for (auto const& [name, each] : value.items()) {
            if (name != "name") {
                flatten(each, each.is_array() && (name == "platforms" || name == "devices") ? path : below(name), into);
            }
        }
    } else if (value.is_array() && !value.empty() && value.front().is_object()) {
        std::map<std::string, int> seen;
        for (auto const& each : value) {
            std::string const name = each.value("name", "");
            int const number = ++seen[name];
            flatten(each, below(name + (number > 1 ? " #" + std::to_string(number) : "")), into);
            into[below(name + (number > 1 ? " #" + std::to_string(number) : ""))] = "";
        }
    } else if (value.is_array() && !value.empty() && value.front().is_string()) {
        for (auto const& each : value) {
            into[below(text_of(each))] = "";
        }
    } else {
        into[path] = text_of(value);
    }
}

leaves read(std::string const& file) {
    bool const is_folder = std::filesystem::is_directory(file);
    std::ifstream from(file);
    if (!from || is_folder) {
        throw std::runtime_error("cannot read " + file + ": " + std::strerror(is_folder ? EISDIR : errno));
    }
    auto const give_up = [&file] { throw std::runtime_error(file + " is not what vorn-mero info --json writes"); };
    ordered_json const all = ordered_json::parse(from, nullptr, false);
    if (all.is_discarded() || !all.is_object() || !all.contains("platforms")) {
        give_up();
    }
    leaves found;
    try {
        flatten(all, "", found);
    } catch (ordered_json::exception const&) { // a name that is no text
        give_up();
    }
    return found;
}

void print_leaf(char sign, leaves::value_type const& each) {
    std::printf("%c %s%s%s\n", sign, each.first.c_str(), each.second.empty() ? "" : ": ", each.second.c_str());
}

} // namespace

int print_info(bool json) {
    ordered_json const all = collect();
    if (json) {
        std::printf("%s\n", all.dump(2, ' ', false, ordered_json::error_handler_t::replace).c_str());
    } else {
        print_text(all);
    }
    return all.at("platforms").empty() ? 1 : 0;
}

int print_differences(std::string const& before, std::string const& after) {
    leaves const left = read(before);
    leaves const right = read(after);
    leaves all = left;
    all.insert(right.begin(), right.end());
    int status = 0;
    for (auto const& [path, value] : all) {
        auto const was = left.find(path);
        auto const is = right.find(path);
        if (was != left.end() && is != right.end() && was->second == is->second) {
            continue;
        }
        status = 1;
        if (was != left.end()) {
            print_leaf('-', *was);
        }
        if (is != right.end()) {
            print_leaf('+', *is);
        }
    }
    return status;
}

} // namespace nq::command
