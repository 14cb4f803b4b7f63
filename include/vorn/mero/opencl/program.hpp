// Programs.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/device.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A device and the bytes of a program's binary for it, in the implementation's own form. Worth keeping in a file
/// beside the names and versions of device and driver: any other refuses it.
struct device_binary {
    VORN_MERO_NAMESPACE::device device;
    std::vector<unsigned char> binary;
};

/// An OpenCL program: source, binaries, built-in kernels or intermediate language; made by a context.
///
///     program.build({device}, "-cl-std=CL1.2 -D WIDTH=64", nullptr, nullptr);
///     if (program.build_status(device) != cl::program_build_status::success) {
///         throw std::runtime_error(program.build_log(device));
///     }
///     cl::kernel kernel = program.create_kernel("blur");
///
/// Any number of threads may use one program, but for building it while another thread builds it or makes kernels of
/// it.
class VORN_MERO_EXPORT program : public mero::internal::handle<internal::program_kind> {
public:
    using handle::handle;

    /// Builds for the given devices or, when there is none, for every device of the program. Programs of source, of
    /// binaries and of intermediate language all need it before they have kernels. The options are OpenCL's, divided by
    /// blanks and read up to the first zero; kernels of OpenCL 2.0 want `-cl-std=CL2.0`.
    ///
    /// A program that does not build is no exception: ask `build_status` and `build_log`. Every other failure is
    /// thrown: `common::invalid_build_options` for options that are not understood (some implementations take them for
    /// a failed build), `common::compiler_not_available`, `common::invalid_operation` while another build runs or
    /// kernels of the program exist, which are of no use any more where an implementation lets that pass,
    /// `common::invalid_device` for a device that the program was not made for.
    ///
    /// `notify` may be null: building has then ended when this returns. Otherwise it may go on, and `notify` is called
    /// once it has ended, with the program's raw handle and `user_data`, on a thread of OpenCL's choice, maybe before
    /// this returns. It must not throw.
    void build(std::vector<device> const& devices, std::string const& options, void (*notify)(_nq_cl_program*, void*),
               void* user_data);

    /// How the last build for a device of the program ended, or whether it is running. Throws `common::invalid_device`
    /// for a device that the program was not made for, as all queries that take one.
    program_build_status build_status(device const& target) const;

    /// The options of the last build for a device.
    std::string build_options(device const& target) const;

    /// What the compiler said of the last build for a device: errors, but warnings of a build that succeeded too; empty
    /// when it said nothing.
    std::string build_log(device const& target) const;

    /// The context of the program, on the same call handle.
    context get_context() const;

    /// The devices that the program was made for, each retained since OpenCL 1.2.
    std::vector<device> get_devices() const;

    /// The source; empty or of no use for a program that was not made from source.
    std::string source_code() const;

    /// One binary for each device of the program, in the order of `get_devices`; empty for a device without, as all are
    /// before the program is built, but that PoCL throws `common::invalid_program` then. Makes five calls and those
    /// that retain the devices, and copies every binary. Throws `common::bad_implementation` when the replies
    /// contradict each other.
    std::vector<device_binary> binaries() const;

    /// The function of this name, with no arguments set; one call. Each kernel of one function has arguments of its
    /// own. Throws `common::invalid_kernel_name` when the program has no such kernel,
    /// `common::invalid_program_executable` when it was built for no device, `common::invalid_kernel_definition` when
    /// the function differs between devices.
    kernel create_kernel(std::string const& name);

    /// Every kernel of the program in OpenCL's order, maybe none. Two calls, one when there is none. Throws
    /// `common::invalid_program_executable` when the program was built for no device.
    std::vector<kernel> create_all_kernels();

#if VORN_MERO_OPENCL >= 120
    /// What the program holds for a device. Since OpenCL 1.2.
    program_binary_type binary_type(device const& target) const;

    /// The number of kernels. Throws `common::invalid_program_executable` for a program that was not built. Since
    /// OpenCL 1.2.
    unsigned long num_kernels() const;

    /// The names for `create_kernel`. Throws `common::invalid_program_executable` for a program that was not built.
    /// Since OpenCL 1.2.
    std::vector<std::string> kernel_names() const;
#endif

#if VORN_MERO_OPENCL >= 200
    /// The bytes of all variables in the program's scope, on a device. Since OpenCL 2.0.
    unsigned long build_global_variable_total_size(device const& target) const;
#endif

#if VORN_MERO_OPENCL >= 210
    /// The intermediate language that the program was made from; empty for any other program. Since OpenCL 2.1.
    std::vector<unsigned char> il() const;
#endif

#if VORN_MERO_OPENCL >= 220
    /// Whether the program runs constructors of its global variables. Since OpenCL 2.2.
    bool global_constructors_present() const;

    /// Whether the program runs destructors of its global variables. Since OpenCL 2.2.
    bool global_destructors_present() const;

    /// Gives a specialization constant a value of `size` bytes at `value`, which OpenCL copies, for the next build;
    /// until then, and for constants never set, the module's own value holds. Throws `common::invalid_spec_id` for an
    /// id that the module lacks, `common::invalid_value` for another size than the constant's,
    /// `common::invalid_program` for a program that was not made from intermediate language. A build with the same
    /// options as the last may keep the old value. Since OpenCL 2.2.
    void set_specialization_constant_raw(unsigned int id, unsigned long size, void const* value);

    /// The same for a truth value, of one byte. Since OpenCL 2.2.
    void set_specialization_constant(unsigned int id, bool value);

    /// `fn` is called when the program is deleted, with its raw handle, of no further use, and `user_data`, on a thread
    /// of OpenCL's choice, and must not throw. Throws `common::invalid_operation` where the implementation has no such
    /// thing, as many have not. Since OpenCL 2.2.
    void set_release_callback(void (*fn)(_nq_cl_program*, void*), void* user_data);
#endif
};

namespace raw {

/// Null for an object that was moved from.
VORN_MERO_EXPORT _nq_cl_program* get_raw_program(program const& object) noexcept;

/// The call handle that the object was made through.
VORN_MERO_EXPORT nq::call_handle const& get_call_handle(program const& object) noexcept;

/// Adds a reference that the caller has to release.
VORN_MERO_EXPORT void retain(program const& object);

/// A status other than success is thrown as `common::bad_implementation`.
VORN_MERO_EXPORT void release(program const& object);

/// OpenCL's count, which may have changed by the time that it is read.
VORN_MERO_EXPORT std::uint32_t refcount(program const& object);

/// Retains: the caller keeps its own reference.
VORN_MERO_EXPORT program create_program(nq::call_handle const& call_handle, _nq_cl_program* handle);

} // namespace raw
} // namespace vorn::mero::VORN_MERO_NAMESPACE
