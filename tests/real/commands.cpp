#include "commands.hpp"

int main(int count, char** words) {
    return real::run(count, words, [] {
        real::add_buffer_commands();
        real::add_image_commands();
        real::add_kernel_commands();
        real::add_queues();
        real::add_events();
        real::add_shared_virtual_memory();
        real::add_device_queues_and_pipes();
        real::add_extensions();
    });
}
