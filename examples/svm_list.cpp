// A linked list that host and device share. The host links nodes by plain pointers; a kernel follows them, changes the
// nodes and adds one at the end; then the host walks the same list.
//
//     svm_list [--nodes N] [--platform TEXT]

#include "support.hpp"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace cl = vorn::mero::opencl_2_0;
namespace easy = vorn::mero::easy;
using api = vorn::mero::api<200>;

namespace {

struct node {
    node* next;
    std::int64_t value;
};

constexpr char const* source = R"(
struct node {
    global struct node* next;
    long value;
};

kernel void square_and_append(global struct node* head, global struct node* spare) {
    global struct node* last = head;
    long sum = 0;
    for (global struct node* at = head; at; at = at->next) {
        at->value *= at->value;
        sum += at->value;
        last = at;
    }
    spare->value = sum;
    spare->next = 0;
    last->next = spare;
}
)";

// Nodes in shared virtual memory; they are freed together, when the commands that may use them have ended.
class node_pool {
public:
    node_pool(cl::context const& context, cl::host_command_queue const& queue) : context_(context), queue_(queue) {}
    node_pool(node_pool const&) = delete;
    node_pool& operator=(node_pool const&) = delete;
    ~node_pool() {
        try {
            queue_.finish();
            for (void* const pointer : pointers_) {
                context_.svm_free(pointer);
            }
        } catch (std::exception const& failure) { // memory that commands may use is rather lost
            std::fprintf(stderr, "nodes are not freed: %s\n", failure.what());
        }
    }

    node* make() {
        void* const pointer = context_.svm_allocate(cl::svm_mem_flags::read_write, sizeof(node), alignof(node));
        if (pointer == nullptr) {
            throw std::bad_alloc();
        }
        pointers_.push_back(pointer);
        return static_cast<node*>(pointer);
    }

    std::vector<void*> const& pointers() const { return pointers_; }

private:
    cl::context context_;
    cl::host_command_queue queue_;
    std::vector<void*> pointers_;
};

// Lets the host use every node: coarse-grained memory belongs either to the host or to the devices.
void map(cl::host_command_queue& queue, node_pool const& pool, cl::map_flags flags) {
    for (void* const pointer : pool.pointers()) {
        queue.enqueue_command_without_event(cl::svm_map(true, flags, pointer, sizeof(node)));
    }
}

void unmap(cl::host_command_queue& queue, node_pool const& pool) {
    for (void* const pointer : pool.pointers()) {
        queue.enqueue_command_without_event(cl::svm_unmap(pointer));
    }
}

node* link(node_pool& pool, std::size_t count, cl::host_command_queue& queue) {
    node* const head = pool.make();
    std::vector<node*> nodes{head};
    while (nodes.size() != count) {
        nodes.push_back(pool.make());
    }
    map(queue, pool, cl::map_flags::write);
    for (std::size_t i = 0; i != count; ++i) {
        *nodes[i] = {i + 1 == count ? nullptr : nodes[i + 1], static_cast<std::int64_t>(i)};
    }
    unmap(queue, pool);
    return head;
}

// The number of nodes if all are right, otherwise 0.
std::size_t check(node const* head, std::size_t count) {
    std::int64_t sum = 0;
    std::size_t seen = 0;
    for (node const* at = head; at != nullptr; at = at->next, ++seen) {
        auto const i = static_cast<std::int64_t>(seen);
        if (at->value != (seen == count ? sum : i * i)) {
            return 0;
        }
        sum += i * i;
    }
    return seen == count + 1 ? seen : 0;
}

std::size_t run(cl::device const& device, std::size_t count) {
    cl::context context = cl::create_context({}, {device}, nullptr, nullptr);
    cl::host_command_queue queue = context.create_host_command_queue(device, false, false);
    cl::program program = easy::build<200>(context, device, source);
    cl::kernel kernel = program.create_kernel("square_and_append");
    node_pool pool(context, queue);
    node* const head = link(pool, count, queue);
    node* const spare = pool.make();
    kernel.set_svm_argument(0, head);
    kernel.set_svm_argument(1, spare);
    kernel.set_svm_pointers(pool.pointers());
    queue.enqueue_command_without_event(api::launch(kernel, 1, 1));
    map(queue, pool, cl::map_flags::read);
    std::size_t const seen = check(head, count);
    unmap(queue, pool);
    queue.finish();
    return seen;
}

} // namespace

int main(int count, char** arguments) {
    try {
        auto const device =
            easy::find_device<200>(example::option(count, arguments, "--platform", ""),
                                   [](cl::device const& d) { return d.svm_coarse_grain_buffer_supported(); });
        std::size_t const nodes = std::stoul(example::option(count, arguments, "--nodes", "1000"));
        std::size_t const seen = run(device, nodes);
        std::printf("%s: %zu nodes followed, %s\n", device.name().c_str(), nodes,
                    seen != 0 ? "all right" : "not as they should be");
        return seen != 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "svm_list: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
