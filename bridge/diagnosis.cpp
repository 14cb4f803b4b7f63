#include "diagnosis.hpp"

#include "loader.hpp"
#include "system.hpp"
#include "vendors.hpp"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <strings.h>

namespace nq::bridge {
namespace {

bool verbose() noexcept {
    char const* const value = trusted_environment("NQ_BRIDGE_VERBOSE");
    constexpr std::array yes{"1", "true", "yes", "on"};
    return value != nullptr &&
           std::any_of(yes.begin(), yes.end(), [value](char const* word) { return strcasecmp(word, value) == 0; });
}

std::string line(std::string const& text) { return "libnq: " + text + "\n"; }

// If the user has named what was not found, in one of these variables.
std::string named_by(std::initializer_list<char const*> variables) {
    for (char const* const variable : variables) {
        if (char const* const value = trusted_environment(variable); value != nullptr && *value != '\0') {
            return "correct or unset " + std::string(variable) + ", which names it, or ";
        }
    }
    return "";
}

std::string without_loader(std::string const& failure) {
    std::string const named = named_by({"NQ_BRIDGE_OPENCL"});
    return line("there is no OpenCL loader: " + failure) +
           line(named + "install one (" + std::string(loader_remedy) + ")" +
                (named.empty() ? " or name yours in NQ_BRIDGE_OPENCL" : ""));
}

std::string without_vendors(std::string const& setting) {
    return line("there is no OpenCL implementation: no " + std::string(vendor_entry) + " in " + setting) +
           line(named_by({"OCL_ICD_VENDORS", "OPENCL_VENDOR_PATH"}) + "install one" + std::string(vendor_remedy));
}

// Why the loader does not use a vendor's library; the loader skips it silently.
std::string unusable(vendor const& each, bool platforms_found) {
    std::string const named = each.file.empty() ? "" : each.file + " names ";
    if (each.driver.empty()) {
        return line(each.file + " cannot be read or names no library; remove or correct it");
    }
    if (load_library(each.driver.c_str(), binding::when_called) == nullptr) {
        std::string const reason = load_failure(each.driver.c_str());
        std::string const missing = reason.substr(0, reason.find(": "));
        bool const is_named = !each.file.empty() && missing == each.driver; // and not what it needs
        return line(named + each.driver + ", which does not load: " + reason) +
               line((is_named ? "correct " + each.file + ", or " : "") + "install or repair the package that holds " +
                    missing);
    }
    return platforms_found ? ""
                           : line(named + each.driver +
                                  ", which loads but offers no platform: "
                                  "it found no device that it can drive");
}

std::string remedy_for_no_device(platform const& empty) {
    if (empty.name == "rusticl") {
        return "set RUSTICL_ENABLE to the drivers that it may use, for example RUSTICL_ENABLE=llvmpipe";
    }
    if (empty.name == "Portable Computing Language") {
        return "check POCL_DEVICES, and that the folder of POCL_CACHE_DIR can be made and written";
    }
    return "it supports none of this machine; install an implementation that does "
           "(on Debian: apt-get install pocl-opencl-icd)";
}

std::string without_device(machine const& found) {
    std::string report;
    for (platform const& each : found.platforms) {
        auto const is_of_it = [&each](root_device const& device) { return device.owner == &each; };
        if (std::none_of(found.devices.begin(), found.devices.end(), is_of_it)) {
            report += line("the platform \"" + each.name + "\" has no device: " + remedy_for_no_device(each));
        }
    }
    return report;
}

std::string report_on(machine const& found, std::string const& failure) {
    if (!failure.empty()) {
        return without_loader(failure);
    }
    std::string report;
    if (found.platforms.empty() || found.platforms.front().behind_loader) {
        std::string const setting = vendor_setting();
        auto const vendors = list_vendors(setting);
        report = vendors.empty() && found.platforms.empty() ? without_vendors(setting) : "";
        for (vendor const& each : vendors) {
            report += unusable(each, !found.platforms.empty());
        }
    }
    return report + without_device(found);
}

} // namespace

void explain_discovery(machine const& found, std::string const& failure) {
    static auto& written = *new std::string;
    if (!verbose()) {
        return;
    }
    std::string report = report_on(found, failure);
    if (report != written) {
        std::fputs(report.c_str(), stderr);
        written = std::move(report);
    }
}

void explain_fork(platform const& lost) noexcept {
    static std::atomic_flag written;
    if (verbose() && !written.test_and_set()) {
        std::fprintf(stderr,
                     "libnq: the platform \"%s\" would hang in this process, which was forked after its devices were "
                     "listed; fork before the first OpenCL call, or start a new program in the child\n",
                     lost.name.c_str());
    }
}

} // namespace nq::bridge
