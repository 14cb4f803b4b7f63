// A fuzz target without libFuzzer: runs the inputs in a folder, then as many made-up ones as are asked for, which are
// the same every time.
//
//     fuzz_bridge FOLDER NUMBER

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments);
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

int main(int count, char** arguments) {
    if (count != 3) {
        std::fputs("needs a folder of inputs and a number of made-up ones\n", stderr);
        return 2;
    }
    LLVMFuzzerInitialize(&count, &arguments);
    int found = 0;
    for (auto const& file : std::filesystem::directory_iterator(arguments[1])) {
        std::ifstream stream(file.path(), std::ios::binary);
        std::string const bytes{std::istreambuf_iterator<char>(stream), {}};
        LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(bytes.data()), bytes.size());
        ++found;
    }
    std::minstd_rand random; // the same numbers everywhere
    int const made = std::atoi(arguments[2]);
    for (int n = 0; n != made; ++n) {
        std::vector<std::uint8_t> bytes(random() % 256);
        std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random() >> 8U); });
        LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    }
    std::printf("%d inputs of the folder and %d made up\n", found, made);
    return found == 0 ? 1 : 0;
}
