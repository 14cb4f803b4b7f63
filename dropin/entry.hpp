#pragma once

// Performs an OpenCL function as a call of libnq, or passes it on to the library behind the drop-in.

#include "behind.hpp"
#include "route.hpp"

#include "../bridge/argument.hpp"

#include <nq/blocks.hpp>
#include <nq/nq.hpp>

#include <tuple>
#include <type_traits>
#include <utility>

namespace nq::dropin {

/// Of a block: the name of its entry point, and the fields that are its arguments, in the entry point's own order.
template <class Block>
struct arguments_of;

template <class>
struct signature;
template <class Result, class... Parameters>
struct signature<Result(Parameters...)> {
    using result = Result;
    using parameters = std::tuple<Parameters...>;
};

template <class Function>
using result_of = typename signature<Function>::result;
template <class Function, std::size_t Index>
using parameter_of = std::tuple_element_t<Index, typename signature<Function>::parameters>;

template <class Field, class Value>
void assign(Field& field, Value value) noexcept {
    field = bridge::argument<Value>{value}.operator Field();
}

/// Fills a block from the arguments. One more argument, the place for an error code, is left.
template <class Block, class... Values>
void fill(Block& block, std::tuple<Values...> const& values) noexcept {
    auto const fields = arguments_of<Block>::of(block);
    [&]<std::size_t... Index>(std::index_sequence<Index...>) {
        (assign(std::get<Index>(fields), std::get<Index>(values)), ...);
    }
    (std::make_index_sequence<std::tuple_size_v<decltype(fields)>>());
}

/// What a function returns that neither libnq nor the library behind can perform.
template <class Result, class... Values>
Result refuse([[maybe_unused]] cl_int code, [[maybe_unused]] std::tuple<Values...> const& values) noexcept {
    if constexpr (std::is_same_v<Result, cl_int>) {
        return code;
    } else if constexpr (std::is_pointer_v<Result>) {
        using last = std::tuple_element_t<sizeof...(Values) - 1, std::tuple<Values...>>;
        if constexpr (std::is_same_v<last, cl_int*>) {
            if (auto* const place = std::get<sizeof...(Values) - 1>(values); place != nullptr) {
                *place = code;
            }
        }
        return nullptr;
    }
}

/// What a performed block answers.
template <class Result, class Block, class... Values>
Result answer(Block const& block, std::tuple<Values...> const& values) noexcept {
    if constexpr (requires { block.status; }) {
        return block.status;
    } else if constexpr (requires { block.error_code; }) {
        if (block.error_code != CL_SUCCESS) {
            return refuse<Result>(block.error_code, values);
        }
        if (auto* const place = std::get<sizeof...(Values) - 1>(values); place != nullptr) {
            *place = CL_SUCCESS;
        }
        return bridge::argument{block.result}.operator Result();
    } else if constexpr (requires { block.result; }) {
        return bridge::argument{block.result}.operator Result();
    }
}

template <class Result, class... Parameters>
[[gnu::cold, gnu::noinline]] Result pass_on(char const* name, Result (*)(Parameters...), Parameters... values) {
    auto* const function = reinterpret_cast<Result (*)(Parameters...)>(function_behind(name));
    return function != nullptr ? function(values...) : refuse<Result>(CL_INVALID_OPERATION, std::tuple(values...));
}

/// Performs the block in the newest version that has it and that the implementation of the call's objects offers.
/// Passes the call on if there is none, and in a forked child, where libnq does not work with some implementations.
template <class Block, class Result, class... Parameters>
Result perform(char const* name, Result (*function)(Parameters...), Parameters... parameters) {
    route const* const way = find_route(deciding_object(parameters...));
    for (std::size_t i = version_count; way != nullptr && i-- != 0;) {
        std::uint32_t const id = command_ids<Block>[i];
        if (id == 0 || way->handles[i] == nullptr) {
            continue;
        }
        Block block{};
        std::tuple const values(parameters...);
        fill(block, values);
        if (nq_call_capability(way->handles[i], id, &block, nullptr) == result::success) [[likely]] {
            return answer<Result>(block, values);
        }
        if (!is_forked()) {
            return refuse<Result>(CL_OUT_OF_RESOURCES, values);
        }
        break;
    }
    return pass_on(name, function, parameters...);
}

} // namespace nq::dropin

// Defines a function of OpenCL with as many parameters as told, and the types that OpenCL's headers give them.
// NOLINTBEGIN(bugprone-macro-parentheses)
#define NQ_PARAMETER(entry, index) nq::dropin::parameter_of<decltype(::entry), index> p##index
#define NQ_PARAMETERS_1(entry) NQ_PARAMETER(entry, 0)
#define NQ_PARAMETERS_2(entry) NQ_PARAMETERS_1(entry), NQ_PARAMETER(entry, 1)
#define NQ_PARAMETERS_3(entry) NQ_PARAMETERS_2(entry), NQ_PARAMETER(entry, 2)
#define NQ_PARAMETERS_4(entry) NQ_PARAMETERS_3(entry), NQ_PARAMETER(entry, 3)
#define NQ_PARAMETERS_5(entry) NQ_PARAMETERS_4(entry), NQ_PARAMETER(entry, 4)
#define NQ_PARAMETERS_6(entry) NQ_PARAMETERS_5(entry), NQ_PARAMETER(entry, 5)
#define NQ_PARAMETERS_7(entry) NQ_PARAMETERS_6(entry), NQ_PARAMETER(entry, 6)
#define NQ_PARAMETERS_8(entry) NQ_PARAMETERS_7(entry), NQ_PARAMETER(entry, 7)
#define NQ_PARAMETERS_9(entry) NQ_PARAMETERS_8(entry), NQ_PARAMETER(entry, 8)
#define NQ_PARAMETERS_10(entry) NQ_PARAMETERS_9(entry), NQ_PARAMETER(entry, 9)
#define NQ_PARAMETERS_11(entry) NQ_PARAMETERS_10(entry), NQ_PARAMETER(entry, 10)
#define NQ_PARAMETERS_12(entry) NQ_PARAMETERS_11(entry), NQ_PARAMETER(entry, 11)
#define NQ_PARAMETERS_13(entry) NQ_PARAMETERS_12(entry), NQ_PARAMETER(entry, 12)
#define NQ_PARAMETERS_14(entry) NQ_PARAMETERS_13(entry), NQ_PARAMETER(entry, 13)
#define NQ_VALUES_1 p0
#define NQ_VALUES_2 NQ_VALUES_1, p1
#define NQ_VALUES_3 NQ_VALUES_2, p2
#define NQ_VALUES_4 NQ_VALUES_3, p3
#define NQ_VALUES_5 NQ_VALUES_4, p4
#define NQ_VALUES_6 NQ_VALUES_5, p5
#define NQ_VALUES_7 NQ_VALUES_6, p6
#define NQ_VALUES_8 NQ_VALUES_7, p7
#define NQ_VALUES_9 NQ_VALUES_8, p8
#define NQ_VALUES_10 NQ_VALUES_9, p9
#define NQ_VALUES_11 NQ_VALUES_10, p10
#define NQ_VALUES_12 NQ_VALUES_11, p11
#define NQ_VALUES_13 NQ_VALUES_12, p12
#define NQ_VALUES_14 NQ_VALUES_13, p13
#define NQ_DEFINE(entry, count, way)                                                                                   \
    extern "C" NQ_EXPORT nq::dropin::result_of<decltype(::entry)> CL_API_CALL entry(NQ_PARAMETERS_##count(entry)) {    \
        return way(#entry, &::entry, NQ_VALUES_##count);                                                               \
    }

#define NQ_COUNT(...) NQ_COUNT_(__VA_ARGS__, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)
#define NQ_COUNT_(_1, _2, _3, _4, _5, _6, _7, _8, _9, _10, _11, _12, _13, _14, count, ...) count

#define NQ_ARGUMENTS(entry, ...)                                                                                       \
    template <>                                                                                                        \
    struct nq::dropin::arguments_of<nq::block::entry> {                                                                \
        static constexpr char const* name = #entry;                                                                    \
        static auto of(nq::block::entry& b) noexcept { return std::tie(__VA_ARGS__); }                                 \
    };
/// A function that libnq performs; the fields of its block `b` are its arguments.
#define NQ_PERFORM(entry, count, ...)                                                                                  \
    NQ_ARGUMENTS(entry, __VA_ARGS__)                                                                                   \
    NQ_PERFORM_(entry, count)
#define NQ_PERFORM_(entry, count) NQ_DEFINE(entry, count, nq::dropin::perform<nq::block::entry>)
/// A function that the library behind performs.
#define NQ_PASS_ON(entry, count) NQ_DEFINE(entry, count, nq::dropin::pass_on)
// NOLINTEND(bugprone-macro-parentheses)
