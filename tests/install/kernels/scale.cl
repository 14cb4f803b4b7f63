#ifdef ABSENT
#include "element.h"
#else
#include "element.h" /* the elements, which
    the kernels scale */
#endif
#include "element.h" // again
#include <sum.h>

kernel void scale(global element* values, uint count) {
    if (get_global_id(0) < count) {
        values[get_global_id(0)] = sum(values[get_global_id(0)] * (FACTOR), OFFSET);
    }
}

kernel void nothing() {}
