#include "unit/allocations.hpp"
#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

constexpr word large = 0x123456789A;
constexpr word flags = 0x8000000000000005;
using array3 = std::array<std::size_t, 3>;
constexpr array3 first{1, 2, large};
constexpr array3 second{4, 5, 6};
constexpr array3 third{7, 8, 9};

/// Where a command's block has what the queue gives and takes.
struct places {
    std::size_t wait_list, event, status, num_events;
    std::size_t queue = 0;
    std::size_t mapped = nowhere;
};

/// A pointer to some words, which lie in the command itself or in memory that it owns.
struct own_words {
    std::size_t offset;
    std::vector<word> content;
    bool inside = true;
};

own_words own(std::size_t offset, array3 const& content) { return {offset, {content.begin(), content.end()}}; }

/// What a command is to send, however it came about.
struct expected {
    places at;
    std::vector<field> fields;
    std::vector<own_words> arrays{};
};

template <class Api>
class commands : public members<Api> {
protected:
    template <class Block>
    void answer_with(places const& at, std::int32_t status) {
        this->libnq.template on<Block>([=, this](Block& block) {
            results where{.status = at.status, .object = at.mapped};
            answer(&block, where, status, given);
            if (word_at(std::string(reinterpret_cast<char const*>(&block), sizeof block), at.event) != 0) {
                event = this->libnq.template make<_nq_cl_event>(status == 0 ? 1 : 0);
                answer(&block, {.through = at.event}, status, event);
            }
        });
    }

    template <class Command>
    void expect_sent(expected const& what, Command const& sender, _nq_cl_event* const* wait_list, unsigned int count,
                     bool with_event) {
        ASSERT_EQ(this->libnq.calls().size(), 1U);
        auto const call = this->libnq.calls().front();
        EXPECT_EQ(call.handle, handle_of(this->objects.queue));
        expect_fields(call, what.fields);
        expect_fields(call, {u8(what.at.queue, this->objects.queue), u8(what.at.wait_list, wait_list),
                             u4(what.at.num_events, count)});
        EXPECT_EQ(word_at(call.block, what.at.event) != 0, with_event);
        for (own_words const& array : what.arrays) {
            word const place = word_at(call.block, array.offset);
            ASSERT_NE(place, 0U) << "at offset " << array.offset;
            bool const inside = word_of(&sender) <= place && place < word_of(&sender) + sizeof sender;
            EXPECT_EQ(inside, array.inside) << "at offset " << array.offset;
            EXPECT_EQ(std::memcmp(reinterpret_cast<void*>(place), array.content.data(), array.content.size() * 8), 0)
                << "at offset " << array.offset;
        }
        this->forget();
    }

    /// Enqueues a command in every way; each is one call and allocates nothing.
    template <class Block, class Command>
    void enqueue(expected const& what, Command const& sender) {
        auto& queue = this->objects.queue;
        std::array const events{owner_access::raw(this->objects.event), owner_access::raw(this->objects.event)};
        answer_with<Block>(what.at, 0);
        this->forget();
        {
            allocation_watch const watch;
            queue.enqueue_command_without_event(sender);
            queue.enqueue_command_without_event(sender, 2, events.data());
            auto const made = queue.enqueue_command(sender);
            EXPECT_EQ(watch.count(), 0U);
        }
        this->forget();
        queue.enqueue_command_without_event(sender);
        expect_sent(what, sender, nullptr, 0, false);
        queue.enqueue_command_without_event(sender, 2, events.data());
        expect_sent(what, sender, events.data(), 2, false);
        {
            auto const made = queue.enqueue_command(sender);
            expect_sent(what, sender, nullptr, 0, true);
            EXPECT_EQ(word_of(made), word_of(event));
            EXPECT_EQ(handle_of(made), handle_of(queue));
        }
        EXPECT_EQ(this->libnq.names(), calls{"clReleaseEvent"});
        this->forget();
        queue.enqueue_command(sender, 2, events.data());
        EXPECT_EQ(this->libnq.names(), (calls{std::string(scripted::name_of<Block>()), "clReleaseEvent"}));
        // a list goes as it is, also where it does not match its count
        this->forget();
        queue.enqueue_command_without_event(sender, 0, events.data());
        expect_sent(what, sender, events.data(), 0, false);

        answer_with<Block>(what.at, -5);
        EXPECT_THROW(queue.enqueue_command(sender), common::out_of_resources);
        this->libnq.template fail<Block>(scripted::layer(1));
        EXPECT_THROW(queue.enqueue_command_without_event(sender), nq::unknown_error);
        EXPECT_EQ(this->libnq.names(), calls(2, std::string(scripted::name_of<Block>())));
    }

    /// The same of what `make` makes, of what is copied and moved from there, each outliving its source.
    template <class Block, class Make>
    void sends(expected const& what, Make make) {
        SCOPED_TRACE(std::string(scripted::name_of<Block>()));
        using made = decltype(make());
        made const sender = make();
        enqueue<Block>(what, sender);
        auto source = std::make_unique<made>(make());
        made const moved(std::move(*source));
        source.reset();
        enqueue<Block>(what, moved);
        if constexpr (std::is_copy_constructible_v<made>) {
            source = std::make_unique<made>(sender);
            made const copied(*source);
            source.reset();
            enqueue<Block>(what, copied);
        }
        EXPECT_TRUE((std::is_move_assignable_v<made> && std::is_base_of_v<typename Api::command, made>));
        EXPECT_EQ(std::is_copy_assignable_v<made>, std::is_copy_constructible_v<made>);
    }

    char memory[64]{};
    void* given = memory; // what OpenCL answers to a map
    _nq_cl_event* event = nullptr;
};
TYPED_TEST_SUITE(commands, versions);

TYPED_TEST(commands, transfers_buffers) {
    auto& w = this->objects;
    void* const host = this->memory;
    for (bool const blocking : {false, true}) {
        places const at{40, 48, 56, 64};
        std::vector<field> const fields{u8(8, w.buffer), u8(16, 3), u8(24, large), u8(32, host), u4(60, blocking)};
        this->template sends<clEnqueueReadBuffer>(
            {at, fields}, [&] { return typename TypeParam::read_buffer(w.buffer, blocking, 3, large, host); });
        this->template sends<clEnqueueWriteBuffer>(
            {at, fields}, [&] { return typename TypeParam::write_buffer(w.buffer, blocking, 3, large, host); });
    }
    this->template sends<clEnqueueCopyBuffer>(
        {{48, 56, 64, 68}, {u8(8, w.buffer), u8(16, w.buffer_2), u8(24, 3), u8(32, 4), u8(40, large)}},
        [&] { return typename TypeParam::copy_buffer(w.buffer, w.buffer_2, 3, 4, large); });
}

TYPED_TEST(commands, transfers_rectangles) {
    if constexpr (TypeParam::number >= 110) {
        auto& w = this->objects;
        void* const host = this->memory;
        std::vector<own_words> const arrays{own(16, first), own(24, second), own(32, third)};
        for (bool const blocking : {false, true}) {
            places const at{80, 88, 96, 104};
            std::vector<field> const fields{u8(8, w.buffer), u8(40, 11),   u8(48, 12),       u8(56, 13),
                                            u8(64, 14),      u8(72, host), u4(100, blocking)};
            this->template sends<clEnqueueReadBufferRect>({at, fields, arrays}, [&] {
                return typename TypeParam::read_buffer_rect(w.buffer, blocking, first, second, third, 11, 12, 13, 14,
                                                            host);
            });
            this->template sends<clEnqueueWriteBufferRect>({at, fields, arrays}, [&] {
                return typename TypeParam::write_buffer_rect(w.buffer, blocking, first, second, third, 11, 12, 13, 14,
                                                             host);
            });
        }
        std::vector<field> const fields{u8(8, w.buffer), u8(16, w.buffer_2), u8(48, 11),
                                        u8(56, 12),      u8(64, 13),         u8(72, 14)};
        this->template sends<clEnqueueCopyBufferRect>(
            {{80, 88, 96, 100}, fields, {own(24, first), own(32, second), own(40, third)}}, [&] {
                return typename TypeParam::copy_buffer_rect(w.buffer, w.buffer_2, first, second, third, 11, 12, 13, 14);
            });
    }
}

TYPED_TEST(commands, transfers_images) {
    auto& w = this->objects;
    void* const host = this->memory;
    for (bool const blocking : {false, true}) {
        places const at{56, 64, 72, 80};
        std::vector<field> const fields{u8(8, w.image), u8(32, 11), u8(40, 12), u8(48, host), u4(76, blocking)};
        std::vector<own_words> const arrays{own(16, first), own(24, second)};
        this->template sends<clEnqueueReadImage>({at, fields, arrays}, [&] {
            return typename TypeParam::read_image(w.image, blocking, first, second, 11, 12, host);
        });
        this->template sends<clEnqueueWriteImage>({at, fields, arrays}, [&] {
            return typename TypeParam::write_image(w.image, blocking, first, second, 11, 12, host);
        });
    }
    places const at{48, 56, 64, 68};
    this->template sends<clEnqueueCopyImage>(
        {at, {u8(8, w.image), u8(16, w.image_2)}, {own(24, first), own(32, second), own(40, third)}},
        [&] { return typename TypeParam::copy_image(w.image, w.image_2, first, second, third); });
    this->template sends<clEnqueueCopyImageToBuffer>(
        {at, {u8(8, w.image), u8(16, w.buffer), u8(40, large)}, {own(24, first), own(32, second)}},
        [&] { return typename TypeParam::copy_image_to_buffer(w.image, w.buffer, first, second, large); });
    this->template sends<clEnqueueCopyBufferToImage>(
        {at, {u8(8, w.buffer), u8(16, w.image), u8(24, large)}, {own(32, first), own(40, second)}},
        [&] { return typename TypeParam::copy_buffer_to_image(w.buffer, w.image, large, first, second); });
}

TYPED_TEST(commands, maps_and_unmaps) {
    auto& w = this->objects;
    void* mapped = &w;
    std::size_t row_pitch = 0;
    std::size_t slice_pitch = 0;
    for (bool const blocking : {false, true}) {
        this->template sends<clEnqueueMapBuffer>(
            {{40, 48, 64, 72, 8, 56}, {u8(0, flags), u8(16, w.buffer), u8(24, 3), u8(32, large), u4(68, blocking)}},
            [&] { return typename TypeParam::map_buffer(mapped, w.buffer, blocking, value{flags}, 3, large); });
        this->template sends<clEnqueueMapImage>(
            {{56, 64, 80, 88, 8, 72},
             {u8(0, flags), u8(16, w.image), u8(40, &row_pitch), u8(48, &slice_pitch), u4(84, blocking)},
             {own(24, first), own(32, second)}},
            [&] {
                return typename TypeParam::map_image(mapped, w.image, blocking, value{flags}, first, second, row_pitch,
                                                     slice_pitch);
            });
    }
    this->template sends<clEnqueueUnmapMemObject>({{24, 32, 40, 44}, {u8(8, w.image), u8(16, mapped)}}, [&] {
        return typename TypeParam::unmap_mem_object(w.image, mapped);
    });
}

TYPED_TEST(commands, sets_what_was_mapped_on_success_alone) {
    auto& w = this->objects;
    std::size_t pitch = 0;
    void* mapped = nullptr;
    auto const maps = [&]<class Block>(Block*, places const& at, auto const& command) {
        for (bool const without_event : {false, true}) {
            auto const enqueue = [&] {
                if (without_event) {
                    w.queue.enqueue_command_without_event(command);
                } else {
                    w.queue.enqueue_command(command);
                }
            };
            mapped = &w;
            this->template answer_with<Block>(at, -12);
            EXPECT_THROW(enqueue(), common::map_failure);
            this->libnq.template fail<Block>(scripted::layer(-2));
            EXPECT_THROW(enqueue(), nq::invalid_command_id);
            EXPECT_EQ(mapped, &w);
            this->template answer_with<Block>(at, 0);
            enqueue();
            EXPECT_EQ(mapped, this->memory);
        }
    };
    maps(static_cast<clEnqueueMapBuffer*>(nullptr), {40, 48, 64, 72, 8, 56},
         typename TypeParam::map_buffer(mapped, w.buffer, false, value{1}, 0, 4));
    maps(static_cast<clEnqueueMapImage*>(nullptr), {56, 64, 80, 88, 8, 72},
         typename TypeParam::map_image(mapped, w.image, false, value{1}, first, second, pitch, pitch));
}

TYPED_TEST(commands, launches_kernels) {
    auto& w = this->objects;
    places const at{40, 48, 56, 64};
    std::vector<field> fields{u8(8, w.kernel), u4(60, 1)};
    if constexpr (TypeParam::number < 110) {
        fields.push_back(u8(16, nullptr));
        this->template sends<clEnqueueNDRangeKernel>({at, fields, {own(24, first), own(32, second)}}, [&] {
            return typename TypeParam::nd_range_kernel(w.kernel, 1, first, second);
        });
        this->template sends<clEnqueueTask>({{16, 24, 32, 36}, {u8(8, w.kernel)}},
                                            [&] { return typename TypeParam::task_kernel(w.kernel); });
        EXPECT_FALSE(std::is_copy_constructible_v<typename TypeParam::task_kernel>);
    } else {
        std::vector<own_words> const arrays{own(16, first), own(24, second), own(32, third)};
        this->template sends<clEnqueueNDRangeKernel>({at, fields, arrays}, [&] {
            return typename TypeParam::nd_range_kernel(w.kernel, 1, first, second, third);
        });
    }
    EXPECT_FALSE(std::is_copy_constructible_v<typename TypeParam::nd_range_kernel>);
}

void on_host(void*) {}

TYPED_TEST(commands, runs_native_functions) {
    auto& w = this->objects;
    _nq_cl_mem* const mem_list[] = {owner_access::raw(w.buffer)};
    void const* places_of_objects[] = {this->memory};
    this->template sends<clEnqueueNativeKernel>(
        {{48, 56, 64, 72},
         {u8(8, &on_host), u8(16, this->memory), u8(24, 64), u8(32, mem_list), u8(40, places_of_objects), u4(68, 1)}},
        [&] { return typename TypeParam::native_kernel(&on_host, this->memory, 64, 1, mem_list, places_of_objects); });
    // nothing is taken for granted
    this->template sends<clEnqueueNativeKernel>(
        {{48, 56, 64, 72}, {u8(8, &on_host), u8(16, nullptr), u8(24, 9), u8(32, nullptr), u8(40, nullptr), u4(68, 2)}},
        [&] { return typename TypeParam::native_kernel(&on_host, nullptr, 9, 2, nullptr, nullptr); });
}

TYPED_TEST(commands, fills_and_migrates) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        places const at{48, 56, 64, 68};
        auto const filled = [&](word pattern_size, word size) {
            return std::vector<field>{u8(8, w.buffer), u8(24, pattern_size), u8(32, 5), u8(40, size)};
        };
        std::vector<field> fields = filled(4, 64);
        fields.push_back(u8(16, this->memory));
        this->template sends<clEnqueueFillBuffer>(
            {at, fields}, [&] { return typename TypeParam::fill_buffer_base(w.buffer, this->memory, 4, 5, 16); });
        this->template sends<clEnqueueFillBuffer>({at, filled(4, 12)}, [&] { // the product wraps
            return typename TypeParam::fill_buffer_base(w.buffer, this->memory, 4, 5, (word{1} << 62) + 3);
        });
        std::vector<unsigned char> const pattern{1, 2, 3, 4, 5, 6, 7, 8};
        this->template sends<clEnqueueFillBuffer>({at, filled(8, 24), {{16, {0x0807060504030201}, false}}}, [&] {
            return typename TypeParam::fill_buffer_bytes(w.buffer, pattern, 5, 3);
        });
        this->template sends<clEnqueueFillImage>(
            {{40, 48, 56, 60}, {u8(8, w.image), u8(16, this->memory)}, {own(24, first), own(32, second)}},
            [&] { return typename TypeParam::fill_image_base(w.image, this->memory, first, second); });

        std::vector<_nq_cl_mem*> const handles{owner_access::raw(w.buffer), owner_access::raw(w.image)};
        places const of_migration{24, 32, 40, 48, 8};
        this->template sends<clEnqueueMigrateMemObjects>(
            {of_migration, {u8(0, flags), u4(44, 2)}, {{16, {word_of(w.buffer), word_of(w.image)}, false}}},
            [&] { return typename TypeParam::migrate_mem_objects(handles, value{flags}); });
        std::vector<_nq_cl_mem*> const none;
        this->template sends<clEnqueueMigrateMemObjects>(
            {of_migration, {u8(0, flags), u8(16, nullptr), u4(44, 0)}},
            [&] { return typename TypeParam::migrate_mem_objects(none, value{flags}); });
    }
}

TYPED_TEST(commands, shares_memory) {
    if constexpr (TypeParam::number >= 200) {
        auto& w = this->objects;
        std::vector<void*> const pointers{this->memory, nullptr};
        auto* const freed = +[](_nq_cl_command_queue*, std::uint32_t, void**, void*) {};
        places const at{32, 40, 48, 56};
        std::vector<own_words> const arrays{{8, {word_of(this->memory), 0}, false}};
        this->template sends<clEnqueueSVMFree>({at, {u8(16, nullptr), u8(24, nullptr), u4(52, 2)}, arrays},
                                               [&] { return typename TypeParam::svm_free(pointers); });
        this->template sends<clEnqueueSVMFree>({at, {u8(16, freed), u8(24, &w), u4(52, 2)}, arrays},
                                               [&] { return typename TypeParam::svm_free(pointers, freed, &w); });
        std::vector<void*> const none;
        this->template sends<clEnqueueSVMFree>({at, {u8(8, nullptr), u4(52, 0)}},
                                               [&] { return typename TypeParam::svm_free(none); });
        for (std::uint32_t const blocking : {0U, 1U, 7U}) { // passed on as given
            this->template sends<clEnqueueSVMMemcpy>(
                {at, {u8(8, this->memory), u8(16, &w), u8(24, large), u4(52, blocking)}},
                [&] { return typename TypeParam::svm_memcpy(blocking, this->memory, &w, large); });
        }
        this->template sends<clEnqueueSVMMemFill>(
            {{40, 48, 56, 60}, {u8(8, this->memory), u8(16, &w), u8(24, 4), u8(32, 1024)}},
            [&] { return typename TypeParam::fill_svm_base(this->memory, &w, 4, 256); });
        for (bool const blocking : {false, true}) {
            this->template sends<clEnqueueSVMMap>(
                {{32, 40, 48, 56, 8}, {u8(0, flags), u8(16, this->memory), u8(24, large), u4(52, blocking)}},
                [&] { return typename TypeParam::svm_map(blocking, value{flags}, this->memory, large); });
        }
        this->template sends<clEnqueueSVMUnmap>({{16, 24, 32, 36}, {u8(8, this->memory)}},
                                                [&] { return typename TypeParam::svm_unmap(this->memory); });
    }
}

TYPED_TEST(commands, migrates_shared_memory) {
    if constexpr (TypeParam::number >= 210) {
        using svm_migrate_mem = typename TypeParam::svm_migrate_mem;
        places const at{48, 56, 64, 40};
        this->template sends<clEnqueueSVMMigrateMem>(
            {at, {u4(8, 2), u8(32, flags)}, {{16, {word_of(this->memory), 0}, false}, {24, {large, 0}, false}}}, [&] {
                return svm_migrate_mem({this->memory, nullptr}, {large, 0}, value{flags});
            });
        this->template sends<clEnqueueSVMMigrateMem>({at, {u4(8, 0), u8(16, nullptr), u8(24, nullptr), u8(32, flags)}},
                                                     [&] { return svm_migrate_mem({}, {}, value{flags}); });
        EXPECT_EQ(message_of<std::logic_error>([&] {
                      svm_migrate_mem({this->memory, nullptr}, {16}, value{1});
                  }),
                  "svm_migrate_mem::svm_migrate_mem : arguments svm_pointers and sizes must have an equal number of "
                  "elements.");
    }
}

// A command that gave its list away passes null and 0.
TYPED_TEST(commands, gives_its_lists_away) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        auto const given_away = [](auto command) {
            auto const taken = std::move(command);
            return command; // NOLINT(bugprone-use-after-move)
        };
        std::vector<unsigned char> const pattern{1, 2};
        this->template sends<clEnqueueFillBuffer>(
            {{48, 56, 64, 68}, {u8(16, nullptr), u8(24, 0), u8(32, 5), u8(40, 0)}},
            [&] { return given_away(typename TypeParam::fill_buffer_bytes(w.buffer, pattern, 5, 3)); });
        std::vector<_nq_cl_mem*> const handles{nullptr, nullptr};
        this->template sends<clEnqueueMigrateMemObjects>({{24, 32, 40, 48, 8}, {u8(16, nullptr), u4(44, 0)}}, [&] {
            return given_away(typename TypeParam::migrate_mem_objects(handles, value{1}));
        });
        if constexpr (TypeParam::number >= 200) {
            std::vector<void*> const pointers{&w};
            this->template sends<clEnqueueSVMFree>({{32, 40, 48, 56}, {u8(8, nullptr), u4(52, 0)}},
                                                   [&] { return given_away(typename TypeParam::svm_free(pointers)); });
        }
        if constexpr (TypeParam::number >= 210) {
            this->template sends<clEnqueueSVMMigrateMem>(
                {{48, 56, 64, 40}, {u4(8, 0), u8(16, nullptr), u8(24, nullptr)}},
                [&] { return given_away(typename TypeParam::svm_migrate_mem({&w}, {1}, value{1})); });
        }
    }
}

TYPED_TEST(commands, reads_another_pattern_from_then_on) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        places const of_buffers{48, 56, 64, 68};
        places const of_images{40, 48, 56, 60};
        auto const updates = [&]<class Block>(Block*, places const& at, auto command, auto update) {
            this->template enqueue<Block>({at, {u8(16, this->memory)}}, command);
            update(command);
            this->template enqueue<Block>({at, {u8(16, &w)}}, command);
        };
        updates(static_cast<clEnqueueFillBuffer*>(nullptr), of_buffers,
                typename TypeParam::fill_buffer_base(w.buffer, this->memory, 4, 5, 16),
                [&](auto& command) { command.update_pattern_pointer(&w); });
        updates(static_cast<clEnqueueFillImage*>(nullptr), of_images,
                typename TypeParam::fill_image_base(w.image, this->memory, first, second),
                [&](auto& command) { command.update_fill_color_pointer(&w); });
        if constexpr (TypeParam::number >= 200) {
            updates(static_cast<clEnqueueSVMMemFill*>(nullptr), of_images,
                    typename TypeParam::fill_svm_base(&w, this->memory, 4, 5),
                    [&](auto& command) { command.update_pattern_pointer(&w); });
        }
    }
}

// Typed fills keep the pattern themselves, also after an assignment.
TYPED_TEST(commands, keeps_typed_patterns) {
    if constexpr (TypeParam::number >= 120) {
        auto& w = this->objects;
        auto const keeps = [&]<class Block>(Block*, expected const& what, auto make, auto make_other) {
            this->template sends<Block>(what, make);
            auto assigned = make_other();
            auto source = std::make_unique<decltype(assigned)>(make());
            assigned = *source;
            source.reset();
            this->template enqueue<Block>(what, assigned);
            auto moved = make_other();
            source = std::make_unique<decltype(assigned)>(make());
            moved = std::move(*source);
            source.reset();
            this->template enqueue<Block>(what, moved);
        };
        using sizes = array3;
        std::array<std::int32_t, 4> const color{-1, 2, 3, 4};
        std::vector<word> const words{0x00000002FFFFFFFF, 0x0000000400000003};
        keeps(
            static_cast<clEnqueueFillBuffer*>(nullptr),
            {{48, 56, 64, 68}, {u8(24, 24), u8(32, 5), u8(40, 72)}, {own(16, third)}},
            [&] { return typename TypeParam::template fill_buffer<sizes>(w.buffer, third, 5, 3); },
            [&] { return typename TypeParam::template fill_buffer<sizes>(w.buffer_2, second, 6, 4); });
        keeps(
            static_cast<clEnqueueFillImage*>(nullptr),
            {{40, 48, 56, 60}, {u8(8, w.image)}, {{16, words}, own(24, first), own(32, second)}},
            [&] { return typename TypeParam::template fill_image<std::int32_t>(w.image, color, first, second); },
            [&] { return typename TypeParam::template fill_image<std::int32_t>(w.image_2, {}, third, third); });
        if constexpr (TypeParam::number >= 200) {
            keeps(
                static_cast<clEnqueueSVMMemFill*>(nullptr),
                {{40, 48, 56, 60}, {u8(8, &w), u8(24, 24), u8(32, 72)}, {own(16, third)}},
                [&] { return typename TypeParam::template fill_svm<sizes>(&w, third, 3); },
                [&] { return typename TypeParam::template fill_svm<sizes>(this->memory, second, 4); });
        }
    }
}

} // namespace
} // namespace unit
