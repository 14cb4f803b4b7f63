#include "unit/allocations.hpp"

#include "scripted/scripted.hpp"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>

std::size_t unit::allocated = 0;
std::size_t unit::failing_allocation = 0;
bool unit::little_memory::there_is = false;
bool unit::little_memory::was_short = false;

// The array forms and those with a size come here by default.
void* operator new(std::size_t size) {
    bool const is_counted = !scripted::libnq::is_answering;
    bool const is_too_large = is_counted && unit::little_memory::there_is && size > unit::little_memory::largest;
    unit::little_memory::was_short = unit::little_memory::was_short || is_too_large;
    bool const fails = is_counted && (++unit::allocated == unit::failing_allocation || is_too_large);
    if (void* const memory = fails ? nullptr : std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}
void* operator new(std::size_t size, std::nothrow_t const&) noexcept { return std::malloc(size); } // never fails here

// Overwrites what is given back, so that whoever still reads it is seen.
void operator delete(void* memory) noexcept {
    std::fill_n(static_cast<unsigned char volatile*>(memory), ::malloc_usable_size(memory), 0xDD);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
