#include "unit/allocations.hpp"

#include "scripted/scripted.hpp"

#include <algorithm>
#include <cstdlib>
#include <malloc.h>

namespace unit {
namespace {

thread_local std::size_t* counter = nullptr;
thread_local std::size_t limit = 0;

} // namespace

allocation_watch::allocation_watch(std::size_t failing) : failing_(failing) {
    limit = failing_;
    counter = &count_;
}

allocation_watch::~allocation_watch() { counter = nullptr; }

void allocation_watch::allocate() {
    if (counter != nullptr && !scripted::libnq::answering() && ++*counter == limit) {
        throw std::bad_alloc();
    }
}

} // namespace unit

// The array forms and those with a size come here by default.
void* operator new(std::size_t size) {
    unit::allocation_watch::allocate();
    if (void* const memory = std::malloc(size != 0 ? size : 1)) {
        return memory;
    }
    throw std::bad_alloc();
}

// Overwrites what is given back, so that whoever still reads it is seen.
void operator delete(void* memory) noexcept {
    std::fill_n(static_cast<unsigned char volatile*>(memory), ::malloc_usable_size(memory), 0xDD);
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
