#include "support.hpp"

#include "interposer.hpp"
#include <dlfcn.h>

#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <set>
#include <stdexcept>
#include <tuple>

namespace real {
namespace {

struct skipped : std::runtime_error {
    using runtime_error::runtime_error;
};

using names::short_names;

std::string without_punctuation(std::string const& text) {
    std::string made;
    std::ranges::copy_if(text, std::back_inserter(made), [](unsigned char c) { return std::isalnum(c) != 0; });
    return made;
}

bool is_known(std::string const& implementation) {
    return std::ranges::any_of(short_names, [&](auto const& each) { return each.second == implementation; });
}

std::atomic<int> living_contexts = 0;

void CL_CALLBACK context_is_gone(cl_context, void*) { --living_contexts; }

/// Implementations may delete from a thread of their own, a little later.
void expect_no_context() {
    comes_true([] { return living_contexts == 0; });
    EXPECT_EQ(living_contexts.exchange(0), 0) << "an object of the scenario still holds its context";
}

struct outcome {
    std::string what; // "works", "differs", "skipped" or the status of the refusal
    std::string why;

    friend bool operator<(outcome const& one, outcome const& other) {
        return std::tie(one.what, one.why) < std::tie(other.what, other.why);
    }
};

/// What each implementation does with each feature: by feature, device and outcome, the versions.
std::map<std::string, std::map<std::string, std::map<outcome, std::set<int>>>> table;

/// What the running scenario has noted.
std::set<std::string> differences;

std::string version_text(int version) {
    return std::to_string(version / 100) + "." + std::to_string(version / 10 % 10);
}

std::string text_of(std::set<int> const& versions) {
    std::string const first = version_text(*versions.begin());
    return versions.size() > 1 ? first + "-" + version_text(*versions.rbegin()) : first;
}

void print_row(std::string const& head, std::vector<std::string> const& cells) {
    std::string line = "[ " + head + " ]";
    for (std::string const& cell : cells) {
        line += (&cell == cells.data() ? " " : " | ") + cell;
    }
    std::puts(line.c_str());
}

/// The devices with their versions, and a line for every outcome of a feature on a device. tools/features.py reads
/// them.
void print_table() {
    std::map<std::string, std::pair<std::vector<std::string>, std::set<int>>> devices;
    for_each_version([&devices]<class Api>(Api) {
        auto const all = Api::get_all_devices();
        for (std::size_t i = 0; i < all.size(); ++i) {
            auto const platform = all[i].get_platform();
            auto& [cells, versions] = devices[found_devices<Api>().at(i).name];
            cells = {platform.name(), platform.version(), all[i].driver_version(), all[i].name()};
            versions.insert(Api::number);
        }
    });
    for (auto const& [name, described] : devices) {
        auto const& [cells, versions] = described;
        print_row("DEVICE  ", {name, cells[0], cells[1], cells[2], cells[3], text_of(versions)});
    }
    for (auto const& [feature, on] : table) {
        for (auto const& [device, outcomes] : on) {
            for (auto const& [outcome, versions] : outcomes) {
                print_row("FEATURE ", {feature, device, outcome.what, text_of(versions), outcome.why});
            }
        }
    }
}

class scenario_test : public testing::Test {
public:
    scenario_test(scenario_name const& name, std::function<void()> const& body) : name_(name), body_(body) {}

    void TestBody() override {
        differences.clear();
        outcome const seen = run_body();
        expect_no_context();
        auto& outcomes = table[name_.feature][name_.device];
        outcomes[HasFailure() ? outcome{"FAILED", {}} : seen].insert(name_.version);
        for (std::string const& how : differences) {
            outcomes[{"differs", how}].insert(name_.version);
        }
    }

private:
    outcome run_body() {
        if (defect const* const known = find_defect(common::error_code::success)) {
            return leave_out({"skipped", known->reason});
        }
        try {
            body_();
            return {"works", {}};
        } catch (skipped const& reason) {
            return leave_out({"skipped", reason.what()});
        } catch (common::opencl_error const& error) {
            defect const* const known = find_defect(error.code());
            std::string const status = std::to_string(static_cast<int>(error.code()));
            if (known == nullptr && is_known(name_.implementation)) {
                ADD_FAILURE() << "status " << status << ": " << error.what();
            }
            return leave_out({"refused (" + status + ")", known != nullptr ? known->reason : error.what()});
        }
    }

    /// The known defect of the scenario that matches, or null.
    defect const* find_defect(common::error_code status) const {
        auto const& all = known_defects();
        auto const found = std::ranges::find_if(all, [&](defect const& each) {
            return each.implementation == name_.implementation && each.feature == name_.feature &&
                   each.status == status;
        });
        return found != all.end() ? &*found : nullptr;
    }

    outcome leave_out(outcome seen) const {
        [&] {
            GTEST_SKIP() << name_.implementation << ", " << name_.feature << ": " << seen.what << ", " << seen.why;
        }();
        return seen;
    }

    scenario_name name_;
    std::function<void()> body_;
};

void add_missing() {
    std::set<std::string> missing{"others"};
    std::ranges::transform(short_names, std::inserter(missing, missing.end()), [](auto& each) { return each.second; });
    for (auto const& [implementation, name] : found_devices<api<100>>()) {
        missing.erase(is_known(implementation) ? implementation : "others");
    }
    for (std::string const& name : missing) {
        add_test({"present", "devices", name, name, 100}, [name] { skip("no device of " + name + " here"); });
    }
}

/// The tests of a device end by asking that no entry point was left out.
template <class Api>
void add_completeness(Api) {
    for (auto const& [implementation, name] : found_devices<Api>()) {
        add_test({"leaves_nothing_out", "entry points", implementation, name, Api::number},
                 [] { EXPECT_EQ(never_called(Api::capability), ""); });
    }
}

} // namespace

std::string implementation_of(std::string const& platform_name) {
    auto const known = short_names.find(platform_name);
    return known != short_names.end() ? known->second : without_punctuation(platform_name);
}

void add_device(std::vector<found_device>& devices, std::string const& platform, std::string const& name) {
    found_device made{implementation_of(platform), implementation_of(platform)};
    if (std::ranges::find(devices, made.name, &found_device::name) != devices.end()) {
        made.name += "_" + without_punctuation(name) + "_" + std::to_string(devices.size());
    }
    devices.push_back(made);
}

void skip(std::string const& reason) { throw skipped(reason); }

void note_difference(std::string const& how) { differences.insert(how); }

bool comes_true(std::function<bool()> const& condition) {
    for (int i = is_nulling() ? 500 : 0; i < 500 && !condition(); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

bytes intermediate_language() {
    std::ifstream file(REAL_IL, std::ios::binary);
    bytes code{std::istreambuf_iterator<char>(file), {}};
    EXPECT_FALSE(code.empty());
    return code;
}

void watch(std::string const& implementation, _nq_cl_context* context) {
    static void* const loader = dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
    static auto* const set_callback =
        reinterpret_cast<decltype(&clSetContextDestructorCallback)>(dlsym(loader, "clSetContextDestructorCallback"));
    if (is_known(implementation)) {
        ++living_contexts;
        EXPECT_EQ(set_callback(reinterpret_cast<cl_context>(context), context_is_gone, nullptr), CL_SUCCESS);
    }
}

void add_test(scenario_name const& name, std::function<void()> body) {
    std::string const test = name.scenario + "_" + std::to_string(name.version / 10);
    testing::RegisterTest(name.device.c_str(), test.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [name, body]() -> testing::Test* { return new scenario_test(name, body); });
}

std::list<std::function<void()>>& additions() {
    static std::list<std::function<void()>> all;
    return all;
}

int run_tests() {
    add_missing();
    std::ranges::for_each(additions(), [](auto const& add) { add(); });
    for_each_version([](auto version) { add_completeness(version); });
    int const status = RUN_ALL_TESTS();
    print_table();
    return status;
}

} // namespace real

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    return count > 2 && std::string_view(words[1]) == "--mode" ? real::perform_mode({words + 2, words + count})
                                                               : real::run_tests();
}
