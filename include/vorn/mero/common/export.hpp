#pragma once

/// Marks what programs may link to; everything else of the library is hidden.
#define VORN_MERO_EXPORT __attribute__((visibility("default")))
