#include "unit/subjects.hpp"

#include <vorn/mero/opencl.hpp>

#include <concepts>
#include <ostream>

namespace unit {
namespace {

template <class Object, class... Arguments>
any_object make(Arguments&&... arguments) {
    return std::make_shared<Object>(std::forward<Arguments>(arguments)...);
}

template <class Object>
Object const& as(void const* object) {
    return *static_cast<Object const*>(object);
}

template <class Object>
Object& as(void* object) {
    return *static_cast<Object*>(object);
}

template <class Object, class Api>
void check_promises() {
    constexpr bool is_memory = std::is_base_of_v<typename Api::memory_object, Object>;
    using raw = typename Object::raw_type;
    static_assert(sizeof(Object) == sizeof(nq::call_handle) + sizeof(void*) * (is_memory ? 2 : 1));
    static_assert(sizeof(nq::call_handle) == 16);
    static_assert(std::is_nothrow_move_constructible_v<Object> && std::is_nothrow_move_assignable_v<Object>);
    static_assert(std::is_nothrow_destructible_v<Object> && !std::is_default_constructible_v<Object>);
    static_assert(std::is_constructible_v<Object, nq::call_handle const&, raw*, typename Api::take_ownership>);
    static_assert(!std::is_constructible_v<Object, nq::call_handle const&, raw*> &&
                  !std::is_convertible_v<raw*, Object>);
    static_assert(std::is_copy_constructible_v<Object> == std::is_copy_assignable_v<Object>);
    static_assert(is_memory != std::equality_comparable<Object>);
    static_assert(is_memory != requires(Object const& object) {
        { object.hash() } -> std::same_as<std::size_t>;
    });
    static_assert(is_memory != requires(Object const& object) {
        { object < object } -> std::same_as<bool>;
    });
}

template <class Object, class Api>
subject describe(std::string name, std::string kind) {
    check_promises<Object, Api>();
    using raw = typename Object::raw_type;
    using create_reference = typename Api::create_reference;
    subject made{
        .name = std::move(name), .version = Api::number, .capability = Api::capability, .kind = std::move(kind)};
    made.adopt = [](nq::call_handle const& handle, void* object) {
        return make<Object>(handle, static_cast<raw*>(object), typename Api::take_ownership{});
    };
    if constexpr (std::is_constructible_v<Object, nq::call_handle const&, raw*, create_reference>) {
        made.borrow = [](nq::call_handle const& handle, void* object) {
            return make<Object>(handle, static_cast<raw*>(object), create_reference{});
        };
    }
    if constexpr (std::is_copy_constructible_v<Object>) {
        made.copy = [](void const* object) { return make<Object>(as<Object>(object)); };
        made.copy_assign = [](void* to, void const* from) { as<Object>(to) = as<Object>(from); };
    }
    made.move = [](void* object) { return make<Object>(std::move(as<Object>(object))); };
    made.move_assign = [](void* to, void* from) { as<Object>(to) = std::move(as<Object>(from)); };
    if constexpr (std::equality_comparable<Object>) {
        made.equal = [](void const* a, void const* b) { return as<Object>(a) == as<Object>(b); };
        made.less = [](void const* a, void const* b) { return as<Object>(a) < as<Object>(b); };
        made.hash = [](void const* object) { return as<Object>(object).hash(); };
    }
    return made;
}

#define UNIT_BODY "unit/subjects_body.inc"
#include "unit/every_version.inc"

} // namespace

void PrintTo(subject const& printed, std::ostream* stream) { *stream << printed.name; }

std::vector<subject> const& subjects() {
    static std::vector<subject> const all = [] {
        std::vector<subject> list;
        opencl_1_0::add_subjects(list);
        opencl_1_1::add_subjects(list);
        opencl_1_2::add_subjects(list);
        opencl_2_0::add_subjects(list);
        opencl_2_1::add_subjects(list);
        opencl_2_2::add_subjects(list);
        return list;
    }();
    return all;
}

} // namespace unit
