#pragma once

/// Marks what programs can link to. Everything else in the library is hidden.
#define VORN_MERO_EXPORT __attribute__((visibility("default")))

/// Marks what only the library links to of a class that is marked as above.
#define VORN_MERO_HIDDEN __attribute__((visibility("hidden")))
