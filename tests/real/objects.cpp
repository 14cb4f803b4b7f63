#include "objects.hpp"

int main(int count, char** words) {
    return real::run(count, words, [] {
        real::add_devices();
        real::add_memory_objects();
        real::add_images();
        real::add_programs();
        real::add_kernels();
        real::add_sub_devices();
    });
}
