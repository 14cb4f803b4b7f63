#pragma once

/// Marks what programs may link to; everything else of the library is hidden.
#ifndef _WIN32
#define NQ_EXPORT __attribute__((visibility("default")))
#elif defined(NQ_BUILDING)
#define NQ_EXPORT __declspec(dllexport)
#else
#define NQ_EXPORT __declspec(dllimport)
#endif
