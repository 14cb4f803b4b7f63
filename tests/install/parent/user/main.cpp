#include <parent.hpp>

#include <iostream>

int main() {
    std::size_t const devices = vorn::mero::opencl_1_2::get_all_devices().size();
    std::cout << devices << " device(s)\n";
    return parent::names().size() == devices ? 0 : 1;
}
