#pragma once

/// Marks what programs can link to. Everything else in the library is hidden.
#define VORN_MERO_EXPORT __attribute__((visibility("default")))
