#pragma once

// One argument block per entry point, named after it. A block is a plain record on the caller's stack: the caller fills
// the inputs, hands its address to `nq_call_capability`, and finds the results in it afterwards. Offsets and sizes are
// fixed and asserted beside each block; a block may be copied byte by byte.
//
// The fields bear the names of the entry point's parameters, and mean what they mean there: sizes in bytes, pointers to
// the caller's memory, which must live as long as OpenCL says. Three more are results:
//
// - `result`: a handle, with a reference that is now the caller's, or a pointer; null or of no meaning after a failure.
// - `error_code`: the status that came with a result.
// - `status`: the OpenCL status of an entry point that returns one.
//
// All hold a meaning only when the call itself returned `nq::result::success`. Where an entry point gives further
// results through pointers (events, counts, sizes) the block holds those pointers, which may be null as they may be
// there.

#include <nq/blocks/context.hpp>
#include <nq/blocks/enqueue_buffer.hpp>
#include <nq/blocks/enqueue_image.hpp>
#include <nq/blocks/enqueue_kernel.hpp>
#include <nq/blocks/enqueue_svm.hpp>
#include <nq/blocks/memory.hpp>
#include <nq/blocks/program.hpp>
#include <nq/blocks/query.hpp>
#include <nq/blocks/reference.hpp>
