#include "operations.hpp"

namespace bench {
namespace {

struct objects {
    explicit objects(cl_device_id on) : device(on) {
        program = clCreateProgramWithSource(context, 1, &text, nullptr, nullptr);
        clBuildProgram(program, 0, nullptr, "", nullptr, nullptr);
        kernel = clCreateKernel(program, "nothing", nullptr);
        add = clCreateKernel(program, "add", nullptr);
        clSetKernelArg(kernel, 0, sizeof a, &a);
        for (cl_event& event : events) {
            clEnqueueMarkerWithWaitList(queue, 0, nullptr, &event);
        }
    }

    cl_mem make_buffer() const { return clCreateBuffer(context, CL_MEM_READ_WRITE, buffer_size, nullptr, nullptr); }
    cl_mem make_image() const {
        constexpr cl_image_format format{CL_RGBA, CL_UNSIGNED_INT8};
        cl_image_desc description{};
        description.image_type = CL_MEM_OBJECT_IMAGE2D;
        description.image_width = image_side;
        description.image_height = image_side;
        return clCreateImage(context, CL_MEM_READ_WRITE, &format, &description, nullptr, nullptr);
    }

    char const* text = program_text;
    cl_device_id device;
    cl_context context = clCreateContext(nullptr, 1, &device, nullptr, nullptr, nullptr);
    cl_command_queue queue = clCreateCommandQueue(context, device, 0, nullptr);
    cl_mem a = make_buffer();
    cl_mem b = make_buffer();
    cl_mem sum = make_buffer();
    cl_mem image = make_image();
    cl_mem second_image = make_image();
    void* memory = clSVMAlloc(context, CL_MEM_READ_WRITE, 2 * bytes, 0);
    cl_program program;
    cl_kernel kernel;
    cl_kernel add;
    std::array<cl_event, 4> events{};
    std::vector<cl_mem> many;
};

void add_basics(rows<objects> add) {
    add("set argument", [](objects& on) { clSetKernelArg(on.kernel, 0, sizeof on.a, &on.a); });
    add("scalar query", [](objects& on) {
        std::size_t size = 0;
        cl_uint units = 0;
        clGetDeviceInfo(on.device, CL_DEVICE_MAX_COMPUTE_UNITS, 0, nullptr, &size);
        clGetDeviceInfo(on.device, CL_DEVICE_MAX_COMPUTE_UNITS, sizeof units, &units, &size);
        keep(units);
    });
    add("string query", [](objects& on) {
        std::size_t size = 0;
        clGetDeviceInfo(on.device, CL_DEVICE_NAME, 0, nullptr, &size);
        std::string name(size, '\0');
        clGetDeviceInfo(on.device, CL_DEVICE_NAME, size, name.data(), nullptr);
        name.pop_back();
        keep(name);
    });
    add("object list", [](objects& on) {
        std::size_t size = 0;
        clGetContextInfo(on.context, CL_CONTEXT_DEVICES, 0, nullptr, &size);
        std::vector<cl_device_id> devices(size / sizeof(cl_device_id));
        clGetContextInfo(on.context, CL_CONTEXT_DEVICES, size, devices.data(), nullptr);
        for (cl_device_id const device : devices) {
            clRetainDevice(device);
        }
        keep(devices);
        for (cl_device_id const device : devices) {
            clReleaseDevice(device);
        }
    });
    add("create and release buffer", [](objects& on) { clReleaseMemObject(on.make_buffer()); });
    add("create and release user event", [](objects& on) { clReleaseEvent(clCreateUserEvent(on.context, nullptr)); });
    add(
        "create and release buffer beside 100000", [](objects& on) { clReleaseMemObject(on.make_buffer()); },
        [](objects& on) {
            while (on.many.size() != 100000) {
                on.many.push_back(on.make_buffer());
            }
        });
    add("copy and destroy buffer", [](objects& on) {
        clRetainMemObject(on.a);
        clReleaseMemObject(on.a);
    });
    add("copy and destroy device", [](objects& on) {
        clRetainDevice(on.device);
        clReleaseDevice(on.device);
    });
    add("move there and back", [](objects& on) {
        cl_mem moved = on.a;
        on.a = nullptr;
        keep(moved);
        on.a = moved;
    });
    add("throw and catch", [](objects& on) { keep(clSetKernelArg(on.kernel, invalid_index, sizeof on.a, &on.a)); });
}

void set_arguments(objects& on) {
    clSetKernelArg(on.add, 0, sizeof on.a, &on.a);
    clSetKernelArg(on.add, 1, sizeof on.b, &on.b);
    clSetKernelArg(on.add, 2, sizeof on.sum, &on.sum);
}

void add_usual_work(rows<objects> add) {
    add("set 3 arguments", [](objects& on) { set_arguments(on); });
    add("set 3 arguments, launch, event", [](objects& on) {
        set_arguments(on);
        std::size_t const global[] = {work_items};
        std::size_t const local[] = {group_size};
        cl_event event = nullptr;
        clEnqueueNDRangeKernel(on.queue, on.add, 1, nullptr, global, local, 0, nullptr, &event);
        clReleaseEvent(event);
    });
    add("write_buffer, blocking",
        [](objects& on) { clEnqueueWriteBuffer(on.queue, on.a, CL_TRUE, 0, bytes, host.data(), 0, nullptr, nullptr); });
    add("read_buffer, blocking",
        [](objects& on) { clEnqueueReadBuffer(on.queue, on.a, CL_TRUE, 0, bytes, host.data(), 0, nullptr, nullptr); });
}

void add_kernel_commands(rows<objects> add) {
    add("launch", [](objects& on) {
        std::size_t const global[] = {work_items};
        std::size_t const local[] = {group_size};
        clEnqueueNDRangeKernel(on.queue, on.kernel, 1, nullptr, global, local, 0, nullptr, nullptr);
    });
    add("launch, event", [](objects& on) {
        std::size_t const global[] = {work_items};
        std::size_t const local[] = {group_size};
        cl_event event = nullptr;
        clEnqueueNDRangeKernel(on.queue, on.kernel, 1, nullptr, global, local, 0, nullptr, &event);
        clReleaseEvent(event);
    });
    add("native_kernel", [](objects& on) {
        clEnqueueNativeKernel(
            on.queue, [](void*) {}, nullptr, 0, 0, nullptr, nullptr, 0, nullptr, nullptr);
    });
    add("marker", [](objects& on) {
        cl_event event = nullptr;
        clEnqueueMarkerWithWaitList(on.queue, 0, nullptr, &event);
        clReleaseEvent(event);
    });
    add("marker with a list of 4", [](objects& on) {
        cl_event const list[] = {on.events[0], on.events[1], on.events[2], on.events[3]};
        cl_event event = nullptr;
        clEnqueueMarkerWithWaitList(on.queue, 4, list, &event);
        clReleaseEvent(event);
    });
}

void add_buffer_commands(rows<objects> add) {
    add("write_buffer", [](objects& on) {
        clEnqueueWriteBuffer(on.queue, on.a, CL_FALSE, 0, bytes, host.data(), 0, nullptr, nullptr);
    });
    add("write_buffer, event", [](objects& on) {
        cl_event event = nullptr;
        clEnqueueWriteBuffer(on.queue, on.a, CL_FALSE, 0, bytes, host.data(), 0, nullptr, &event);
        clReleaseEvent(event);
    });
    add("read_buffer",
        [](objects& on) { clEnqueueReadBuffer(on.queue, on.a, CL_FALSE, 0, bytes, host.data(), 0, nullptr, nullptr); });
    add("copy_buffer",
        [](objects& on) { clEnqueueCopyBuffer(on.queue, on.a, on.b, 0, 0, bytes, 0, nullptr, nullptr); });
    add("map_buffer, unmap_mem_object", [](objects& on) {
        void* const mapped =
            clEnqueueMapBuffer(on.queue, on.a, CL_FALSE, CL_MAP_READ, 0, bytes, 0, nullptr, nullptr, nullptr);
        clEnqueueUnmapMemObject(on.queue, on.a, mapped, 0, nullptr, nullptr);
    });
    add("read_buffer_rect", [](objects& on) {
        clEnqueueReadBufferRect(on.queue, on.a, CL_FALSE, origin.data(), origin.data(), box.data(), 0, 0, 0, 0,
                                host.data(), 0, nullptr, nullptr);
    });
    add("write_buffer_rect", [](objects& on) {
        clEnqueueWriteBufferRect(on.queue, on.a, CL_FALSE, origin.data(), origin.data(), box.data(), 0, 0, 0, 0,
                                 host.data(), 0, nullptr, nullptr);
    });
    add("copy_buffer_rect", [](objects& on) {
        clEnqueueCopyBufferRect(on.queue, on.a, on.b, origin.data(), origin.data(), box.data(), 0, 0, 0, 0, 0, nullptr,
                                nullptr);
    });
    add("fill_buffer", [](objects& on) {
        clEnqueueFillBuffer(on.queue, on.a, &pattern, sizeof pattern, 0, bytes, 0, nullptr, nullptr);
    });
    add("migrate_mem_objects",
        [](objects& on) { clEnqueueMigrateMemObjects(on.queue, 1, &on.a, 0, 0, nullptr, nullptr); });
}

void add_image_commands(rows<objects> add) {
    add("read_image", [](objects& on) {
        clEnqueueReadImage(on.queue, on.image, CL_FALSE, origin.data(), box.data(), 0, 0, host.data(), 0, nullptr,
                           nullptr);
    });
    add("write_image", [](objects& on) {
        clEnqueueWriteImage(on.queue, on.image, CL_FALSE, origin.data(), box.data(), 0, 0, host.data(), 0, nullptr,
                            nullptr);
    });
    add("map_image, unmap_mem_object", [](objects& on) {
        std::size_t row = 0;
        std::size_t slice = 0;
        void* const mapped = clEnqueueMapImage(on.queue, on.image, CL_FALSE, CL_MAP_READ, origin.data(), box.data(),
                                               &row, &slice, 0, nullptr, nullptr, nullptr);
        clEnqueueUnmapMemObject(on.queue, on.image, mapped, 0, nullptr, nullptr);
    });
    add("copy_image", [](objects& on) {
        clEnqueueCopyImage(on.queue, on.image, on.second_image, origin.data(), origin.data(), box.data(), 0, nullptr,
                           nullptr);
    });
    add("copy_image_to_buffer", [](objects& on) {
        clEnqueueCopyImageToBuffer(on.queue, on.image, on.a, origin.data(), box.data(), 0, 0, nullptr, nullptr);
    });
    add("copy_buffer_to_image", [](objects& on) {
        clEnqueueCopyBufferToImage(on.queue, on.a, on.image, 0, origin.data(), box.data(), 0, nullptr, nullptr);
    });
    add("fill_image", [](objects& on) {
        constexpr std::array<cl_uint, 4> color{1, 2, 3, 4};
        clEnqueueFillImage(on.queue, on.image, color.data(), origin.data(), box.data(), 0, nullptr, nullptr);
    });
}

void add_svm_commands(rows<objects> add) {
    add("svm_memcpy", [](objects& on) {
        clEnqueueSVMMemcpy(on.queue, CL_FALSE, on.memory, host.data(), bytes, 0, nullptr, nullptr);
    });
    add("fill_svm", [](objects& on) {
        clEnqueueSVMMemFill(on.queue, on.memory, &pattern, sizeof pattern, bytes, 0, nullptr, nullptr);
    });
    add("svm_map, svm_unmap", [](objects& on) {
        clEnqueueSVMMap(on.queue, CL_FALSE, CL_MAP_READ, on.memory, bytes, 0, nullptr, nullptr);
        clEnqueueSVMUnmap(on.queue, on.memory, 0, nullptr, nullptr);
    });
    add("svm_migrate_mem", [](objects& on) {
        void const* memory = on.memory;
        clEnqueueSVMMigrateMem(on.queue, 1, &memory, nullptr, 0, 0, nullptr, nullptr);
    });
    add("svm_allocate, svm_free", [](objects& on) {
        void* memory = clSVMAlloc(on.context, CL_MEM_READ_WRITE, bytes, 0);
        clEnqueueSVMFree(on.queue, 1, &memory, nullptr, nullptr, 0, nullptr, nullptr);
    });
}

} // namespace

contender c_api(cl_device_id device) {
    auto const on = std::make_shared<objects>(device);
    contender made{"C API", {}, {}, [on] { clFinish(on->queue); }};
    rows<objects> const add(made, on);
    add_basics(add);
    add_usual_work(add);
    add_kernel_commands(add);
    add_buffer_commands(add);
    add_image_commands(add);
    add_svm_commands(add);
    return made;
}

} // namespace bench
