#include "unit/members.hpp"

#include <cstring>
#include <memory>

// A command is enqueued in every way, however it came about.

namespace unit {
namespace {

constexpr word flags = 0x8000000000000005;
constexpr array3 first{1, 2, large};
constexpr array3 second{4, 5, 6};
constexpr array3 third{7, 8, 9};
constexpr std::size_t const* a = first.data();
constexpr std::size_t const* b = second.data();
constexpr std::size_t const* c = third.data();

struct commands : members {
    /// Enqueues a command in every way: each is one call, which gets the wait list as it is given.
    template <class Block>
    void enqueues(Block sent, command const& sender) {
        _nq_cl_event* const events[]{raw_of(w.event), raw_of(w.event)};
        sent.command_queue = raw_of(w.queue);
        for (auto* const list : {&events[0], static_cast<decltype(&events[0])>(nullptr)}) {
            for (std::uint32_t const count : {0U, 2U}) { // also where it does not match the list
                sent.event_wait_list = list;
                sent.num_events_in_wait_list = count;
                expect_event(sent, [&] { return w.queue.enqueue_command(sender, count, list); });
                libnq.forget_calls();
                w.queue.enqueue_command_without_event(sender, count, list);
                expect_sent(w.queue, sent);
            }
        }
        sent.num_events_in_wait_list = 0;
        expect_event(sent, [&] { return w.queue.enqueue_command(sender); });
        libnq.forget_calls();
        EXPECT_EQ(allocations_of([&] { w.queue.enqueue_command_without_event(sender); }), 0U);
        expect_sent(w.queue, sent);
        withstands([&] { return w.queue.enqueue_command(sender); });
        withstands([&] { w.queue.enqueue_command_without_event(sender); });
    }

    template <class Block>
    void expect_event(Block sent, auto enqueue) {
        libnq.forget_calls();
        auto const made = enqueue();
        sent.event = somewhere;
        expect_sent(w.queue, sent);
        EXPECT_EQ(raw_of(made), libnq.calls[0].made);
        EXPECT_EQ(handle_of(made), handle_of(w.queue));
    }

    /// The same of what `make` makes and of what is copied and moved from there, each outliving its source, whose
    /// memory is overwritten.
    template <class Block, class Make>
    void sends(Block const& sent, Make make) {
        SCOPED_TRACE(scripted::name_of<Block>());
        using made = decltype(make());
        static_assert(std::is_base_of_v<command, made> && std::is_move_assignable_v<made>);
        enqueues(sent, make());
        std::unique_ptr<made> source(new made(make())); // there from the beginning, not copied to it
        std::optional<made> copied;
        if constexpr (std::is_copy_constructible_v<made>) {
            copied.emplace(*source);
        }
        made const moved(std::move(*source));
        source.reset();
        enqueues(sent, moved);
        if (copied) {
            enqueues(sent, *copied);
        }
    }

    /// The same of what keeps its pattern, which an assignment copies.
    void keeps(auto const& sent, auto make, auto other) {
        sends(sent, make);
        auto assigned = other;
        std::unique_ptr<decltype(other)> source(new auto(make()));
        assigned = *source;
        other = std::move(*source);
        source.reset();
        enqueues(sent, assigned);
        enqueues(sent, other);
    }

    char memory[64]{};
    void* const host = memory;
    _nq_cl_mem* const buffer = raw_of(w.buffer);
    _nq_cl_mem* const buffer_2 = raw_of(w.buffer_2);
    _nq_cl_mem* const image = raw_of(w.image);
    _nq_cl_mem* const image_2 = raw_of(w.image_2);
};

// The fields of a block up to those that every enqueueing has; the queue is filled in.

TEST_F(commands, block_or_not) {
    void* mapped = host;
    std::size_t row = 0;
    std::size_t slice = 0;
    for (bool const blocking : {false, true}) {
        sends(clEnqueueReadBuffer{nullptr, buffer, 3, large, host, nullptr, nullptr, 0, blocking},
              [&] { return read_buffer(w.buffer, blocking, 3, large, host); });
        sends(clEnqueueWriteBuffer{nullptr, buffer, 3, large, host, nullptr, nullptr, 0, blocking},
              [&] { return write_buffer(w.buffer, blocking, 3, large, host); });
        sends(clEnqueueReadImage{nullptr, image, a, b, 11, 12, host, nullptr, nullptr, 0, blocking},
              [&] { return read_image(w.image, blocking, first, second, 11, 12, host); });
        sends(clEnqueueWriteImage{nullptr, image, a, b, 11, 12, host, nullptr, nullptr, 0, blocking},
              [&] { return write_image(w.image, blocking, first, second, 11, 12, host); });
        sends(clEnqueueMapBuffer{flags, nullptr, buffer, 3, large, nullptr, nullptr, nullptr, 0, blocking},
              [&] { return map_buffer(mapped, w.buffer, blocking, value{flags}, 3, large); });
        sends(clEnqueueMapImage{flags, nullptr, image, a, b, &row, &slice, nullptr, nullptr, nullptr, 0, blocking},
              [&] { return map_image(mapped, w.image, blocking, value{flags}, first, second, row, slice); });
#if UNIT_OPENCL >= 110
        sends(clEnqueueReadBufferRect{nullptr, buffer, a, b, c, 11, 12, 13, 14, host, nullptr, nullptr, 0, blocking},
              [&] { return read_buffer_rect(w.buffer, blocking, first, second, third, 11, 12, 13, 14, host); });
        sends(clEnqueueWriteBufferRect{nullptr, buffer, a, b, c, 11, 12, 13, 14, host, nullptr, nullptr, 0, blocking},
              [&] { return write_buffer_rect(w.buffer, blocking, first, second, third, 11, 12, 13, 14, host); });
#endif
#if UNIT_OPENCL >= 200
        sends(clEnqueueSVMMap{flags, nullptr, host, large, nullptr, nullptr, 0, blocking},
              [&] { return svm_map(blocking, value{flags}, host, large); });
#endif
    }
}

TEST_F(commands, copy_and_unmap) {
    sends(clEnqueueCopyBuffer{nullptr, buffer, buffer_2, 3, 4, large},
          [&] { return copy_buffer(w.buffer, w.buffer_2, 3, 4, large); });
    sends(clEnqueueCopyImage{nullptr, image, image_2, a, b, c},
          [&] { return copy_image(w.image, w.image_2, first, second, third); });
    sends(clEnqueueCopyImageToBuffer{nullptr, image, buffer, a, b, large},
          [&] { return copy_image_to_buffer(w.image, w.buffer, first, second, large); });
    sends(clEnqueueCopyBufferToImage{nullptr, buffer, image, large, a, b},
          [&] { return copy_buffer_to_image(w.buffer, w.image, large, first, second); });
#if UNIT_OPENCL >= 110
    sends(clEnqueueCopyBufferRect{nullptr, buffer, buffer_2, a, b, c, 11, 12, 13, 14},
          [&] { return copy_buffer_rect(w.buffer, w.buffer_2, first, second, third, 11, 12, 13, 14); });
#endif
    sends(clEnqueueUnmapMemObject{nullptr, image, host}, [&] { return unmap_mem_object(w.image, host); });
}

TEST_F(commands, set_what_was_mapped_on_success_alone) {
    std::size_t pitch = 0;
    void* mapped = nullptr;
    auto const maps = [&](auto const& map) {
        w.queue.enqueue_command_without_event(map);
        void const* const given = libnq.calls.back().made;
        for (bool const with_event : {false, true}) {
            auto const enqueue = [&] {
                with_event ? void(w.queue.enqueue_command(map)) : w.queue.enqueue_command_without_event(map);
            };
            mapped = host;
            libnq.fail(scripted::status(-12));
            EXPECT_THROW(enqueue(), common::map_failure);
            libnq.fail(scripted::layer(-2));
            EXPECT_THROW(enqueue(), nq::invalid_command_id);
            EXPECT_EQ(mapped, host);
            enqueue();
            EXPECT_EQ(mapped, given);
        }
    };
    maps(map_buffer(mapped, w.buffer, false, value{1}, 0, 4));
    maps(map_image(mapped, w.image, false, value{1}, first, second, pitch, pitch));
}
TEST_F(commands, launch_kernels) {
    for (std::uint32_t const dimensions : {1U, 3U}) {
        clEnqueueNDRangeKernel sent{nullptr, raw_of(w.kernel), nullptr, b, c, nullptr, nullptr, 0, dimensions};
#if UNIT_OPENCL < 110
        sends(sent, [&] { return nd_range_kernel(w.kernel, dimensions, second, third); });
#else
        sent.global_work_offset = a;
        sends(sent, [&] { return nd_range_kernel(w.kernel, dimensions, first, second, third); });
#endif
    }
#if UNIT_OPENCL < 110
    sends(clEnqueueTask{nullptr, raw_of(w.kernel)}, [&] { return task_kernel(w.kernel); });
#endif
}

TEST_F(commands, run_native_functions) {
    auto* const on_host = +[](void*) {};
    _nq_cl_mem* const objects[] = {buffer};
    void const* places[] = {host};
    sends(clEnqueueNativeKernel{nullptr, on_host, host, 64, objects, places, nullptr, nullptr, 0, 1},
          [&] { return native_kernel(on_host, host, 64, 1, objects, places); });
    sends(clEnqueueNativeKernel{nullptr, on_host, nullptr, 9, nullptr, nullptr, nullptr, nullptr, 0, 2},
          [&] { return native_kernel(on_host, nullptr, 9, 2, nullptr, nullptr); }); // nothing is taken for granted
}

#if UNIT_OPENCL >= 120
TEST_F(commands, fill_and_migrate) {
    clEnqueueFillBuffer fill{nullptr, buffer, "1234", 4, 5, 64};
    sends(fill, [&] { return fill_buffer_base(w.buffer, "1234", 4, 5, 16); });
    fill.size = 12; // the product wraps
    sends(fill, [&] { return fill_buffer_base(w.buffer, "1234", 4, 5, (word{1} << 62) + 3); });
    std::vector<unsigned char> const pattern(memory, std::end(memory));
    sends(clEnqueueFillBuffer{nullptr, buffer, host, 64, 5, 192},
          [&] { return fill_buffer_bytes(w.buffer, pattern, 5, 3); });
    sends(clEnqueueFillImage{nullptr, image, &first, a, b},
          [&] { return fill_image_base(w.image, &first, first, second); });

    std::vector<_nq_cl_mem*> const objects{buffer, image, buffer_2};
    sends(clEnqueueMigrateMemObjects{flags, nullptr, objects.data(), nullptr, nullptr, 0, 3},
          [&] { return migrate_mem_objects(objects, value{flags}); });
    sends(clEnqueueMigrateMemObjects{.flags = flags}, [&] { return migrate_mem_objects({}, value{flags}); });
    sends(clEnqueueFillBuffer{.buffer = buffer, .offset = 5}, [&] { return fill_buffer_bytes(w.buffer, {}, 5, 3); });
}

TEST_F(commands, keep_typed_patterns) {
    std::array<std::int32_t, 4> const color{-1, 2, 3, 4};
    keeps(
        clEnqueueFillBuffer{nullptr, buffer, &third, 24, 5, 72},
        [&] { return fill_buffer<array3>(w.buffer, third, 5, 3); }, fill_buffer<array3>(w.buffer_2, second, 6, 4));
    keeps(
        clEnqueueFillImage{nullptr, image, &color, a, b},
        [&] { return fill_image<std::int32_t>(w.image, color, first, second); },
        fill_image<std::int32_t>(w.image_2, {}, third, third));
#if UNIT_OPENCL >= 200
    keeps(
        clEnqueueSVMMemFill{nullptr, &w, &third, 24, 72}, [&] { return fill_svm<array3>(&w, third, 3); },
        fill_svm<array3>(host, second, 4));
#endif
}

TEST_F(commands, read_another_pattern_from_then_on) {
    fill_buffer_base of_buffer(w.buffer, "1234", 4, 5, 1);
    of_buffer.update_pattern_pointer("5678");
    enqueues(clEnqueueFillBuffer{nullptr, buffer, "5678", 4, 5, 4}, of_buffer);
    fill_image_base of_image(w.image, &first, first, second);
    of_image.update_fill_color_pointer(&third);
    enqueues(clEnqueueFillImage{nullptr, image, &third, a, b}, of_image);
#if UNIT_OPENCL >= 200
    fill_svm_base of_memory(host, "1234", 4, 1);
    of_memory.update_pattern_pointer("5678");
    enqueues(clEnqueueSVMMemFill{nullptr, host, "5678", 4, 4}, of_memory);
#endif
}
#endif

#if UNIT_OPENCL >= 200
TEST_F(commands, share_memory) {
    std::vector<void*> pointers{host, nullptr, &w};
    auto* const freed = +[](_nq_cl_command_queue*, std::uint32_t, void**, void*) {};
    clEnqueueSVMFree free{.svm_pointers = pointers.data(), .num_svm_pointers = 3};
    sends(free, [&] { return svm_free(pointers); });
    free.pfn_free_func = freed;
    free.user_data = &w;
    sends(free, [&] { return svm_free(pointers, freed, &w); });
    sends(clEnqueueSVMFree{}, [] { return svm_free({}); });
    for (std::uint32_t const blocking : {0U, 1U, 7U}) { // passed on as given
        sends(clEnqueueSVMMemcpy{nullptr, host, &w, large, nullptr, nullptr, 0, blocking},
              [&] { return svm_memcpy(blocking, host, &w, large); });
    }
    sends(clEnqueueSVMMemFill{nullptr, host, "1234", 4, 1024}, [&] { return fill_svm_base(host, "1234", 4, 256); });
    sends(clEnqueueSVMUnmap{.svm_ptr = host}, [&] { return svm_unmap(host); });
}
#endif

#if UNIT_OPENCL >= 210
TEST_F(commands, migrate_shared_memory) {
    std::vector<void const*> const pointers{host, nullptr, &w};
    std::vector<std::size_t> const sizes{large, 0, 7};
    sends(clEnqueueSVMMigrateMem{nullptr, 3, pointers.data(), sizes.data(), flags},
          [&] { return svm_migrate_mem(pointers, sizes, value{flags}); });
    sends(clEnqueueSVMMigrateMem{.flags = flags}, [] { return svm_migrate_mem({}, {}, value{flags}); });
    refuses<std::logic_error>("svm_migrate_mem::svm_migrate_mem : arguments svm_pointers and sizes must have an equal "
                              "number of elements.",
                              [&] { svm_migrate_mem(pointers, {}, value{1}); });
}
#endif

// The order of the virtual operations is part of the library's binary interface: two destructors, then `call`. In the
// Itanium ABI the pointer to a virtual member says its place in the table of these, and an odd bit.
TEST_F(commands, can_be_derived_from_under_any_release) {
    auto const call = &command::call;
    std::uintptr_t place = 0;
    std::memcpy(&place, &call, sizeof place);
    EXPECT_EQ(place / sizeof(void*), 2U);
}

} // namespace
} // namespace unit
