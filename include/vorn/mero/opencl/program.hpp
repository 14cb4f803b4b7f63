// Programs.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl/standalone.hpp>

#include <vorn/mero/opencl/forward.hpp>
#include <vorn/mero/opencl/types.hpp>

#include <vorn/mero/opencl/device.hpp>
#endif

namespace vorn::mero::VORN_MERO_NAMESPACE {

/// A device and the bytes of a program's binary for it.
struct device_binary {
    VORN_MERO_NAMESPACE::device device;
    std::vector<unsigned char> binary;
};

/// An OpenCL program: source, binaries, built-in kernels or intermediate language; made by a context.
class VORN_MERO_EXPORT program : public mero::internal::handle<internal::program_kind> {
public:
    using handle::handle;

    /// Builds for the given devices or, when there is none, for every device of the program.
    ///
    /// A program that does not build is no exception: ask `build_status` and `build_log`. Every other failure is
    /// thrown. `notify` may be null; it is called once building has ended, on a thread of OpenCL's choice, and must not
    /// throw.
    void build(std::vector<device> const& devices, std::string const& options, void (*notify)(_nq_cl_program*, void*),
               void* user_data);

    /// How the last build for a device of the program ended, or whether it is running.
    program_build_status build_status(device const& target) const;

    /// The options of the last build for a device.
    std::string build_options(device const& target) const;

    /// What the compiler said of the last build for a device.
    std::string build_log(device const& target) const;

    /// The context of the program, on the same call handle.
    context get_context() const;

    /// The devices that the program was made for.
    std::vector<device> get_devices() const;

    /// The source; empty or of no use for a program that was not made from source.
    std::string source_code() const;

    /// One binary for each device of the program, in the order of `get_devices`; empty for a device without.
    std::vector<device_binary> binaries() const;

    /// Throws `common::invalid_kernel_name` when the program has no such kernel.
    kernel create_kernel(std::string const& name);

    /// Every kernel of the program, maybe none.
    std::vector<kernel> create_all_kernels();

#if VORN_MERO_OPENCL >= 120
    /// What the program holds for a device. Since OpenCL 1.2.
    program_binary_type binary_type(device const& target) const;

    /// Throws `common::invalid_program_executable` for a program that was not built. Since OpenCL 1.2.
    unsigned long num_kernels() const;

    /// Throws `common::invalid_program_executable` for a program that was not built. Since OpenCL 1.2.
    std::vector<std::string> kernel_names() const;
#endif

#if VORN_MERO_OPENCL >= 200
    /// In bytes. Since OpenCL 2.0.
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

    /// Gives a specialization constant a value of `size` bytes, for the next build. Since OpenCL 2.2.
    void set_specialization_constant_raw(unsigned int id, unsigned long size, void const* value);

    /// A truth value, of one byte. Since OpenCL 2.2.
    void set_specialization_constant(unsigned int id, bool value);

    /// `fn` is called when the program is deleted, on a thread of OpenCL's choice, and must not throw. Since
    /// OpenCL 2.2.
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
