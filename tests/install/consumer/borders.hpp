#pragma once

// What crosses the border between the library and a program or plugin must be recognized on the other side.

#include <vorn/mero/opencl_1_2.hpp>

#include <typeinfo>

template <class Thrown, class Caught, class Action>
bool throws(Action action) {
    try {
        action();
    } catch (Caught const& caught) {
        return typeid(caught) == typeid(Thrown);
    } catch (...) { // not recognized
    }
    return false;
}

template <class Kind>
[[gnu::noinline]] bool is_a(vorn::mero::opencl_1_2::memory_object const& object) {
    return dynamic_cast<Kind const*>(&object) != nullptr;
}

inline bool borders_hold() {
    using namespace vorn::mero;
    namespace cl = opencl_1_2;
    auto const fail = [] { vorn::mero::internal::check_error(-30); };
    auto const call_nothing = [] { cl::event(nq::call_handle(), nullptr, cl::internal::create_reference()); };
    cl::buffer const buffer(nq::call_handle(), nullptr, cl::internal::take_ownership());
    return throws<common::invalid_value, common::invalid_value>(fail) &&
           throws<common::invalid_value, common::logic_error>(fail) &&
           throws<common::invalid_value, std::exception>(fail) &&
           throws<nq::unrecoverable_error, nq::nq_error>(call_nothing) && is_a<cl::buffer>(buffer) &&
           !is_a<cl::image>(buffer);
}
