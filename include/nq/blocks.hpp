#pragma once

// One argument block per entry point, with its name. A block is a plain struct on the caller's stack: the caller fills
// the inputs, passes its address to `nq_call_capability`, and then reads the results. Offsets and sizes are fixed and
// asserted with each block. Blocks can be copied byte by byte.
//
// The fields have the names and the meaning of the entry point's parameters: sizes are in bytes, and pointers refer to
// the caller's memory, which must live as long as OpenCL requires. Three more fields are results:
//
// - `result`: a handle, whose reference the caller now owns, or a pointer. Null or meaningless after a failure.
// - `error_code`: the status that comes with `result`.
// - `status`: the OpenCL status of an entry point that returns only that.
//
// They are valid only if the call returned `nq::result::success`. Other results (events, counts, sizes) are written
// through pointers in the block; these pointers may be null wherever OpenCL allows it.

#include <nq/blocks/context.hpp>
#include <nq/blocks/enqueue_buffer.hpp>
#include <nq/blocks/enqueue_image.hpp>
#include <nq/blocks/enqueue_kernel.hpp>
#include <nq/blocks/enqueue_svm.hpp>
#include <nq/blocks/memory.hpp>
#include <nq/blocks/program.hpp>
#include <nq/blocks/query.hpp>
#include <nq/blocks/reference.hpp>
