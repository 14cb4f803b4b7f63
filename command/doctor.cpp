#include "doctor.hpp"

#include <vorn/mero/easy.hpp>

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace nq::command {
namespace {

namespace fs = std::filesystem;

struct device {
    std::string name;
    std::vector<std::string> versions; // of the namespaces that find it
};

// In the order of discovery. A device has the same raw handle in all namespaces.
std::vector<device> find_devices() {
    std::vector<device> found;
    std::map<void*, std::size_t> known;
    vorn::mero::easy::for_each_version([&]<class Api>(Api) {
        for (auto const& each : Api::get_all_devices()) {
            auto const [place, is_new] = known.try_emplace(Api::get_raw_device_id(each), found.size());
            if (is_new) {
                found.push_back({each.get_platform().name() + ": " + each.name(), {}});
            }
            found[place->second].versions.push_back(std::to_string(Api::number / 100) + '.' +
                                                    std::to_string(Api::number / 10 % 10));
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

// One thing that is wrong.
struct problem {
    finding kind;
    std::string text;
    std::string remedy;
};

constexpr std::pair<finding, char const*> names[] = {
    {finding::no_loader, "no loader"},
    {finding::no_implementation, "no implementation"},
    {finding::broken_library, "broken library"},
    {finding::platform_without_device, "platform without device"},
    {finding::forbidden_device_file, "forbidden device file"},
    {finding::no_device, "no device"},
    {finding::broken_vendor_file, "broken vendor file"},
    {finding::library_without_platform, "library without platform"},
};

finding classify(std::string_view line) {
    static constexpr std::pair<char const*, finding> phrases[] = {
        {"there is no OpenCL loader", finding::no_loader},
        {"there is no OpenCL implementation", finding::no_implementation},
        {"which does not load", finding::broken_library},
        {"has no device", finding::platform_without_device},
        {"cannot be read or names no library", finding::broken_vendor_file},
        {"offers no platform", finding::library_without_platform},
    };
    for (auto const& [phrase, meaning] : phrases) {
        if (line.find(phrase) != std::string_view::npos) {
            return meaning;
        }
    }
    return finding::healthy;
}

// What the bridge says: a line for each problem, with the remedy behind the last colon or semicolon, or on the next
// line.
std::vector<problem> problems_in(std::string const& report) {
    std::vector<problem> found;
    std::istringstream lines(report);
    for (std::string line; std::getline(lines, line);) {
        constexpr std::string_view prefix = "libnq: ";
        std::string const text = line.starts_with(prefix) ? line.substr(prefix.size()) : line;
        finding const kind = classify(text);
        if (kind == finding::healthy) {
            if (!found.empty()) {
                found.back().remedy += (found.back().remedy.empty() ? "" : "\n") + text;
            }
        } else if (kind == finding::platform_without_device || kind == finding::broken_vendor_file) {
            std::size_t const end = text.find(kind == finding::broken_vendor_file ? "; " : ": ", text.rfind('"') + 1);
            found.push_back({kind, text.substr(0, end), end < text.size() ? text.substr(end + 2) : ""});
        } else {
            found.push_back({kind, text, ""});
        }
        if (kind == finding::library_without_platform) {
            found.back().remedy = "nothing, if this machine lacks what it drives; else install that device's driver";
        }
    }
    return found;
}

bool is_member(gid_t group) {
    std::vector<gid_t> own(static_cast<std::size_t>(std::max(getgroups(0, nullptr), 0)));
    own.resize(static_cast<std::size_t>(std::max(getgroups(static_cast<int>(own.size()), own.data()), 0)));
    return getegid() == group || std::find(own.begin(), own.end(), group) != own.end();
}

// Whether the user is a member since before this login.
bool is_listed(group const& of) {
    passwd const* const user = getpwuid(geteuid());
    for (char** each = of.gr_mem; user != nullptr && *each != nullptr; ++each) {
        if (std::string_view(*each) == user->pw_name) {
            return true;
        }
    }
    return false;
}

std::string remedy_for(struct stat const& file) {
    bool const group_may = (file.st_mode & (S_IRGRP | S_IWGRP)) == (S_IRGRP | S_IWGRP);
    group const* const owner = getgrgid(file.st_gid);
    std::string const name = owner != nullptr ? owner->gr_name : std::to_string(file.st_gid);
    if (!group_may || is_member(file.st_gid)) {
        return "let its group or all users read and write it (chmod, or a rule of udev)";
    }
    return owner != nullptr && is_listed(*owner)
               ? "log in again: you are in the group " + name + ", but not since this login"
               : "join the group " + name + " (usermod -a -G), and log in again";
}

// The files of graphics cards that this user may not open.
std::vector<problem> forbidden_files() {
    std::vector<fs::path> files{"/dev/kfd", "/dev/dxg"};
    for (auto const& [folder, begin] : {std::pair{"/dev/dri", "render"}, std::pair{"/dev", "nvidia"}}) {
        std::error_code failure;
        for (auto const& each : fs::directory_iterator(folder, failure)) {
            if (each.path().filename().string().starts_with(begin) && each.is_character_file(failure)) {
                files.push_back(each.path());
            }
        }
    }
    std::vector<problem> found;
    for (fs::path const& each : files) {
        struct stat about {};
        if (stat(each.c_str(), &about) == 0 && access(each.c_str(), R_OK | W_OK) != 0) {
            found.push_back({finding::forbidden_device_file, "you may not open " + each.string(), remedy_for(about)});
        }
    }
    return found;
}

char const* name_of(finding kind) {
    auto const* const found =
        std::find_if(std::begin(names), std::end(names), [&](auto const& each) { return each.first == kind; });
    return found != std::end(names) ? found->second : "healthy";
}

void print_json(std::vector<device> const& devices, std::vector<problem> const& problems, finding worst) {
    nlohmann::ordered_json all = {{"status", static_cast<int>(worst)},
                                  {"finding", name_of(worst)},
                                  {"devices", nlohmann::ordered_json::array()},
                                  {"problems", nlohmann::ordered_json::array()}};
    for (device const& each : devices) {
        all["devices"].push_back({{"name", each.name}, {"namespaces", each.versions}});
    }
    for (problem const& each : problems) {
        all["problems"].push_back({{"status", static_cast<int>(each.kind)},
                                   {"finding", name_of(each.kind)},
                                   {"text", each.text},
                                   {"remedy", each.remedy}});
    }
    std::printf("%s\n", all.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace).c_str());
}

void print_text(std::vector<device> const& devices, std::vector<problem> const& problems) {
    for (device const& each : devices) {
        std::string versions;
        for (std::string const& version : each.versions) {
            versions += ' ' + version;
        }
        std::printf("%s (OpenCL%s)\n", each.name.c_str(), versions.c_str());
    }
    std::printf("%zu device%s\n", devices.size(), devices.size() == 1 ? "" : "s");
    for (problem const& each : problems) {
        std::printf("%s\n%s%s", each.text.c_str(), each.remedy.empty() ? "" : "  ", each.remedy.c_str());
        std::printf(each.remedy.empty() ? "" : "\n");
    }
}

} // namespace

finding diagnose(bool json) {
    setenv("NQ_BRIDGE_VERBOSE", "1", 1);
    std::vector<device> devices;
    std::string const report = written_by([&] { devices = find_devices(); });
    std::vector<problem> problems = problems_in(report);
    auto const forbidden = forbidden_files();
    problems.insert(problems.end(), forbidden.begin(), forbidden.end());
    if (problems.empty() && devices.empty()) {
        problems.push_back({finding::no_device,
                            "there is no device, and libnq does not say why" + (report.empty() ? "" : ": " + report),
                            ""});
    }
    finding worst = finding::healthy;
    for (problem const& each : problems) {
        worst = worst == finding::healthy ? each.kind : std::min(worst, each.kind);
    }
    if (json) {
        print_json(devices, problems, worst);
    } else {
        print_text(devices, problems);
    }
    return worst;
}

} // namespace nq::command
