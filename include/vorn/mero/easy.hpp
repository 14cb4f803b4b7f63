#pragma once

/// The short way to use OpenCL, above the exact interface of the six namespaces:
///
///     namespace ez = vorn::mero::easy;
///     ez::session gpu;                                     // the first device, or what MERO_DEVICE says
///     auto program = gpu.build(kernel_source);             // throws ez::build_failure, with the log
///     auto a = gpu.array(std::vector<float>(n, 1.0F)), b = gpu.array(std::vector<float>(n, 2.0F));
///     auto c = gpu.array<float>(n);
///     auto took = program["vadd"](ez::range(n), a, b, c, std::uint32_t(n)).time();
///     std::printf("%g after %g us\n", c.read()[0], took.count() * 1e-3);
///
/// Templates over one OpenCL version, header only: `session` and its siblings use OpenCL 1.2, `basic_session<200>` and
/// so on another one. `exact()` of each object is the object beneath, with everything that this layer lacks. Objects of
/// both layers mix freely. Needs C++17; overloads with `std::span`, and concepts, exist since C++20.
///
/// Errors of the layer itself derive from `easy::error` and say what to do. What OpenCL refuses throws the exceptions
/// of `vorn::mero::common`, as in the exact interface.

#include <vorn/mero/easy/array.hpp>
#include <vorn/mero/easy/builder.hpp>
#include <vorn/mero/easy/device.hpp>
#include <vorn/mero/easy/error.hpp>
#include <vorn/mero/easy/event.hpp>
#include <vorn/mero/easy/kernel.hpp>
#include <vorn/mero/easy/needs.hpp>
#include <vorn/mero/easy/options.hpp>
#include <vorn/mero/easy/order.hpp>
#include <vorn/mero/easy/program.hpp>
#include <vorn/mero/easy/range.hpp>
#include <vorn/mero/easy/session.hpp>
#include <vorn/mero/easy/transfer.hpp>
#include <vorn/mero/easy/versions.hpp>
