#include "unit/members.hpp"

namespace unit {
namespace {

using namespace nq::block; // NOLINT(google-build-using-namespace)

constexpr word large = 0x8123456789ABCDEF;

template <class Api>
class memory_objects : public members<Api> {};
TYPED_TEST_SUITE(memory_objects, versions);

TYPED_TEST(memory_objects, reads_what_it_is) {
    auto& w = this->objects;
    auto const is = [&](std::uint32_t name, auto read) {
        this->template reads<clGetMemObjectInfo>(w.buffer, name, scripted::bytes_of(large), large, read);
    };
    is(0x1101, [&] { return w.buffer.flags(); });
    is(0x1102, [&] { return w.buffer.size(); });
    is(0x1103, [&] { return w.buffer.host_ptr(); });
    this->template reads<clGetMemObjectInfo>(w.buffer, 0x1106, scripted::bytes_of(word_of(w.context)), w.context,
                                             [&] { return w.buffer.get_context(); });
}

TYPED_TEST(memory_objects, reads_what_a_sub_buffer_is) {
    if constexpr (TypeParam::number >= 110) {
        auto& w = this->objects;
        this->template reads<clGetMemObjectInfo>(w.sub_buffer, 0x1108, scripted::bytes_of(large), large,
                                                 [&] { return w.sub_buffer.offset(); });
        this->template reads<clGetMemObjectInfo>(w.sub_buffer, 0x1107, scripted::bytes_of(word_of(w.buffer)), w.buffer,
                                                 [&] { return w.sub_buffer.parent_buffer(); });
    }
}

TYPED_TEST(memory_objects, reads_what_an_image_is) {
    auto& w = this->objects;
    auto const is = [&](std::uint32_t name, auto read) {
        this->template reads<clGetImageInfo>(w.image, name, scripted::bytes_of(large), large, read);
    };
    this->template reads<clGetImageInfo>(w.image, 0x1110, scripted::bytes_of(0x10B5, 0x10D2),
                                         typename TypeParam::image_format{value{0x10B5}, value{0x10D2}},
                                         [&] { return w.image.get_image_format(); });
    is(0x1111, [&] { return w.image.element_size(); });
    is(0x1112, [&] { return w.image.row_pitch(); });
    is(0x1113, [&] { return w.image.slice_pitch(); });
    is(0x1114, [&] { return w.image.width(); });
    is(0x1115, [&] { return w.image.height(); });
    is(0x1116, [&] { return w.image.depth(); });
    if constexpr (TypeParam::number >= 120) {
        auto const counts = scripted::bytes_of(0x89ABCDEF);
        is(0x1117, [&] { return w.image.array_size(); });
        this->template reads<clGetImageInfo>(w.image, 0x1119, counts, 0x89ABCDEF,
                                             [&] { return w.image.num_mip_levels(); });
        this->template reads<clGetImageInfo>(w.image, 0x111A, counts, 0x89ABCDEF,
                                             [&] { return w.image.num_samples(); });
    }
}

TYPED_TEST(memory_objects, reads_what_a_pipe_is) {
    if constexpr (TypeParam::number >= 200) {
        auto& w = this->objects;
        auto const reply = scripted::bytes_of(0x89ABCDEF);
        this->template reads<clGetPipeInfo>(w.pipe, 0x1120, reply, 0x89ABCDEF, [&] { return w.pipe.packet_size(); });
        this->template reads<clGetPipeInfo>(w.pipe, 0x1121, reply, 0x89ABCDEF, [&] { return w.pipe.max_packets(); });
    }
}

TYPED_TEST(memory_objects, reads_what_a_sampler_is) {
    auto& w = this->objects;
    for (std::uint32_t const answer : {0U, 1U, 256U}) {
        this->template reads<clGetSamplerInfo>(w.sampler, 0x1152, scripted::bytes_of(answer), answer != 0,
                                               [&] { return w.sampler.normalized_coords(); });
    }
    this->template reads<clGetSamplerInfo>(w.sampler, 0x1153, scripted::bytes_of(0x1134), 0x1134,
                                           [&] { return w.sampler.addressing_mode(); });
    this->template reads<clGetSamplerInfo>(w.sampler, 0x1154, scripted::bytes_of(0x1141), 0x1141,
                                           [&] { return w.sampler.filter_mode(); });
    this->template reads<clGetSamplerInfo>(w.sampler, 0x1151, scripted::bytes_of(word_of(w.context)), w.context,
                                           [&] { return w.sampler.get_context(); });
}

} // namespace
} // namespace unit
