// What programs may rely on beside the declarations themselves.
#include "surface.hpp"

#include <vorn/mero/internal/logger.hpp>
#include <vorn/mero/opencl.hpp>

#include <stdexcept>

namespace vorn::mero {
namespace {

static_assert(std::is_same_v<nq::call_handle, std::shared_ptr<nq_call_handle>>);
static_assert(std::is_same_v<std::underlying_type_t<nq::capability>, std::uint64_t>);
static_assert(std::is_same_v<nq::device, std::uint64_t> && sizeof(nq::capability_node) == 16);

// The exceptions of the call layer: three roots that carry a message and a code, two that know theirs.
template <class T, class Base>
concept nq_exception = std::is_base_of_v<Base, T> && std::is_convertible_v<T*, std::exception*> &&
    std::is_nothrow_destructible_v<T> && requires(T const& e) {
    { e.code() }
    noexcept->std::same_as<int>;
    { e.what() }
    noexcept->std::same_as<char const*>;
};

static_assert(nq_exception<nq::nq_error, std::exception>);
static_assert(nq_exception<nq::recoverable_error, nq::nq_error>);
static_assert(nq_exception<nq::unrecoverable_error, nq::nq_error>);
static_assert(nq_exception<nq::invalid_command_id, nq::recoverable_error>);
static_assert(nq_exception<nq::unknown_error, nq::unrecoverable_error>);
static_assert(!std::is_base_of_v<nq::recoverable_error, nq::unknown_error>);
static_assert(std::is_constructible_v<nq::nq_error, std::string const&, int>);
static_assert(std::is_constructible_v<nq::recoverable_error, std::string const&, int>);
static_assert(std::is_constructible_v<nq::unrecoverable_error, std::string const&, int>);
static_assert(std::is_default_constructible_v<nq::invalid_command_id>);
static_assert(std::is_constructible_v<nq::unknown_error, int>);

// The exceptions of OpenCL's statuses: the roots; the classes of the statuses themselves are in the table.
static_assert(std::is_same_v<std::underlying_type_t<common::error_code>, std::int32_t>);
static_assert(std::is_base_of_v<std::exception, common::error> &&
              std::is_base_of_v<common::error, common::opencl_error>);
static_assert(std::is_base_of_v<common::opencl_error, common::logic_error>);
static_assert(std::is_base_of_v<common::opencl_error, common::runtime_error>);
static_assert(std::is_base_of_v<common::error, common::bad_implementation>);
static_assert(std::is_base_of_v<common::error, common::unknown_opencl_error>);
static_assert(!std::is_base_of_v<common::opencl_error, common::bad_implementation>);
static_assert(!std::is_base_of_v<common::opencl_error, common::unknown_opencl_error>);
static_assert(!std::is_base_of_v<std::logic_error, common::logic_error>);
static_assert(!std::is_base_of_v<std::runtime_error, common::runtime_error>);
static_assert(surface::constructs<common::error, std::string const&>);
static_assert(surface::constructs<common::bad_implementation, std::string const&>);
static_assert(surface::constructs<common::unknown_opencl_error, int>);
static_assert(surface::constructs<common::opencl_error, std::string const&, common::error_code>);
static_assert(surface::constructs<common::logic_error, std::string const&, common::error_code>);
static_assert(surface::constructs<common::runtime_error, std::string const&, common::error_code>);
static_assert(std::is_same_v<decltype(std::declval<common::opencl_error const&>().code()), common::error_code const&>);
static_assert(std::is_same_v<decltype(std::declval<common::unknown_opencl_error const&>().value()), int>);

static_assert(std::is_same_v<decltype(&internal::get_mero_logger), spdlog::logger* (*)()>);
static_assert(std::is_same_v<decltype(&internal::get_log_singleton), internal::log_singleton& (*)()>);
static_assert(std::is_same_v<decltype(std::declval<internal::log_singleton&>().get_logger()), spdlog::logger*>);
static_assert(std::is_default_constructible_v<internal::log_singleton>);
static_assert(!std::is_copy_constructible_v<internal::log_singleton>);

template <class Api, int Number, std::uint64_t Capability>
constexpr bool keeps_its_promises() {
    using command = typename Api::command;
    static_assert(Api::number == Number && Api::capability == nq::capability{Capability});
    static_assert(std::is_abstract_v<command> && sizeof(command) == sizeof(void*));
    static_assert(std::has_virtual_destructor_v<command> && std::is_nothrow_destructible_v<command>);
    static_assert(std::is_empty_v<typename Api::create_reference> && std::is_empty_v<typename Api::take_ownership>);

    using binary = typename Api::device_binary;
    static_assert(std::is_aggregate_v<binary> && requires(typename Api::device const& target) {
        binary{target, {0, 1}};
    });
    static_assert(offsetof(binary, device) == 0 &&
                  sizeof(binary) == sizeof(typename Api::device) + sizeof(std::vector<unsigned char>));

    using format = typename Api::image_format;
    constexpr format rgba{Api::image_channel_order::rgba, Api::image_channel_type::unorm_int8};
    static_assert(format{0x10B5, 0x10D2} == rgba && !(format{0x10B5, 0x10D3} == rgba) &&
                  !(format{0x10B6, 0x10D2} == rgba));

    using property = typename Api::context_property;
    static_assert(std::is_convertible_v<std::intptr_t, property> && std::is_convertible_v<property, std::intptr_t>);
    static_assert(std::is_nothrow_constructible_v<property, std::intptr_t> && sizeof(property) == 8);
    static_assert(sizeof(typename Api::local_memory) == sizeof(std::size_t));
    static_assert(std::is_trivially_copyable_v<typename Api::local_memory>);

    // a predicate that costs nothing compares nothing but two addresses
    static_assert(noexcept(std::declval<typename Api::device const&>() == std::declval<typename Api::device const&>()));
    static_assert(noexcept(std::declval<typename Api::device const&>().hash()));
    return true;
}

static_assert(keeps_its_promises<api<100>, 100, 1>() && keeps_its_promises<api<110>, 110, 2>());
static_assert(keeps_its_promises<api<120>, 120, 3>() && keeps_its_promises<api<200>, 200, 4>());
static_assert(keeps_its_promises<api<210>, 210, 5>() && keeps_its_promises<api<220>, 220, 6>());

/// A type of one version is none of another's.
template <class A, class B>
constexpr bool unrelated() {
    static_assert(!std::is_convertible_v<typename A::device, typename B::device>);
    static_assert(!std::is_constructible_v<typename A::device, typename B::device const&>);
    static_assert(!std::is_convertible_v<typename A::buffer*, typename B::memory_object*>);
    static_assert(!std::is_convertible_v<typename A::mem_flags, typename B::mem_flags>);
    static_assert(!std::is_convertible_v<typename A::take_ownership, typename B::take_ownership>);
    static_assert(!std::is_convertible_v<typename A::read_buffer*, typename B::command*>);
    return true;
}

static_assert(unrelated<api<100>, api<110>>() && unrelated<api<110>, api<120>>() && unrelated<api<120>, api<200>>() &&
              unrelated<api<200>, api<210>>() && unrelated<api<210>, api<220>>() && unrelated<api<220>, api<100>>());

} // namespace
} // namespace vorn::mero
