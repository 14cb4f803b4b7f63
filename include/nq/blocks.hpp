#pragma once

// One argument block per entry point, named after it. A block is a plain record on the caller's stack: the caller fills
// the inputs, hands its address to `nq_call_capability`, and finds the results in it afterwards. Offsets and sizes are
// fixed and asserted beside each block; a block may be copied byte by byte.
//
// `result` is a handle or pointer that the call made, `error_code` the status that came with it, `status` the OpenCL
// status of entry points that return one.

#include <nq/blocks/context.hpp>
#include <nq/blocks/enqueue_buffer.hpp>
#include <nq/blocks/enqueue_image.hpp>
#include <nq/blocks/enqueue_kernel.hpp>
#include <nq/blocks/enqueue_svm.hpp>
#include <nq/blocks/memory.hpp>
#include <nq/blocks/program.hpp>
#include <nq/blocks/query.hpp>
#include <nq/blocks/reference.hpp>
