#include "objects.hpp"

int main(int count, char** words) {
    return real::run(count, words, [] { real::add_memory_objects(); });
}
