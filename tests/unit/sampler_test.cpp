#include "unit/members.hpp"

namespace unit {

using samplers = members;

TEST_F(samplers, tell) {
    reads(w.sampler, 0x1151, w.context, &sampler::get_context);
    reads_bool(w.sampler, 0x1152, &sampler::normalized_coords);
    reads_each(w.sampler, 0x1153, number, &sampler::addressing_mode, &sampler::filter_mode);
}

} // namespace unit
