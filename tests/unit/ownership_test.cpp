#include "unit/members.hpp"

#include <vorn/mero/internal/logger.hpp>

#include <concepts>
#include <cstdlib>
#include <spdlog/sinks/ostream_sink.h>
#include <sstream>

// Ownership, the same for every class: each operation makes exactly the calls that it should.

namespace unit {
namespace {

/// How a class's entry points and functions of `raw` are called, and its destructor.
template <class Object>
struct called;

#define UNIT_CLASS(object, kind_name, count_name, accessor, creator, destroyed_as)                                     \
    template <>                                                                                                        \
    struct called<object> {                                                                                            \
        static constexpr char const* kind = kind_name;                                                                 \
        [[maybe_unused]] static constexpr std::uint32_t count = count_name;                                            \
        static constexpr char const* destroyed = #destroyed_as "::~" #destroyed_as "()";                               \
        static constexpr auto create = creator;                                                                        \
        static auto* get(object const& of) { return raw::accessor(of); }                                               \
    };
#define UNIT_MEMORY(object, creator)                                                                                   \
    UNIT_CLASS(object, "MemObject", 0x1105, get_raw_memory_object, creator, memory_object)

UNIT_CLASS(platform, "", 0, get_raw_platform_id, &raw::create_platform, )
UNIT_CLASS(device, "Device", 0x1047, get_raw_device_id, &raw::create_device, device)
UNIT_CLASS(context, "Context", 0x1080, get_raw_context, &raw::create_context, context)
UNIT_MEMORY(memory_object, nullptr)
UNIT_MEMORY(buffer, &raw::create_buffer)
UNIT_MEMORY(image, nullptr)
UNIT_MEMORY(image_2d, &raw::create_image_2d)
UNIT_MEMORY(image_3d, &raw::create_image3d)
UNIT_CLASS(sampler, "Sampler", 0x1150, get_raw_sampler, &raw::create_sampler, sampler)
UNIT_CLASS(program, "Program", 0x1160, get_raw_program, &raw::create_program, program)
UNIT_CLASS(kernel, "Kernel", 0x1192, get_raw_kernel, nullptr, kernel)
UNIT_CLASS(event, "Event", 0x11D2, get_raw_event, &raw::create_event, event)
#if UNIT_OPENCL < 200
UNIT_CLASS(command_queue, "CommandQueue", 0x1092, get_raw_command_queue, &raw::create_command_queue, command_queue)
#else
UNIT_CLASS(host_command_queue, "CommandQueue", 0x1092, get_raw_command_queue, &raw::create_host_command_queue,
           host_command_queue)
UNIT_CLASS(device_command_queue, "CommandQueue", 0x1092, get_raw_command_queue, &raw::create_device_command_queue,
           device_command_queue)
UNIT_MEMORY(pipe, &raw::create_pipe)
#endif
#if UNIT_OPENCL >= 110
UNIT_CLASS(event_promise, "Event", 0x11D2, get_raw_event, nullptr, event_promise)
UNIT_MEMORY(sub_buffer, &raw::create_sub_buffer)
#endif
#if UNIT_OPENCL >= 120
UNIT_MEMORY(image_1d, &raw::create_image_1d)
UNIT_MEMORY(image_1d_array, &raw::create_image_1d_array)
UNIT_MEMORY(image_1d_buffer, &raw::create_image_1d_buffer)
UNIT_MEMORY(image_2d_array, &raw::create_image_2d_array)
#endif

using classes = testing::Types<
#if UNIT_OPENCL >= 110
    event_promise, sub_buffer,
#endif
#if UNIT_OPENCL >= 120
    image_1d, image_1d_array, image_1d_buffer, image_2d_array,
#endif
#if UNIT_OPENCL >= 200
    device_command_queue, pipe,
#endif
    platform, device, context, api::host_queue, memory_object, buffer, image, image_2d, image_3d, sampler, program,
    kernel, event>;

/// A way in which a call fails, and what is thrown then.
struct failing {
    scripted::failure how;
    std::type_info const& thrown;
};

failing const failures[] = {{scripted::status(-5), typeid(common::out_of_resources)},
                            {scripted::status(-999), typeid(common::unknown_opencl_error)},
                            {scripted::layer(-1), typeid(nq::unrecoverable_error)},
                            {scripted::layer(-2), typeid(nq::invalid_command_id)},
                            {scripted::layer(7), typeid(nq::unknown_error)}};

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

template <class Object>
constexpr bool clones = std::is_same_v<Object, kernel>;

template <class Object>
class ownership : public members {
protected:
    using raw_type = typename Object::raw_type;

    /// A raw handle with a reference that the test holds for an object to adopt, where the class counts any.
    raw_type* reference() { return libnq.make<raw_type>(counted<Object> ? 1 : 0); }

    Object object(nq::call_handle const& used) { return Object(used, reference(), api::take_ownership{}); }

    /// Expects just these operations since the last look, as the class performs them: none where it counts nothing.
    void expect_calls(names const& operations) {
        names expected;
        for (std::string const& operation : operations) {
            if (counted<Object>) {
                expected.push_back("cl" + operation + called<Object>::kind);
            }
        }
        EXPECT_EQ(libnq.names(), expected);
        libnq.forget_calls();
    }

    void expect(Object const& object, raw_type* raw, nq::call_handle const& used) {
        EXPECT_EQ(called<Object>::get(object), raw);
        EXPECT_EQ(raw::get_call_handle(object), used);
    }

    /// Has the n-th call of an operation fail in every way; no further one is made. A status that a release should not
    /// have is the implementation's fault.
    template <class Operation>
    void expect_failures(std::string const& name, unsigned n, Operation operation) {
        for (failing const& failure : failures) {
            if (!counted<Object>) {
                continue;
            }
            libnq.forget_calls();
            libnq.fail(failure.how, n);
            try {
                operation();
                ADD_FAILURE() << "nothing thrown";
            } catch (common::bad_implementation const& error) {
                EXPECT_EQ(name, "Release");
                EXPECT_NE(failure.how.status, 0);
                EXPECT_STREQ(error.what(), "OpenCL release operations should never fail.  Complain to your vendor.");
            } catch (std::exception const& error) {
                EXPECT_EQ(typeid(error), failure.thrown);
                EXPECT_FALSE(name == "Release" && failure.how.status != 0);
            }
            EXPECT_EQ(libnq.calls().size(), n);
        }
        libnq.forget_calls();
    }

    nq::call_handle other_handle = libnq.open(api::capability);
};
TYPED_TEST_SUITE(ownership, classes);

TYPED_TEST(ownership, adopts_without_a_call_and_releases_once) {
    auto* const raw = this->reference();
    {
        TypeParam const object(this->handle, raw, api::take_ownership{});
        this->expect_calls({});
        this->expect(object, raw, this->handle);
        EXPECT_EQ(this->handle.use_count(), 2);
    }
    for (auto const& call : this->libnq.calls()) {
        EXPECT_EQ(call.handle, this->handle.get());
        EXPECT_EQ(call.inputs[0], scripted::bytes_of(raw));
    }
    this->expect_calls({"Release"});
    EXPECT_EQ(this->handle.use_count(), 1);
}

TYPED_TEST(ownership, borrows_by_a_retain) {
    auto* const raw = this->reference();
    auto const borrows = [&](auto borrow) {
        {
            TypeParam const object = borrow();
            this->expect_calls({"Retain"});
            this->expect(object, raw, this->handle);
        }
        this->expect_calls({"Release"});
        this->expect_failures("Retain", 1, borrow);
        EXPECT_EQ(this->handle.use_count(), 1);
    };
    if constexpr (std::is_constructible_v<TypeParam, nq::call_handle, decltype(raw), api::create_reference>) {
        borrows([&] { return TypeParam(this->handle, raw, api::create_reference{}); });
    }
    if constexpr (!std::is_null_pointer_v<decltype(called<TypeParam>::create)>) {
        borrows([&]() -> TypeParam { return called<TypeParam>::create(this->handle, raw); });
    }
    TypeParam(this->handle, raw, api::take_ownership{});
}

TYPED_TEST(ownership, moves_without_a_call) {
    auto source = this->object(this->handle);
    auto* const raw = called<TypeParam>::get(source);
    TypeParam moved(std::move(source));
    this->expect_calls({});
    this->expect(moved, raw, this->handle);
    this->expect(source, nullptr, nullptr); // NOLINT(bugprone-use-after-move)

    auto target = this->object(this->other_handle);
    target = std::move(moved);
    EXPECT_TRUE(!counted<TypeParam> || this->libnq.calls().at(0).handle == this->other_handle.get());
    this->expect_calls({"Release"});
    this->expect(target, raw, this->handle);
    this->expect(moved, nullptr, nullptr); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(this->other_handle.use_count(), 1);

    auto& same = target;
    target = std::move(same);
    this->expect_calls({"Release"});
    this->expect(target, nullptr, nullptr);
    EXPECT_EQ(this->handle.use_count(), 1);
}

TYPED_TEST(ownership, retains_nothing_for_an_empty_object_and_never_releases_it) {
    auto source = this->object(this->handle);
    auto empty = this->object(this->handle);
    { TypeParam const taken(std::move(empty)); }
    this->libnq.forget_calls();
    raw::release(empty); // NOLINT(bugprone-use-after-move)
    TypeParam const also_empty(std::move(empty));
    this->expect_calls({});
    auto const is_refused = [&](auto use) {
        if (counted<TypeParam>) {
            EXPECT_THROW(use(), common::invalid_value);
            ASSERT_EQ(this->libnq.calls().size(), 1U);
            EXPECT_EQ(this->libnq.calls()[0].handle, nullptr);
            EXPECT_EQ(this->libnq.calls()[0].inputs[0], std::string(sizeof(void*), '\0'));
            this->expect_calls({"Retain"});
        }
    };
    is_refused([&] { raw::retain(also_empty); });
    if constexpr (std::is_copy_constructible_v<TypeParam>) {
        if constexpr (!clones<TypeParam>) {
            is_refused([&] { TypeParam{also_empty}; });
        }
        empty = source;
        this->expect_calls({"Retain"});
        this->expect(empty, called<TypeParam>::get(source), this->handle);
    }
}

TYPED_TEST(ownership, performs_one_operation_for_a_raw_function) {
    auto const owner = this->object(this->handle);
    raw::retain(owner);
    this->expect_calls({"Retain"});
    raw::release(owner);
    this->expect_calls({"Release"});
    this->expect_failures("Retain", 1, [&] { raw::retain(owner); });
    this->expect_failures("Release", 1, [&] { raw::release(owner); });
    if constexpr (counted<TypeParam>) {
        // images and pipes have info entry points of their own, but are counted as memory objects
        using asked = std::conditional_t<std::is_base_of_v<memory_object, TypeParam>, memory_object, TypeParam>;
        this->reads(static_cast<asked const&>(owner), called<TypeParam>::count, number,
                    [](asked const& of) { return raw::refcount(of); });
    } else {
        EXPECT_EQ(raw::refcount(owner), 1U);
    }
}

TYPED_TEST(ownership, copies_by_a_retain_or_a_clone) {
    if constexpr (std::is_copy_constructible_v<TypeParam>) {
        auto const original = this->object(this->handle);
        {
            TypeParam const copy(original); // NOLINT(performance-unnecessary-copy-initialization): makes a call
            this->expect_calls({clones<TypeParam> ? "Clone" : "Retain"});
            EXPECT_EQ(called<TypeParam>::get(copy) == called<TypeParam>::get(original), !clones<TypeParam>);
            EXPECT_EQ(raw::get_call_handle(copy), this->handle);
        }
        this->expect_calls({"Release"});
        this->expect_failures("Retain", 1, [&] { TypeParam{original}; });
        EXPECT_EQ(this->handle.use_count(), 2);
    }
}

TYPED_TEST(ownership, assignment_releases_then_retains) {
    if constexpr (std::is_copy_assignable_v<TypeParam>) {
        auto const source = this->object(this->handle);
        auto target = this->object(this->other_handle);
        auto* const own = called<TypeParam>::get(target);
        auto& same = target;
        target = same;
        this->expect_calls({});
        this->expect_failures("Release", 1, [&] { target = source; });
        this->expect(target, own, this->other_handle);

        target = source;
        if (counted<TypeParam>) {
            EXPECT_EQ(this->libnq.calls().at(0).handle, this->other_handle.get());
            EXPECT_EQ(this->libnq.calls().at(1).handle, this->handle.get());
        }
        this->expect_calls({"Release", "Retain"});
        this->expect(target, called<TypeParam>::get(source), this->handle);
        EXPECT_EQ(this->libnq.references(own), 0);
        EXPECT_EQ(this->other_handle.use_count(), 1);

        this->expect_failures("Retain", 2, [&] {
            auto doomed = this->object(this->other_handle);
            try {
                doomed = source;
            } catch (...) { // empty but for its call handle
                this->expect(doomed, nullptr, this->other_handle);
                throw;
            }
        });
    }
}

TYPED_TEST(ownership, compares_call_handles_then_raw_handles) {
    if constexpr (std::equality_comparable<TypeParam>) {
        int const references = counted<TypeParam> ? 2 : 0; // one through each call handle
        auto* const raw = this->libnq.template make<typename TypeParam::raw_type>(references);
        auto* const next = this->libnq.template make<typename TypeParam::raw_type>(references);
        std::vector<TypeParam> objects;
        for (auto const& used :
             {std::min(this->handle, this->other_handle), std::max(this->handle, this->other_handle)}) {
            objects.emplace_back(used, raw, api::take_ownership{});
            objects.emplace_back(used, next, api::take_ownership{});
        }
        for (std::size_t i = 0; i != objects.size(); ++i) {
            for (std::size_t j = 0; j != objects.size(); ++j) {
                EXPECT_EQ(objects[i] == objects[j], i == j);
                EXPECT_EQ(objects[i] < objects[j], i < j);
            }
            EXPECT_EQ(std::hash<TypeParam>{}(objects[i]), word_of(raw_of(objects[i])) ^ word_of(handle_of(objects[i])));
        }
        this->expect_calls({}); // nor does a growing vector make one
    }
}

TYPED_TEST(ownership, logs_what_fails_in_a_destructor) {
    for (failing const& failure : failures) {
        auto* const raw = this->reference();
        auto const destroys = [&] { TypeParam(this->handle, raw, api::take_ownership{}); };
        this->libnq.fail(failure.how);
        std::string const line = "error: Exception caught in " + std::string(called<TypeParam>::destroyed) + ".\n";
        EXPECT_EQ(logged(destroys), counted<TypeParam> ? line : "");
        EXPECT_EQ(this->handle.use_count(), 1);
        this->expect_calls({"Release"});
        this->libnq.stop_failing();
        EXPECT_EQ(logged(destroys), "");
        this->libnq.forget_calls();
    }
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
