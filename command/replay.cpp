#include "replay.hpp"

#include "extract.hpp"

#include "../layers/progress.hpp"

#include <cstdio>
#include <stdexcept>

namespace nq::command {
namespace {

constexpr std::uint64_t most_lines = 20;

std::string plural(std::uint64_t count, std::string const& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

} // namespace

int replay(replay_options const& with) {
    recording::session const from = recording::read_file(with.recording);
    machine here;
    player on(from, here, with.device);
    for (std::string const& line : on.devices()) {
        std::puts(line.c_str());
    }
    std::uint64_t lines = 0;
    progress shown(from.calls.size(), "calls");
    auto const print = [&](std::string const& line) {
        if (++lines <= most_lines) {
            shown.clear();
            std::puts(line.c_str());
        }
    };
    if (!with.folder.empty()) {
        extractor wanted(with.kernel, with.nth);
        comparison const before = on.run(print, [&](player& running, std::size_t index, bool is_before) {
            shown.show(index);
            return wanted.watch(running, index, is_before);
        });
        shown.clear();
        if (!wanted.is_found()) {
            throw std::runtime_error(wanted.missing());
        }
        write_launch(wanted.parts(), with.folder);
        std::printf("launch %u of %s is in %s: build it with CMake, and run launch\n", with.nth, with.kernel.c_str(),
                    with.folder.c_str());
        return before.different == 0 ? 0 : 1;
    }
    comparison const done = on.run(print, [&](player&, std::size_t index, bool) {
        shown.show(index);
        return true;
    });
    shown.clear();
    if (lines > most_lines) {
        std::printf("and %s more\n", plural(lines - most_lines, "difference").c_str());
    }
    if (done.missing != 0) {
        std::printf("%s left out for lack of what could not be made here\n", plural(done.missing, "call").c_str());
    }
    if (done.left_out != 0) {
        std::printf("%s left out, as what runs is a function of the program\n", plural(done.left_out, "call").c_str());
    }
    std::printf("%s of %zu made again, %s of memory compared (%s): %s\n", plural(done.calls, "call").c_str(),
                from.calls.size(), plural(done.results, "piece").c_str(), plural(done.bytes, "byte").c_str(),
                done.different == 0 ? "no difference" : plural(done.different, "difference").c_str());
    return done.different == 0 ? 0 : 1;
}

} // namespace nq::command
