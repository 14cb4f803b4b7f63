#include "scenario.hpp"

#include <string_view>

namespace nq::block::contract {
namespace {

class body_test : public testing::Test {
public:
    explicit body_test(std::function<void()> body) : body_(std::move(body)) {}
    void TestBody() override { body_(); }

private:
    std::function<void()> body_;
};

void add_test(std::string const& suite, std::string const& name, std::function<void()> const& body) {
    testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                          [body]() -> testing::Test* { return new body_test(body); });
}

void performs_all(capability version, capability_node node) {
    session s(version, node);
    every_entry_point(s);
    for (std::uint32_t id = 1; id <= command_count(version); ++id) {
        EXPECT_TRUE(s.performed[id]) << "command " << id << " was not performed";
    }
}

void add_version(std::set<std::string>& found, capability version) {
    for (capability_node const node : list_nodes(version)) {
        std::string const platform = session(version, node).name;
        found.insert(platform);
        add_test(platform, "performs_" + text_of(version), [=] { performs_all(version, node); });
        if (version == capability::opencl_1_2 || version == capability::opencl_2_2) {
            add_test(platform, "guards_" + text_of(version), [=] {
                session s(version, node);
                guards(s);
            });
        }
    }
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
    expect_ends_well("fork_before " + platform);
    auto const after =
        expect_ends_well((broken ? "fork_after_broken " : "fork_after ") + platform, "NQ_BRIDGE_VERBOSE=1");
    EXPECT_EQ(after.find("would hang in this process") != std::string::npos, broken) << after;
    if (platform == "pocl") {
        expect_ends_well("fork_after pocl", "POCL_DEVICES=basic");
    }
}

void add_tests() {
    std::set<std::string> found;
    for (capability const version : versions) {
        add_version(found, version);
    }
    for (std::string const& platform : found) {
        add_test(platform, "comes_back_without_arguments", [=] { expect_ends_well("miss_arguments " + platform); });
        add_test(platform, "forks", [platform] { forks(platform); });
    }
    for (std::string const platform : {"pocl", "rusticl", "oclgrind", "intel"}) {
        if (!found.contains(platform)) {
            add_test(platform, "present", [platform] { GTEST_SKIP() << "no device of " << platform << " here"; });
        }
    }
}

} // namespace
} // namespace nq::block::contract

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    if (count > 2 && std::string_view(words[1]) == "--mode") {
        return nq::block::contract::perform_mode({words + 2, words + count});
    }
    nq::block::contract::add_tests();
    return RUN_ALL_TESTS();
}
