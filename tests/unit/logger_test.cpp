#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

// The logger under its two variables. It is built once in a process, so each case has a process and a folder of its
// own.

namespace {

/// How often a text has the line of the failed release; -1 when there is more than these lines.
int lines_in(std::string const& text) {
    std::string const time = "[2000-01-01 00:00:00.000";
    std::string const line = "] [mero] [error] Exception caught in context::~context().\n";
    int lines = 0;
    for (std::size_t at = 0; at != text.size(); at += time.size() + line.size(), ++lines) {
        if (text.substr(at, time.size() + line.size()).substr(std::min(time.size(), text.size() - at)) != line) {
            return -1;
        }
    }
    return lines;
}

struct outcome {
    std::string out;
    std::string err;
    bool has_log; // a "mero.log"
    std::string log;
};

struct logger : testing::Test {
    logger() { std::filesystem::create_directories(folder); }
    ~logger() override { std::filesystem::remove_all(folder); }

    // Words of null leave the variable unset.
    outcome run(std::string const& scene, char const* level, char const* target) {
        std::filesystem::remove_all(folder / "mero.log");
        auto const variable = [](std::string const& name, char const* word) {
            return word == nullptr ? "" : ' ' + name + "='" + word + "'";
        };
        std::string const command = "cd '" + folder.string() + "' && env -u MERO_LOG_LEVEL -u MERO_LOG_TARGET" +
                                    variable("MERO_LOG_LEVEL", level) + variable("MERO_LOG_TARGET", target) +
                                    " " UNIT_LOGGER_CHILD " " + scene + " >out 2>err";
        EXPECT_EQ(std::system(command.c_str()), 0) << scene;
        auto const content = [&](char const* file) {
            std::ifstream stream(folder / file);
            return std::string(std::istreambuf_iterator<char>(stream), {});
        };
        return {content("out"), content("err"), exists(folder / "mero.log"), content("mero.log")};
    }

    std::filesystem::path const folder =
        std::filesystem::path(testing::TempDir()) / ("mero_logger_" + std::to_string(::getpid()));
};

TEST_F(logger, logs_a_failed_release_as_its_two_variables_say) {
    std::pair<char const*, int> const levels[] = {
        {nullptr, 6}, {"trace", 0},    {"debug", 1}, {"info", 2}, {"warn", 3},    {"error", 4}, // spdlog's, 6 for off
        {"off", 6},   {"critical", 5}, {"DEBUG", 6}, {"err", 6},  {"warning", 6}, {"", 6}};
    for (auto const& [word, level] : levels) {
        for (char const* const target : {static_cast<char const*>(nullptr), "file", "console", "none", "File", ""}) {
            std::string const to = target != nullptr ? target : "unset";
            SCOPED_TRACE((word != nullptr ? word : "unset") + (' ' + to));
            auto const seen = run("release_and_look", word, target);
            EXPECT_EQ(seen.has_log, to == "file");
            EXPECT_EQ(lines_in(seen.log), to == "file" && level <= 4 ? 1 : 0);
            EXPECT_EQ(lines_in(seen.err), to == "console" && level <= 4 ? 1 : 0);
            EXPECT_EQ(seen.out, "mero " + std::to_string(level) + " 1");
        }
    }
}

TEST_F(logger, is_not_built_while_nothing_fails) { EXPECT_FALSE(run("release", "trace", "file").has_log); }

TEST_F(logger, is_refused_a_name_that_the_program_has_taken) {
#ifndef SPDLOG_COMPILED_LIB
    GTEST_SKIP() << "spdlog is compiled from its headers: the program has a registry of its own";
#endif
    for (char const* const target : {"console", "file"}) {
        auto const seen = run("take_the_name", "error", target);
        EXPECT_EQ(seen.err, "");
        EXPECT_NE(seen.out.find("'mero' already exists"), std::string::npos);
    }
    EXPECT_EQ(run("take_the_name", "error", nullptr).out, "") << "a logger that discards is not registered";
}

TEST_F(logger, keeps_its_promises_in_other_scenes) {
    EXPECT_EQ(lines_in(run("change_variables", "error", "console").err), 2) << "what they said at first holds";
    auto const late = run("open_late", "error", "file");
    EXPECT_EQ(lines_in(late.log), 1) << "the file is opened when that becomes possible";
    EXPECT_EQ(late.out, "") << "a file that cannot be opened costs no time";
}

TEST_F(logger, survives_objects_that_are_destroyed_at_process_exit) {
    EXPECT_EQ(run("outlive_the_logger", "error", "console").err, "");
    EXPECT_EQ(run("exit_while_a_thread_logs", "error", nullptr).out, "flushed logged");
    EXPECT_EQ(lines_in(run("end_before_the_logger", "error", "console").err), 1);
    EXPECT_EQ(lines_in(run("log_first_at_exit", "error", "console").err), 1);
    EXPECT_EQ(lines_in(run("log_first_at_exit", "error", "file").log), 1);
}

} // namespace
