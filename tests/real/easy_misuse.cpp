// Mistakes with the convenient layer on every device: which exception tells each, and what it says to do.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/image.hpp>
#include <vorn/mero/easy/split.hpp>
#include <vorn/mero/easy/tune.hpp>

#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string_view>

namespace real {
namespace {

namespace ez = vorn::mero::easy;

constexpr char source[] = "kernel void f(global int* v, local int* s) { v[get_global_id(0)] += 1; }";
constexpr std::size_t most = std::numeric_limits<std::size_t>::max();

/// An action must throw an exception of a class, whose message has a text.
template <class Exception, class Action>
void says(std::string_view text, Action action) {
    std::string const said = refusal<Exception>(action);
    EXPECT_NE(said.find(text), std::string::npos) << said;
}

SCENARIO(easy_tells_what_to_do, "easy misuse", 120) {
    ez::basic_session<Api::number> const gpu(b.device, b.context);
    ez::basic_session<Api::number> const elsewhere(b.device);
    auto const program = gpu.build(source);
    auto f = program["f"];
    auto twice = gpu.build("kernel void g(local int* a, local int* b) { a[0] = b[0]; }")["g"];
    auto v = gpu.array(numbers(8));
    auto foreign = elsewhere.array(numbers(8));
    ez::local<int> const s(1);

    says<ez::bounds_error>("7 cannot be rounded up to a multiple of 0", [] { ez::round_up(7, 0); });
    says<ez::bounds_error>("to a multiple of 64", [] { ez::round_up(most, 64); });
    EXPECT_EQ(ez::round_up(most, 1), most);
    says<ez::bounds_error>("was a negative number", [] { ez::range(4, most); });
    says<ez::bounds_error>("was a negative number", [] { ez::range(4).from(most - 1); });
    says<ez::argument_error>("use smaller work-groups",
                             [&] { f(ez::range(1).local(1), v, ez::local<int>(std::size_t{1} << 38U)); });
    std::size_t const third = b.device.local_mem_size() / sizeof(int) * 2 / 3;
    if (b.name == "pocl") { // crashes for it; others do not count the arguments, or do not mind
        says<ez::argument_error>("use smaller work-groups",
                                 [&] { twice(ez::range(1).local(1), ez::local<int>(third), ez::local<int>(third)); });
    }
    for (bool const first : {true, false, true}) { // what earlier arguments were does not count
        twice(ez::range(1).local(1), ez::local<int>(first ? third : 1), ez::local<int>(first ? 1 : third)).wait();
    }
    says<ez::launch_error>("", [&] { f(ez::range(8).local(3), v, s); });
    std::size_t const large = 2 * b.device.max_work_group_size();
    says<ez::launch_error>("a group of this kernel has at most ", [&] { f(ez::range(large).local(large), v, s); });
    says<ez::bounds_error>("elements 4 to 18446744073709551615", [&] { v.fill(0, 4, most); });
    says<ez::bounds_error>("use several arrays", [&] { gpu.template array<int>(std::size_t{1} << 50U); });
    says<ez::argument_error>("use a session of `another_queue`", [&] { v.on(elsewhere); });
    says<ez::argument_error>("use a session of `another_queue`", [&] { program.on(elsewhere); });
    says<ez::argument_error>("use a session of `another_queue`", [&] { v.copy_to(foreign); });
    says<ez::build_failure>("at least one source", [&] { gpu.build(std::vector<std::string>{}); });
    says<ez::build_failure>("at least one source", [&] { gpu.build_file(std::vector<std::string>{}); });
    says<ez::build_failure>("at least one source", [&] { gpu.link({}); });
    says<ez::no_kernel>("it has none", [&] { gpu.build("constant int n = 1;")["f"]; });
    says<ez::file_error>("Is a directory", [&] { gpu.build_file("."); });
    says<ez::option_error>("for the current one", [] { ez::build_options().include(""); });
    says<ez::no_device>("not accepted by the program",
                        [] { ez::find_device<Api::number>("", [](typename Api::device const&) { return false; }); });
    says<ez::no_device>("The list of devices is empty",
                        [] { ez::basic_devices<Api::number>(std::vector<typename Api::device>{}); });
    says<ez::bounds_error>("a step of at least 1", [] { ez::shares_of(4, {1}, 0); });
    says<ez::order_error>("complete it", [&] { ez::basic_user_event<Api::number>(gpu).fail(nullptr); });
    says<ez::launch_error>("there is no range", [&] { ez::tune(f, std::vector<ez::range>{}, v, s); });
    if (b.device.image_support()) {
        says<ez::bounds_error>("at least one in each direction", [&] { gpu.template image<ez::rgba8>(0, 4); });
        auto picture = gpu.template image<ez::rgba8>(2, 2);
        says<ez::argument_error>("use a session of `another_queue`", [&] { picture.on(elsewhere); });
        picture.fill({{1, 2, 3, 4}});
        EXPECT_EQ(picture.on(gpu.another_queue()).read(), picture.read());
        auto show = gpu.build("kernel void show(read_only image2d_t picture) {}")["show"];
        auto far = elsewhere.template image<ez::rgba8>(2, 3);
        says<ez::argument_error>("was given an image of 2 x 3", [&] { show(ez::range(1), far); });
    }
    f(ez::range(8), v, s); // what was refused has changed nothing
    EXPECT_EQ(v.read(), numbers(8, 1));
}

SCENARIO(easy_launches_from_no_offset, "easy misuse", 100, 100) {
    ez::basic_session<100> const gpu(b.device, b.context);
    auto f = gpu.build(source)["f"];
    says<ez::unsupported>("use ez::basic_session<110>", [&] { f(ez::range(4).from(4)); });
}

/// Every member of an object that was moved from, but for those that only tell what it was.
SCENARIO(easy_knows_what_was_moved_from, "easy misuse", 120) {
    ez::basic_session<Api::number> const gpu(b.device, b.context, Api::create_queue(b.context, b.device, false, true));
    auto const moved_from = [](auto object, auto... actions) {
        auto const taken = std::move(object);
        (says<ez::moved_from>("use the one", [&] { actions(object); }), ...); // NOLINT(bugprone-use-after-move)
        says<ez::moved_from>("use the one", [&] { std::vector(1, object); });
        auto again = std::move(object); // may be moved from again, and assigned to
        object = taken;
        (refusal<std::logic_error>([&] { actions(object); }), ...);
    };
    auto const program = gpu.build(source);
    moved_from(
        gpu, [](auto& o) { o.device(); }, [](auto& o) { o.finish(); }, [](auto& o) { o.build(source); },
        [](auto& o) { o.array(numbers{1}); }, [](auto& o) { o.another_queue(); }, [](auto& o) { o.state(); });
    moved_from(
        gpu.array(numbers(4)), [](auto& o) { o.read(); }, [](auto& o) { o.write({1}); }, [](auto& o) { o.fill(1); },
        [](auto& o) { o.map(); }, [](auto& o) { o.flush(); }, [](auto& o) { o.read_async(); },
        [&](auto& o) { o.on(gpu); }, [](auto& o) { o.part(0, 1); });
    moved_from(
        program, [](auto& o) { o["f"]; }, [](auto& o) { o.binary(); }, [&](auto& o) { o.on(gpu); });
    moved_from(gpu.compile(source), [&](auto& o) { gpu.link({o}); });
    auto v = gpu.array(numbers(4));
    auto f = program["f"];
    ez::local<int> const s(1);
    moved_from(
        f(ez::range(4), v, s), [](auto& o) { o.wait(); }, [](auto& o) { o.done(); }, [](auto& o) { o.then([] {}); },
        [](auto& o) { o.time(); }, [](auto& o) { ez::after(o); }, [](auto& o) { ez::when_all(o); });
    moved_from(f(ez::range(4), v, s).then([] {}), [](auto& o) { o.wait(); });
    if (b.device.image_support()) {
        moved_from(
            gpu.template image<ez::rgba8>(2, 2), [](auto& o) { o.read(); }, [](auto& o) { o.map(); },
            [](auto& o) { o.fill({}); });
    }
    auto const only_moves = [](auto object, auto... actions) {
        auto const taken = std::move(object);
        (says<ez::moved_from>("", [&] { actions(object); }), ...); // NOLINT(bugprone-use-after-move)
    };
    only_moves(
        program["f"], [&](auto& o) { o(ez::range(4), v, s); }, [&](auto& o) { o(ez::range(4)); },
        [](auto& o) { o.device(); });
    only_moves(
        v.read_async(), [](auto& o) { o.get(); }, [](auto& o) { o.event(); }, [](auto& o) { o.done(); });
    only_moves(
        ez::basic_user_event<Api::number>(gpu), [](auto& o) { o.complete(); }, [](auto& o) { o.event(); });
}

/// A chain of functions needs no more stack than one, however it ends and whoever finds out.
SCENARIO(easy_follows_at_any_length, "easy layer", 120, 120) {
    ez::basic_session<Api::number> const gpu(b.device, b.context);
    int const length = b.name == "oclgrind" ? 5000 : 30000;
    int calls = 0;
    using event = ez::basic_event<Api::number>;
    auto const chain = [&](event first) {
        for (int i = 0; i != length; ++i) {
            first = first.then([&calls] { ++calls; });
        }
        return first;
    };
    for (bool const succeeds : {true, false}) {
        ez::basic_user_event<Api::number> gate(gpu);
        auto const last = chain(gate.event());
        auto const dropped = chain(gate.event());
        EXPECT_FALSE(last.done());
        calls = 0;
        succeeds ? gate.complete() : gate.fail(std::make_exception_ptr(std::runtime_error("closed")));
        EXPECT_TRUE(last.done());
        EXPECT_EQ(refusal<std::runtime_error>([&] { last.wait(); }), succeeds ? "nothing" : "closed");
        EXPECT_EQ(calls, succeeds ? 2 * length : 0);
    }
    calls = 0;
    auto v = gpu.array(numbers(4));
    chain(v.write_async(numbers(4))).wait();
    EXPECT_EQ(calls, length);
}

/// A value that an argument does not take, and an image.
SCENARIO(easy_tells_what_was_given, "easy misuse", 100) {
    ez::basic_session<Api::number> const gpu(b.device, b.context);
    auto take = gpu.build("kernel void take(float4 value) {}")["take"];
    struct {
        std::array<char, 3> bytes;
    } const odd{};
    auto const refuses = [&](std::string_view text, auto const& value) {
        says<ez::argument_error>(text, [&] { take.set_arguments(value); });
    };
    refuses("was given a value of 3 bytes", odd);
    refuses("was given the integer -3", cl_char{-3});
    refuses("was given the integer 3", cl_ushort{3});
    refuses("was given the vector {200, 1}", cl_uchar2{{200, 1}});
    refuses("was given the vector {-4, 5}", cl_short2{{-4, 5}});
    refuses("was given the integer -5000000000", cl_long{-5000000000});
    refuses("was given the floating-point number 0.5", 0.5);
}

SCENARIO(easy_tells_sizes_of_images, "easy misuse", 120) {
    if (!b.device.image_support()) {
        skip("the device has no images");
    }
    if (address_sanitizer && b.name == "oclgrind") {
        skip("it allocates images of any size, and AddressSanitizer ends the process when there is no memory");
    }
    ez::basic_session<Api::number> const gpu(b.device, b.context);
    constexpr std::size_t huge = std::size_t{1} << 40U;
    constexpr std::string_view limits = "there is at least one in each direction, at most ";
    says<ez::bounds_error>(limits, [&] { gpu.template image<ez::r32u>(huge); });
    says<ez::bounds_error>(limits, [&] { gpu.template image<ez::r32u>(1, huge); });
    says<ez::bounds_error>(limits, [&] { gpu.template image<ez::r32u>(1, 1, huge); });
    says<ez::bounds_error>(limits, [&] { gpu.template image_array<ez::r32u>(1, huge); });
    says<ez::bounds_error>(limits, [&] { gpu.template image_array<ez::r32u>(1, 1, huge); });
}

} // namespace
} // namespace real
