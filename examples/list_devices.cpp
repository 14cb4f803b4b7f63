// Lists the devices that each namespace finds, with their main properties.
//
//     list_devices [--json]
//
// Prints a table with one row for each device, or JSON with one object for each device in each namespace.

#include "support.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace {

struct row {
    std::string versions; // of the namespaces that find the device
    _nq_cl_device_id* id;
    std::string platform;
    std::string name;
    std::string type;
    std::uint32_t units;
    std::uint32_t megahertz;
    std::uint64_t memory;
    std::uint64_t largest_buffer;
    std::uint64_t local_memory;
    std::size_t work_group;
    bool images;
    bool doubles;
};

template <class Device>
std::string type_of(Device const& device) {
    if (device.is_type_cpu()) {
        return "CPU";
    }
    if (device.is_type_gpu()) {
        return "GPU";
    }
    return device.is_type_accelerator() ? "accelerator" : "other";
}

template <class Api>
std::string version_of() {
    return std::to_string(Api::number / 100) + '.' + std::to_string(Api::number / 10 % 10);
}

template <class Device>
bool has_doubles(Device const& device) {
    auto const extensions = device.extensions();
    return std::find(extensions.begin(), extensions.end(), "cl_khr_fp64") != extensions.end();
}

template <class Device>
row describe(Device const& device, std::string const& version, _nq_cl_device_id* id) {
    return {version,
            id,
            device.get_platform().name(),
            device.name(),
            type_of(device),
            device.max_compute_units(),
            device.max_clock_frequency(),
            device.global_mem_size(),
            device.max_mem_alloc_size(),
            device.local_mem_size(),
            device.max_work_group_size(),
            device.image_support(),
            has_doubles(device)};
}

// A device has the same raw handle in all namespaces, and gets one row.
template <class Api>
void add_rows(std::vector<row>& rows) {
    for (auto const& device : Api::get_all_devices()) {
        auto* const id = Api::get_raw_device_id(device);
        auto const known = std::find_if(rows.begin(), rows.end(), [id](row const& other) { return other.id == id; });
        if (known != rows.end()) {
            known->versions += ' ' + version_of<Api>();
        } else {
            rows.push_back(describe(device, version_of<Api>(), id));
        }
    }
}

std::string mebibytes(std::uint64_t bytes) { return std::to_string(bytes >> 20) + " MiB"; }

void print_table(std::vector<row> const& rows) {
    std::printf("%-24s %-28s %-34s %-11s %5s %5s %10s %10s %10s %6s %-6s %-7s\n", "namespaces", "platform", "device",
                "type", "units", "MHz", "memory", "buffer", "local", "group", "images", "doubles");
    for (row const& device : rows) {
        std::printf("%-24s %-28.28s %-34.34s %-11s %5u %5u %10s %10s %6llu KiB %6zu %-6s %-7s\n",
                    device.versions.c_str(), device.platform.c_str(), device.name.c_str(), device.type.c_str(),
                    device.units, device.megahertz, mebibytes(device.memory).c_str(),
                    mebibytes(device.largest_buffer).c_str(),
                    static_cast<unsigned long long>(device.local_memory >> 10), device.work_group,
                    device.images ? "yes" : "no", device.doubles ? "yes" : "no");
    }
}

template <class Api>
void add_objects(nlohmann::json& list) {
    for (auto const& device : Api::get_all_devices()) {
        auto const platform = device.get_platform();
        list.push_back(
            {{"namespace", "opencl_" + std::to_string(Api::number / 100) + '_' + std::to_string(Api::number / 10 % 10)},
             {"platform", platform.name()},
             {"platform_version", platform.version()},
             {"name", device.name()},
             {"vendor", device.vendor()},
             {"device_version", device.device_version()},
             {"driver_version", device.driver_version()},
             {"type", type_of(device)},
             {"compute_units", device.max_compute_units()},
             {"clock_mhz", device.max_clock_frequency()},
             {"global_memory_bytes", device.global_mem_size()},
             {"largest_buffer_bytes", device.max_mem_alloc_size()},
             {"local_memory_bytes", device.local_mem_size()},
             {"largest_work_group", device.max_work_group_size()},
             {"work_item_sizes", device.max_work_item_sizes()},
             {"images", device.image_support()},
             {"available", device.available()},
             {"full_profile", device.is_full_profile()},
             {"extensions", device.extensions()}});
    }
}

void print_json() {
    auto objects = nlohmann::json::array();
    vorn::mero::easy::for_each_version([&]<class Api>(Api) { add_objects<Api>(objects); });
    std::printf("%s\n", objects.dump(2).c_str());
}

void print_rows() {
    std::vector<row> rows;
    vorn::mero::easy::for_each_version([&]<class Api>(Api) { add_rows<Api>(rows); });
    if (rows.empty()) {
        std::printf("No device was found. An OpenCL implementation is needed, for CPUs for example PoCL (on Debian: "
                    "apt-get install pocl-opencl-icd);\nNQ_BRIDGE_VERBOSE=1 says what was looked for and not found.\n");
    } else {
        print_table(rows);
    }
}

} // namespace

int main(int count, char** arguments) {
    bool const json = count == 2 && std::strcmp(arguments[1], "--json") == 0;
    if (count > (json ? 2 : 1)) {
        std::fprintf(stderr, "usage: list_devices [--json]\n");
        return EXIT_FAILURE;
    }
    try {
        json ? print_json() : print_rows();
        return EXIT_SUCCESS;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "list_devices: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
