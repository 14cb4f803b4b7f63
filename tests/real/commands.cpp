#include "commands.hpp"

int main(int count, char** words) {
    return real::run(count, words, [] {
        real::add_buffer_commands();
        real::add_image_commands();
        real::add_kernel_commands();
        real::add_queues();
        real::add_events();
    });
}
