// Counts the allocations of each thread in a process that preloads it.

#include <cstddef>

extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

static thread_local unsigned long allocations __attribute__((tls_model("initial-exec"))) = 0;

unsigned long counted_allocations() { return allocations; }

void* malloc(std::size_t size) {
    ++allocations;
    return __libc_malloc(size);
}

void* calloc(std::size_t count, std::size_t size) {
    ++allocations;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, std::size_t size) {
    ++allocations;
    return __libc_realloc(memory, size);
}

} // extern "C"
