#include <vorn/mero/opencl_2_1.hpp>

int main() { return vorn::mero::opencl_2_1::get_all_devices().size() == 1 ? 0 : 1; }
