#include "operations.hpp"

#include <vorn/mero/easy.hpp>

namespace bench {
namespace {

namespace ez = vorn::mero::easy;
using session = ez::basic_session<210>; // as the library's own rows

session session_on(cl_device_id device) {
    session const found([device](auto const& each) {
        return reinterpret_cast<cl_device_id>(vorn::mero::opencl_2_1::raw::get_raw_device_id(each)) == device;
    });
    return {found.device(), found.context(),
            found.context().create_host_command_queue(found.device(), false, false)}; // without profiling
}

struct objects {
    explicit objects(cl_device_id device) : gpu(session_on(device)) { add.set_arguments(a, b, sum); }

    ez::basic_array<float, 210> make_array() { return gpu.array<float>(buffer_size / sizeof(float)); }

    session gpu;
    ez::basic_array<float, 210> a = make_array();
    ez::basic_array<float, 210> b = make_array();
    ez::basic_array<float, 210> sum = make_array();
    ez::basic_kernel<210> add = gpu.build(program_text)["add"];
    std::array<float, bytes / sizeof(float)> values{};
};

void add_rows(rows<objects> add) {
    add("set 3 arguments", [](objects& on) { on.add.set_arguments(on.a, on.b, on.sum); });
    add("set 3 arguments, launch, event",
        [](objects& on) { keep(on.add(ez::range(work_items).local(group_size), on.a, on.b, on.sum)); });
    add("write_buffer, blocking", [](objects& on) { on.a.write(on.values); });
    add("read_buffer, blocking", [](objects& on) { on.a.read(on.values); });
}

} // namespace

contender easy(cl_device_id device) {
    auto const on = std::make_shared<objects>(device);
    contender made{"easy", {}, {}, [on] { on->gpu.finish(); }};
    add_rows({made, on});
    return made;
}

} // namespace bench
