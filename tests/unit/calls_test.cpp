#include "scripted/fixture.hpp"
#include "unit/entry_points.hpp"

#include <vorn/mero/opencl.hpp>

#include <climits>
#include <gmock/gmock.h>
#include <typeinfo>

// The frame of one call: the call layer's result first, the OpenCL status second, the results last; and the numbers
// under which each version performs its entry points.

namespace {

namespace block = nq::block;
namespace common = vorn::mero::common;
using namespace vorn::mero;

template <class Api>
class calls : public scripted::versioned<Api> {
protected:
    typename Api::context make_context() {
        return {this->handle, this->libnq.template make<_nq_cl_context>(1), typename Api::take_ownership{}};
    }

    typename Api::buffer make_buffer(typename Api::context& context) {
        return context.create_buffer(typename Api::mem_flags{}, 64, nullptr);
    }
};

using versions = testing::Types<opencl_1_0::api, opencl_1_1::api, opencl_1_2::api, opencl_2_0::api, opencl_2_1::api,
                                opencl_2_2::api>;
TYPED_TEST_SUITE(calls, versions);

struct layer_failure {
    int result;
    std::type_info const& type;
    char const* message;
};

layer_failure const layer_failures[] = {
    {-2, typeid(nq::invalid_command_id), "Invalid command ID provided to capability call."},
    {-1, typeid(nq::unrecoverable_error), ""},
    {1, typeid(nq::unknown_error), "Unknown error code returned by libnq."},
    {-3, typeid(nq::unknown_error), "Unknown error code returned by libnq."},
    {-11, typeid(nq::unknown_error), "Unknown error code returned by libnq."},
    {INT_MIN, typeid(nq::unknown_error), "Unknown error code returned by libnq."},
};

template <class Operation>
void expect_layer_failure(layer_failure const& expected, Operation operation) {
    SCOPED_TRACE(expected.result);
    try {
        operation();
        ADD_FAILURE() << "nothing thrown";
    } catch (nq::nq_error const& error) {
        EXPECT_EQ(typeid(error), expected.type);
        EXPECT_STREQ(error.what(), expected.message);
        EXPECT_EQ(error.code(), expected.result);
    }
}

// A failing call leaves rubbish in the block, so that a status or result that is looked at shows.
TYPED_TEST(calls, a_failing_call_layer_comes_before_status_and_result) {
    auto context = this->make_context();
    std::vector<typename TypeParam::buffer> buffers;
    buffers.push_back(this->make_buffer(context));
    typename TypeParam::host_queue queue(this->handle, this->libnq.template make<_nq_cl_command_queue>(1),
                                         typename TypeParam::take_ownership{});
    char data[64];
    for (auto const& failure : layer_failures) {
        auto const fails = [&](auto operation) {
            this->libnq.forget_calls();
            this->libnq.fail(scripted::layer(failure.result));
            expect_layer_failure(failure, operation);
            EXPECT_EQ(this->libnq.calls().size(), 1U);
        };
        fails([&] { this->make_buffer(context); });
        fails([&] { queue.finish(); });
        fails([&] { buffers[0].size(); });
        fails([&] { queue.enqueue_command(typename TypeParam::read_buffer(buffers[0], false, 0, 64, data)); });
        fails([&] { TypeParam::get_call_handle_device(this->handle); });
    }
}

TYPED_TEST(calls, a_failing_status_comes_before_the_result) {
    auto context = this->make_context();
    auto const buffer = this->make_buffer(context);
    typename TypeParam::host_queue queue(this->handle, this->libnq.template make<_nq_cl_command_queue>(1),
                                         typename TypeParam::take_ownership{});
    char data[64];
    this->libnq.fail(scripted::status(-61), scripted::every);
    EXPECT_THROW(this->make_buffer(context), common::invalid_buffer_size);
    EXPECT_THROW(queue.finish(), common::invalid_buffer_size);
    EXPECT_THROW(buffer.size(), common::invalid_buffer_size);
    EXPECT_THROW(queue.enqueue_command(typename TypeParam::read_buffer(buffer, false, 0, 64, data)),
                 common::invalid_buffer_size);
    this->libnq.stop_failing();
}

TYPED_TEST(calls, success_gives_the_result) {
    auto context = this->make_context();
    auto const buffer = this->make_buffer(context);
    auto const call = this->libnq.template last_call<block::clCreateBuffer>();
    EXPECT_EQ(call.handle, this->handle.get());
    EXPECT_EQ(call.version, TypeParam::capability);
    this->libnq.template reply<block::clGetMemObjectInfo>(0x1102, scripted::bytes_of(std::size_t{64}));
    EXPECT_EQ(buffer.size(), 64U);
}

template <class... Blocks>
std::vector<std::string_view> names_of(nq::command_list<Blocks...>*) {
    return {scripted::name_of<Blocks>()...};
}

TYPED_TEST(calls, entry_points_have_the_ids_of_their_version) {
    std::vector<std::string_view> expected;
    for (std::size_t id = 1; !unit::entry_point(TypeParam::number, id).empty(); ++id) {
        expected.push_back(unit::entry_point(TypeParam::number, id));
    }
    EXPECT_EQ(names_of(static_cast<nq::commands<TypeParam::capability>*>(nullptr)), expected);
}

// The same operation as the library itself sends it: what the lists say is what is used.
TYPED_TEST(calls, an_operation_sends_the_id_of_its_version) {
    typename TypeParam::host_queue queue(this->handle, this->libnq.template make<_nq_cl_command_queue>(1),
                                         typename TypeParam::take_ownership{});
    this->libnq.forget_calls();
    queue.finish();
    constexpr std::uint32_t id = TypeParam::number == 100   ? 30
                                 : TypeParam::number == 110 ? 35
                                 : TypeParam::number == 120 ? 39
                                                            : 44;
    EXPECT_EQ(this->libnq.calls().at(0).id, id);
}

static_assert(nq::command_id<nq::capability{3}, block::clReleaseDevice> == 62);
static_assert(!nq::has_command<nq::capability::opencl_1_2, block::clCreateImage2D>);
static_assert(!nq::has_command<nq::capability::opencl_2_0, block::clCreateSampler>);
static_assert(!nq::has_command<nq::capability::opencl_2_1, block::clSetProgramReleaseCallback>);

} // namespace
