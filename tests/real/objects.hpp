#pragma once

#include "support.hpp"

namespace real {

using opencl_1_0::raw::refcount, opencl_1_1::raw::refcount, opencl_1_2::raw::refcount, opencl_2_0::raw::refcount,
    opencl_2_1::raw::refcount, opencl_2_2::raw::refcount;
using opencl_1_0::raw::release, opencl_1_1::raw::release, opencl_1_2::raw::release, opencl_2_0::raw::release,
    opencl_2_1::raw::release, opencl_2_2::raw::release;
using opencl_1_0::raw::retain, opencl_1_1::raw::retain, opencl_1_2::raw::retain, opencl_2_0::raw::retain,
    opencl_2_1::raw::retain, opencl_2_2::raw::retain;

/// Whether an object that nothing else uses yet counts its references.
template <class Object>
void expect_counted(Object const& fresh) {
    EXPECT_EQ(refcount(fresh), 1U);
    retain(fresh);
    EXPECT_EQ(refcount(fresh), 2U);
    release(fresh);
    EXPECT_EQ(refcount(fresh), 1U);
}

void add_devices();
void add_memory_objects();
void add_images();
void add_programs();
void add_kernels();
void add_sub_devices();

} // namespace real
