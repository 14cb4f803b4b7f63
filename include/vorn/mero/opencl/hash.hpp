// `std::hash` of the classes that can be compared: their objects are keys of `std::unordered_map`.
#ifndef VORN_MERO_OPENCL
#include <vorn/mero/opencl.hpp>
#endif
#ifdef VORN_MERO_OPENCL

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::platform> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::device> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::context> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::sampler> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::program> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::kernel> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::event> : vorn::mero::internal::handle_hash {};

template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::internal::host_queue> : vorn::mero::internal::handle_hash {};

#if VORN_MERO_OPENCL >= 110
template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::event_promise> : vorn::mero::internal::handle_hash {};
#endif

#if VORN_MERO_OPENCL >= 200
template <>
struct std::hash<vorn::mero::VORN_MERO_NAMESPACE::device_command_queue> : vorn::mero::internal::handle_hash {};
#endif

#endif
