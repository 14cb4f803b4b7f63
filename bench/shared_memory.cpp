#include "measure.hpp"
#include "operations.hpp"

#include <cstdio>
#include <memory>

namespace bench {
namespace {

constexpr std::size_t bytes = 64;
constexpr cl_uint pattern = 7;

struct allocation {
    allocation(fixture& on) : context(on.context), memory(allocate()) {}
    ~allocation() { context.svm_free(memory); }
    allocation(allocation const&) = delete;
    allocation& operator=(allocation const&) = delete;

    void* allocate() { return context.svm_allocate(mero::svm_mem_flags::read_write, 2 * bytes, 0); }

    mero::context context;
    void* memory;
};

void compare_moves(fixture& on, std::shared_ptr<allocation> const& of, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto* const memory = static_cast<unsigned char*>(of->memory);
    compare(
        "svm_memcpy",
        [=] { c_api().clEnqueueSVMMemcpy(queue, CL_FALSE, memory, memory + bytes, bytes, 0, nullptr, nullptr); },
        [&on, of, memory] {
            on.queue.enqueue_command_without_event(mero::svm_memcpy(0, memory, memory + bytes, bytes));
        },
        finish);
    compare(
        "fill_svm_base",
        [=] { c_api().clEnqueueSVMMemFill(queue, memory, &pattern, sizeof pattern, bytes, 0, nullptr, nullptr); },
        [&on, of, memory] {
            on.queue.enqueue_command_without_event(
                mero::fill_svm_base(memory, &pattern, sizeof pattern, bytes / sizeof pattern));
        },
        finish);
    compare(
        "svm_map+svm_unmap",
        [=] {
            c_api().clEnqueueSVMMap(queue, CL_FALSE, CL_MAP_READ, memory, bytes, 0, nullptr, nullptr);
            c_api().clEnqueueSVMUnmap(queue, memory, 0, nullptr, nullptr);
        },
        [&on, of, memory] {
            on.queue.enqueue_command_without_event(mero::svm_map(false, mero::map_flags::read, memory, bytes));
            on.queue.enqueue_command_without_event(mero::svm_unmap(memory));
        },
        finish);
}

void compare_ownership(fixture& on, std::shared_ptr<allocation> const& of, std::function<void()> const& finish) {
    auto const queue = on.raw_queue();
    auto const context = on.raw_context();
    static void const* migrated = of->memory;
    compare(
        "svm_migrate_mem",
        [=] { c_api().clEnqueueSVMMigrateMem(queue, 1, &migrated, nullptr, 0, 0, nullptr, nullptr); },
        [&on, of, command = mero::svm_migrate_mem({of->memory}, {0}, mero::migration_flags{})] {
            on.queue.enqueue_command_without_event(command);
        },
        finish);
    compare(
        "svm_allocate+svm_free",
        [=] {
            void* memory = c_api().clSVMAlloc(context, CL_MEM_READ_WRITE, bytes, 0);
            c_api().clEnqueueSVMFree(queue, 1, &memory, nullptr, nullptr, 0, nullptr, nullptr);
        },
        [&on] {
            void* const memory = on.context.svm_allocate(mero::svm_mem_flags::read_write, bytes, 0);
            on.queue.enqueue_command_without_event(mero::svm_free({memory}));
        },
        finish);
}

} // namespace

void compare_shared_memory_commands(fixture& on) {
    if (!on.device.svm_coarse_grain_buffer_supported()) {
        std::printf("The commands on shared virtual memory are left out: the device has none.\n");
        return;
    }
    std::function<void()> const finish = [&] { on.queue.finish(); };
    auto const of = std::make_shared<allocation>(on);
    compare_moves(on, of, finish);
    compare_ownership(on, of, finish);
}

} // namespace bench
