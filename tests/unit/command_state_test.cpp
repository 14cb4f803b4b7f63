#include "unit/command.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

template <class Api>
class command_states : public commands<Api> {};
TYPED_TEST_SUITE(command_states, versions);

TYPED_TEST(command_states, sets_what_was_mapped_on_success_alone) {
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

// A command that gave its list away passes null and 0.
TYPED_TEST(command_states, gives_its_lists_away) {
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

TYPED_TEST(command_states, reads_another_pattern_from_then_on) {
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
TYPED_TEST(command_states, keeps_typed_patterns) {
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
