#include "support.hpp"

#include <CL/cl.h>
#include <dlfcn.h>

#include <algorithm>
#include <atomic>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <map>
#include <set>
#include <stdexcept>
#include <thread>

namespace real {
namespace {

struct skipped : std::runtime_error {
    using runtime_error::runtime_error;
};

std::string const refused = "refused with status ";

std::map<std::string, std::string> const short_names{{"Portable Computing Language", "pocl"},
                                                     {"rusticl", "rusticl"},
                                                     {"Oclgrind", "oclgrind"},
                                                     {"Intel(R) OpenCL", "intel"}};

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
    for (int i = 0; i < 200 && living_contexts != 0; ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(living_contexts.exchange(0), 0) << "an object of the scenario still holds its context";
}

/// The known defect of a scenario that matches, or null.
defect const* find_defect(scenario_name const& name, common::error_code status) {
    auto const& all = known_defects();
    auto const found = std::ranges::find_if(all, [&](defect const& each) {
        return each.implementation == name.implementation && each.feature == name.feature && each.status == status;
    });
    return found != all.end() ? &*found : nullptr;
}

std::string about(scenario_name const& name) {
    return name.implementation.empty() ? "" : name.implementation + ", " + name.feature + ": ";
}

std::string explain(scenario_name const& name, common::opencl_error const& error) {
    defect const* const known = find_defect(name, error.code());
    if (known == nullptr && is_known(name.implementation)) {
        ADD_FAILURE() << "status " << static_cast<int>(error.code()) << ": " << error.what();
    }
    return about(name) + refused + std::to_string(static_cast<int>(error.code())) + ", " +
           (known != nullptr ? known->reason : error.what());
}

class scenario_test : public testing::Test {
public:
    scenario_test(scenario_name const& name, std::function<void()> const& body) : name_(name), body_(body) {}

    void TestBody() override {
        if (defect const* const known = find_defect(name_, common::error_code::success)) {
            GTEST_SKIP() << about(name_) << known->reason;
        }
        run_body();
        expect_no_context();
    }

private:
    void run_body() {
        try {
            body_();
        } catch (skipped const& reason) {
            GTEST_SKIP() << about(name_) << reason.what();
        } catch (common::opencl_error const& error) {
            GTEST_SKIP() << explain(name_, error);
        }
    }

    scenario_name name_;
    std::function<void()> body_;
};

std::map<std::string, scenario_name> names_of_tests;

/// "works", "skipped", "FAILED" or the status of the refusal.
std::string outcome_of(testing::TestResult const& result) {
    if (!result.Skipped()) {
        return result.Passed() ? "works" : "FAILED";
    }
    for (int i = 0; i < result.total_part_count(); ++i) {
        std::string const text = result.GetTestPartResult(i).message();
        if (auto const at = text.find(refused); at != std::string::npos) {
            auto const begin = at + refused.size();
            return "refused (" + text.substr(begin, text.find(',', begin) - begin) + ")";
        }
    }
    return "skipped";
}

/// Prints what each implementation does with each feature, one line for each pair.
class feature_table : public testing::EmptyTestEventListener {
    using outcomes = std::map<std::string, std::set<int>>;

public:
    void OnTestEnd(testing::TestInfo const& test) override {
        auto const found = names_of_tests.find(std::string(test.test_suite_name()) + "." + test.name());
        if (found != names_of_tests.end()) {
            auto const& [scenario, feature, implementation, device, version] = found->second;
            table_[feature][device][outcome_of(*test.result())].insert(version);
        }
    }

    void OnTestProgramEnd(testing::UnitTest const&) override {
        for (auto const& [feature, implementations] : table_) {
            for (auto const& [implementation, found] : implementations) {
                std::printf("[ FEATURE  ] %-28s | %-9s | %s\n", feature.c_str(), implementation.c_str(),
                            text_of(found).c_str());
            }
        }
    }

private:
    /// Versions are named only where they differ.
    static std::string text_of(outcomes const& found) {
        std::string text;
        for (auto const& [outcome, in] : found) {
            text += (text.empty() ? "" : "; ") + outcome;
            if (found.size() > 1) {
                text += " " + number_of(*in.begin()) + (in.size() > 1 ? "-" + number_of(*in.rbegin()) : "");
            }
        }
        return text;
    }

    static std::string number_of(int version) {
        return std::to_string(version / 100) + "." + std::to_string(version / 10 % 10);
    }

    std::map<std::string, std::map<std::string, outcomes>> table_;
};

/// A platform's second device, and every further one, is told apart by its name.
template <class Api>
void find_devices(Api) {
    auto& found = found_devices<Api>();
    for (auto const& device : Api::get_all_devices()) {
        std::string name = implementation_of(device.get_platform().name());
        if (std::ranges::any_of(found, [&name](auto const& other) { return other.first == name; })) {
            name += "_" + without_punctuation(device.name()) + "_" + std::to_string(found.size());
        }
        found.emplace_back(name, device);
    }
}

void add_absence(std::string const& suite, std::string const& reason) {
    testing::RegisterTest(suite.c_str(), "present", nullptr, nullptr, __FILE__, __LINE__,
                          [reason] { return new scenario_test({}, [reason] { skip(reason); }); });
}

void add_missing() {
    std::set<std::string> found;
    for (auto const& target : found_devices<opencl_1_0::api>()) {
        found.insert(implementation_of(target.second.get_platform().name()));
    }
    for (auto const& [platform, name] : short_names) {
        if (found.erase(name) == 0) {
            add_absence(name, "no device of " + name + " here");
        }
    }
    if (found.empty()) {
        add_absence("others", "no device of any other implementation here");
    }
}

} // namespace

std::string implementation_of(std::string const& platform_name) {
    auto const known = short_names.find(platform_name);
    return known != short_names.end() ? known->second : without_punctuation(platform_name);
}

void skip(std::string const& reason) { throw skipped(reason); }

void* c_function(char const* name) {
    static void* const loader = dlopen("libOpenCL.so.1", RTLD_NOW | RTLD_LOCAL);
    void* const function = loader != nullptr ? dlsym(loader, name) : nullptr;
    if (function == nullptr) {
        throw std::runtime_error(std::string("the ICD loader has no ") + name);
    }
    return function;
}

void watch(std::string const& implementation, _nq_cl_context* context) {
    if (is_known(implementation)) {
        ++living_contexts;
        EXPECT_EQ(
            REAL_C_API(clSetContextDestructorCallback)(reinterpret_cast<cl_context>(context), context_is_gone, nullptr),
            CL_SUCCESS);
    }
}

void add_test(scenario_name const& name, std::function<void()> body) {
    std::string const test = name.scenario + "_" + std::to_string(name.version / 10);
    names_of_tests.emplace(name.device + "." + test, name);
    testing::RegisterTest(name.device.c_str(), test.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [name, body]() -> testing::Test* { return new scenario_test(name, body); });
}

void tell_thread(char const* what, std::thread::id caller) {
    std::printf("%s ran on %s\n", what,
                caller == std::this_thread::get_id() ? "the thread that waited" : "a thread of the implementation");
}

std::list<std::function<void()>>& additions() {
    static std::list<std::function<void()>> all;
    return all;
}

static int run() {
    for_each_version([](auto version) { find_devices(version); });
    add_missing();
    std::ranges::for_each(additions(), [](auto const& add) { add(); });
    testing::UnitTest::GetInstance()->listeners().Append(new feature_table);
    int const status = RUN_ALL_TESTS();
    for_each_version([]<class Api>(Api) { found_devices<Api>().clear(); });
    return status;
}

} // namespace real

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    return real::run();
}
