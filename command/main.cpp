// The command vorn-mero: runs a program under one of the layers, and says why there is no device.

#include "completion.hpp"
#include "doctor.hpp"
#include "info.hpp"
#include "replay.hpp"
#include "run.hpp"
#include "sweep.hpp"

#include "../layers/trace_log.hpp"
#include "../layers/trace_report.hpp"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace {

namespace fs = std::filesystem;
using nq::command::command_line;
using nq::command::run_under;

constexpr char const* formats =
    "the file: NAME.json and NAME.pftrace for ui.perfetto.dev, NAME.html for a browser, NAME.part to convert later;\n"
    "%r stands for the MPI rank, %p for the number of this process";
constexpr int unusable = 2; // the exit status if nothing was run

struct options {
    command_line program;
    std::string output = "trace.json";
    std::vector<std::string> recordings;
    std::string rules;
    bool profile = false;
    bool summary = false;
    bool report = false;
    unsigned limit = 256;
    unsigned exit_status = 1;
    std::string session = "session.nqr";
    nq::command::replay_options replay;
    nq::command::sweep_options sweep;
    bool json = false;
    std::vector<std::string> compared;
    std::function<int()> action; // of the subcommand
};

// Refuses an empty text, such as an unset variable of a script.
CLI::Validator given(char const* what) {
    return {[=](std::string const& text) { return text.empty() ? std::string("give ") + what + ", not ''" : ""; }, ""};
}

// A number in a range, without one that is no number.
CLI::Validator between(double least, double most, char const* what) {
    return {[=](std::string const& text) {
                double number = 0;
                bool const is_number = CLI::detail::lexical_cast(text, number);
                return is_number && number >= least && number <= most ? "" : std::string(what) + ", not '" + text + "'";
            },
            ""};
}

// The name of the output, with what stands for numbers replaced. A link to a file stands for the file.
std::string name_of(std::string const& wanted) {
    std::string output = nq::layer::trace::expanded(wanted);
    bool const is_device = output.starts_with("/dev/") || output.starts_with("/proc/");
    bool const is_link = !is_device && fs::is_symlink(output) && (fs::is_regular_file(output) || !fs::exists(output));
    return is_link ? fs::weakly_canonical(fs::path(output).parent_path() / fs::read_symlink(output)).string() : output;
}

// What programs have left behind that did not come to their end, or were not to write more.
void convert(std::vector<std::string> const& recordings, std::string const& wanted) {
    std::string const output = name_of(wanted);
    if (output.ends_with(".part")) {
        throw std::runtime_error(
            "convert makes a timeline of NAME.part; end the name of the output with .html, .pftrace "
            "or .json");
    }
    std::error_code none;
    if (std::ranges::any_of(recordings, [&](auto const& each) { return fs::equivalent(each, output, none); })) {
        throw std::runtime_error(output + " is a recording; give the output another name");
    }
    std::vector<nq::layer::trace::report> processes;
    for (std::string const& each : recordings) {
        auto const log = nq::layer::trace::read_log(each);
        processes.emplace_back(log.head, log.chunks);
    }
    std::ranges::sort(processes, {}, [](auto const& each) { return std::pair(each.head().rank, each.head().process); });
    std::string const why = nq::layer::trace::write_trace(output, processes);
    if (!why.empty()) {
        throw std::runtime_error(why);
    }
}

// A result of before must not pass for one of now. Devices and links, such as /dev/null and /dev/stdout, stay.
void remove_old(std::string const& output) {
    if (fs::is_regular_file(fs::symlink_status(output))) {
        fs::remove(output);
    }
}

// Whether the output can be written, before the program runs: by a file beside it, which goes again.
void probe(std::string const& output, std::string const& beside) {
    std::FILE* const file = fs::is_directory(output) ? nullptr : std::fopen(beside.c_str(), "a");
    if (file == nullptr) {
        throw std::runtime_error("cannot write " + output + ": " +
                                 std::strerror(fs::is_directory(output) ? EISDIR : errno));
    }
    std::fclose(file);
    remove_old(beside);
}

int trace(options const& with) {
    std::string const output = name_of(with.output);
    std::string const part = nq::layer::trace::recording_of(output);
    if (output.find(',') != std::string::npos) {
        throw std::runtime_error("the name of the output cannot have a comma");
    }
    remove_old(output);
    probe(output, part.empty() ? output : part);
    int const status = run_under("trace",
                                 "keep,output=" + output + ",limit=" + std::to_string(with.limit) +
                                     (with.profile ? ",profile" : "") + (with.summary ? ",summary" : ""),
                                 with.program);
    if (fs::exists(part) && !fs::exists(output)) {
        convert({part}, output);
        fs::remove(part);
        std::fprintf(stderr, "vorn-mero: the program did not come to its end; what it did is in %s\n", output.c_str());
    } else if (!fs::exists(output)) {
        std::fprintf(stderr, "vorn-mero: %s made no call through libnq, so there is no trace\n",
                     with.program.at(0).c_str());
    }
    return status;
}

// A layer that sets the exit status when it has found something.
int run_finding(char const* layer, options const& with) {
    return run_under(layer, "exit-status=" + std::to_string(with.exit_status), with.program);
}

int faults(options const& with) {
    return run_under("faults", with.rules + (with.report ? ",report" : ""), with.program);
}

int sweep(options& with) {
    with.sweep.exit_status = static_cast<int>(with.exit_status);
    return nq::command::sweep(with.program, with.sweep);
}

int record(options const& with) {
    if (with.session.find("%p") != std::string::npos) { // a file of each process
        return run_under("record", "output=" + with.session, with.program);
    }
    std::string const output = name_of(with.session);
    remove_old(output);
    probe(output, output);
    int const status = run_under("record", "output=" + output, with.program);
    if (!fs::exists(output)) {
        std::fprintf(stderr, "vorn-mero: %s made no call through libnq, so there is no recording\n",
                     with.program.at(0).c_str());
    }
    return status;
}

int info(options const& with) {
    return with.compared.empty() ? nq::command::print_info(with.json)
                                 : nq::command::print_differences(with.compared[0], with.compared[1]);
}

// What shells ask for: `vorn-mero --complete WORD...`
int complete(CLI::App const& app, std::vector<std::string> const& words) {
    for (std::string const& each : nq::command::completions(app, words)) {
        std::puts(each.c_str());
    }
    return 0;
}

bool has_command(CLI::App const& app, std::string const& name) {
    auto const all = app.get_subcommands([&](CLI::App const* each) { return each->get_name() == name; });
    return !all.empty();
}

void add_exit_status(CLI::App* to, options& with, char const* text) {
    to->add_option("--exit-status", with.exit_status, text)->check(CLI::Range(0, 255))->capture_default_str();
}

CLI::App* add(CLI::App& to, options& with, char const* name, char const* text) {
    CLI::App* const made = to.add_subcommand(name, text);
    made->add_option("program", with.program, "the program and its arguments, after --")->required();
    return made;
}

void add_trace(CLI::App& app, options& with) {
    CLI::App* const to_trace = add(app, with, "trace", "write a timeline of calls and commands");
    to_trace->add_option("-o,--output", with.output, formats)
        ->check(given("the name of a file"))
        ->capture_default_str();
    to_trace->add_flag("--profile", with.profile, "switch profiling on, for the times of all commands");
    to_trace->add_flag("--summary", with.summary, "print a table of times");
    to_trace->add_option("--limit", with.limit, "MiB to record at most")->check(CLI::Range(1, 1 << 20));
    to_trace->callback([&with] { with.action = [&with] { return trace(with); }; });
}

void add_finders(CLI::App& app, options& with) {
    CLI::App* const to_errors = add(app, with, "errors", "print each failing call, and what is wrong with it");
    CLI::App* const to_leaks = add(app, with, "leaks", "print what was never released, and the line that made it");
    add_exit_status(to_leaks, with, "the exit status if there is any; 0: the program's own");
    CLI::App* const to_check = add(app, with, "check", "print what OpenCL leaves undefined, and the line that does it");
    add_exit_status(to_check, with, "the exit status if there is any; 0: the program's own");
    CLI::App* const to_faults = add(app, with, "faults", "make calls fail");
    to_faults->add_option("-r,--rule", with.rules, "which calls fail and how, as entry=clCreateBuffer:call=2:-4")
        ->check(given("a rule such as entry=clCreateBuffer:call=2:-4"))
        ->required();
    to_faults->add_flag("--report", with.report, "print which calls failed");
    to_errors->callback([&with] { with.action = [&with] { return run_under("errors", "", with.program); }; });
    to_leaks->callback([&with] { with.action = [&with] { return run_finding("leaks", with); }; });
    to_check->callback([&with] { with.action = [&with] { return run_finding("check", with); }; });
    to_faults->callback([&with] { with.action = [&with] { return faults(with); }; });
}

void add_sweep(CLI::App& app, options& with) {
    CLI::App* const to_sweep =
        add(app, with, "sweep", "run the program once for each call, which fails; print what broke");
    to_sweep->add_option("-f,--failure", with.sweep.failures, "how calls fail; may be given several times")
        ->allow_extra_args(false)
        ->capture_default_str();
    to_sweep
        ->add_option("--except", with.sweep.except,
                     "an entry point whose failures do not count; may be given several times")
        ->allow_extra_args(false);
    to_sweep->add_option("-j,--jobs", with.sweep.jobs, "how many run at once; 0: one on each processor")
        ->check(CLI::Range(0, 1024));
    to_sweep->add_option("--step", with.sweep.step, "fail one of so many calls")->check(CLI::Range(1, 1 << 30));
    to_sweep->add_option("--timeout", with.sweep.seconds, "seconds after which a run counts as hanging")
        ->check(between(0.001, 1e6, "give seconds from 0.001 to 1000000"));
    add_exit_status(to_sweep, with, "the exit status if a run broke; 0: the program's own");
    to_sweep->callback([&with] { with.action = [&with] { return sweep(with); }; });
}

void add_sessions(CLI::App& app, options& with) {
    CLI::App* const to_record = add(app, with, "record", "write a session to a file, for replay");
    to_record->add_option("-o,--output", with.session, "the file; %p stands for the number of this process")
        ->check(given("the name of a file"))
        ->capture_default_str();
    CLI::App* const to_replay =
        app.add_subcommand("replay", "run a recorded session without the program, and compare the results");
    to_replay->add_option("recording", with.replay.recording, "what record has written")
        ->check(given("the name of a file"))
        ->required();
    to_replay->add_option("--platform", with.replay.device.platform, "run it on this platform; a part of its name")
        ->check(given("a part of a name"));
    to_replay->add_option("--device", with.replay.device.number, "run it on this device of the platform, from 0 on")
        ->check(CLI::Range(0, 9999));
    CLI::Option* const kernel =
        to_replay->add_option("--kernel", with.replay.kernel, "the kernel of a launch to extract")
            ->check(given("the name of a kernel"));
    to_replay->add_option("--nth", with.replay.nth, "which launch of the kernel, from 1 on")
        ->check(CLI::Range(1, INT_MAX))
        ->needs(kernel)
        ->capture_default_str();
    CLI::Option* const folder =
        to_replay->add_option("--extract", with.replay.folder, "write the launch as a program to this folder")
            ->check(given("the name of a folder"));
    kernel->needs(folder);
    folder->needs(kernel);
    to_replay->footer("The exit status is 1 if a result differs, and 2 if the session could not be run.");
    to_record->callback([&with] { with.action = [&with] { return record(with); }; });
    to_replay->callback([&with] { with.action = [&with] { return nq::command::replay(with.replay); }; });
}

void add_convert(CLI::App& app, options& with) {
    CLI::App* const to_convert = app.add_subcommand(
        "convert", "write one timeline of recordings: of processes, or of a program that did not come to its end");
    to_convert->add_option("recording", with.recordings, "what trace has left behind, FILE.part")
        ->check(given("the name of a file"))
        ->required();
    to_convert->add_option("-o,--output", with.output, formats)
        ->check(given("the name of a file"))
        ->capture_default_str();
    to_convert->callback([&with] {
        with.action = [&with] {
            convert(with.recordings, with.output);
            return 0;
        };
    });
}

void add_machine(CLI::App& app, options& with) {
    CLI::App* const to_info = app.add_subcommand("info", "list platforms and devices, and what they have");
    to_info->add_flag("--json", with.json, "write JSON");
    to_info->add_option("--diff", with.compared, "print what differs between two files that --json has written")
        ->expected(2)
        ->check(given("the name of a file"))
        ->type_name("BEFORE AFTER");
    to_info->footer("The exit status is 1 if there is no device, or if the files differ.");
    CLI::App* const to_diagnose = app.add_subcommand("doctor", "list the devices, and say why others are missing");
    to_diagnose->add_flag("--json", with.json, "write JSON");
    to_diagnose->footer(
        "The exit status tells what is wrong: 10 no OpenCL loader, 11 no implementation, 12 one that does not\n"
        "load, 13 a platform without a device, 14 a graphics card that you may not use, 15 no device, 16 a file\n"
        "of a vendor that cannot be read, 17 an implementation that offers no platform.");
    to_info->callback([&with] { with.action = [&with] { return info(with); }; });
    to_diagnose->callback(
        [&with] { with.action = [&with] { return static_cast<int>(nq::command::diagnose(with.json)); }; });
}

} // namespace

int main(int count, char** arguments) {
    CLI::App app("Runs programs that use libnq under an instrument, and says why there is no device.\n"
                 "docs/instruments.md tells more.\n",
                 "vorn-mero");
    app.set_version_flag("--version", VORN_MERO_COMMAND_VERSION);
    app.require_subcommand(1);
    app.footer("Example:  vorn-mero trace -o trace.json --profile -- ./program its arguments\n"
               "The exit status is the program's; 2 if it was not run.");
    options with;
    for (auto* const add_to : {add_trace, add_finders, add_sweep, add_sessions, add_convert, add_machine}) {
        add_to(app, with);
    }
    if (count > 1 && std::strcmp(arguments[1], "--complete") == 0) {
        return complete(app, {arguments + 2, arguments + count});
    }
    // Where the options of a program are taken for those of the command.
    app.failure_message([](CLI::App const* of, CLI::Error const& failure) {
        auto const chosen = of->get_subcommands();
        bool const is_extra = failure.get_exit_code() == static_cast<int>(CLI::ExitCodes::ExtrasError) &&
                              !chosen.empty() && chosen.front()->get_option_no_throw("program") != nullptr;
        return CLI::FailureMessage::simple(of, failure) +
               (is_extra ? "A program with options follows --, as in: vorn-mero errors -- ./program --its-option\n"
                         : "");
    });
    try {
        if (count > 1 && *arguments[1] != '-' && !has_command(app, arguments[1])) {
            throw std::runtime_error("there is no command '" + std::string(arguments[1]) +
                                     "'; vorn-mero --help lists those that there are");
        }
        app.parse(count, arguments);
        return with.action();
    } catch (CLI::ParseError const& failure) {
        return app.exit(failure) == 0 ? 0 : unusable;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "vorn-mero: %s\n", failure.what());
        return unusable;
    }
}
