#pragma once

// What the layer `record` writes to its file, and what it knows between calls.

#include "layer.hpp"
#include "record_memory.hpp"
#include "recording.hpp"

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace nq::layer::record {

// Never freed: a program may make calls until its very end.
struct state {
    std::mutex mutex; // never held while a call is made: OpenCL may call the program from there
    recording::writer file;
    std::string path;
    std::unordered_map<nq_call_handle*, std::uint32_t> handles;
    std::vector<written> pending;
    host_memory memory;
    std::atomic<std::uint64_t> order = 0;
    std::atomic<std::uint64_t> calls = 0;
    std::atomic<bool> is_closed = false;
};

/// Opens the file at its first call. A program whose settings are wrong ends here, as there would be no recording.
state& all();

/// Writes what is left to write, and closes the file, if it was opened. Ends the program if that fails.
void close() noexcept;

/// The order of what happens now.
std::uint64_t next_order();

/// The number of the call handle's entry, which is written at its first call.
std::uint32_t number_of_handle(call const& through);

/// What a command has written, if it can be read. With the lock held.
void write_contents(written const& each);

/// Shared memory that the host writes without maps, where it differs from what is known of it. With the lock held.
void write_shared(bool is_result);

/// Keeps what commands have written that are done by now; at the end of a wait, shared memory too.
void collect(bool is_end_of_wait);

} // namespace nq::layer::record
