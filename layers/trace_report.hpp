#pragma once

// What a recorded trace says, as a file for trace viewers and as a table.

#include "trace_log.hpp"

#include <nq/describe.hpp>

#include <map>
#include <string>
#include <vector>

namespace nq::layer::trace {

class report {
public:
    /// Reads the entries. The chunks must live as long as the report.
    report(file_head const& of, std::vector<chunk const*> const& from);

    /// Writes the events as JSON, which chrome://tracing and ui.perfetto.dev open. Returns why it cannot, or nothing.
    std::string write(std::string const& path) const;

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
    class json;

    void read(chunk const& from);
    void name_kernels();
    void match();
    void align_clocks();
    void choose_lanes();
    std::vector<std::uint64_t> waited_for(one_call const& by) const;
    void write_calls(json& to) const;
    void write_commands(json& to) const;
    void write_arrows(json& to) const;

    static std::string text_of(one_call const& made);
    static bool failed(one_call const& made);

    file_head of_;
    std::vector<one_call> calls_;                    // in the order of beginning
    std::vector<one_command> commands_;              // in the order of starting
    std::vector<label_entry> labels_;                // in the order of time
    std::map<std::uint64_t, std::string> queues_;    // by address: the device
    std::map<std::uint64_t, std::size_t> by_number_; // of the call: the index of the command
};

} // namespace nq::layer::trace
