#include "unit/members.hpp"

#include <vorn/mero/internal/logger.hpp>

#include <concepts>
#include <cstdlib>
#include <spdlog/sinks/ostream_sink.h>
#include <sstream>

// Ownership, the same for every class: each operation makes exactly the calls that it should.

namespace unit {
namespace {

/// An object, whatever its class.
struct object {
    virtual ~object() = default;
    virtual void* raw() const = 0;
    virtual nq::call_handle const& call_handle() const = 0;
    virtual std::unique_ptr<object> copy() const = 0;
    virtual std::unique_ptr<object> move() = 0;
    virtual void assign(object const& source) = 0;
    virtual void take(object& source) = 0;
    virtual void retain() const = 0;
    virtual void release() const = 0;
    virtual std::uint32_t references() const = 0;
};

template <class Object>
struct object_of;

template <class Object>
std::unique_ptr<object> hold(Object of) {
    return std::unique_ptr<object>(new object_of<Object>(std::move(of)));
}

template <class Object>
struct object_of final : object {
    explicit object_of(Object of) : held(std::move(of)) {}

    void* raw() const override { return raw_of(held); }
    nq::call_handle const& call_handle() const override { return raw::get_call_handle(held); }
    std::unique_ptr<object> copy() const override {
        if constexpr (std::is_copy_constructible_v<Object>) {
            return hold(Object(held));
        }
        return nullptr;
    }
    std::unique_ptr<object> move() override { return hold(std::move(held)); }
    void assign(object const& source) override {
        if constexpr (std::is_copy_assignable_v<Object>) {
            held = static_cast<object_of const&>(source).held;
        }
    }
    void take(object& source) override { held = std::move(static_cast<object_of&>(source).held); }
    void retain() const override { raw::retain(held); }
    void release() const override { raw::release(held); }
    std::uint32_t references() const override { return raw::refcount(held); }

    Object held;
};

using maker = std::unique_ptr<object> (*)(nq::call_handle const&, void*);

/// A class, how its objects are made, and what is tested of some classes alone.
struct subject {
    char const* name;
    kind counting;
    bool copies;
    maker adopt;
    std::vector<maker> borrow{};
    void (*compare)(members&) = nullptr;
};

// One object of each of two raw handles through each of two call handles.
template <class Object>
void compare(members& test) {
    auto const other = test.libnq.open(api::capability);
    int const references = counted<Object> ? 2 : 0;
    auto* const first = test.libnq.make<typename Object::raw_type>(references);
    auto* const second = test.libnq.make<typename Object::raw_type>(references);
    std::vector<Object> objects;
    for (auto const& used : {std::min(test.handle, other), std::max(test.handle, other)}) {
        objects.emplace_back(used, first, api::take_ownership{});
        objects.emplace_back(used, second, api::take_ownership{});
    }
    for (std::size_t i = 0; i != objects.size(); ++i) {
        for (std::size_t j = 0; j != objects.size(); ++j) {
            EXPECT_EQ(objects[i] == objects[j], i == j);
            EXPECT_EQ(objects[i] < objects[j], i < j);
        }
        EXPECT_EQ(std::hash<Object>{}(objects[i]), word_of(raw_of(objects[i])) ^ word_of(handle_of(objects[i])));
    }
    EXPECT_EQ(test.libnq.names(), names{}); // nor does a growing vector make one
}

template <class Object, auto Create = nullptr>
subject subject_of(char const* name) {
    using raw = typename Object::raw_type*;
    maker const adopt = [](nq::call_handle const& used, void* of) {
        return hold(Object(used, static_cast<raw>(of), api::take_ownership{}));
    };
    subject made{name, kind_of(static_cast<Object*>(nullptr)), std::is_copy_constructible_v<Object>, adopt};
    if constexpr (std::is_constructible_v<Object, nq::call_handle, raw, api::create_reference>) {
        made.borrow.push_back([](nq::call_handle const& used, void* of) {
            return hold(Object(used, static_cast<raw>(of), api::create_reference{}));
        });
    }
    if constexpr (!std::is_null_pointer_v<decltype(Create)>) {
        made.borrow.push_back(
            [](nq::call_handle const& used, void* of) { return hold<Object>(Create(used, static_cast<raw>(of))); });
    }
    if constexpr (std::equality_comparable<Object>) {
        made.compare = compare<Object>;
    }
    return made;
}

#define OF(object, ...) subject_of<object __VA_OPT__(, raw::) __VA_ARGS__>(#object)
std::vector<subject> const subjects {
    OF(platform, create_platform), OF(device, create_device), OF(context, create_context), OF(memory_object),
        OF(buffer, create_buffer), OF(image), OF(image_2d, create_image_2d), OF(image_3d, create_image3d),
        OF(sampler, create_sampler), OF(program, create_program), OF(kernel), OF(event, create_event),
#if UNIT_OPENCL < 200
        OF(command_queue, create_command_queue),
#else
        OF(host_command_queue, create_host_command_queue), OF(device_command_queue, create_device_command_queue),
        OF(pipe, create_pipe),
#endif
#if UNIT_OPENCL >= 110
        OF(event_promise), OF(sub_buffer, create_sub_buffer),
#endif
#if UNIT_OPENCL >= 120
        OF(image_1d, create_image_1d), OF(image_1d_array, create_image_1d_array),
        OF(image_1d_buffer, create_image_1d_buffer), OF(image_2d_array, create_image_2d_array),
#endif
};

/// What the library's logger writes while something is done.
std::string logged(std::function<void()> const& done) {
    std::ostringstream text;
    auto* const logger = vorn::mero::internal::get_mero_logger();
    logger->sinks() = {std::make_shared<spdlog::sinks::ostream_sink_mt>(text)};
    logger->set_pattern("%l: %v");
    logger->set_level(spdlog::level::trace);
    done();
    logger->sinks().clear();
    return text.str();
}

/// A call of "Release" or the like, on a raw handle and through a call handle.
struct operation {
    std::string name;
    void* raw;
    nq::call_handle const& used;
};

struct ownership : members, testing::WithParamInterface<subject> {
    ownership() { libnq.forget_calls(); }

    /// An object that adopts a reference, where the class counts any.
    std::unique_ptr<object> own(nq::call_handle const& used) { return each.adopt(used, libnq.make<void>(counted)); }

    /// Expects just these operations since the last look, as the class performs them: none where it counts nothing.
    void expect_calls(std::vector<operation> const& operations) {
        ASSERT_EQ(libnq.calls.size(), counted ? operations.size() : 0);
        for (std::size_t i = 0; i != libnq.calls.size(); ++i) {
            EXPECT_EQ(libnq.calls[i].name, "cl" + operations[i].name + each.counting.name);
            EXPECT_EQ(libnq.calls[i].inputs[0], scripted::bytes_of(operations[i].raw));
            EXPECT_EQ(libnq.calls[i].handle, operations[i].used.get());
        }
        libnq.forget_calls();
    }

    static void expect(object const& of, void* raw, nq::call_handle const& used) {
        EXPECT_EQ(of.raw(), raw);
        EXPECT_EQ(of.call_handle(), used);
    }

    /// Has the n-th call of some work fail in every way; no further one is made. A status that a release should not
    /// have is the implementation's fault.
    void expect_failures(unsigned n, bool is_release, auto work) {
        for (failing const& failure : failures) {
            if (counted) {
                libnq.forget_calls();
                libnq.fail(failure.how, n);
                if (is_release && failure.how.status != 0) {
                    throws<common::bad_implementation>(
                        "OpenCL release operations should never fail.  Complain to your vendor.", work);
                } else {
                    EXPECT_EQ(thrown_by(work).first, failure.thrown);
                }
                EXPECT_EQ(libnq.calls.size(), n);
            }
        }
        libnq.forget_calls();
    }

    subject const& each = GetParam();
    bool const clones = each.name == std::string("kernel");
    bool const counted = each.counting.reference_count != 0;
    nq::call_handle const none;
    nq::call_handle other_handle = libnq.open(api::capability);
    std::unique_ptr<object> const source = own(handle);
    void* const raw = source->raw();
};
INSTANTIATE_TEST_SUITE_P(of, ownership, testing::ValuesIn(subjects), [](auto const& of) { return of.param.name; });

TEST_P(ownership, adopts_without_a_call_and_releases_once) {
    auto adopted = own(other_handle);
    auto* const its = adopted->raw();
    expect_calls({});
    expect(*adopted, its, other_handle);
    EXPECT_EQ(other_handle.use_count(), 2);
    adopted.reset();
    expect_calls({{"Release", its, other_handle}});
    EXPECT_EQ(other_handle.use_count(), 1);
}

TEST_P(ownership, borrows_by_a_retain) {
    for (auto* const borrow : each.borrow) {
        auto borrowed = borrow(other_handle, raw);
        expect_calls({{"Retain", raw, other_handle}});
        expect(*borrowed, raw, other_handle);
        borrowed.reset();
        expect_calls({{"Release", raw, other_handle}});
        expect_failures(1, false, [&] { borrow(other_handle, raw); });
        EXPECT_EQ(other_handle.use_count(), 1);
    }
}

TEST_P(ownership, moves_without_a_call) {
    auto const moved = source->move();
    expect_calls({});
    expect(*moved, raw, handle);
    expect(*source, nullptr, nullptr);

    auto const target = own(other_handle);
    auto* const own = target->raw();
    target->take(*moved);
    expect_calls({{"Release", own, other_handle}});
    expect(*target, raw, handle);
    expect(*moved, nullptr, nullptr);
    EXPECT_EQ(other_handle.use_count(), 1);

    target->take(*target);
    expect_calls({{"Release", raw, handle}});
    expect(*target, nullptr, nullptr);
    EXPECT_EQ(handle.use_count(), 1);
}

TEST_P(ownership, retains_nothing_for_an_empty_object_and_never_releases_it) {
    auto const empty = own(handle);
    empty->move();
    libnq.forget_calls();
    empty->release();
    auto const also_empty = empty->move();
    expect_calls({});
    auto const is_refused = [&](auto use) {
        if (counted) {
            EXPECT_THROW(use(), nq::unrecoverable_error);
            libnq.forget_calls();
        }
    };
    is_refused([&] { also_empty->retain(); });
    if (each.copies) {
        if (!clones) {
            is_refused([&] { also_empty->copy(); });
        }
        empty->assign(*source);
        expect_calls({{"Retain", raw, handle}});
        expect(*empty, raw, handle);
    }
}

TEST_P(ownership, performs_one_operation_for_a_raw_function) {
    source->retain();
    expect_calls({{"Retain", raw, handle}});
    source->release();
    expect_calls({{"Release", raw, handle}});
    expect_failures(1, false, [&] { source->retain(); });
    expect_failures(1, true, [&] { source->release(); });

    auto const query = "clGet" + std::string(each.counting.name) + "Info";
    libnq.replies[{query, each.counting.reference_count}] = reply_of(number);
    EXPECT_EQ(source->references(), counted ? number : 1);
    EXPECT_EQ(libnq.names(), names(counted ? 2 : 0, query));
    libnq.replies.clear();
}

TEST_P(ownership, copies_by_a_retain_or_a_clone) {
    if (each.copies) {
        auto copy = source->copy();
        auto* const its = copy->raw();
        expect_calls({{clones ? "Clone" : "Retain", raw, handle}});
        EXPECT_EQ(its == raw, !clones);
        EXPECT_EQ(copy->call_handle(), handle);
        copy.reset();
        expect_calls({{"Release", its, handle}});
        expect_failures(1, false, [&] { source->copy(); });
        EXPECT_EQ(handle.use_count(), 2);
    }
}

TEST_P(ownership, assignment_releases_then_retains) {
    if (each.copies) {
        auto const target = own(other_handle);
        auto* const its = target->raw();
        target->assign(*target);
        expect_calls({});
        expect_failures(1, true, [&] { target->assign(*source); });
        expect(*target, its, other_handle);

        target->assign(*source);
        expect_calls({{"Release", its, other_handle}, {"Retain", raw, handle}});
        expect(*target, raw, handle);
        EXPECT_EQ(other_handle.use_count(), 1);

        expect_failures(2, false, [&] {
            auto const doomed = own(other_handle);
            try {
                doomed->assign(*source);
            } catch (...) { // empty but for its call handle
                expect(*doomed, nullptr, other_handle);
                throw;
            }
        });
    }
}

TEST_P(ownership, compares_call_handles_then_raw_handles) {
    bool const has_identity = std::string("MemObject") != each.counting.name;
    ASSERT_EQ(each.compare != nullptr, has_identity);
    if (has_identity) {
        each.compare(*this);
    }
}

TEST_P(ownership, logs_what_fails_in_a_destructor) {
    std::string const name = each.counting.object;
    for (failing const& failure : failures) {
        auto const destroys = [&] { each.adopt(other_handle, raw); };
        libnq.fail(failure.how);
        EXPECT_EQ(logged(destroys), counted ? "error: Exception caught in " + name + "::~" + name + "().\n" : "");
        EXPECT_EQ(other_handle.use_count(), 1);
        expect_calls({{"Release", raw, other_handle}});
        libnq.failures.clear();
        for (std::size_t n = 1; n != 20; ++n) { // nor does it throw where memory lacks for the report
            auto adopted = each.adopt(other_handle, raw);
            libnq.fail(failure.how);
            logged([&] { allocations_of([&] { adopted.reset(); }, n); });
            libnq.failures.clear();
        }
        libnq.forget_calls();
    }
    EXPECT_EQ(logged([&] { own(handle); }), "");
}

TEST(ownership_DeathTest, a_release_that_fails_in_move_assignment_ends_the_process) {
    EXPECT_EXIT(
        {
            std::set_terminate([] { std::_Exit(3); });
            auto target = world::own<context>();
            auto source = world::own<context>();
            scripted::libnq::instance().fail(scripted::layer(-1));
            target = std::move(source);
        },
        testing::ExitedWithCode(3), "");
}

} // namespace
} // namespace unit
