#include "support.hpp"

#include <atomic>

namespace real {
namespace {

/// Shared virtual memory for as long as the scenario lasts.
template <class Api>
class shared_memory {
public:
    using flags = typename Api::svm_mem_flags;

    shared_memory(bench<Api>& b, std::size_t size, flags how = flags::read_write)
        : context_(b.context), pointer_(b.context.svm_allocate(how, size, 0)) {
        EXPECT_EQ(pointer_ != nullptr, b.device.svm_coarse_grain_buffer_supported());
        if (pointer_ == nullptr) {
            skip("has no shared virtual memory");
        }
    }
    shared_memory(shared_memory const&) = delete;
    shared_memory& operator=(shared_memory const&) = delete;
    ~shared_memory() { context_.svm_free(pointer_); }

    template <class T = std::int32_t>
    T* as() const {
        return static_cast<T*>(pointer_);
    }

private:
    typename Api::context context_;
    void* pointer_;
};

/// The first `count` elements of shared memory, once every command before is complete.
template <class T = std::int32_t, class Api>
std::vector<T> read(bench<Api>& b, void const* memory, std::size_t count) {
    std::vector<T> values(count);
    b.run(typename Api::svm_memcpy(1, values.data(), memory, count * sizeof(T)));
    return values;
}

template <class Api, class Change>
void while_mapped(bench<Api>& b, void* memory, std::size_t size, Change change) {
    b.run(typename Api::svm_map(true, Api::map_flags::read | Api::map_flags::write, memory, size));
    change();
    b.run(typename Api::svm_unmap(memory));
    b.queue.finish();
}

constexpr char const* doubles_source = "kernel void f(global int* values) { values[get_global_id(0)] *= 2; }";

numbers doubled(numbers values) {
    std::ranges::transform(values, values.begin(), [](auto value) { return value * 2; });
    return values;
}

SCENARIO(moves_data_in_shared_memory, "SVM", 200) {
    shared_memory<Api> const first(b, 64 * 4), second(b, 64 * 4);
    while_mapped(b, first.as(), 64 * 4, [&] { std::ranges::copy(counting(64), first.as()); });
    auto kernel = b.build(doubles_source).create_kernel("f");
    kernel.set_svm_argument(0, first.as());
    b.launch(kernel, 64, 8);
    if constexpr (Api::number >= 210) {
        b.run(typename Api::svm_migrate_mem({first.as(), second.as()}, {0, 0}, Api::migration_flags::host));
        b.run(typename Api::svm_migrate_mem({first.as()}, {64 * 4}, typename Api::migration_flags{}));
    }
    auto const copied = b.queue.enqueue_command(typename Api::svm_memcpy(0, second.as(), first.as(), 64 * 4));
    b.wait_for(copied);
    EXPECT_EQ(read(b, second.as(), 64), doubled(counting(64)));
    while_mapped(b, second.template as<char>() + 32, 32, [&] {
        EXPECT_EQ(second.as()[8], 18);
        second.as()[8] = -1;
    });
    EXPECT_EQ(read(b, second.as() + 8, 2), (numbers{-1, 20}));
}

template <class Api, class Element>
void fills_with(bench<Api>& b, Element const& first, Element const& second) {
    constexpr std::size_t size = sizeof(Element);
    shared_memory<Api> const target(b, size * 4);
    auto* const elements = target.template as<Element>();
    typename Api::fill_svm_base fill(elements, second.data(), size, 4);
    b.run(fill);
    fill.update_pattern_pointer(first.data());
    b.run(fill);
    b.run(typename Api::template fill_svm<Element>(elements + 1, second, 2));
    EXPECT_EQ(read<Element>(b, elements, 4), (std::vector<Element>{first, second, second, first})) << size;
}

SCENARIO(fills_shared_memory, "SVM", 200) {
    for_each_pattern([&](auto const& first, auto const& second) { fills_with(b, first, second); });
}

/// What the function that frees was told.
template <class Api>
struct freeing {
    typename Api::context& context;
    std::vector<void*> pointers{};
    _nq_cl_command_queue* queue = nullptr;
    std::thread::id thread{};
    std::atomic<int> calls = 0;

    static void run(_nq_cl_command_queue* queue, std::uint32_t count, void** pointers, void* user_data) {
        auto* const self = static_cast<freeing*>(user_data);
        self->queue = queue;
        self->thread = std::this_thread::get_id();
        self->pointers.assign(pointers, pointers + count);
        for (void* const each : self->pointers) {
            self->context.svm_free(each);
        }
        ++self->calls;
    }
};

// In a context of its own, which Intel's runtime keeps until the process ends.
SCENARIO(frees_shared_memory_by_command, "SVM", 200) {
    auto context = Api::create_context(b.device);
    auto queue = Api::create_queue(context, b.device, false, false);
    std::vector<void*> memory(2);
    std::ranges::generate(memory, [&] { return context.svm_allocate(Api::svm_mem_flags::read_write, 256, 0); });
    auto freed = queue.enqueue_command(typename Api::svm_free(memory));
    b.wait_for(freed);
    EXPECT_EQ(freed.execution_status(), Api::event_execution_status::complete);
}

SCENARIO(frees_shared_memory_by_own_function, "SVM", 200) {
    std::vector<void*> memory(3);
    std::ranges::generate(memory, [&b] { return b.context.svm_allocate(Api::svm_mem_flags::read_write, 256, 0); });
    freeing<Api> seen{b.context};
    b.run(typename Api::svm_free(memory, freeing<Api>::run, &seen));
    b.queue.finish();
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.pointers, memory);
    EXPECT_EQ(seen.queue, raw_of(b.queue));
    tell_thread("the function that frees shared memory", seen.thread);
}

struct node {
    std::int32_t value;
    node* next;
};

constexpr char const* sum_source = R"(
struct node { int value; global struct node* next; };
kernel void f(global struct node* first, global int* sum) {
    for (global struct node* each = first; each != 0; each = each->next) { *sum += each->value++; }
})";

template <class Api>
std::int32_t sum_of_list(bench<Api>& b, typename Api::kernel& kernel, node* first) {
    auto sum = b.store(numbers(1));
    kernel.set_svm_argument(0, first);
    kernel.set_argument(1, sum);
    b.launch(kernel, 1);
    return b.load(sum)[0];
}

SCENARIO(follows_pointers_in_shared_memory, "SVM", 200) {
    shared_memory<Api> const first(b, sizeof(node)), second(b, sizeof(node)), third(b, sizeof(node));
    std::vector<void*> const rest{second.as(), third.as()};
    auto const write = [&b](auto const& memory, node const& content) {
        while_mapped(b, memory.as(), sizeof content, [&] { *memory.template as<node>() = content; });
    };
    write(third, {100, nullptr});
    write(second, {20, third.template as<node>()});
    write(first, {3, second.template as<node>()});
    auto kernel = b.build(sum_source).create_kernel("f");
    kernel.set_svm_pointers(rest);
    EXPECT_EQ(sum_of_list(b, kernel, first.template as<node>()), 123);
    EXPECT_EQ(read<node>(b, third.as(), 1)[0].value, 101);
}

// The host reads and writes without a map.
template <class Api>
void double_in_place(bench<Api>& b, std::int32_t* values) {
    std::ranges::copy(counting(64), values);
    auto kernel = b.build(doubles_source).create_kernel("f");
    kernel.set_svm_argument(0, values);
    b.launch(kernel, 64, 8);
    EXPECT_EQ(numbers(values, values + 64), doubled(counting(64)));
}

SCENARIO(shares_fine_grained_memory, "SVM, fine-grained", 200) {
    if (!b.device.svm_fine_grain_buffer_supported()) {
        skip("has no fine-grained shared memory");
    }
    using flags = typename Api::svm_mem_flags;
    auto const atomics = b.device.svm_atomics_supported() ? flags::atomics : flags{};
    shared_memory<Api> const memory(b, 64 * 4, flags::read_write | flags::fine_grain_buffer | atomics);
    double_in_place(b, memory.as());
}

SCENARIO(shares_memory_of_the_host, "SVM, system", 200) {
    if (!b.device.svm_fine_grain_system_supported()) {
        skip("shares no memory but its own");
    }
    numbers values(64);
    double_in_place(b, values.data());
    node last{40, nullptr}, first{2, &last};
    auto sum = b.build(sum_source).create_kernel("f");
    sum.set_fine_grain_system_flag(true);
    EXPECT_EQ(sum_of_list(b, sum, &first), 42);
    EXPECT_EQ(last.value, 41);
}

SCENARIO(refuses_without_shared_memory, "SVM refused where there is none", 200) {
    if (b.device.svm_coarse_grain_buffer_supported()) {
        return;
    }
    numbers memory(8);
    EXPECT_EQ(b.context.svm_allocate(Api::svm_mem_flags::read_write, 64, 0), nullptr);
    b.context.svm_free(nullptr);
    EXPECT_THROW(b.run(typename Api::svm_memcpy(1, memory.data(), &memory[4], 4)), common::invalid_operation);
    EXPECT_THROW(b.run(typename Api::svm_map(true, Api::map_flags::read, memory.data(), 4)), common::invalid_operation);
    EXPECT_THROW(b.run(typename Api::svm_free({memory.data()})), common::invalid_operation);
    auto kernel = b.build(doubles_source).create_kernel("f");
    EXPECT_THROW(kernel.set_svm_argument(0, memory.data()), common::invalid_operation);
    EXPECT_THROW(kernel.set_fine_grain_system_flag(true), common::invalid_operation);
}

} // namespace
} // namespace real
