#pragma once

/// VORN_MERO_EXPORT marks what programs can link to, VORN_MERO_EXPORT_TEMPLATE a class template with such
/// instantiations, and VORN_MERO_IN_LIBRARY names one of these; everything else in the library is hidden.
/// VORN_MERO_HIDDEN marks what only the library links to of a marked class.
#ifndef _WIN32
#define VORN_MERO_EXPORT __attribute__((visibility("default")))
#define VORN_MERO_EXPORT_TEMPLATE VORN_MERO_EXPORT
#define VORN_MERO_IN_LIBRARY(...) extern template class __VA_ARGS__
#define VORN_MERO_HIDDEN __attribute__((visibility("hidden")))
#else
#ifdef VORN_MERO_BUILDING
#define VORN_MERO_EXPORT __declspec(dllexport)
#define VORN_MERO_EXPORT_TEMPLATE VORN_MERO_EXPORT
#else
#define VORN_MERO_EXPORT __declspec(dllimport)
#define VORN_MERO_EXPORT_TEMPLATE
#endif
#define VORN_MERO_IN_LIBRARY(...) static_assert(true) // g++ would look for inline members there, which are not exported
#define VORN_MERO_HIDDEN
#endif
