#include "objects.hpp"

namespace real {
namespace {

template <class Api>
void round_trip(bench<Api>& b) {
    std::vector<std::int32_t> const sent{1, -2, 3, -4};
    auto buffer = b.context.create_buffer(Api::mem_flags::read_write, 16, nullptr);
    b.run(typename Api::write_buffer(buffer, true, 0, 16, sent.data()));
    EXPECT_EQ(b.load(buffer), sent);
}

} // namespace

void add_memory_objects() {
    add_scenario<100>("buffers", "buffers", [](auto& b) { round_trip(b); });
}

} // namespace real
