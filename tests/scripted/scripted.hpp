#pragma once

// A libnq for tests, which answers as it is told, remembers every call and counts every reference.
//
//     auto& libnq = scripted::libnq::instance();
//     {
//         auto* const raw = libnq.make<_nq_cl_command_queue>(1);
//         command_queue queue(libnq.open(nq::capability::opencl_1_2), raw, internal::take_ownership{});
//         queue.flush();
//         assert(libnq.calls[0].name == "clFlush");
//         assert(libnq.calls[0].inputs == scripted::inputs_of(nq::block::clFlush{raw}));
//
//         libnq.fail(scripted::status(-36)); // the next call only
//         try { queue.flush(); } catch (common::invalid_command_queue const&) {}
//         libnq.reply<nq::block::clGetCommandQueueInfo>(0x1093, scripted::bytes_of(std::uint64_t{2}));
//         assert(queue.profiling_enabled());
//     }
//     assert(libnq.leftovers() == ""); // every reference was released
//
// Unless told otherwise: what creates gives a fresh handle with one reference, enqueued commands give a fresh event,
// retain and release count. A query that nobody scripted fails with `CL_INVALID_VALUE` and is remembered as a fault. A
// call that is to fail leaves rubbish in its results.

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

/// One call of `nq_call_capability`.
struct call {
    nq_call_handle* handle = nullptr;
    std::uint32_t id = 0;
    std::string name;                // of the entry point; empty for an id that the version lacks
    std::vector<std::string> inputs; // what the block said, as `inputs_of` has it
    void const* made = nullptr;      // what it was answered: the object made last, or memory
    bool has_status = false;         // or error code
    bool has_failed = false;         // because it was to
};

/// How a call fails: by the result of the call layer or by an OpenCL status.
struct failure {
    int result = 0;
    std::int32_t status = 0;
};
inline failure layer(int result) { return {result, 0}; }
inline failure status(std::int32_t value) { return {0, value}; }

/// How the two calls of a listing are answered. The counts are that of the elements unless they are given.
template <class Element>
struct listing {
    std::vector<Element> elements{};
    std::array<int, 2> results{};
    std::array<std::optional<std::uint64_t>, 2> counts{};
};

/// The one libnq of the process. Any number of threads may call it, and one sets it up while none does.
struct SCRIPTED_EXPORT libnq {
    static libnq& instance();

    /// Forgets everything: one root device with a node for every version, nothing scripted, nothing remembered. Handles
    /// that are open stay so but are no longer counted.
    void reset();

    // Discovery. The second word of a node is the version that it opens.
    std::uint64_t version = nq::version;
    listing<nq::device> roots;
    std::map<std::pair<nq::device, nq::capability>, listing<nq::capability_node>> nodes;

    /// An open call handle, without a call that is remembered. Calls with a null handle, as of moved-from objects, are
    /// not made.
    nq::call_handle open(nq::capability offered);

    /// A fresh raw handle of which the test and the library hold some references.
    template <class Raw>
    Raw* make(int held = 0) {
        return static_cast<Raw*>(make_raw(held));
    }

    // Answers. The name of an image format listing's reply is the image type.
    template <class Block>
    void reply(std::uint32_t param_name, std::string bytes) {
        replies[{name_of<Block>(), param_name}] = std::move(bytes);
    }
    /// Has `answer(Block&)` answer every call of an entry point in the place of what is described above. It finds the
    /// status success and the result null, and leaves the answer to the others with false.
    template <class Block, class Answer>
    void on(Answer answer) {
        answers[name_of<Block>()] = [answer](void* block) { return answer(*static_cast<Block*>(block)); };
    }
    /// The n-th call from now on fails; only the calls of one entry point count where it is named.
    void fail(failure how, unsigned n = 1, std::string_view entry_point = "") {
        failures.push_back({entry_point, how, n});
    }
    template <class Block>
    void fail(failure how, unsigned n = 1) {
        fail(how, n, name_of<Block>());
    }

    /// The names of the calls so far.
    std::vector<std::string> names() const;
    void forget_calls();

    /// The references and call handles that are left, and the faults seen: releases of what nobody held, queries that
    /// nobody scripted, calls on closed handles. Empty when all is well.
    std::string leftovers() const;

    // What was called since the start, or since `forget_calls`.
    bool remembers_calls = true;
    std::vector<call> calls;
    bool notes_inputs = true; ///< Of calls; takes longer than all else.
    /// "version", "roots 3 array", "nodes of 71 for 4 0" and "open 1 4": the functions that find and open nodes with
    /// the capacity that they are given, and whether there is an array.
    std::vector<std::string> discovery_calls;

    /// How many references are held; those that the implementation keeps for itself are not among them.
    std::map<void const*, int> references;
    std::set<nq_call_handle*> open_handles;
    std::vector<std::string> faults;
    /// Whether libnq is at work, so that no allocation may be made to fail.
    static bool is_answering;

    // For the functions of libnq.
    struct failure_to_come {
        std::string_view entry_point; // any when empty
        failure how;
        unsigned calls_left; // until it fails, this one included
    };
    std::map<std::pair<std::string_view, std::uint32_t>, std::string> replies;
    /// How many sub-devices, kernels or devices of a platform there are.
    std::uint32_t listed = 2;
    std::map<std::string_view, std::function<bool(void*)>> answers;
    std::vector<failure_to_come> failures;
    std::vector<std::unique_ptr<nq_call_handle>> handles; // never given back, so that a closed one is recognised

    std::optional<failure> take_failure(std::string_view entry_point);
    nq_call_handle* open_node(nq::capability_node node);
    void* make_raw(int held);
    int perform(nq_call_handle* handle, std::uint32_t command_id, void* block);
    /// Answers a command of an open node, and notes what it was called with and what was made.
    int answer(nq::capability_node node, void* block, call& record);
};

} // namespace scripted
