#include "unit/members.hpp"

namespace unit {

using memory_objects = members;

TEST_F(memory_objects, tell) {
    reads_each(w.buffer, 0x1101, large, &buffer::flags, &buffer::size, &buffer::host_ptr);
    reads(w.buffer, 0x1106, w.context, &buffer::get_context);
#if UNIT_OPENCL >= 110
    reads(w.sub_buffer, 0x1108, large, &sub_buffer::offset);
    reads(w.sub_buffer, 0x1107, w.buffer, &sub_buffer::parent_buffer);
#endif
#if UNIT_OPENCL >= 200
    reads_each(w.pipe, 0x1120, number, &pipe::packet_size, &pipe::max_packets);
#endif
}

TEST_F(memory_objects, tell_of_images) {
    reads(w.image, 0x1110, image_format{0x10B5, 0x10D2}, &image::get_image_format);
    reads_each(w.image, 0x1111, large, &image::element_size, &image::row_pitch, &image::slice_pitch, &image::width,
               &image::height, &image::depth);
#if UNIT_OPENCL >= 120
    reads(w.image, 0x1117, large, &image::array_size);
    reads_each(w.image, 0x1119, number, &image::num_mip_levels, &image::num_samples);
#endif
}

} // namespace unit
