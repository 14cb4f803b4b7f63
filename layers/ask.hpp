#pragma once

// Questions that a layer asks OpenCL for itself, with the handle of a call that it has at hand.

#include "layer.hpp"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace nq::layer {

/// The reply of a query that has one of a fixed size. Nothing if it fails.
template <class Value, class Block>
std::optional<Value> ask_value(call const& made, Block question) noexcept {
    Value value{};
    question.param_value_size = sizeof value;
    question.param_value = &value;
    return ask(made, question) ? std::optional{value} : std::nullopt;
}

/// The reply of a query that has one of any length. Empty if it fails.
template <class Element, class Block>
std::vector<Element> ask_list(call const& made, Block question) {
    std::size_t size = 0;
    question.param_value_size_ret = &size;
    std::vector<Element> reply;
    if (ask(made, question) && size != 0) {
        reply.resize(size / sizeof(Element));
        question.param_value_size = reply.size() * sizeof(Element);
        question.param_value = reply.data();
        if (!ask(made, question)) {
            reply.clear();
        }
    }
    return reply;
}

/// The reply of a query that has a text. Empty if it fails.
template <class Block>
std::string ask_text(call const& made, Block question) {
    std::vector<char> const reply = ask_list<char>(made, question);
    return {reply.begin(), std::find(reply.begin(), reply.end(), '\0')};
}

/// The device that the call handle belongs to.
inline _nq_cl_device_id* own_device(call const& made) noexcept {
    block::call_handle_device own{};
    forward({made.handle, made.version, find_command<block::call_handle_device>(made.version), &own, nullptr});
    return own.result;
}

/// The platform of a device. Null if the query fails.
inline _nq_cl_platform_id* platform_of(call const& made, _nq_cl_device_id* device) noexcept {
    block::clGetDeviceInfo const question{.device = device, .param_name = "CL_DEVICE_PLATFORM"_cl};
    return ask_value<_nq_cl_platform_id*>(made, question).value_or(nullptr);
}

} // namespace nq::layer
