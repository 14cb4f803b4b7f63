#pragma once

// A libnq for tests, which answers as it is told, remembers every call and counts every reference.
//
//     class queue : public scripted::versioned<opencl_1_2::api> {};           // <scripted/fixture.hpp>
//
//     TEST_F(queue, flushes) {
//         command_queue q(handle, libnq.make<_nq_cl_command_queue>(), create_reference{});
//         q.flush();
//         EXPECT_THAT(libnq.names(), ElementsAre("clRetainCommandQueue", "clFlush"));
//         EXPECT_EQ(libnq.last<clFlush>().command_queue, raw::get_raw_command_queue(q));
//
//         libnq.fail<clFlush>(scripted::status(-36));                         // the next one only
//         EXPECT_THROW(q.flush(), common::invalid_command_queue);
//         libnq.reply<clGetCommandQueueInfo>(0x1093, scripted::bytes_of(std::uint64_t{2}));
//         EXPECT_TRUE(q.profiling_enabled());
//     }                                                                       // fails if a reference is left
//
// Unless told otherwise: what creates gives a fresh handle with one reference, enqueued commands give a fresh event,
// retain and release count, queries of a reference count tell it, a query that nobody scripted is refused with
// `CL_INVALID_VALUE` and remembered as a fault. A call that is to fail leaves rubbish in its results.

#include <nq/call_handle.hpp>
#include <nq/commands.hpp>
#include <nq/nq.hpp>

#include <array>
#include <cstring>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#define SCRIPTED_EXPORT __attribute__((visibility("default")))

namespace scripted {

/// The name of an entry point: "clFinish" for `nq::block::clFinish`.
template <class Block>
constexpr std::string_view name_of() {
    std::string_view name = __PRETTY_FUNCTION__;
    name.remove_prefix(name.find("nq::block::") + std::string_view("nq::block::").size());
    return name.substr(0, name.find_first_of(";]"));
}

/// The bytes of some values, one behind the other.
template <class... T>
std::string bytes_of(T const&... values) {
    return (std::string() + ... + std::string(reinterpret_cast<char const*>(&values), sizeof values));
}

template <class T>
std::string bytes_of_list(std::vector<T> const& values) {
    return {reinterpret_cast<char const*>(values.data()), values.size() * sizeof(T)};
}

/// The bytes of a text as OpenCL replies it, with the terminating zero.
inline std::string text(std::string value) { return value += '\0'; }

/// One call of `nq_call_capability`.
struct call {
    nq_call_handle* handle = nullptr;
    nq::capability version{}; // of the handle
    std::uint32_t id = 0;
    std::string name;  // of the entry point; empty for an id that the version lacks
    std::string block; // as it arrived
    // What the block's pointers pointed to, by the name of the field: the bytes of an array, property lists with their
    // terminators, texts without; an array of texts or binaries has one entry for each. Null pointers have none.
    std::map<std::string, std::vector<std::string>, std::less<>> copies;

    /// The block; throws for a call of another entry point.
    template <class Block>
    Block as() const {
        if (name != name_of<Block>()) {
            throw std::logic_error("the call is one of " + name);
        }
        Block value;
        std::memcpy(static_cast<void*>(&value), block.data(), sizeof value);
        return value;
    }

    bool has(std::string_view field) const { return copies.find(field) != copies.end(); }

    /// The texts or binaries that a field pointed to; throws `std::out_of_range` where it was null.
    std::vector<std::string> const& parts(std::string_view field) const { return copies.at(std::string(field)); }

    /// The text, or the bytes, that a field pointed to.
    std::string const& bytes(std::string_view field) const { return parts(field).at(0); }

    template <class T>
    std::vector<T> array(std::string_view field) const {
        std::vector<T> values(bytes(field).size() / sizeof(T));
        std::memcpy(values.data(), bytes(field).data(), values.size() * sizeof(T));
        return values;
    }
};

/// A call of one of the functions that find capability nodes and open them.
struct discovery_call {
    std::string function;
    nq::device device = 0;
    nq::capability capability{};
    std::uint64_t capacity = 0;
    bool has_array = false;
    nq::capability_node node{};
};

/// How a call fails: by the result of the call layer or by an OpenCL status.
struct failure {
    int result = 0;
    std::int32_t status = 0;
};
inline failure layer(int result) { return {result, 0}; }
inline failure status(std::int32_t value) { return {0, value}; }

/// Instead of the n-th call: all from now on.
inline constexpr unsigned every = 0;

/// What an info query is answered: as many of the bytes as there is room for. The sizes reported to the two calls of a
/// read, the size query and the other, are that of the bytes unless they are given.
struct reply {
    std::string bytes;
    std::optional<std::size_t> first_size{};
    std::optional<std::size_t> second_size{};
};

/// How the two calls of a listing are answered. The counts are that of the elements unless they are given.
template <class Element>
struct listing {
    std::vector<Element> elements{};
    std::array<int, 2> results{};
    std::array<std::optional<std::uint64_t>, 2> counts{};
};

/// The one libnq of the process. Threads may use it at once.
class SCRIPTED_EXPORT libnq {
public:
    static libnq& instance();
    libnq(libnq const&) = delete;
    libnq& operator=(libnq const&) = delete;
    ~libnq();

    /// Forgets everything: one root device with a node for every version, nothing scripted, nothing remembered. Handles
    /// that are open stay so but are no longer counted.
    void reset();

    // Discovery. The second word of a node is the version that it opens; nodes that have the first word in common are
    // of the same device.
    std::uint64_t version = nq::version;
    listing<nq::device> roots;
    std::map<std::pair<nq::device, nq::capability>, listing<nq::capability_node>> nodes;
    /// The n-th node to be opened from now on fails.
    void fail_open(int result, unsigned n = 1);

    /// An open call handle, without a call that is remembered.
    nq::call_handle open(nq::capability version);
    /// The version by whose numbering calls with a null handle are understood; until it is set they are answered -1.
    void understand_null(nq::capability version);

    /// A fresh raw handle of which the test and the library hold some references.
    template <class Raw>
    Raw* make(int references = 0) {
        return static_cast<Raw*>(make_raw(references));
    }
    /// How many references are held; those that the implementation keeps for itself are not among them.
    int references(void const* raw) const;

    // Answers. The name of an image format listing's reply is the image type.
    template <class Block>
    void reply(std::uint32_t param_name, scripted::reply answer) {
        set_reply(name_of<Block>(), param_name, std::move(answer));
    }
    template <class Block>
    void reply(std::uint32_t param_name, std::string bytes) {
        set_reply(name_of<Block>(), param_name, {std::move(bytes)});
    }
    /// How many sub-devices, kernels or devices of a platform there are; 2 unless told otherwise.
    template <class Block>
    void list(std::uint32_t count) {
        set_count(name_of<Block>(), count);
    }
    /// Has `answer(Block&)` answer every call of an entry point in the place of what is described above. It finds the
    /// status success and the result null. One that returns a bool leaves the answer to the others with false.
    template <class Block, class Answer>
    void on(Answer answer) {
        set_answer(name_of<Block>(), [answer](void* block) {
            if constexpr (std::is_void_v<std::invoke_result_t<Answer const&, Block&>>) {
                answer(*static_cast<Block*>(block));
                return true;
            } else {
                return answer(*static_cast<Block*>(block));
            }
        });
    }
    /// The n-th capability call from now on fails.
    void fail(failure how, unsigned n = 1) { set_failure("", how, n); }
    /// The n-th call of an entry point from now on fails.
    template <class Block>
    void fail(failure how, unsigned n = 1) {
        set_failure(name_of<Block>(), how, n);
    }
    /// Forgets the failures that are still to come.
    void stop_failing();

    // What was called since the start, or since `forget_calls`.
    std::vector<call> calls() const;
    std::vector<discovery_call> discovery_calls() const;
    std::vector<std::string> names() const;
    void forget_calls();
    template <class Block>
    std::size_t count() const {
        return calls_of(name_of<Block>()).size();
    }
    /// The n-th call of an entry point, counted from 0; throws `std::out_of_range` where there is none.
    template <class Block>
    call nth(std::size_t n) const {
        return calls_of(name_of<Block>()).at(n);
    }
    /// The last call of an entry point; throws `std::out_of_range` where there is none.
    template <class Block>
    call last_call() const {
        return nth<Block>(count<Block>() - 1);
    }
    /// The block of the last call of an entry point.
    template <class Block>
    Block last() const {
        return last_call<Block>().template as<Block>();
    }

    // What should not be.
    std::size_t open_handles() const;
    /// The references and call handles that are left, and the faults seen: releases of what nobody held, queries that
    /// nobody scripted, calls on closed handles. Empty when all is well.
    std::string leftovers() const;
    /// The faults alone, which are then forgotten.
    std::vector<std::string> take_faults();

    /// Whether this thread is inside libnq, where no allocation may be made to fail.
    static bool answering() noexcept;

    struct state;
    /// For the functions of libnq themselves.
    state& internals();

private:
    libnq();
    void* make_raw(int references);
    void set_reply(std::string_view name, std::uint32_t param_name, scripted::reply answer);
    void set_count(std::string_view name, std::uint32_t count);
    void set_answer(std::string_view name, std::function<bool(void*)> answer);
    void set_failure(std::string_view name, failure how, unsigned n);
    std::vector<call> calls_of(std::string_view name) const;

    std::unique_ptr<state> state_;
};

} // namespace scripted
