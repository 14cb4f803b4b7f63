// The cache of binaries on disk: what it takes for the same, what it does about damage, and two processes at once.

#include "support.hpp"

#include <vorn/mero/easy.hpp>
#include <vorn/mero/easy/binary_cache.hpp>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

#include <unistd.h>

namespace real {
namespace {

namespace ez = vorn::mero::easy;
namespace files = std::filesystem;

constexpr char adds_n[] = "kernel void f(global int* v) { v[0] += N; }";

struct cache_folder {
    cache_folder() { files::remove_all(path); }
    ~cache_folder() { files::remove_all(path); }

    std::vector<files::path> entries() const {
        return {files::directory_iterator(path / "cache"), files::directory_iterator()};
    }

    files::path path = files::temp_directory_path() / ("vorn-mero cache." + std::to_string(getpid()));
};

std::string content_of(files::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void write(files::path const& path, std::string const& content) { std::ofstream(path, std::ios::binary) << content; }

/// What the kernel f makes of 1.
template <int Version>
int result_of(ez::basic_session<Version> const& gpu, ez::basic_program<Version> const& program) {
    auto values = gpu.array(std::vector<int>{1});
    program["f"](ez::range(1), values);
    return values.read()[0];
}

SCENARIO(easy_keeps_binaries, "easy binary cache", 100) {
    auto const gpu = ez::basic_session<Api::number>(b.device, b.context);
    cache_folder const folder;
    ez::binary_cache cache(folder.path / "cache");
    auto const expect_build = [&](bool hit, int result, auto&&... what) {
        std::size_t const before = cache.hits();
        std::size_t const compiled = cache.misses();
        auto const program = cache.build(gpu, what...);
        EXPECT_EQ(cache.hits() - before, hit ? 1U : 0U);
        EXPECT_EQ(cache.misses() - compiled, hit ? 0U : 1U);
        EXPECT_EQ(program.exact().source_code().find("kernel void f") == std::string::npos, hit);
        EXPECT_EQ(result_of(gpu, program), result);
    };
    expect_build(false, 3, adds_n, "-DN=2");
    EXPECT_EQ(cache.problem(), "");
    EXPECT_EQ(folder.entries().size(), 1U);
    expect_build(true, 3, adds_n, "-DN=2");
    expect_build(false, 4, adds_n, "-DN=3");
    expect_build(false, 5, "kernel void f(global int* v) { v[0] += 2 + N; }", "-DN=2");
    expect_build(true, 4, adds_n, ez::build_options().define("N", 3));
    cache.remove(gpu, adds_n, "-DN=3");
    expect_build(false, 4, adds_n, "-DN=3");
    EXPECT_EQ(folder.entries().size(), 3U);
    EXPECT_NE(refusal<ez::build_failure>([&] { cache.build(gpu, "kernel void f( {"); }), "nothing");
    EXPECT_EQ(folder.entries().size(), 3U);
}

SCENARIO(easy_knows_included_files, "easy binary cache", 120, 120) {
    auto const gpu = ez::session(b.device, b.context);
    cache_folder const folder;
    ez::binary_cache cache(folder.path / "cache");
    // PoCL finds no folder with a blank
    auto const sources = files::temp_directory_path() / ("vorn-mero-sources." + std::to_string(getpid()));
    files::create_directories(sources / "more");
    auto const expect_build = [&](bool hit, int result) {
        std::size_t const before = cache.hits();
        EXPECT_EQ(result_of(gpu, cache.build_file(gpu, sources / "main.cl")), result);
        EXPECT_EQ(cache.hits() - before, hit ? 1U : 0U);
    };
    write(sources / "main.cl", std::string("#include \"more/n.h\"\n") + adds_n);
    write(sources / "more/n.h",
          "#pragma once\n#  include \"m.h\"\n#define N M\n#ifdef ABSENT\n#include <n.h>\n#endif\n");
    write(sources / "more/m.h", "#define M 4\n");
    expect_build(false, 5);
    expect_build(true, 5);
    write(sources / "more/m.h", "#define M 6\n");
    expect_build(false, 7);
    expect_build(true, 7);
    write(sources / "main.cl", std::string("#define FILE \"more/n.h\"\n#include FILE\n") + adds_n);
    expect_build(false, 7);
    expect_build(false, 7);
    files::remove_all(sources);
}

SCENARIO(easy_reads_files_once, "easy binary cache", 120, 120) {
    auto const gpu = ez::session(b.device, b.context);
    cache_folder const folder;
    ez::binary_cache cache(folder.path / "cache");
    int ends[2] = {};
    ASSERT_EQ(::pipe(ends), 0);
    EXPECT_EQ(::write(ends[1], adds_n, std::strlen(adds_n)), static_cast<ssize_t>(std::strlen(adds_n)));
    ::close(ends[1]); // whoever reads it again finds nothing
    auto const path = "/proc/self/fd/" + std::to_string(ends[0]);
    EXPECT_EQ(result_of(gpu, cache.build_file(gpu, path, "-DN=2")), 3);
    ::close(ends[0]);
}

SCENARIO(easy_mends_entries, "easy binary cache", 120, 120) {
    auto const gpu = ez::session(b.device, b.context);
    cache_folder const folder;
    ez::binary_cache cache(folder.path / "cache");
    auto const build = [&] { EXPECT_EQ(result_of(gpu, cache.build(gpu, adds_n, "-DN=2")), 3); };
    build();
    auto const path = folder.entries().at(0);
    std::string const good = content_of(path);
    std::string other_driver = good;
    other_driver[good.find(b.device.driver_version())] ^= 1;
    std::string flipped = good;
    flipped.back() ^= 1;
    std::string huge = good;
    huge.replace(19, 8, 8, '\xFF'); // the size of the key, behind the magic
    std::vector<std::string> const damaged{"",
                                           "nonsense",
                                           good.substr(0, 20),
                                           good.substr(0, good.size() / 2),
                                           good.substr(0, good.size() - 1),
                                           good + "x",
                                           flipped,
                                           other_driver,
                                           huge};
    for (std::size_t i = 0; i != damaged.size(); ++i) {
        write(path, damaged[i]);
        std::size_t const misses = cache.misses();
        build();
        EXPECT_EQ(cache.misses() - misses, 1U) << i;
        std::size_t const hits = cache.hits();
        build();
        EXPECT_EQ(cache.hits() - hits, 1U) << i;
    }
    files::remove(path);
    files::create_directories(path / "in the way");
    build();
    EXPECT_EQ(folder.entries().size(), 1U); // no file is left behind
    write(folder.path / "file", "");
    ez::binary_cache nowhere(folder.path / "file" / "cache");
    EXPECT_EQ(nowhere.problem(), "Cannot write to the folder '" + nowhere.folder() + "': Not a directory");
    EXPECT_EQ(result_of(gpu, nowhere.build(gpu, adds_n, "-DN=2")), 3);
    EXPECT_EQ(nowhere.misses(), 1U);
    ez::binary_cache none("");
    EXPECT_EQ(result_of(gpu, none.build(gpu, adds_n, "-DN=2")), 3);
    EXPECT_NE(none.problem(), "");
}

SCENARIO(easy_shares_a_cache, "easy binary cache", 120, 120) {
    auto const devices = Api::get_all_devices();
    auto const number = std::to_string(std::find(devices.begin(), devices.end(), b.device) - devices.begin());
    cache_folder const folder;
    auto const run = [&] { expect_ends_well("cache '" + (folder.path / "cache").string() + "' " + number); };
    std::thread other(run);
    run();
    other.join();
    EXPECT_EQ(folder.entries().size(), 4U);
}

} // namespace

int share_cache(std::string const& folder, std::string const& device) {
    ez::session const gpu(device);
    ez::binary_cache cache(folder);
    for (int i = 0; i != 40; ++i) {
        int const n = i % 4;
        ez::build_options const options("-DN=" + std::to_string(n));
        if (i % 5 == 0) {
            cache.remove(gpu, adds_n, options);
        }
        if (result_of(gpu, cache.build(gpu, adds_n, options)) != 1 + n) {
            return 1;
        }
    }
    return cache.hits() != 0 ? 0 : 3;
}

} // namespace real
