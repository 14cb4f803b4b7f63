#include "doctor.hpp"

#include <vorn/mero/easy.hpp>

#include <fcntl.h>
#include <grp.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nq::command {
namespace {

namespace fs = std::filesystem;

struct device {
    std::string name;
    std::string versions; // of the namespaces that find it
};

// In the order of discovery. A device has the same raw handle in all namespaces.
std::vector<device> find_devices() {
    std::vector<device> found;
    std::map<void*, std::size_t> known;
    vorn::mero::easy::for_each_version([&]<class Api>(Api) {
        for (auto const& each : Api::get_all_devices()) {
            auto const [place, is_new] = known.try_emplace(Api::get_raw_device_id(each), found.size());
            if (is_new) {
                found.push_back({each.get_platform().name() + ": " + each.name(), ""});
            }
            found[place->second].versions +=
                ' ' + std::to_string(Api::number / 100) + '.' + std::to_string(Api::number / 10 % 10);
        }
    });
    return found;
}

// What a function writes to standard error, also from libraries.
template <class Function>
std::string written_by(Function function) {
    int const kept = dup(STDERR_FILENO);
    int const memory = memfd_create("standard error", MFD_CLOEXEC);
    dup2(memory, STDERR_FILENO);
    function();
    std::fflush(stderr);
    dup2(kept, STDERR_FILENO);
    close(kept);
    std::string text(static_cast<std::size_t>(lseek(memory, 0, SEEK_END)), '\0');
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(pread(memory, text.data(), text.size(), 0), 0)));
    close(memory);
    return text;
}

finding classify(std::string const& report) {
    static constexpr std::array<std::pair<char const*, finding>, 5> phrases{{
        {"there is no OpenCL loader", finding::no_loader},
        {"there is no OpenCL implementation", finding::no_implementation},
        {"which does not load", finding::broken_library},
        {"offers no platform", finding::broken_library},
        {"has no device", finding::platform_without_device},
    }};
    for (auto const& [phrase, meaning] : phrases) {
        if (report.find(phrase) != std::string::npos) {
            return meaning;
        }
    }
    return finding::healthy;
}

// The files of graphics cards that this user may not open.
std::string forbidden_files() {
    std::vector<fs::path> files{"/dev/kfd", "/dev/nvidiactl", "/dev/nvidia0", "/dev/dxg"};
    std::error_code failure;
    for (auto const& each : fs::directory_iterator("/dev/dri", failure)) {
        if (each.path().filename().string().starts_with("render")) {
            files.push_back(each.path());
        }
    }
    std::string report;
    for (fs::path const& each : files) {
        struct stat about {};
        if (stat(each.c_str(), &about) == 0 && access(each.c_str(), R_OK | W_OK) != 0) {
            group const* const owner = getgrgid(about.st_gid);
            report += "you may not open " + each.string() + ": join the group " +
                      (owner != nullptr ? owner->gr_name : std::to_string(about.st_gid)) +
                      " (usermod -a -G), and log in again\n";
        }
    }
    return report;
}

} // namespace

finding diagnose() {
    setenv("NQ_BRIDGE_VERBOSE", "1", 1);
    std::vector<device> devices;
    std::string const report = written_by([&] { devices = find_devices(); });
    std::string const forbidden = forbidden_files();
    for (device const& each : devices) {
        std::printf("%s (OpenCL%s)\n", each.name.c_str(), each.versions.c_str());
    }
    std::printf("%zu device%s\n", devices.size(), devices.size() == 1 ? "" : "s");
    std::fputs((report + forbidden).c_str(), stdout);
    if (finding const told = classify(report); told != finding::healthy) {
        return told;
    }
    return !forbidden.empty() ? finding::forbidden_device_file
           : devices.empty()  ? finding::no_device
                              : finding::healthy;
}

} // namespace nq::command
