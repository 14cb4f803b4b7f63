#pragma once

/// Marks a parameter whose address, or raw handle, the result keeps without owning it. clang then warns (-Wdangling)
/// where a temporary is given to a result that outlives it. Nothing for other compilers.
#if defined(__has_cpp_attribute) && defined(__clang__)
#if __has_cpp_attribute(clang::lifetimebound)
#define VORN_MERO_LIFETIMEBOUND [[clang::lifetimebound]]
#endif
#endif
#ifndef VORN_MERO_LIFETIMEBOUND
#define VORN_MERO_LIFETIMEBOUND
#endif
