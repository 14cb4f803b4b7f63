#include "unit/command.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

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

} // namespace
} // namespace unit
