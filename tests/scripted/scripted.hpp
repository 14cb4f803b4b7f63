#pragma once

// A libnq for tests, which answers as it is told, remembers every call and
// counts every reference.
//
//     class queue : public scripted::versioned<api<120>> {}; //
//     <scripted/fixture.hpp>
//
//     TEST_F(queue, flushes) {
//         command_queue q(handle, libnq.make<_nq_cl_command_queue>(),
//         create_reference{}); q.flush(); EXPECT_THAT(libnq.names(),
//         ElementsAre("clRetainCommandQueue", "clFlush"));
//         EXPECT_EQ(libnq.calls()[1].inputs,
//         inputs_of(clFlush{raw::get_raw_command_queue(q)}));
//
//         libnq.fail<clFlush>(scripted::status(-36)); // the next one only
//         EXPECT_THROW(q.flush(), common::invalid_command_queue);
//         libnq.reply<clGetCommandQueueInfo>(0x1093,
//         scripted::bytes_of(std::uint64_t{2}));
//         EXPECT_TRUE(q.profiling_enabled());
//     } // fails if a reference is left
//
// Unless told otherwise: what creates gives a fresh handle with one reference,
// enqueued commands give a fresh event, retain and release count, queries of a
// reference count tell it, a query that nobody scripted is refused with
// `CL_INVALID_VALUE` and remembered as a fault. A call that is to fail leaves
// rubbish in its results.

#include "scripted/inputs.hpp"

#include <nq/call_handle.hpp>
#include <nq/nq.hpp>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#define SCRIPTED_EXPORT __attribute__((visibility("default")))

struct nq_call_handle {
    nq::capability_node node;
    bool is_open = true;
};

namespace scripted {

template <class T>
std::string bytes_of_list(std::vector<T> const& values) {
    return {reinterpret_cast<char const*>(values.data()), values.size() * sizeof(T)};
}

/// The bytes of a text as OpenCL replies it, with the terminating zero.
inline std::string text(std::string value) { return value += '\0'; }

/// One call of `nq_call_capability`.
struct call {
    nq_call_handle* handle = nullptr;
    std::uint32_t id = 0;
    std::string name;                // of the entry point; empty for an id that the version lacks
    std::vector<std::string> inputs; // what the block said, as `inputs_of` has it
    void const* made = nullptr;      // what it was answered: the object made last, or memory
};

/// How a call fails: by the result of the call layer or by an OpenCL status.
struct failure {
    int result = 0;
    std::int32_t status = 0;
};
inline failure layer(int result) { return {result, 0}; }
inline failure status(std::int32_t value) { return {0, value}; }

/// How the two calls of a listing are answered. The counts are that of the
/// elements unless they are given.
template <class Element>
struct listing {
    std::vector<Element> elements{};
    std::array<int, 2> results{};
    std::array<std::optional<std::uint64_t>, 2> counts{};
};

class libnq;

/// Answers a command of an open node, and notes what it was called with and
/// what was made.
int answer(libnq& self, nq::capability_node node, void* block, call& record);

/// The one libnq of the process; for one thread.
class SCRIPTED_EXPORT libnq {
public:
    static libnq& instance();

    /// Forgets everything: one root device with a node for every version, nothing
    /// scripted, nothing remembered. Handles that are open stay so but are no
    /// longer counted.
    void reset();

    // Discovery. The second word of a node is the version that it opens; nodes
    // that have the first word in common are of the same device.
    std::uint64_t version = nq::version;
    listing<nq::device> roots;
    std::map<std::pair<nq::device, nq::capability>, listing<nq::capability_node>> nodes;
    /// The n-th node to be opened from now on fails.
    void fail_open(int result, unsigned n = 1) { failures.push_back({"nq_create_call_handle", layer(result), n}); }

    /// An open call handle, without a call that is remembered. Calls with a null
    /// handle are understood by the numbering of the one that was opened last.
    nq::call_handle open(nq::capability offered);

    /// A fresh raw handle of which the test and the library hold some references.
    template <class Raw>
    Raw* make(int references = 0) {
        return static_cast<Raw*>(make_raw(references));
    }
    /// How many references are held; those that the implementation keeps for
    /// itself are not among them.
    int references(void const* raw) const;

    // Answers. The name of an image format listing's reply is the image type.
    template <class Block>
    void reply(std::uint32_t param_name, std::string bytes) {
        replies[{name_of<Block>(), param_name}] = std::move(bytes);
    }
    /// How many sub-devices, kernels or devices of a platform there are; 2 unless
    /// told otherwise.
    template <class Block>
    void list(std::uint32_t count) {
        counts[name_of<Block>()] = count;
    }
    /// Has `answer(Block&)` answer every call of an entry point in the place of
    /// what is described above. It finds the status success and the result null.
    /// One that returns a bool leaves the answer to the others with false.
    template <class Block, class Answer>
    void on(Answer answer) {
        answers[name_of<Block>()] = [answer](void* block) {
            if constexpr (std::is_void_v<std::invoke_result_t<Answer const&, Block&>>) {
                answer(*static_cast<Block*>(block));
                return true;
            } else {
                return answer(*static_cast<Block*>(block));
            }
        };
    }
    /// The n-th call from now on fails.
    void fail(failure how, unsigned n = 1) { failures.push_back({"", how, n}); }
    /// The n-th call of an entry point from now on fails.
    template <class Block>
    void fail(failure how, unsigned n = 1) {
        failures.push_back({name_of<Block>(), how, n});
    }
    /// Forgets the failures that are still to come.
    void stop_failing() { failures.clear(); }

    // What was called since the start, or since `forget_calls`.
    std::vector<call> const& calls() const { return called; }
    std::vector<std::string> names() const;
    /// "version", "roots 3 array", "nodes of 71 for 4 0" and "open 1 4": the
    /// functions that find and open nodes with the capacity that they are given,
    /// and whether there is an array.
    std::vector<std::string> const& discovery_calls() const { return discovered; }
    void forget_calls();

    // What should not be.
    std::size_t open_handles() const { return open_ones.size(); }
    /// The references and call handles that are left, and the faults seen:
    /// releases of what nobody held, queries that nobody scripted, calls on
    /// closed handles. Empty when all is well.
    std::string leftovers() const;
    /// Whether libnq is at work, so that no allocation may be made to fail.
    static bool answering() noexcept;

    // For the functions of libnq.
    struct failure_to_come {
        std::string_view entry_point; // any when empty
        failure how;
        unsigned calls_left; // until it fails, this one included
    };
    std::optional<failure> take_failure(std::string_view entry_point);
    nq_call_handle* open_node(nq::capability_node node);
    int perform(nq_call_handle* handle, std::uint32_t command_id, void* block);

    std::map<std::pair<std::string_view, std::uint32_t>, std::string> replies;
    std::map<std::string_view, std::uint32_t> counts;
    std::map<std::string_view, std::function<bool(void*)>> answers;
    std::vector<failure_to_come> failures;
    std::vector<call> called;
    std::vector<std::string> discovered;
    std::vector<std::string> faults;
    std::map<void const*, int> held;        // references
    std::map<std::uint64_t, void*> devices; // by the first word of a node
    std::set<nq_call_handle*> open_ones;

private:
    void* make_raw(int references);

    std::vector<std::unique_ptr<nq_call_handle>> handles_; // never given back, so that a closed one is recognised
};

} // namespace scripted
