// The description of the wire: that it cannot be incomplete, agrees with OpenCL's own header, and reads as it should.

#include <nq/describe.hpp>

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <string>

namespace nq::detail {

struct two_fields {
    std::uint32_t first;
    std::uint32_t second;
};
template <>
struct described<two_fields> {
    static constexpr field fields[] = {make_field<std::uint32_t>("first", 0, is::count)};
};
static_assert(!has_as_many_fields<two_fields>());

struct no_rules {
    std::uint32_t* pointer;
};
template <>
struct described<no_rules> {
    static constexpr field fields[] = {make_field<std::uint32_t*>("pointer", 0, is::count)};
};
static_assert(tiles<no_rules>() && !has_rules<no_rules>());

struct out_of_order {
    std::uint32_t first;
    std::uint32_t second;
};
template <>
struct described<out_of_order> {
    static constexpr field fields[] = {make_field<std::uint32_t>("second", 4, is::count),
                                       make_field<std::uint32_t>("first", 0, is::count)};
};
static_assert(!tiles<out_of_order>());

} // namespace nq::detail

namespace {

using nq::block::clCreateImage;
constexpr nq::capability newest = nq::capability::opencl_2_2;

template <class Block>
std::string text_of(Block const& block, nq::memory_reader read = nq::detail::copy_memory) {
    for (auto version = std::uint64_t(newest); version != 0; --version) {
        if (auto const id = nq::find_command<Block>(nq::capability(version)); id != 0) {
            return nq::format_call(nq::capability(version), id, &block, read);
        }
    }
    return "no version has it";
}

template <class Block>
std::size_t extent(Block const& block, std::string const& name, std::size_t pixel = 0) {
    for (nq::field const& each : nq::description_of<Block>) {
        if (name == each.name) {
            return nq::extent_of(nq::description_of<Block>, each, &block, pixel).value_or(std::size_t(-1));
        }
    }
    return std::size_t(-2);
}

TEST(description, has_a_name_for_each_block_and_an_end_for_each_version) {
    std::uint32_t const ends[] = {67, 74, 82, 92, 99, 101};
    std::set<std::string> names;
    for (std::uint64_t version = 1; version <= std::uint64_t(newest); ++version) {
        std::uint32_t id = 1;
        for (; nq::describe(nq::capability(version), id) != nullptr; ++id) {
            names.insert(nq::describe(nq::capability(version), id)->name);
        }
        EXPECT_EQ(nq::describe(nq::capability(version), 0), nullptr);
        EXPECT_EQ(id, ends[version - 1]);
    }
    EXPECT_EQ(nq::describe(nq::capability{7}, 1), nullptr);
    EXPECT_EQ(names.size(), 111U);
}

// Each name of a value is a macro of <CL/cl.h>, with that value.
TEST(description, names_values_as_opencl_does) {
    std::map<std::string, std::int64_t> macros;
    std::regex const shape(R"(#define\s+(CL_\w+)\s+(\(1 << (\d+)\)|-?\w+)\s*(/\*.*)?)");
    std::ifstream header(CL_HEADER);
    for (std::string line; std::getline(header, line);) {
        if (std::smatch found; std::regex_match(line, found, shape)) {
            macros[found[1]] = found[3].matched ? std::int64_t{1} << std::stoi(found[3])
                                                : std::strtoll(found[2].str().c_str(), nullptr, 0);
        }
    }
    ASSERT_GT(macros.size(), 400U);
    std::set<nq::value_name const*> sets;
    for (std::uint32_t id = 1; id <= 100; ++id) {
        for (nq::field const& each : *nq::describe(newest, id)) {
            for (nq::value_name const& value : each.values) {
                ASSERT_EQ(macros.count(value.name), 1U) << value.name;
                EXPECT_EQ(macros[value.name], value.value) << value.name;
            }
            sets.insert(each.values.names);
        }
    }
    EXPECT_GT(sets.size(), 20U);
}

TEST(description, formats_each_kind_of_argument) {
    std::intptr_t const partition[] = {0x1087, 1, 3, 0, 0};
    std::int64_t const properties[] = {0x1084, 0x77, 0};
    std::size_t const sizes[] = {9, 8, 7, 6, 5, 4, 3, 2, 1};
    char const* const sources[] = {"kernel \"a\"\n", "both", nullptr};
    std::size_t const lengths[] = {0, 1, 0};
    std::uint32_t const format[] = {0x10B5, 0x10DA};
    nq::image_desc const image{.image_type = 0x10F1, .image_width = 4, .image_height = 2, .num_mip_levels = 3};
    float const one = 1;
    auto* const events = reinterpret_cast<_nq_cl_event* const*>(sizes);
    auto const unreadable = [](void*, void const*, std::size_t) { return false; };
    namespace block = nq::block;
    std::pair<std::string, std::string> const cases[] = {
        {text_of(block::clCreateSubDevices{.properties = reinterpret_cast<std::int64_t const*>(partition)}),
         "properties=[CL_DEVICE_PARTITION_BY_COUNTS, 1, 3, 0], "},
        {text_of(block::clCreateContext{.properties = properties}), "(properties=[CL_CONTEXT_PLATFORM=0x77], "},
        {text_of(
             block::clCreateProgramWithSource{.strings = sources, .lengths = lengths, .error_code = -6, .count = 3}),
         R"(strings=["kernel \"a\"\n", "b", null], lengths=[0, 1, 0], count=3) = CL_OUT_OF_HOST_MEMORY)"},
        {text_of(block::clEnqueueWaitForEvents{.event_list = events, .num_events = 9}),
         "event_list=[0x9, 0x8, 0x7, 0x6, 0x5, 0x4, 0x3, 0x2, ... 9], num_events=9) = CL_SUCCESS"},
        {text_of(clCreateImage{.flags = 0x24, .image_format = format, .image_desc = &image}),
         "(flags=CL_MEM_READ_ONLY|CL_MEM_COPY_HOST_PTR, context=null, image_format={CL_RGBA, CL_UNSIGNED_INT8}, "
         "image_desc={CL_MEM_OBJECT_IMAGE2D, width=4, height=2, mip_levels=3}, host_ptr=null)"},
        {text_of(block::clSetKernelArg{.arg_size = 4, .arg_value = &one, .status = -1234}),
         "arg_value={00 00 80 3f} (1065353216 or 1), arg_index=0) = status -1234"},
        {text_of(block::clGetDeviceInfo{.param_name = 0x102B}), "param_name=CL_DEVICE_NAME, "},
        {text_of(block::clGetDeviceInfo{.param_name = 0xFFFF}), "param_name=0xffff, "},
        {text_of(block::clGetDeviceIDs{.device_type = 0xFFFFFFFF}), "device_type=CL_DEVICE_TYPE_ALL, "},
        {text_of(block::clCreateKernel{.kernel_name = std::string(99, 'x').c_str()}),
         '"' + std::string(64, 'x') + "\"...)"},
        {text_of(block::clCreateSubBuffer{}), "clCreateSubBuffer(flags=0, "},
        {text_of(block::clCreateKernel{.kernel_name = "unreadable"}, unreadable), "kernel_name=0x"},
        {text_of(block::clCreateContext{.properties = properties}, unreadable), "(properties=0x"},
        {text_of(clCreateImage{.image_desc = &image}, unreadable), "image_desc=0x"},
        {text_of(block::clSVMAlloc{.size = 8}), ") = null"},
        {nq::format_call(newest, 1000, nullptr), "command 1000"},
    };
    for (auto const& [text, part] : cases) {
        EXPECT_NE(text.find(part), std::string::npos) << text << "\nlacks " << part;
    }
}

TEST(description, knows_how_much_is_behind_a_pointer) {
    std::size_t const origin[] = {1, 2, 3};
    std::size_t const region[] = {4, 5, 6};
    std::size_t const nothing[] = {4, 0, 6};
    std::int64_t const counts[] = {0x1087, 1, 0, 0, 9};
    std::int64_t const equally[] = {0x1086, 4, 0, 9};
    nq::image_desc const layers{.image_type = 0x10F3, .image_width = 3, .image_height = 2, .image_array_size = 5};
    nq::image_desc const lines{.image_type = 0x10F5, .image_width = 3, .image_array_size = 5, .image_row_pitch = 64};
    nq::block::clEnqueueReadBufferRect const packed{.host_origin = origin, .region = region};
    nq::block::clEnqueueReadBufferRect const pitched{
        .host_origin = origin, .region = region, .host_row_pitch = 10, .host_slice_pitch = 100};
    nq::block::clEnqueueReadImage const pixels{.region = region, .row_pitch = 64};
    EXPECT_EQ(extent(packed, "ptr"), 3U * 20 + 2 * 4 + 1 + 6 * 20);
    EXPECT_EQ(extent(pitched, "ptr"), 3U * 100 + 2 * 10 + 1 + 5 * 100 + 4 * 10 + 4);
    EXPECT_EQ(extent(packed, "region"), 3U * 8);
    EXPECT_EQ(extent(pixels, "ptr", 2), 5U * 320 + 4 * 64 + 8);
    EXPECT_EQ(extent(pixels, "ptr"), std::size_t(-1)) << "the size of a pixel is not known";
    EXPECT_EQ(extent(nq::block::clEnqueueReadImage{.region = nothing}, "ptr", 2), 0U);
    std::size_t pitches[] = {64, 320};
    nq::block::clEnqueueMapImage const mapped{
        .region = region, .image_row_pitch = pitches, .image_slice_pitch = pitches + 1};
    EXPECT_EQ(extent(mapped, "result", 2), 5U * 320 + 4 * 64 + 8);
    EXPECT_EQ(extent(clCreateImage{.image_desc = &layers}, "host_ptr", 4), 3U * 2 * 5 * 4);
    EXPECT_EQ(extent(clCreateImage{.image_desc = &lines}, "host_ptr", 4), 4U * 64 + 3 * 4);
    EXPECT_EQ(extent(clCreateImage{}, "host_ptr", 4), std::size_t(-1));
    EXPECT_EQ(extent(nq::block::clCreateImage2D{.image_width = 3, .image_height = 2}, "host_ptr", 4), 24U);
    EXPECT_EQ(extent(nq::block::clCreateSubDevices{.properties = counts}, "properties"), 4U * 8);
    EXPECT_EQ(extent(nq::block::clCreateSubDevices{.properties = equally}, "properties"), 3U * 8);
    EXPECT_EQ(extent(nq::block::clCreateKernel{.kernel_name = "abc"}, "kernel_name"), 4U);
    EXPECT_EQ(extent(nq::block::clEnqueueWaitForEvents{.num_events = 3}, "event_list"), 3U * 8);
    EXPECT_EQ(nq::pixel_size_of(0x10B5, 0x10DA), 4U) << "CL_RGBA of CL_UNSIGNED_INT8";
    EXPECT_EQ(nq::pixel_size_of(0x10B1, 0x10DE), 4U) << "CL_A of CL_FLOAT";
    EXPECT_EQ(nq::pixel_size_of(0x10B4, 0x10D4), 2U) << "CL_RGB of CL_UNORM_SHORT_565";
    EXPECT_EQ(nq::pixel_size_of(0x10B5, 0x10E1), 0U);
    EXPECT_EQ(extent(nq::block::clSetKernelArgSVMPointer{}, "arg_value"), std::size_t(-1));
}

} // namespace
