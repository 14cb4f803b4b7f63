#pragma once

// From a version's classes to the wire: the sources in this folder fill a block and perform it here.

#include "opencl/version.hpp"

#include "internal/call.hpp"
#include "internal/opencl_values.hpp"
#include "internal/owner_definitions.hpp"
#include "internal/query.hpp"

#include <nq/commands.hpp>

#include <bit>
#include <iterator>
#include <tuple>
#include <type_traits>

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

template <class Member>
struct member;
template <class Block, class Field>
struct member<Field Block::*> {
    using block = Block;
    using field = Field;
};
template <auto Field>
using field_type = typename member<decltype(Field)>::field;

/// An info entry point as the reads call it. `First` and `More` are the fields of its block that say what
/// it is asked of.
template <auto First, auto... More>
class info_call {
public:
    info_call(nq_call_handle* handle, std::uint32_t name, field_type<First> first, field_type<More>... more) noexcept
        : handle_(handle) {
        block_.*First = first;
        ((block_.*More = more), ...);
        block_.param_value_size_ret = &reported;
        block_.param_name = name;
    }
    info_call(info_call const&) = delete;
    info_call& operator=(info_call const&) = delete;

    [[gnu::always_inline]] void operator()(std::size_t size, void* value) {
        block_.param_value_size = size;
        block_.param_value = value;
        mero::internal::call_checked(handle_, nq::command_id<version, block_type>, block_);
    }

    std::size_t reported = 0;

private:
    using block_type = typename member<decltype(First)>::block;

    nq_call_handle* handle_;
    block_type block_;
};

/// What an info entry point is asked: its own arguments.
template <auto... Inputs>
class query {
public:
    query(nq::call_handle const& handle, std::uint32_t name, field_type<Inputs>... inputs) noexcept
        : arguments_(handle.get(), name, inputs...) {}

    template <class Read>
    auto answer(Read read) const {
        return std::apply(read, arguments_);
    }

private:
    std::tuple<nq_call_handle*, std::uint32_t, field_type<Inputs>...> arguments_;
};

/// Makes a single call, without a read's checks.
template <auto... Inputs>
void call_once(query<Inputs...> const& ask, std::size_t size, void* value) {
    ask.answer([=](auto... arguments) { info_call<Inputs...>(arguments...)(size, value); });
}

inline query<&block::clGetDeviceInfo::device> ask(device const& object, std::uint32_t name) {
    return {call_handle_of(object), name, raw_of(object)};
}

// A read is compiled once for each entry point. It takes what it needs in registers, so that a member that only asks is
// a few instructions long.
template <class Word, auto... Inputs>
[[gnu::noinline]] Word read_word(nq_call_handle* handle, std::uint32_t name, field_type<Inputs>... inputs) {
    return mero::internal::read_scalar<Word>(info_call<Inputs...>(handle, name, inputs...));
}

template <auto... Inputs>
[[gnu::noinline]] std::string read_text_of(nq_call_handle* handle, std::uint32_t name, field_type<Inputs>... inputs) {
    return mero::internal::read_text(info_call<Inputs...>(handle, name, inputs...));
}

/// The unsigned number of a size; one read serves all types of that size.
template <std::size_t Size>
using word = std::conditional_t<Size == 1, std::uint8_t, std::conditional_t<Size == 4, std::uint32_t, std::uint64_t>>;

template <class T, auto... Inputs>
T read_scalar(query<Inputs...> const& ask) {
    return std::bit_cast<T>(ask.answer(read_word<word<sizeof(T)>, Inputs...>));
}

template <auto... Inputs>
bool read_bool(query<Inputs...> const& ask) {
    return read_scalar<std::uint32_t>(ask) != 0;
}

template <auto... Inputs>
std::string read_text(query<Inputs...> const& ask) {
    return ask.answer(read_text_of<Inputs...>);
}

template <auto... Inputs>
std::array<std::size_t, 3> read_sizes(query<Inputs...> const& ask) {
    return ask.answer([](auto... arguments) {
        return mero::internal::read_fixed<std::size_t, 3>(info_call<Inputs...>(arguments...));
    });
}

template <class T, auto... Inputs>
std::vector<T> read_vector(query<Inputs...> const& ask) {
    return ask.answer(
        [](auto... arguments) { return mero::internal::read_vector<T>(info_call<Inputs...>(arguments...)); });
}

/// Reads a raw handle and returns an object that retains it, on the call handle of `asked`.
template <class Result, class Kind, auto... Inputs>
Result read_object(owner<Kind> const& asked, query<Inputs...> const& ask) {
    auto* const raw = read_scalar<typename Result::raw_type*>(ask);
    return Result(call_handle_of(asked), raw, internal::create_reference{});
}

/// Goes over raw handles and gives each as something that becomes an object of its own reference.
template <class Object>
class retaining_iterator {
public:
    using raw_type = typename Object::raw_type;
    struct reference {
        operator Object() const { return Object(handle, raw, internal::create_reference{}); }

        nq::call_handle const& handle;
        raw_type* raw;
    };
    using iterator_category = std::forward_iterator_tag;
    using value_type = Object;
    using difference_type = std::ptrdiff_t;
    using pointer = void;

    retaining_iterator(nq::call_handle const& handle, raw_type* const* place) noexcept
        : handle_(&handle), place_(place) {}

    reference operator*() const noexcept { return {*handle_, *place_}; }
    retaining_iterator& operator++() noexcept {
        ++place_;
        return *this;
    }
    bool operator==(retaining_iterator const& other) const noexcept { return place_ == other.place_; }
    friend difference_type operator-(retaining_iterator const& a, retaining_iterator const& b) {
        return a.place_ - b.place_;
    }

private:
    nq::call_handle const* handle_;
    raw_type* const* place_;
};

template <class Kind, auto... Inputs>
std::vector<device> read_devices(owner<Kind> const& asked, query<Inputs...> const& ask) {
    auto const retain = [&handle = call_handle_of(asked)](_nq_cl_device_id** ids, std::size_t count) {
        using iterator = retaining_iterator<device>;
        return std::vector<device>(iterator(handle, ids), iterator(handle, ids + count));
    };
    return ask.answer([retain](auto... arguments) {
        return mero::internal::read_list<_nq_cl_device_id*, 8>(info_call<Inputs...>(arguments...), retain);
    });
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
