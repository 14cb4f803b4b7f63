#include "support.hpp"

#include <atomic>

namespace real {
namespace {

/// Shared virtual memory for as long as the scenario lasts.
template <class Api>
class shared_memory {
public:
    shared_memory(bench<Api>& b, std::size_t size)
        : context_(b.context), pointer_(b.context.svm_allocate(Api::svm_mem_flags::read_write, size, 0)) {
        EXPECT_EQ(pointer_ != nullptr, b.device.svm_coarse_grain_buffer_supported());
        if (pointer_ == nullptr) {
            skip("has no shared virtual memory");
        }
    }
    shared_memory(shared_memory const&) = delete;
    shared_memory& operator=(shared_memory const&) = delete;
    ~shared_memory() { context_.svm_free(pointer_); }

    std::int32_t* get() const { return static_cast<std::int32_t*>(pointer_); }

private:
    typename Api::context context_;
    void* pointer_;
};

/// The first `count` elements of shared memory, once every command before is complete.
template <class Api>
numbers read(bench<Api>& b, void const* memory, std::size_t count) {
    numbers values(count);
    b.run(typename Api::svm_memcpy(1, values.data(), memory, count * 4));
    return values;
}

template <class Api, class Change>
void while_mapped(bench<Api>& b, void* memory, std::size_t size, Change change) {
    b.wait_for(b.queue.enqueue_command(
        typename Api::svm_map(false, Api::map_flags::read | Api::map_flags::write, memory, size)));
    change();
    b.run(typename Api::svm_unmap(memory));
    b.queue.finish();
}

constexpr char const* doubles_source = "kernel void f(global int* values) { values[get_global_id(0)] *= 2; }";

SCENARIO(moves_data_in_shared_memory, "SVM", 200) {
    shared_memory<Api> const first(b, 64 * 4), second(b, 64 * 4);
    while_mapped(b, first.get(), 64 * 4, [&] { std::ranges::copy(counting(64), first.get()); });
    auto kernel = b.build(doubles_source).create_kernel("f");
    kernel.set_svm_argument(0, first.get());
    kernel.set_svm_pointers({second.get()});
    b.launch(kernel, 64, 8);
    if constexpr (Api::number >= 210) {
        b.run(typename Api::svm_migrate_mem({first.get(), second.get()}, {0, 0}, Api::migration_flags::host));
        b.run(typename Api::svm_migrate_mem({first.get()}, {64 * 4}, typename Api::migration_flags{}));
    }
    auto const copied = b.queue.enqueue_command(typename Api::svm_memcpy(0, second.get(), first.get(), 63 * 4));
    b.wait_for(copied);
    while_mapped(b, second.get() + 8, 32, [&] {
        EXPECT_EQ(second.get()[8], 18);
        second.get()[8] = -1;
    });
    EXPECT_EQ(read(b, second.get() + 7, 3), (numbers{16, -1, 20}));
}

SCENARIO(fills_shared_memory, "SVM", 200) {
    using element = std::array<std::int32_t, 2>;
    element const first{1, 2}, second{3, 4};
    shared_memory<Api> const target(b, 32);
    typename Api::fill_svm_base fill(target.get(), second.data(), 8, 4);
    fill.update_pattern_pointer(first.data());
    b.run(fill);
    b.run(typename Api::template fill_svm<element>(target.get() + 2, second, 2));
    EXPECT_EQ(read(b, target.get(), 8), (numbers{1, 2, 3, 4, 3, 4, 1, 2}));
}

/// What the function that frees was told.
template <class Api>
struct freeing {
    typename Api::context& context;
    std::vector<void*> pointers{};
    _nq_cl_command_queue* queue = nullptr;
    std::atomic<int> calls = 0;

    static void run(_nq_cl_command_queue* queue, std::uint32_t count, void** pointers, void* user_data) {
        auto* const self = static_cast<freeing*>(user_data);
        self->queue = queue;
        self->pointers.assign(pointers, pointers + count);
        for (void* const each : self->pointers) {
            self->context.svm_free(each);
        }
        ++self->calls;
    }
};

SCENARIO(frees_shared_memory_by_own_function, "SVM", 200) {
    std::vector<void*> memory(3);
    std::ranges::generate(memory, [&b] { return b.context.svm_allocate(Api::svm_mem_flags::read_write, 256, 0); });
    freeing<Api> seen{b.context};
    b.run(typename Api::svm_free(memory, freeing<Api>::run, &seen));
    b.queue.finish();
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.pointers, memory);
    EXPECT_EQ(seen.queue, raw_of(b.queue));
}

SCENARIO(refuses_without_shared_memory, "SVM refused where there is none", 200) {
    if (b.device.svm_coarse_grain_buffer_supported()) {
        return;
    }
    int value = 0;
    auto* const queue = raw_of(b.queue);
    EXPECT_EQ(b.context.svm_allocate(Api::svm_mem_flags::read_write, 64, 0), nullptr);
    b.context.svm_free(nullptr);
    b.expect(CL_INVALID_OPERATION, wire::clEnqueueSVMMemcpy{queue});
    b.expect(CL_INVALID_OPERATION, wire::clEnqueueSVMMemFill{.command_queue = queue, .pattern = &value});
    b.expect(CL_INVALID_OPERATION, wire::clEnqueueSVMMap{.command_queue = queue});
    b.expect(CL_INVALID_OPERATION, wire::clEnqueueSVMUnmap{.command_queue = queue});
    b.expect(CL_INVALID_OPERATION, wire::clEnqueueSVMFree{.command_queue = queue});
    if constexpr (Api::number >= 210) {
        b.expect(CL_INVALID_OPERATION, wire::clEnqueueSVMMigrateMem{.command_queue = queue});
    }
    auto kernel = b.build(doubles_source).create_kernel("f");
    EXPECT_THROW(kernel.set_svm_argument(0, &value), common::invalid_operation);
    EXPECT_THROW(kernel.set_fine_grain_system_flag(true), common::invalid_operation);
}

} // namespace
} // namespace real
