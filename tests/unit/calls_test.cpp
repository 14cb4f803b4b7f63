#include "unit/members.hpp"

#include <algorithm>
#include <cctype>
#include <climits>
#include <iterator>
#include <map>
#include <span>
#include <sstream>

// The frame of one call: the call layer's result first, the OpenCL status second, the results last; and the numbers
// under which the version performs its entry points.

namespace unit {
namespace {

class calls : public members {
protected:
    /// One operation of each way to the wire.
    std::vector<std::function<void()>> const operations{
        [&] { w.context.create_buffer(mem_flags{}, 64, nullptr); },
        [&] { w.queue.finish(); },
        [&] { w.buffer.size(); },
        [&] { w.queue.enqueue_command(read_buffer(w.buffer, false, 0, 64, nullptr)); },
        [&] { w.program.build({}, "", nullptr, nullptr); },
        [&] { get_call_handle_device(handle); }};
};

// A failing call leaves rubbish in the block, so that a status or result that is looked at shows.
TEST_F(calls, a_failing_call_layer_comes_before_status_and_result) {
    std::tuple<int, std::type_info const&, char const*> const failures[] = {
        {-2, typeid(nq::invalid_command_id), "Invalid command ID provided to capability call."},
        {-1, typeid(nq::unrecoverable_error), ""},
        {1, typeid(nq::unknown_error), "Unknown error code returned by libnq."},
        {-11, typeid(nq::unknown_error), "Unknown error code returned by libnq."},
        {INT_MIN, typeid(nq::unknown_error), "Unknown error code returned by libnq."}};
    for (auto const& [result, type, message] : failures) {
        for (auto const& operation : operations) {
            libnq.forget_calls();
            libnq.fail(scripted::layer(result));
            try {
                operation();
                ADD_FAILURE() << "nothing thrown";
            } catch (nq::nq_error const& error) {
                EXPECT_EQ(typeid(error), type);
                EXPECT_STREQ(error.what(), message);
                EXPECT_EQ(error.code(), result);
            }
            EXPECT_EQ(libnq.calls().size(), 1U);
        }
    }
}

// call_handle_device, the last one, has no status.
TEST_F(calls, a_failing_status_comes_before_the_result) {
    for (std::size_t n = 0; n + 1 != operations.size(); ++n) {
        libnq.fail(scripted::status(-61));
        EXPECT_THROW(operations[n](), common::invalid_buffer_size);
    }
}

struct entry_points {
    int since;
    int until;
    char const* names;
};

constexpr entry_points all_entry_points[] = {
    {100, 220,
     "clBuildProgram clCreateBuffer clCreateContext clCreateContextFromType clCreateKernel "
     "clCreateProgramWithBinary clCreateProgramWithSource clEnqueueCopyBuffer clEnqueueCopyBufferToImage "
     "clEnqueueCopyImage clEnqueueCopyImageToBuffer clEnqueueMapBuffer clEnqueueMapImage clEnqueueNativeKernel "
     "clEnqueueNDRangeKernel clEnqueueReadBuffer clEnqueueReadImage clEnqueueUnmapMemObject clEnqueueWriteBuffer "
     "clEnqueueWriteImage clFinish clFlush clGetCommandQueueInfo clGetContextInfo clGetDeviceIDs clGetDeviceInfo "
     "clGetEventInfo clGetEventProfilingInfo clGetImageInfo clGetKernelInfo clGetKernelWorkGroupInfo "
     "clGetMemObjectInfo clGetPlatformInfo clGetProgramBuildInfo clGetProgramInfo clGetSamplerInfo "
     "clGetSupportedImageFormats clReleaseCommandQueue clReleaseContext clReleaseEvent clReleaseKernel "
     "clReleaseMemObject clReleaseProgram clReleaseSampler clRetainCommandQueue clRetainContext clRetainEvent "
     "clRetainKernel clRetainMemObject clRetainProgram clRetainSampler clSetKernelArg clWaitForEvents"},
    {100, 110,
     "clCreateImage2D clCreateImage3D clEnqueueBarrier clEnqueueMarker clEnqueueWaitForEvents "
     "clGetExtensionFunctionAddress clUnloadCompiler"},
    {100, 120, "clCreateCommandQueue clCreateSampler clEnqueueTask"},
    {110, 220,
     "clCreateSubBuffer clCreateUserEvent clEnqueueCopyBufferRect clEnqueueReadBufferRect clEnqueueWriteBufferRect "
     "clSetEventCallback clSetMemObjectDestructorCallback clSetUserEventStatus"},
    {120, 220,
     "clCompileProgram clCreateImage clCreateProgramWithBuiltInKernels clCreateSubDevices "
     "clEnqueueBarrierWithWaitList clEnqueueFillBuffer clEnqueueFillImage clEnqueueMarkerWithWaitList "
     "clEnqueueMigrateMemObjects clGetExtensionFunctionAddressForPlatform clGetKernelArgInfo clLinkProgram "
     "clReleaseDevice clRetainDevice clUnloadPlatformCompiler"},
    {200, 220,
     "clCreateCommandQueueWithProperties clCreatePipe clCreateSamplerWithProperties clEnqueueSVMFree "
     "clEnqueueSVMMap clEnqueueSVMMemcpy clEnqueueSVMMemFill clEnqueueSVMUnmap clGetPipeInfo "
     "clSetKernelArgSVMPointer clSetKernelExecInfo clSVMAlloc clSVMFree"},
};

/// Behind all others, in the order of the versions that add them.
constexpr entry_points appended_entry_points[] = {
    {100, 100, "clSetCommandQueueProperty"},
    {210, 220,
     "clSetDefaultDeviceCommandQueue clGetDeviceAndHostTimer clGetHostTimer clCreateProgramWithIL clCloneKernel "
     "clGetKernelSubGroupInfo clEnqueueSVMMigrateMem"},
    {220, 220, "clSetProgramSpecializationConstant clSetProgramReleaseCallback"}};

void for_each_name(std::span<entry_points const> of, std::function<void(std::string const&)> const& visit) {
    for (auto const& [since, until, listed] : of) {
        std::istringstream stream(since <= api::number && api::number <= until ? listed : "");
        std::for_each(std::istream_iterator<std::string>(stream), {}, visit);
    }
}

template <class... Blocks>
names names_of(nq::command_list<Blocks...>*) {
    return {std::string(scripted::name_of<Blocks>())...};
}

// They are sorted by name without regard to case, but for two: clCreateKernelsInProgram is before clCreateKernel, and
// libnq's own command is after clFlush.
TEST_F(calls, entry_points_have_the_ids_of_their_version) {
    std::map<std::string, std::string> sorted{{"clcreatekern", "clCreateKernelsInProgram"},
                                              {"clflush+", "call_handle_device"}};
    for_each_name(all_entry_points, [&](std::string const& name) {
        std::string key(name);
        std::transform(key.begin(), key.end(), key.begin(), [](unsigned char c) { return std::tolower(c); });
        sorted[key] = name;
    });
    names expected;
    std::transform(sorted.begin(), sorted.end(), std::back_inserter(expected),
                   [](auto& entry) { return entry.second; });
    for_each_name(appended_entry_points, [&](std::string const& name) { expected.push_back(name); });
    EXPECT_EQ(names_of(static_cast<nq::commands<api::capability>*>(nullptr)), expected);
}

// What the lists say is what is used.
TEST_F(calls, an_operation_sends_the_id_of_its_version) {
    w.queue.finish();
    constexpr int number = api::number;
    EXPECT_EQ(libnq.calls().at(0).id, number == 100 ? 30U : number == 110 ? 35U : number == 120 ? 39U : 44U);
}

static_assert(nq::command_id<nq::capability{3}, block::clReleaseDevice> == 62);
static_assert(!nq::has_command<nq::capability::opencl_1_2, block::clCreateImage2D>);
static_assert(!nq::has_command<nq::capability::opencl_2_0, block::clCreateSampler>);
static_assert(!nq::has_command<nq::capability::opencl_2_1, block::clSetProgramReleaseCallback>);

} // namespace
} // namespace unit
