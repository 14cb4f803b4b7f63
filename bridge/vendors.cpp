#include "vendors.hpp"

#include "system.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace nq::bridge {
namespace {

namespace fs = std::filesystem;

constexpr char const* system_folder = "/etc/OpenCL/vendors";

vendor read_vendor(fs::path const& file) {
    vendor read{file.string(), {}};
    std::ifstream stream(file);
    stream >> std::ws;
    std::getline(stream, read.driver);
    return read;
}

} // namespace

char const* const vendor_entry = "vendor file (*.icd)";
char const* const vendor_remedy = " (on Debian: apt-get install pocl-opencl-icd) or name the folder in OCL_ICD_VENDORS";

std::string vendor_setting() {
    for (char const* variable : {"OCL_ICD_VENDORS", "OPENCL_VENDOR_PATH"}) {
        if (char const* const value = trusted_environment(variable); value != nullptr && *value != '\0') {
            return value;
        }
    }
    return system_folder;
}

std::vector<vendor> list_vendors(std::string const& setting) {
    fs::path const path = setting;
    std::error_code failure;
    std::vector<vendor> vendors;
    if (fs::is_directory(path, failure)) {
        for (auto const& entry : fs::directory_iterator(path, failure)) {
            if (entry.path().extension() == ".icd") {
                vendors.push_back(read_vendor(entry.path()));
            }
        }
        std::sort(vendors.begin(), vendors.end(),
                  [](vendor const& left, vendor const& right) { return left.file < right.file; });
    } else if (path.extension() == ".icd") {
        vendors.push_back(read_vendor(path.has_parent_path() ? path : system_folder / path));
    } else if (fs::exists(path, failure) || setting.find(".so") != std::string::npos) {
        vendors.push_back({{}, setting});
    }
    return vendors;
}

} // namespace nq::bridge
