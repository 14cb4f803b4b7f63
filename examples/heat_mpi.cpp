// The heat equation on a plate, on several machines: each process (MPI rank) has a share of the lines and one device.
// While a device computes the inside of its share, the processes exchange the lines at the edges through mapped
// buffers.
//
//     mpirun -n RANKS heat_mpi [--lines N] [--steps N] [--platform TEXT]
//
// Rank 0 also computes the whole plate alone and compares. Exits 1 unless both are equal to the last bit.

#include "support.hpp"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <mpi.h>

namespace cl = vorn::mero::opencl_1_2;
namespace easy = vorn::mero::easy;

namespace {

constexpr std::size_t width = 512;
constexpr std::size_t line_bytes = width * sizeof(float);

// `edges` has the first and the last line of a share, `halo` the lines next to them in the neighbours' shares.
constexpr char const* source = R"(
#pragma OPENCL FP_CONTRACT OFF

float relax(float here, float left, float right, float above, float below) {
    return here + 0.2f * (left + right + above + below - 4.0f * here);
}

float beside(global const float* line, int x, float otherwise) {
    return x >= 0 && x < (int)get_global_size(0) ? line[x] : otherwise;
}

void update(global const float* above, global const float* here, global const float* below, global float* out) {
    int x = get_global_id(0);
    float h = here[x];
    out[x] = relax(h, beside(here, x - 1, 0.0f), beside(here, x + 1, 0.0f), above[x], below[x]);
}

kernel void inside(global const float* from, global float* to) {
    size_t w = get_global_size(0);
    size_t y = get_global_id(1) + 1;
    update(from + (y - 1) * w, from + y * w, from + (y + 1) * w, to + y * w);
}

// Line 0 of the range is the first line of the share, line 1 the last.
kernel void edge(global const float* from, global float* to, global const float* halo, global float* edges, uint lines) {
    size_t w = get_global_size(0);
    size_t x = get_global_id(0);
    size_t y = get_global_id(1) == 0 ? 0 : lines - 1;
    global const float* above = y == 0 ? halo : from + (y - 1) * w;
    global const float* below = y == lines - 1 ? halo + w : from + (y + 1) * w;
    update(above, from + y * w, below, to + y * w);
    edges[get_global_id(1) * w + x] = to[y * w + x];
}
)";

// The lines at the edges of a share, for the exchange with the neighbours.
class neighbours {
public:
    neighbours(int rank, int ranks)
        : above_(rank > 0 ? rank - 1 : MPI_PROC_NULL), below_(rank + 1 < ranks ? rank + 1 : MPI_PROC_NULL) {}

    void exchange(float const* edges, float* halo) const {
        constexpr int count = static_cast<int>(width);
        MPI_Sendrecv(edges, count, MPI_FLOAT, above_, 0, halo + width, count, MPI_FLOAT, below_, 0, MPI_COMM_WORLD,
                     MPI_STATUS_IGNORE);
        MPI_Sendrecv(edges + width, count, MPI_FLOAT, below_, 1, halo, count, MPI_FLOAT, above_, 1, MPI_COMM_WORLD,
                     MPI_STATUS_IGNORE);
    }

private:
    int above_;
    int below_;
};

// A share of the plate on a device, with the queues that compute it and move its edges.
class share {
public:
    share(cl::device const& device, std::vector<float> const& lines)
        : lines_(lines.size() / width), context_(cl::create_context({}, {device}, nullptr, nullptr)),
          compute_(context_.create_command_queue(device, false, false)),
          move_(context_.create_command_queue(device, false, false)),
          program_(easy::build<120>(context_, device, source)), inside_(program_.create_kernel("inside")),
          edge_(program_.create_kernel("edge")), from_(buffer(lines_)), to_(buffer(lines_)), halo_(buffer(2)),
          edges_(buffer(2)) {
        std::vector<float> const nothing(2 * width, 0.0F);
        std::size_t const bytes = lines_ * line_bytes;
        compute_.enqueue_command_without_event(cl::write_buffer(from_, true, 0, bytes, lines.data()));
        compute_.enqueue_command_without_event(cl::write_buffer(halo_, true, 0, 2 * line_bytes, nothing.data()));
        compute_.enqueue_command_without_event(cl::copy_buffer(from_, edges_, 0, 0, line_bytes));
        compute_.enqueue_command_without_event(
            cl::copy_buffer(from_, edges_, bytes - line_bytes, line_bytes, line_bytes));
        compute_.finish();
    }

    void step(neighbours const& beside) {
        inside_.set_argument(0, from_);
        inside_.set_argument(1, to_);
        compute_.enqueue_command_without_event(
            cl::nd_range_kernel(inside_, 2, {0, 0, 0}, {width, lines_ - 2, 1}, {64, 1, 1}));
        compute_.flush();
        move_edges(beside); // while the inside computes

        edge_.set_argument(0, from_);
        edge_.set_argument(1, to_);
        edge_.set_argument(2, halo_);
        edge_.set_argument(3, edges_);
        auto const lines = static_cast<std::uint32_t>(lines_);
        edge_.set_argument_raw(4, sizeof lines, &lines);
        compute_.enqueue_command_without_event(cl::nd_range_kernel(edge_, 2, {0, 0, 0}, {width, 2, 1}, {64, 1, 1}));
        compute_.finish();
        std::swap(from_, to_);
    }

    std::vector<float> read() {
        std::vector<float> lines(lines_ * width);
        compute_.enqueue_command_without_event(cl::read_buffer(from_, true, 0, lines_ * line_bytes, lines.data()));
        return lines;
    }

private:
    cl::buffer buffer(std::size_t lines) {
        return context_.create_buffer(cl::mem_flags::read_write, lines * line_bytes, nullptr);
    }

    void move_edges(neighbours const& beside) {
        void* edges = nullptr;
        void* halo = nullptr;
        move_.enqueue_command_without_event(
            cl::map_buffer(edges, edges_, true, cl::map_flags::read, 0, 2 * line_bytes));
        move_.enqueue_command_without_event(cl::map_buffer(halo, halo_, true, cl::map_flags::write, 0, 2 * line_bytes));
        beside.exchange(static_cast<float const*>(edges), static_cast<float*>(halo));
        move_.enqueue_command_without_event(cl::unmap_mem_object(edges_, edges));
        move_.enqueue_command_without_event(cl::unmap_mem_object(halo_, halo));
        move_.finish();
    }

    std::size_t lines_;
    cl::context context_;
    cl::command_queue compute_;
    cl::command_queue move_;
    cl::program program_;
    cl::kernel inside_;
    cl::kernel edge_;
    cl::buffer from_;
    cl::buffer to_;
    cl::buffer halo_;
    cl::buffer edges_;
};

// A plate that is hot in some squares.
std::vector<float> heat(std::size_t first_line, std::size_t lines) {
    std::vector<float> values(lines * width);
    for (std::size_t i = 0; i != values.size(); ++i) {
        std::size_t const x = i % width;
        std::size_t const y = first_line + i / width;
        values[i] = (x / 32 + y / 32) % 3 == 0 ? 100.0F : 0.0F;
    }
    return values;
}

struct run {
    std::vector<float> lines;
    double milliseconds;
};

run simulate(cl::device const& device, std::vector<float> const& lines, neighbours const& beside, int steps) {
    share(device, lines).step(beside); // the first launch may compile the kernel again
    share mine(device, lines);
    double const start = MPI_Wtime();
    for (int i = 0; i != steps; ++i) {
        mine.step(beside);
    }
    return {mine.read(), (MPI_Wtime() - start) * 1e3};
}

int run_rank(int count, char** arguments) {
    int rank = 0;
    int ranks = 1;
    MPI_Comm_rank(MPI_COMM_WORLD, &rank);
    MPI_Comm_size(MPI_COMM_WORLD, &ranks);
    std::size_t const lines = std::stoul(example::option(count, arguments, "--lines", "512"));
    int const steps = std::stoi(example::option(count, arguments, "--steps", "200"));
    std::size_t const own = lines / static_cast<std::size_t>(ranks);
    if (own * static_cast<std::size_t>(ranks) != lines || own < 3) {
        throw std::invalid_argument(
            "the number of lines must be a multiple of the ranks, and 3 times as large at least");
    }
    auto const devices = easy::find_devices<120>(example::option(count, arguments, "--platform", ""));
    if (devices.empty()) {
        throw std::runtime_error("No device was found; NQ_BRIDGE_VERBOSE=1 says more.");
    }
    auto const& device = devices[static_cast<std::size_t>(rank) % devices.size()];
    std::size_t const first = own * static_cast<std::size_t>(rank);
    run const mine = simulate(device, heat(first, own), neighbours(rank, ranks), steps);

    int const share_size = static_cast<int>(own * width);
    std::vector<float> whole(rank == 0 ? lines * width : 0);
    MPI_Gather(mine.lines.data(), share_size, MPI_FLOAT, whole.data(), share_size, MPI_FLOAT, 0, MPI_COMM_WORLD);
    int equal = 1;
    if (rank == 0) {
        run const alone = simulate(devices.front(), heat(0, lines), neighbours(0, 1), steps);
        equal = whole == alone.lines ? 1 : 0;
        std::printf("%d ranks  %zu x %zu points  %d steps  %8.1f ms  (one rank %8.1f ms)  %s\n", ranks, width, lines,
                    steps, mine.milliseconds, alone.milliseconds, equal != 0 ? "equal" : "DIFFERENT");
    }
    MPI_Bcast(&equal, 1, MPI_INT, 0, MPI_COMM_WORLD);
    return equal != 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int count, char** arguments) {
    MPI_Init(&count, &arguments);
    int status = EXIT_FAILURE;
    try {
        status = run_rank(count, arguments);
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "heat_mpi: %s\n", failure.what());
        MPI_Abort(MPI_COMM_WORLD, EXIT_FAILURE);
    }
    MPI_Finalize();
    return status;
}
