#include "child.hpp"
#include "guards.hpp"
#include "scenario.hpp"

#include <set>
#include <string_view>

namespace contract {
namespace {

template <class Body>
class body_test : public testing::Test {
public:
    explicit body_test(Body body) : body_(std::move(body)) {}
    void TestBody() override { body_(); }

private:
    Body body_;
};

template <class Body>
void add_test(std::string const& suite, std::string const& name, Body body) {
    testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [body]() -> testing::Test* { return new body_test<Body>(body); });
}

template <nq::capability Version>
void performs_all(nq::capability_node node) {
    session<Version> s(node);
    every_entry_point(s);
    for (std::uint32_t id = 1; id <= nq::commands<Version>::size; ++id) {
        EXPECT_TRUE(s.performed[id]) << "command " << id << " was not performed";
    }
}

template <nq::capability Version>
void add_version(std::set<std::string>& found) {
    for (nq::capability_node const node : list_nodes(Version)) {
        std::string const platform = session<Version>(node).name;
        found.insert(platform);
        add_test(platform, std::string("performs_") + text_of(Version), [node] { performs_all<Version>(node); });
        if constexpr (Version == nq::capability::opencl_1_2 || Version == nq::capability::opencl_2_2) {
            add_test(platform, std::string("guards_") + text_of(Version), [node] {
                session<Version> s(node);
                refuses_missing_arguments(s);
            });
        }
    }
}

void comes_back(std::string const& mode, std::string const& platform) {
    auto const child = run_self({mode, platform});
    EXPECT_TRUE(child.ended_well) << tail(child);
}

#if defined(__SANITIZE_THREAD__)
constexpr bool thread_sanitizer = true;
#elif defined(__has_feature)
constexpr bool thread_sanitizer = __has_feature(thread_sanitizer);
#else
constexpr bool thread_sanitizer = false;
#endif

void forks(std::string const& platform) {
    if (thread_sanitizer) {
        GTEST_SKIP() << "ThreadSanitizer ends a forked child that starts threads";
    }
    bool const broken = platform == "pocl" || platform == "rusticl";
    std::map<std::string, std::string> environment{{"NQ_BRIDGE_VERBOSE", "1"}};
    auto const before = run_self({"fork_before", platform}, environment);
    EXPECT_TRUE(before.ended_well) << tail(before);
    auto const after = run_self({broken ? "fork_after_broken" : "fork_after", platform}, environment);
    EXPECT_TRUE(after.ended_well) << tail(after);
    EXPECT_EQ(after.output.find("would hang in this process") != std::string::npos, broken) << tail(after);
    if (platform == "pocl") {
        environment["POCL_DEVICES"] = "basic";
        auto const basic = run_self({"fork_after", platform}, environment);
        EXPECT_TRUE(basic.ended_well) << tail(basic);
    }
}

void add_tests() {
    std::set<std::string> found;
    for_each_version([&found]<nq::capability Version>() { add_version<Version>(found); });
    for (std::string const& platform : found) {
        for (char const* const mode : {"null_pointers", "zero_blocks"}) {
            add_test(platform, std::string("comes_back_from_") + mode, [=] { comes_back(mode, platform); });
        }
        add_test(platform, "forks", [platform] { forks(platform); });
    }
    for (std::string const platform : {"pocl", "rusticl", "oclgrind", "intel"}) {
        if (!found.contains(platform)) {
            add_test(platform, "present", [platform] { GTEST_SKIP() << "no device of " << platform << " here"; });
        }
    }
}

} // namespace
} // namespace contract

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    if (count > 2 && std::string_view(words[1]) == "--mode") {
        return contract::run_mode({words + 2, words + count});
    }
    contract::add_tests();
    return RUN_ALL_TESTS();
}
