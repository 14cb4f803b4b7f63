#pragma once

// Every entry point of a version, each with its effect read back.

#include "session.hpp"

#include <atomic>

namespace nq::block::contract {

/// Makes the session's context and queue.
void set_up(session& s);

// The scenarios need a session that is set up.
void platform_and_device(session& s);
void context_and_queue(session& s);
void events(session& s);
void buffers(session& s);
void images(session& s);
void samplers(session& s);
void shared_memory(session& s);
void pipes(session& s);
void programs(session& s);
void kernels(session& s);

inline void every_entry_point(session& s) {
    set_up(s);
    for (auto* const scenario :
         {platform_and_device, context_and_queue, events, buffers, images, samplers, programs, kernels}) {
        scenario(s);
    }
    if (s.version >= capability::opencl_2_0) {
        shared_memory(s);
        pipes(s);
    }
    s.tear_down();
}

/// Null and missing arguments that end the process in some implementation get an error code. Needs OpenCL 1.2.
void guards(session& s);

/// Whether the calls with nulled pointers were answered as the guards say; says which were not.
bool guarded(session const& s);

/// Runs a mode of this program in a process of its own, with the arguments of env(1) before it, for what needs its own
/// environment or may not come back. It must end with 0 within 60 s. Its output.
std::string expect_ends_well(std::string const& mode, std::string const& environment = {});

/// Performs a mode: its exit status.
int perform_mode(std::vector<std::string> const& words);

// What several scenarios need.

numbers counting_from(std::int32_t first);
_nq_cl_mem* make_buffer(session& s, numbers values = {});

/// What a whole buffer holds after the commands before.
numbers read(session& s, _nq_cl_mem* buffer);

_nq_cl_program* make_program(session& s, char const* source);
void build(session& s, _nq_cl_program* program, char const* options = "");
_nq_cl_kernel* make_kernel(session& s, _nq_cl_program* program, char const* name);

template <class Value>
void set_argument(session& s, _nq_cl_kernel* kernel, std::uint32_t index, Value const& value) {
    s.ok(clSetKernelArg{.kernel = kernel, .arg_size = sizeof value, .arg_value = &value, .arg_index = index});
}

/// Runs a kernel once per element.
void launch(session& s, _nq_cl_kernel* kernel);

/// `add(data, value)` adds to every element; `store(data)` puts the number of each element into it.
extern char const* const kernel_source;

/// A callback that counts its calls.
template <class Object>
void count_call(Object*, void* counter) {
    if (counter != nullptr) {
        ++*static_cast<std::atomic<int>*>(counter);
    }
}

} // namespace nq::block::contract
