#pragma once

// What a recorded trace says, as a file for trace viewers and as a table.

#include "progress.hpp"
#include "trace_log.hpp"
#include "trace_writer.hpp"

#include <nq/describe.hpp>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace nq::layer::trace {

class report {
public:
    /// Reads the entries. The chunks must live as long as the report.
    report(file_head const& of, std::vector<chunk const*> const& from);

    report(report&&) = default;
    report& operator=(report&&) = default;
    report(report const&) = delete;
    report& operator=(report const&) = delete;

    file_head const& head() const noexcept { return of_; }

    /// How many slices `write` adds.
    std::uint64_t slices() const noexcept { return calls_.size() + commands_.size(); }

    /// Writes it as a process. `shift` is added to all times, in nanoseconds. `shown` advances with each slice.
    void write(writer& to, std::int64_t number, std::string const& name, std::int64_t shift, progress& shown) const;

    /// A table of the entry points, and one of the commands on devices, in lines.
    std::vector<std::string> summary() const;

private:
    struct one_call {
        call_entry about;
        description const* is; // never null
        std::uint32_t thread;
        std::span<std::byte const> tail; // block and segments
        std::string kernel;              // that it launches
    };
    struct one_command {
        command_entry about;
        one_call const* call = nullptr;
        std::int64_t offset = 0; // from the clock of the device to that of the host
        unsigned lane = 0;       // 0 unless commands of a queue overlap

        std::uint64_t start() const { return about.started - static_cast<std::uint64_t>(offset); }
        std::uint64_t end() const { return about.ended - static_cast<std::uint64_t>(offset); }
        std::string name() const;
    };
    using all_arrows = std::vector<std::vector<arrow_end>>;

    void read(chunk const& from);
    void name_kernels();
    void match();
    void align_clocks();
    void choose_lanes();
    std::vector<std::uint64_t> waited_for(one_call const& by) const;
    all_arrows find_arrows(writer& to) const;
    void write_calls(writer& to, all_arrows const& arrows, std::int64_t shift, progress& shown) const;
    void write_commands(writer& to, all_arrows const& arrows, std::int64_t shift, progress& shown) const;
    std::vector<kept_objects> not_released() const;

    static std::vector<std::pair<std::string, std::string>> arguments_of(one_call const& made);
    static bool failed(one_call const& made);
    // Reads what was recorded with the call, until it is asked for that of another.
    static memory_reader memory_of(one_call const& made);

    file_head of_;
    std::vector<one_call> calls_;                    // in the order of beginning
    std::vector<one_command> commands_;              // in the order of starting
    std::vector<label_entry> labels_;                // in the order of time
    std::map<std::uint64_t, std::string> queues_;    // by address: the device
    std::map<std::uint64_t, std::size_t> by_number_; // of the call: the index of the command
};

/// Writes processes into one file, in the format that the end of its name tells. Those of one machine share a clock;
/// those of others are shifted by the machines' wall clocks. Returns why it cannot, or nothing.
std::string write_trace(std::string const& path, std::vector<report> const& processes);

} // namespace nq::layer::trace
