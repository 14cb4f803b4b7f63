// An OpenCL version as one type, for templates over versions.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero {

/// The classes and the most important functions of an OpenCL version. Classes whose name changed with OpenCL 2.0 have
/// one name here. A name that the version lacks is absent.
///
///     template <class Api>
///     void run_all() {
///         for (auto const& target : Api::get_all_devices()) {
///             typename Api::context context = Api::create_context(target);
///             typename Api::host_queue queue = Api::create_queue(context, target, false, false);
///             // for members of later versions: if constexpr (Api::number >= 120)
///         }
///     }
///     run_all<vorn::mero::api<110>>();
template <>
struct api<VORN_MERO_OPENCL> {
    /// The version's number, such as 120 for OpenCL 1.2.
    static constexpr int number = VORN_MERO_OPENCL;
    /// The version's capability in libnq.
    static constexpr nq::capability capability = nq::capability::VORN_MERO_NAMESPACE;

    /// @{
    /// The class of the version.
    using platform = VORN_MERO_NAMESPACE::platform;
    using device = VORN_MERO_NAMESPACE::device;
    using context = VORN_MERO_NAMESPACE::context;
    using memory_object = VORN_MERO_NAMESPACE::memory_object;
    using buffer = VORN_MERO_NAMESPACE::buffer;
    using image = VORN_MERO_NAMESPACE::image;
    using image_2d = VORN_MERO_NAMESPACE::image_2d;
    using image_3d = VORN_MERO_NAMESPACE::image_3d;
    using sampler = VORN_MERO_NAMESPACE::sampler;
    using program = VORN_MERO_NAMESPACE::program;
    using kernel = VORN_MERO_NAMESPACE::kernel;
    using event = VORN_MERO_NAMESPACE::event;
    using command = VORN_MERO_NAMESPACE::command;
    using read_buffer = VORN_MERO_NAMESPACE::read_buffer;
    using write_buffer = VORN_MERO_NAMESPACE::write_buffer;
    using copy_buffer = VORN_MERO_NAMESPACE::copy_buffer;
    using map_buffer = VORN_MERO_NAMESPACE::map_buffer;
    using unmap_mem_object = VORN_MERO_NAMESPACE::unmap_mem_object;
    using nd_range_kernel = VORN_MERO_NAMESPACE::nd_range_kernel;
    using read_image = VORN_MERO_NAMESPACE::read_image;
    using write_image = VORN_MERO_NAMESPACE::write_image;
    using copy_image = VORN_MERO_NAMESPACE::copy_image;
    using copy_image_to_buffer = VORN_MERO_NAMESPACE::copy_image_to_buffer;
    using copy_buffer_to_image = VORN_MERO_NAMESPACE::copy_buffer_to_image;
    using map_image = VORN_MERO_NAMESPACE::map_image;
    using native_kernel = VORN_MERO_NAMESPACE::native_kernel;
    /// @}

    /// @{
    /// The type of values of the version.
    using context_property = VORN_MERO_NAMESPACE::context_property;
    using device_type = VORN_MERO_NAMESPACE::device_type;
    using mem_flags = VORN_MERO_NAMESPACE::mem_flags;
    using map_flags = VORN_MERO_NAMESPACE::map_flags;
    using mem_object_type = VORN_MERO_NAMESPACE::mem_object_type;
    using sampler_addressing_mode = VORN_MERO_NAMESPACE::sampler_addressing_mode;
    using sampler_filter_mode = VORN_MERO_NAMESPACE::sampler_filter_mode;
    using image_channel_order = VORN_MERO_NAMESPACE::image_channel_order;
    using image_channel_type = VORN_MERO_NAMESPACE::image_channel_type;
    using image_format = VORN_MERO_NAMESPACE::image_format;
    using event_execution_status = VORN_MERO_NAMESPACE::event_execution_status;
    using program_build_status = VORN_MERO_NAMESPACE::program_build_status;
    using device_binary = VORN_MERO_NAMESPACE::device_binary;
    using local_memory = VORN_MERO_NAMESPACE::local_memory;
    /// @}

    /// @{
    /// The tag of a constructor of the version.
    using create_reference = VORN_MERO_NAMESPACE::internal::create_reference;
    using take_ownership = VORN_MERO_NAMESPACE::internal::take_ownership;
    /// @}

#if VORN_MERO_OPENCL < 110
    /// The class of the version. In OpenCL 1.0 only.
    using task_kernel = VORN_MERO_NAMESPACE::task_kernel;
#endif

#if VORN_MERO_OPENCL >= 110
    /// @{
    /// The class of the version. Since OpenCL 1.1.
    using sub_buffer = VORN_MERO_NAMESPACE::sub_buffer;
    using event_promise = VORN_MERO_NAMESPACE::event_promise;
    using read_buffer_rect = VORN_MERO_NAMESPACE::read_buffer_rect;
    using write_buffer_rect = VORN_MERO_NAMESPACE::write_buffer_rect;
    using copy_buffer_rect = VORN_MERO_NAMESPACE::copy_buffer_rect;
    /// @}

    /// The type of values of the version. Since OpenCL 1.1.
    using commmand_exec_callback_type = VORN_MERO_NAMESPACE::commmand_exec_callback_type;
#endif

#if VORN_MERO_OPENCL >= 120
    /// @{
    /// The class of the version. Since OpenCL 1.2.
    using image_1d = VORN_MERO_NAMESPACE::image_1d;
    using image_1d_buffer = VORN_MERO_NAMESPACE::image_1d_buffer;
    using image_1d_array = VORN_MERO_NAMESPACE::image_1d_array;
    using image_2d_array = VORN_MERO_NAMESPACE::image_2d_array;
    using fill_buffer_base = VORN_MERO_NAMESPACE::fill_buffer_base;
    using fill_buffer_bytes = VORN_MERO_NAMESPACE::fill_buffer_bytes;
    using fill_image_base = VORN_MERO_NAMESPACE::fill_image_base;
    using migrate_mem_objects = VORN_MERO_NAMESPACE::migrate_mem_objects;
    /// @}

    /// @{
    /// The type of values of the version. Since OpenCL 1.2.
    using migration_flags = VORN_MERO_NAMESPACE::migration_flags;
    using program_binary_type = VORN_MERO_NAMESPACE::program_binary_type;
    using device_affinity_domain = VORN_MERO_NAMESPACE::device_affinity_domain;
    /// @}

    /// @{
    /// The class template of the version. Since OpenCL 1.2.
    template <class T>
    using fill_buffer = VORN_MERO_NAMESPACE::fill_buffer<T>;
    template <class Channel>
    using fill_image = VORN_MERO_NAMESPACE::fill_image<Channel>;
    /// @}
#endif

#if VORN_MERO_OPENCL >= 200
    /// @{
    /// The class of the version. Since OpenCL 2.0.
    using pipe = VORN_MERO_NAMESPACE::pipe;
    using device_command_queue = VORN_MERO_NAMESPACE::device_command_queue;
    using svm_free = VORN_MERO_NAMESPACE::svm_free;
    using svm_memcpy = VORN_MERO_NAMESPACE::svm_memcpy;
    using fill_svm_base = VORN_MERO_NAMESPACE::fill_svm_base;
    using svm_map = VORN_MERO_NAMESPACE::svm_map;
    using svm_unmap = VORN_MERO_NAMESPACE::svm_unmap;
    /// @}

    /// The type of values of the version. Since OpenCL 2.0.
    using svm_mem_flags = VORN_MERO_NAMESPACE::svm_mem_flags;

    /// The class template of the version. Since OpenCL 2.0.
    template <class T>
    using fill_svm = VORN_MERO_NAMESPACE::fill_svm<T>;
#endif

#if VORN_MERO_OPENCL >= 210
    /// The class of the version. Since OpenCL 2.1.
    using svm_migrate_mem = VORN_MERO_NAMESPACE::svm_migrate_mem;
#endif

    /// The queue that the host enqueues to: `command_queue`, since OpenCL 2.0 `host_command_queue`.
    using host_queue = VORN_MERO_NAMESPACE::internal::host_queue;

    /// As `get_all_devices` of the namespace.
    [[nodiscard]] static std::vector<device> get_all_devices() { return VORN_MERO_NAMESPACE::get_all_devices(); }

    /// As `get_call_handle_device` of the namespace.
    [[nodiscard]] static device get_call_handle_device(nq::call_handle const& call_handle) {
        return VORN_MERO_NAMESPACE::get_call_handle_device(call_handle);
    }

    /// As `raw::get_raw_event`: an element of a wait list.
    [[nodiscard]] static _nq_cl_event* get_raw_event(event const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_event(object);
    }

    /// As `raw::get_raw_memory_object`: an element of a list of memory objects.
    [[nodiscard]] static _nq_cl_mem*
    get_raw_memory_object(memory_object const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_memory_object(object);
    }

    /// As `raw::get_raw_device_id`.
    [[nodiscard]] static _nq_cl_device_id* get_raw_device_id(device const& object) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_device_id(object);
    }

    /// As `raw::get_raw_platform_id`.
    [[nodiscard]] static _nq_cl_platform_id* get_raw_platform_id(platform const& object) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_platform_id(object);
    }

    /// As `raw::get_raw_context`.
    [[nodiscard]] static _nq_cl_context* get_raw_context(context const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_context(object);
    }

    /// As `raw::get_raw_command_queue`.
    [[nodiscard]] static _nq_cl_command_queue*
    get_raw_command_queue(host_queue const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_command_queue(object);
    }

    /// As `raw::get_raw_program`.
    [[nodiscard]] static _nq_cl_program* get_raw_program(program const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_program(object);
    }

    /// As `raw::get_raw_kernel`.
    [[nodiscard]] static _nq_cl_kernel* get_raw_kernel(kernel const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_kernel(object);
    }

    /// As `raw::get_raw_sampler`.
    [[nodiscard]] static _nq_cl_sampler* get_raw_sampler(sampler const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_sampler(object);
    }

    /// As `raw::get_call_handle`.
    template <class Object>
    [[nodiscard]] static auto get_call_handle(Object const& object VORN_MERO_LIFETIMEBOUND) noexcept
        -> decltype(VORN_MERO_NAMESPACE::raw::get_call_handle(object)) {
        return VORN_MERO_NAMESPACE::raw::get_call_handle(object);
    }

    /// As `raw::retain`.
    template <class Object>
    static auto retain(Object const& object) -> decltype(VORN_MERO_NAMESPACE::raw::retain(object)) {
        return VORN_MERO_NAMESPACE::raw::retain(object);
    }

    /// As `raw::release`.
    template <class Object>
    static auto release(Object const& object) -> decltype(VORN_MERO_NAMESPACE::raw::release(object)) {
        return VORN_MERO_NAMESPACE::raw::release(object);
    }

    /// As `raw::refcount`.
    template <class Object>
    [[nodiscard]] static auto refcount(Object const& object) -> decltype(VORN_MERO_NAMESPACE::raw::refcount(object)) {
        return VORN_MERO_NAMESPACE::raw::refcount(object);
    }

    /// As `raw::create_platform`.
    [[nodiscard]] static platform create_platform(nq::call_handle const& call_handle, _nq_cl_platform_id* handle) {
        return VORN_MERO_NAMESPACE::raw::create_platform(call_handle, handle);
    }

    /// As `raw::create_device`.
    [[nodiscard]] static device create_device(nq::call_handle const& call_handle, _nq_cl_device_id* handle) {
        return VORN_MERO_NAMESPACE::raw::create_device(call_handle, handle);
    }

    /// As `raw::create_context`.
    [[nodiscard]] static context create_context(nq::call_handle const& call_handle, _nq_cl_context* handle) {
        return VORN_MERO_NAMESPACE::raw::create_context(call_handle, handle);
    }

    /// As `raw::create_event`.
    [[nodiscard]] static event create_event(nq::call_handle const& call_handle, _nq_cl_event* handle) {
        return VORN_MERO_NAMESPACE::raw::create_event(call_handle, handle);
    }

    /// As `raw::create_program`.
    [[nodiscard]] static program create_program(nq::call_handle const& call_handle, _nq_cl_program* handle) {
        return VORN_MERO_NAMESPACE::raw::create_program(call_handle, handle);
    }

    /// As `raw::create_sampler`.
    [[nodiscard]] static sampler create_sampler(nq::call_handle const& call_handle, _nq_cl_sampler* handle) {
        return VORN_MERO_NAMESPACE::raw::create_sampler(call_handle, handle);
    }

    /// As `raw::create_buffer`.
    [[nodiscard]] static buffer create_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_buffer(call_handle, handle);
    }

    /// As `raw::create_image_2d`.
    [[nodiscard]] static image_2d create_image_2d(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_image_2d(call_handle, handle);
    }

    /// As `raw::create_image3d`.
    [[nodiscard]] static image_3d create_image3d(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_image3d(call_handle, handle);
    }

#if VORN_MERO_OPENCL < 200
    /// As `raw::create_command_queue`.
    [[nodiscard]] static host_queue create_host_queue(nq::call_handle const& call_handle,
                                                      _nq_cl_command_queue* handle) {
        return VORN_MERO_NAMESPACE::raw::create_command_queue(call_handle, handle);
    }
#else
    /// As `raw::create_host_command_queue`.
    [[nodiscard]] static host_queue create_host_queue(nq::call_handle const& call_handle,
                                                      _nq_cl_command_queue* handle) {
        return VORN_MERO_NAMESPACE::raw::create_host_command_queue(call_handle, handle);
    }
#endif

#if VORN_MERO_OPENCL >= 110
    /// As `raw::get_raw_event`. Since OpenCL 1.1.
    [[nodiscard]] static _nq_cl_event* get_raw_event(event_promise const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_event(object);
    }

    /// As `raw::create_sub_buffer`. Since OpenCL 1.1.
    [[nodiscard]] static sub_buffer create_sub_buffer(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_sub_buffer(call_handle, handle);
    }
#endif

#if VORN_MERO_OPENCL >= 120
    /// As `raw::create_image_1d`. Since OpenCL 1.2.
    [[nodiscard]] static image_1d create_image_1d(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_image_1d(call_handle, handle);
    }

    /// As `raw::create_image_1d_buffer`. Since OpenCL 1.2.
    [[nodiscard]] static image_1d_buffer create_image_1d_buffer(nq::call_handle const& call_handle,
                                                                _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_image_1d_buffer(call_handle, handle);
    }

    /// As `raw::create_image_1d_array`. Since OpenCL 1.2.
    [[nodiscard]] static image_1d_array create_image_1d_array(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_image_1d_array(call_handle, handle);
    }

    /// As `raw::create_image_2d_array`. Since OpenCL 1.2.
    [[nodiscard]] static image_2d_array create_image_2d_array(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_image_2d_array(call_handle, handle);
    }
#endif

#if VORN_MERO_OPENCL >= 200
    /// As `raw::create_pipe`. Since OpenCL 2.0.
    [[nodiscard]] static pipe create_pipe(nq::call_handle const& call_handle, _nq_cl_mem* handle) {
        return VORN_MERO_NAMESPACE::raw::create_pipe(call_handle, handle);
    }

    /// As `raw::get_raw_command_queue`. Since OpenCL 2.0.
    [[nodiscard]] static _nq_cl_command_queue*
    get_raw_command_queue(device_command_queue const& object VORN_MERO_LIFETIMEBOUND) noexcept {
        return VORN_MERO_NAMESPACE::raw::get_raw_command_queue(object);
    }

    /// As `raw::create_device_command_queue`. Since OpenCL 2.0.
    [[nodiscard]] static device_command_queue create_device_command_queue(nq::call_handle const& call_handle,
                                                                          _nq_cl_command_queue* handle) {
        return VORN_MERO_NAMESPACE::raw::create_device_command_queue(call_handle, handle);
    }
#endif

    /// A context of one device, without properties or callback.
    [[nodiscard]] static context create_context(device const& target) {
        return VORN_MERO_NAMESPACE::create_context({}, {target}, nullptr, nullptr);
    }

#if VORN_MERO_OPENCL < 200
    /// A queue by `context::create_command_queue`.
    [[nodiscard]] static host_queue create_queue(context& owner, device const& target, bool out_of_order,
                                                 bool profiling) {
        return owner.create_command_queue(target, out_of_order, profiling);
    }
#else
    /// A queue by `context::create_host_command_queue`.
    [[nodiscard]] static host_queue create_queue(context& owner, device const& target, bool out_of_order,
                                                 bool profiling) {
        return owner.create_host_command_queue(target, out_of_order, profiling);
    }
#endif

#if VORN_MERO_OPENCL < 110
    /// A launch in one dimension, from offset 0; sizes are in work-items.
    [[nodiscard]] static nd_range_kernel launch(kernel const& function, std::size_t global_size,
                                                std::size_t local_size) {
        return {function, 1, {global_size, 1, 1}, { local_size, 1, 1 }};
    }
#else
    /// A launch in one dimension, from offset 0; sizes are in work-items.
    [[nodiscard]] static nd_range_kernel launch(kernel const& function, std::size_t global_size,
                                                std::size_t local_size) {
        return {function, 1, {0, 0, 0}, {global_size, 1, 1}, {local_size, 1, 1}};
    }
#endif
};

} // namespace vorn::mero

#endif
