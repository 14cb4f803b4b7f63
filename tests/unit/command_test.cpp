#include "unit/allocations.hpp"
#include "unit/members.hpp"

#include <cstring>
#include <memory>

// A command is enqueued in every way, however it came about.

namespace unit {
namespace {

constexpr word flags = 0x8000000000000005;
using array3 = std::array<std::size_t, 3>;
constexpr array3 first{1, 2, large};
constexpr array3 second{4, 5, 6};
constexpr array3 third{7, 8, 9};
constexpr std::size_t const* a = first.data();
constexpr std::size_t const* b = second.data();
constexpr std::size_t const* c = third.data();

class commands : public members {
protected:
    /// Enqueues a command in every way: each is one call, which gets the wait list as it is given.
    template <class Block>
    void enqueues(Block sent, command const& sender) {
        _nq_cl_event* const events[]{raw_of(w.event), raw_of(w.event)};
        sent.command_queue = raw_of(w.queue);
        for (auto* const list : {&events[0], static_cast<decltype(&events[0])>(nullptr)}) {
            for (std::uint32_t const count : {0U, 2U}) { // also where it does not match the list
                sent.event_wait_list = list;
                sent.num_events_in_wait_list = count;
                libnq.forget_calls();
                w.queue.enqueue_command_without_event(sender, count, list);
                sent.event = nullptr;
                expect_sent(w.queue, sent);
                libnq.forget_calls();
                expect_event(sent, w.queue.enqueue_command(sender, count, list));
            }
        }
        sent.num_events_in_wait_list = 0;
        libnq.forget_calls();
        expect_event(sent, w.queue.enqueue_command(sender));
        libnq.forget_calls();
        EXPECT_EQ(allocations_of([&] { w.queue.enqueue_command_without_event(sender); }), 0U);
        sent.event = nullptr;
        expect_sent(w.queue, sent);
        fails<Block>([&] { w.queue.enqueue_command(sender); });
        fails<Block>([&] { w.queue.enqueue_command_without_event(sender); });
    }

    /// The same of what `make` makes and of what is copied and moved from there, each outliving its source, whose
    /// memory is overwritten.
    template <class Block, class Make>
    void sends(Block const& sent, Make make) {
        SCOPED_TRACE(scripted::name_of<Block>());
        using made = decltype(make());
        static_assert(std::is_base_of_v<command, made> && std::is_move_assignable_v<made>);
        made const sender = make();
        enqueues(sent, sender);
        std::unique_ptr<made> source(new made(make())); // there from the beginning, not copied to it
        made const moved(std::move(*source));
        source.reset();
        enqueues(sent, moved);
        if constexpr (std::is_copy_constructible_v<made>) {
            source.reset(new made(make()));
            made const copied(*source);
            source.reset();
            enqueues(sent, copied);
        }
    }

    char memory[64]{};
    void* const host = memory;
    _nq_cl_mem* const buffer = raw_of(w.buffer);
    _nq_cl_mem* const buffer_2 = raw_of(w.buffer_2);
    _nq_cl_mem* const image = raw_of(w.image);
    _nq_cl_mem* const image_2 = raw_of(w.image_2);

private:
    template <class Block>
    void expect_event(Block sent, event const& made) {
        sent.event = somewhere;
        expect_sent(w.queue, sent);
        EXPECT_EQ(raw_of(made), libnq.calls()[0].made);
        EXPECT_EQ(handle_of(made), handle_of(w.queue));
    }
};

// The fields of a block up to those that every enqueueing has; the queue is filled in.

TEST_F(commands, transfers_buffers) {
    for (bool const blocking : {false, true}) {
        clEnqueueReadBuffer read{nullptr, buffer, 3, large, host};
        clEnqueueWriteBuffer write{nullptr, buffer, 3, large, host};
        read.blocking_read = write.blocking_write = blocking;
        sends(read, [&] { return read_buffer(w.buffer, blocking, 3, large, host); });
        sends(write, [&] { return write_buffer(w.buffer, blocking, 3, large, host); });
    }
    sends(clEnqueueCopyBuffer{nullptr, buffer, buffer_2, 3, 4, large},
          [&] { return copy_buffer(w.buffer, w.buffer_2, 3, 4, large); });
}

#if UNIT_OPENCL >= 110
TEST_F(commands, transfers_rectangles) {
    for (bool const blocking : {false, true}) {
        clEnqueueReadBufferRect read{nullptr, buffer, a, b, c, 11, 12, 13, 14, host};
        clEnqueueWriteBufferRect write{nullptr, buffer, a, b, c, 11, 12, 13, 14, host};
        read.blocking_read = write.blocking_write = blocking;
        sends(read, [&] { return read_buffer_rect(w.buffer, blocking, first, second, third, 11, 12, 13, 14, host); });
        sends(write, [&] { return write_buffer_rect(w.buffer, blocking, first, second, third, 11, 12, 13, 14, host); });
    }
    sends(clEnqueueCopyBufferRect{nullptr, buffer, buffer_2, a, b, c, 11, 12, 13, 14},
          [&] { return copy_buffer_rect(w.buffer, w.buffer_2, first, second, third, 11, 12, 13, 14); });
}
#endif

TEST_F(commands, transfers_images) {
    for (bool const blocking : {false, true}) {
        clEnqueueReadImage read{nullptr, image, a, b, 11, 12, host};
        clEnqueueWriteImage write{nullptr, image, a, b, 11, 12, host};
        read.blocking_read = write.blocking_write = blocking;
        sends(read, [&] { return read_image(w.image, blocking, first, second, 11, 12, host); });
        sends(write, [&] { return write_image(w.image, blocking, first, second, 11, 12, host); });
    }
    sends(clEnqueueCopyImage{nullptr, image, image_2, a, b, c},
          [&] { return copy_image(w.image, w.image_2, first, second, third); });
    sends(clEnqueueCopyImageToBuffer{nullptr, image, buffer, a, b, large},
          [&] { return copy_image_to_buffer(w.image, w.buffer, first, second, large); });
    sends(clEnqueueCopyBufferToImage{nullptr, buffer, image, large, a, b},
          [&] { return copy_buffer_to_image(w.buffer, w.image, large, first, second); });
}

TEST_F(commands, maps_and_unmaps) {
    void* mapped = host;
    std::size_t row_pitch = 0;
    std::size_t slice_pitch = 0;
    for (bool const blocking : {false, true}) {
        clEnqueueMapBuffer map_of_buffer{flags, nullptr, buffer, 3, large};
        clEnqueueMapImage map_of_image{flags, nullptr, image, a, b, &row_pitch, &slice_pitch};
        map_of_buffer.blocking_map = map_of_image.blocking_map = blocking;
        sends(map_of_buffer, [&] { return map_buffer(mapped, w.buffer, blocking, value{flags}, 3, large); });
        sends(map_of_image, [&] {
            return map_image(mapped, w.image, blocking, value{flags}, first, second, row_pitch, slice_pitch);
        });
    }
    sends(clEnqueueUnmapMemObject{nullptr, image, mapped}, [&] { return unmap_mem_object(w.image, mapped); });
}

TEST_F(commands, sets_what_was_mapped_on_success_alone) {
    std::size_t pitch = 0;
    void* mapped = nullptr;
    auto const maps = [&](auto const& map) {
        w.queue.enqueue_command_without_event(map);
        void const* const given = libnq.calls().back().made;
        for (auto const& enqueue : {std::function<void()>([&] { w.queue.enqueue_command_without_event(map); }),
                                    std::function<void()>([&] { w.queue.enqueue_command(map); })}) {
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

TEST_F(commands, launches_kernels) {
    for (std::uint32_t const dimensions : {1U, 3U}) {
        clEnqueueNDRangeKernel sent{nullptr, raw_of(w.kernel), nullptr, b, c};
        sent.work_dim = dimensions;
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

TEST_F(commands, runs_native_functions) {
    auto* const on_host = +[](void*) {};
    _nq_cl_mem* const objects[] = {buffer};
    void const* places[] = {host};
    clEnqueueNativeKernel sent{nullptr, on_host, host, 64, objects, places};
    sent.num_mem_objects = 1;
    sends(sent, [&] { return native_kernel(on_host, host, 64, 1, objects, places); });
    sent = {nullptr, on_host, nullptr, 9};
    sent.num_mem_objects = 2; // nothing is taken for granted
    sends(sent, [&] { return native_kernel(on_host, nullptr, 9, 2, nullptr, nullptr); });
}

#if UNIT_OPENCL >= 120
TEST_F(commands, fills_and_migrates) {
    clEnqueueFillBuffer fill{nullptr, buffer, "1234", 4, 5, 64};
    sends(fill, [&] { return fill_buffer_base(w.buffer, "1234", 4, 5, 16); });
    fill.size = 12; // the product wraps
    sends(fill, [&] { return fill_buffer_base(w.buffer, "1234", 4, 5, (word{1} << 62) + 3); });
    std::vector<unsigned char> const pattern(memory, std::end(memory));
    fill = {nullptr, buffer, host, 64, 5, 192};
    sends(fill, [&] { return fill_buffer_bytes(w.buffer, pattern, 5, 3); });
    sends(clEnqueueFillImage{nullptr, image, &first, a, b},
          [&] { return fill_image_base(w.image, &first, first, second); });

    std::vector<_nq_cl_mem*> const objects{buffer, image, buffer_2};
    sends(clEnqueueMigrateMemObjects{.flags = flags, .mem_objects = objects.data(), .num_mem_objects = 3},
          [&] { return migrate_mem_objects(objects, value{flags}); });
    sends(clEnqueueMigrateMemObjects{.flags = flags},
          [&] { return migrate_mem_objects(std::vector<_nq_cl_mem*>(), value{flags}); });
}

// Typed fills keep the pattern themselves, also after an assignment.
TEST_F(commands, keeps_typed_patterns) {
    auto const keeps = [&](auto const& sent, auto make, auto other) {
        sends(sent, make);
        auto assigned = other;
        std::unique_ptr<decltype(other)> source(new auto(make()));
        assigned = *source;
        other = std::move(*source);
        source.reset();
        enqueues(sent, assigned);
        enqueues(sent, other);
    };
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

TEST_F(commands, reads_another_pattern_from_then_on) {
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
TEST_F(commands, shares_memory) {
    std::vector<void*> pointers{host, nullptr, &w};
    auto* const freed = +[](_nq_cl_command_queue*, std::uint32_t, void**, void*) {};
    clEnqueueSVMFree free{.svm_pointers = pointers.data(), .num_svm_pointers = 3};
    sends(free, [&] { return svm_free(pointers); });
    free.pfn_free_func = freed;
    free.user_data = &w;
    sends(free, [&] { return svm_free(pointers, freed, &w); });
    sends(clEnqueueSVMFree{}, [] { return svm_free(std::vector<void*>()); });
    for (std::uint32_t const blocking : {0U, 1U, 7U}) { // passed on as given
        sends(clEnqueueSVMMemcpy{.dst_ptr = host, .src_ptr = &w, .size = large, .blocking_copy = blocking},
              [&] { return svm_memcpy(blocking, host, &w, large); });
    }
    sends(clEnqueueSVMMemFill{nullptr, host, "1234", 4, 1024}, [&] { return fill_svm_base(host, "1234", 4, 256); });
    for (bool const blocking : {false, true}) {
        sends(clEnqueueSVMMap{.map_flags = flags, .svm_ptr = host, .size = large, .blocking_map = blocking},
              [&] { return svm_map(blocking, value{flags}, host, large); });
    }
    sends(clEnqueueSVMUnmap{.svm_ptr = host}, [&] { return svm_unmap(host); });
}
#endif

#if UNIT_OPENCL >= 210
TEST_F(commands, migrates_shared_memory) {
    std::vector<void const*> const pointers{host, nullptr, &w};
    std::vector<std::size_t> const sizes{large, 0, 7};
    clEnqueueSVMMigrateMem const sent{
        .num_svm_pointers = 3, .svm_pointers = pointers.data(), .sizes = sizes.data(), .flags = flags};
    sends(sent, [&] { return svm_migrate_mem(pointers, sizes, value{flags}); });
    sends(clEnqueueSVMMigrateMem{.flags = flags}, [] { return svm_migrate_mem({}, {}, value{flags}); });
    EXPECT_EQ(message_of<std::logic_error>([&] { svm_migrate_mem(pointers, {}, value{1}); }),
              "svm_migrate_mem::svm_migrate_mem : arguments svm_pointers and sizes must have an equal number of "
              "elements.");
}
#endif

#if UNIT_OPENCL >= 120
TEST_F(commands, passes_null_and_0_for_a_list_that_it_gave_away) {
    auto const given_away = [](auto command) {
        auto const taken = std::move(command);
        return command; // NOLINT(bugprone-use-after-move)
    };
    sends(clEnqueueFillBuffer{.buffer = buffer, .offset = 5}, [&] {
        return given_away(fill_buffer_bytes(w.buffer, {1, 2}, 5, 3));
    });
    sends(clEnqueueMigrateMemObjects{.flags = 1}, [&] {
        return given_away(migrate_mem_objects(std::vector{buffer, image}, value{1}));
    });
#if UNIT_OPENCL >= 200
    sends(clEnqueueSVMFree{}, [&] { return given_away(svm_free(std::vector{host})); });
#endif
#if UNIT_OPENCL >= 210
    sends(clEnqueueSVMMigrateMem{.flags = 1}, [&] { return given_away(svm_migrate_mem({host}, {1}, value{1})); });
#endif
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
