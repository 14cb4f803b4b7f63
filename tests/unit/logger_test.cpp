#include <gmock/gmock.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <unistd.h>

// The logger under its two variables. It is built once in a process, so each case has a process and a folder of its
// own.

namespace {

using testing::EndsWith;
using testing::HasSubstr;

constexpr char const* line = "] [mero] [error] Exception caught in context::~context().\n";

struct outcome {
    int status;
    std::string out;
    std::string err;
    std::optional<std::string> log; // nothing when there is no "mero.log"
};

class logger : public testing::Test {
protected:
    logger() : folder_(std::filesystem::path(testing::TempDir()) / ("mero_logger_" + std::to_string(::getpid()))) {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    ~logger() override { std::filesystem::remove_all(folder_); }

    // Words of null leave the variable unset.
    outcome run(std::string const& scene, char const* level, char const* target) {
        std::filesystem::remove_all(folder_ / "mero.log");
        std::string const command = "cd '" + folder_.string() + "' && env -u MERO_LOG_LEVEL -u MERO_LOG_TARGET" +
                                    assignment("MERO_LOG_LEVEL", level) + assignment("MERO_LOG_TARGET", target) +
                                    " " UNIT_LOGGER_CHILD " " + scene + " >out 2>err";
        int const status = std::system(command.c_str());
        return {status, *content("out"), *content("err"), content("mero.log")};
    }

private:
    static std::string assignment(std::string const& name, char const* word) {
        return word == nullptr ? "" : " " + name + "='" + word + "'";
    }

    std::optional<std::string> content(char const* file) const {
        std::ifstream stream(folder_ / file);
        if (!stream) {
            return std::nullopt;
        }
        return std::string(std::istreambuf_iterator<char>(stream), {});
    }

    std::filesystem::path folder_;
};

struct level_word {
    char const* word;
    int level; // spdlog's, 6 for off
};

constexpr level_word level_words[] = {{nullptr, 6}, {"trace", 0}, {"debug", 1},    {"info", 2},
                                      {"warn", 3},  {"error", 4}, {"critical", 5}, {"off", 6},
                                      {"DEBUG", 6}, {"err", 6},   {"warning", 6},  {"", 6}};
constexpr char const* target_words[] = {nullptr, "file", "console", "none", "File", ""};

TEST_F(logger, logs_a_failed_release_as_its_two_variables_say) {
    for (auto const& [word, level] : level_words) {
        for (char const* const target : target_words) {
            SCOPED_TRACE(std::string(word != nullptr ? word : "unset") + " " + (target != nullptr ? target : "unset"));
            bool const is_file = target != nullptr && std::string(target) == "file";
            bool const is_console = target != nullptr && std::string(target) == "console";
            auto const seen = run("release_and_fail", word, target);
            EXPECT_EQ(seen.status, 0);
            EXPECT_EQ(seen.log.has_value(), is_file);
            EXPECT_THAT(seen.err, EndsWith(is_console && level <= 4 ? line : ""));
            EXPECT_THAT(seen.log.value_or(""), EndsWith(is_file && level <= 4 ? line : ""));
            EXPECT_EQ(seen.err.empty(), !is_console || level > 4);
            EXPECT_EQ(seen.log.value_or("").empty(), !is_file || level > 4);
        }
        EXPECT_EQ(run("look", word, nullptr).out, "mero " + std::to_string(level) + " 1");
    }
}

TEST_F(logger, is_not_built_while_nothing_fails) { EXPECT_FALSE(run("release", "trace", "file").log); }

TEST_F(logger, keeps_what_the_variables_said_at_first) {
    auto const seen = run("change_variables", "error", "console");
    EXPECT_THAT(seen.err, HasSubstr(line));
    EXPECT_NE(seen.err.find(line), seen.err.rfind(line));
}

TEST_F(logger, is_refused_a_name_that_the_program_has_taken) {
    for (char const* const target : {"console", "file"}) {
        auto const seen = run("take_the_name", "error", target);
        EXPECT_EQ(seen.status, 0);
        EXPECT_EQ(seen.err, "");
        EXPECT_THAT(seen.out, HasSubstr("'mero' already exists"));
    }
    EXPECT_EQ(run("take_the_name", "error", nullptr).out, "") << "a logger that discards is not registered";
}

TEST_F(logger, opens_its_file_when_that_becomes_possible) {
    auto const seen = run("open_late", "error", "file");
    EXPECT_EQ(seen.status, 0);
    ASSERT_TRUE(seen.log);
    EXPECT_THAT(*seen.log, EndsWith(line));
    EXPECT_EQ(seen.log->find(line), seen.log->rfind(line));
}

TEST_F(logger, survives_objects_that_are_destroyed_at_process_exit) {
    auto seen = run("outlive_the_logger", "error", "console");
    EXPECT_EQ(seen.status, 0);
    EXPECT_EQ(seen.err, "");
    seen = run("end_before_the_logger", "error", "console");
    EXPECT_EQ(seen.status, 0);
    EXPECT_THAT(seen.err, EndsWith(line));
    for (char const* const target : {"console", "file"}) {
        seen = run("log_first_at_exit", "error", target);
        EXPECT_EQ(seen.status, 0);
        EXPECT_THAT(seen.log.value_or(seen.err), EndsWith(line));
    }
}

} // namespace
