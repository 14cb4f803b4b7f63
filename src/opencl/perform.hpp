#pragma once

// From a version's classes to the wire: the sources in this folder fill a block and perform it here.

#include "opencl/version.hpp"

#include "internal/call.hpp"
#include "internal/opencl_values.hpp"
#include "internal/owner_definitions.hpp"
#include "internal/query.hpp"

#include <nq/commands.hpp>

namespace vorn::mero::VORN_MERO_NAMESPACE::detail {

namespace block = nq::block;
namespace cl = mero::internal::cl;
using mero::internal::owner;
using mero::internal::owner_access;

inline constexpr nq::capability version = nq::capability::VORN_MERO_NAMESPACE;

template <class Kind>
auto* raw_of(owner<Kind> const& object) noexcept {
    return owner_access::raw(object);
}

template <class Kind>
nq::call_handle const& call_handle_of(owner<Kind> const& object) noexcept {
    return owner_access::call_handle(object);
}

/// The raw handles of some objects, in order.
template <class Object>
auto raw_handles(std::vector<Object> const& objects) {
    std::vector<typename Object::raw_type*> handles;
    handles.reserve(objects.size());
    for (Object const& object : objects) {
        handles.push_back(raw_of(object));
    }
    return handles;
}

/// The address of the elements, null for an empty list as OpenCL requires.
template <class T>
T* data_or_null(std::vector<T>& list) noexcept {
    return list.empty() ? nullptr : list.data();
}

template <class T>
T const* data_or_null(std::vector<T> const& list) noexcept {
    return list.empty() ? nullptr : list.data();
}

/// OpenCL counts in 32 bits.
template <class T>
std::uint32_t count_of(std::vector<T> const& list) noexcept {
    return static_cast<std::uint32_t>(list.size());
}

/// Performs the entry point of a block and throws what failed.
template <class Block>
[[gnu::always_inline]] inline void perform(nq::call_handle const& handle, Block& block) {
    mero::internal::call_checked(handle.get(), nq::command_id<version, Block>, block);
}

/// Performs the entry point of a block and leaves its status, if it has one, to the caller.
template <class Block>
void send(nq::call_handle const& handle, Block& block) {
    mero::internal::call(handle.get(), nq::command_id<version, Block>, &block);
}

/// Performs a create entry point on an object's call handle. The result owns the reference from OpenCL.
template <class Result, class Kind, class Block>
Result create(owner<Kind> const& maker, Block& block) {
    perform(call_handle_of(maker), block);
    return Result(call_handle_of(maker), block.result, internal::take_ownership{});
}

/// An info entry point with its object, its name and further arguments filled in.
template <class Block>
class query {
public:
    query(nq::call_handle const& handle, Block const& block) noexcept : handle_(handle.get()), block_(block) {}

    void operator()(std::size_t size, void* value, std::size_t* size_ret) {
        block_.param_value_size = size;
        block_.param_value = value;
        block_.param_value_size_ret = size_ret;
        mero::internal::call_checked(handle_, nq::command_id<version, Block>, block_);
    }

private:
    nq_call_handle* handle_;
    Block block_;
};

inline query<block::clGetDeviceInfo> ask(device const& object, std::uint32_t name) {
    return {call_handle_of(object), {.device = raw_of(object), .param_name = name}};
}

template <class T, class Block>
T read_scalar(query<Block> ask) {
    return mero::internal::read_scalar<T>(ask);
}

template <class Block>
bool read_bool(query<Block> ask) {
    return read_scalar<std::uint32_t>(ask) != 0;
}

template <class Block>
std::string read_text(query<Block> ask) {
    return mero::internal::read_text(ask);
}

template <class Block>
std::array<std::size_t, 3> read_sizes(query<Block> ask) {
    return mero::internal::read_fixed<std::size_t, 3>(ask);
}

template <class T, class Block>
std::vector<T> read_vector(query<Block> ask) {
    return mero::internal::read_vector<T>(ask);
}

/// Reads a raw handle and returns an object that retains it, on the call handle of `asked`.
template <class Result, class Kind, class Block>
Result read_object(owner<Kind> const& asked, query<Block> ask) {
    auto* const raw = read_scalar<typename Result::raw_type*>(ask);
    return Result(call_handle_of(asked), raw, internal::create_reference{});
}

template <class Kind, class Block>
std::vector<device> read_devices(owner<Kind> const& asked, query<Block> ask) {
    mero::internal::short_array<_nq_cl_device_id*> ids;
    mero::internal::read_array(ask, sizeof(_nq_cl_device_id*), ids);
    std::vector<device> devices;
    devices.reserve(ids.size());
    for (_nq_cl_device_id* const id : ids) {
        devices.emplace_back(call_handle_of(asked), id, internal::create_reference{});
    }
    return devices;
}

/// Makes an owner of each handle in order. If that fails, each handle has been released exactly once.
template <class Object, class Raw>
std::vector<Object> adopt_all(nq::call_handle const& handle, Raw* const* raws, std::size_t count) {
    std::vector<Object> objects;
    std::size_t adopted = 0;
    try {
        objects.reserve(count);
        for (; adopted != count; ++adopted) {
            objects.emplace_back(handle, raws[adopted], internal::take_ownership{});
        }
    } catch (...) {
        for (; adopted != count; ++adopted) {
            Object(handle, raws[adopted], internal::take_ownership{});
        }
        throw;
    }
    return objects;
}

} // namespace vorn::mero::VORN_MERO_NAMESPACE::detail
