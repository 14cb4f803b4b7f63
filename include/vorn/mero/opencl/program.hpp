// Programs.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A device and a program's binary for it. To cache binaries, store them under the names and versions of device and
/// driver: others refuse them.
struct device_binary {
    VORN_MERO_NAMESPACE::device device; ///< The device that the binary is for.
    std::vector<unsigned char> binary;  ///< The bytes, in the implementation's own form. Empty for no binary.
};

/// An OpenCL program: source, binaries, built-in kernels or intermediate language; made by a context.
///
///     program.build({device}, "-cl-std=CL1.2 -D WIDTH=64", nullptr, nullptr);
///     if (program.build_status(device) != cl::program_build_status::success) {
///         throw std::runtime_error(program.build_log(device));
///     }
///     cl::kernel kernel = program.create_kernel("blur");
///
/// Thread-safe, except that no thread may build a program while another builds it or creates kernels from it. Queries
/// make two calls unless stated otherwise; those that return an object make another to retain it.
class VORN_MERO_EXPORT program : public mero::internal::handle<internal::program_kind> {
public:
    using handle::handle;

    /// Builds the program for the given devices or, if there is none, for all its devices. Programs from source, from
    /// binaries and from intermediate language need this before they have kernels. `options` are OpenCL's, separated by
    /// blanks, up to the first zero; kernels in OpenCL C 2.0 need `-cl-std=CL2.0`.
    ///
    /// A failed build does not throw: check `build_status` and `build_log`. Throws `common::invalid_build_options` for
    /// unknown options (some implementations report a failed build), `common::compiler_not_available`,
    /// `common::invalid_device` for a device that the program was not made for, and `common::invalid_operation` while
    /// another build runs or kernels of the program exist. Some implementations build anyway; such kernels must then
    /// not be used.
    ///
    /// If `notify` is null, the build has ended when this returns. Otherwise it may still run; at its end OpenCL calls
    /// `notify` with the program's raw handle and `user_data`, on any thread, perhaps before this returns. `notify`
    /// must not throw.
    void build(std::vector<device> const& devices, std::string const& options, void (*notify)(_nq_cl_program*, void*),
               void* user_data);

    /// The state of the last build for a device. Like all queries that take a device, throws `common::invalid_device`
    /// for one that the program was not made for.
    [[nodiscard]] program_build_status build_status(device const& target) const;

    /// The options of the last build for a device.
    [[nodiscard]] std::string build_options(device const& target) const;

    /// The compiler's errors and warnings in the last build for a device, perhaps empty. A successful build may have
    /// warnings.
    [[nodiscard]] std::string build_log(device const& target) const;

    /// The context of the program, on the same call handle.
    [[nodiscard]] context get_context() const;

    /// The devices that the program was made for, in OpenCL's order. Two calls, and since OpenCL 1.2 one to retain
    /// each.
    [[nodiscard]] std::vector<device> get_devices() const;

    /// The source. For a program that was not made from source it is empty or meaningless.
    [[nodiscard]] std::string source_code() const;

    /// One binary for each device of the program, in the order of `get_devices`; empty for a device without a binary,
    /// such as before the build (PoCL throws `common::invalid_program` then). Makes five calls and those that retain
    /// the devices, and copies every binary. Throws `common::bad_implementation` when the number of binaries is not
    /// that of the devices.
    [[nodiscard]] std::vector<device_binary> binaries() const;

    /// A new kernel of the function of this name, without arguments set. One call. Throws `common::invalid_kernel_name`
    /// if the program has no such function, `common::invalid_program_executable` if it was not built for any device,
    /// `common::invalid_kernel_definition` if the function differs between devices.
    [[nodiscard]] kernel create_kernel(std::string const& name);

    /// One new kernel of each function of the program, in OpenCL's order. Two calls, or one if there is none. Throws
    /// `common::invalid_program_executable` if the program was not built for any device.
    [[nodiscard]] std::vector<kernel> create_all_kernels();

#if VORN_MERO_OPENCL >= 120
    /// What the program contains for a device. Since OpenCL 1.2.
    [[nodiscard]] program_binary_type binary_type(device const& target) const;

    /// The number of kernel functions. Throws `common::invalid_program_executable` if the program was not built. Since
    /// OpenCL 1.2.
    [[nodiscard]] unsigned long num_kernels() const;

    /// The names for `create_kernel`. Throws `common::invalid_program_executable` if the program was not built. Since
    /// OpenCL 1.2.
    [[nodiscard]] std::vector<std::string> kernel_names() const;
#endif

#if VORN_MERO_OPENCL >= 200
    /// The size in bytes of all variables in the program's scope, on a device. Since OpenCL 2.0.
    [[nodiscard]] unsigned long build_global_variable_total_size(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 210
    /// The intermediate language that the program was made from, empty for any other program. Since OpenCL 2.1.
    [[nodiscard]] std::vector<unsigned char> il() const;
#endif

#if VORN_MERO_OPENCL >= 220
    /// Whether global variables of the program have constructors. Since OpenCL 2.2.
    [[nodiscard]] bool global_constructors_present() const;

    /// Whether global variables of the program have destructors. Since OpenCL 2.2.
    [[nodiscard]] bool global_destructors_present() const;

    /// Sets a specialization constant for the next build: OpenCL copies the `size` bytes at `value`. Constants that are
    /// not set keep the module's value. A build with the same options as the last may keep the old value.
    ///
    /// Throws `common::invalid_spec_id` for an id that the module lacks, `common::invalid_value` if `size` is not the
    /// constant's, `common::invalid_program` for a program that was not made from intermediate language. Since
    /// OpenCL 2.2.
    void set_specialization_constant_raw(unsigned int id, unsigned long size, void const* value);

    /// Sets a boolean specialization constant, of one byte; otherwise as `set_specialization_constant_raw`. Since
    /// OpenCL 2.2.
    void set_specialization_constant(unsigned int id, bool value);

    /// Has OpenCL call `fn` when it deletes the program, with the raw handle, which must not be used, and `user_data`,
    /// on any thread. `fn` must not throw. Throws `common::invalid_operation` where the implementation does not support
    /// this; many do not. Since OpenCL 2.2.
    void set_release_callback(void (*fn)(_nq_cl_program*, void*), void* user_data);
#endif
};

namespace raw {

/// The raw handle, null if the object was moved from.
[[nodiscard]] VORN_MERO_EXPORT _nq_cl_program* get_raw_program(program const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// The call handle of the object.
[[nodiscard]] VORN_MERO_EXPORT nq::call_handle const&
get_call_handle(program const& object VORN_MERO_LIFETIMEBOUND) noexcept;

/// Adds a reference that the caller must release.
VORN_MERO_EXPORT void retain(program const& object);

/// Drops a reference that the caller holds. Throws `common::bad_implementation` when OpenCL refuses.
VORN_MERO_EXPORT void release(program const& object);

/// OpenCL's reference count, which may be outdated at once.
[[nodiscard]] VORN_MERO_EXPORT std::uint32_t refcount(program const& object);

/// Wraps a raw handle and retains it: the caller keeps its own reference.
[[nodiscard]] VORN_MERO_EXPORT program create_program(nq::call_handle const& call_handle, _nq_cl_program* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE

#endif
