#include "element.h"
#include <sum.h>
#include "element.h"

kernel void scale(global element* values, uint count) {
    if (get_global_id(0) < count) {
        values[get_global_id(0)] = sum(values[get_global_id(0)] * FACTOR, OFFSET);
    }
}

kernel void nothing() {}
