#include "trace_log.hpp"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <stdexcept>
#include <utility>

namespace nq::layer::trace {
namespace {

// Never freed: a thread may make calls until the very end.
struct file {
    std::mutex mutex;
    int descriptor = -1;
    std::size_t most_chunks = 0;
    std::vector<chunk*> all; // in the order of making
    std::atomic<std::uint64_t> lost{0};
};

file& log() {
    static file& opened = *new file;
    return opened;
}

struct writer {
    chunk* current = nullptr;
    std::vector<chunk*> older; // of this thread, the oldest first
};

writer& own() {
    static thread_local writer* made = nullptr; // what a thread wrote outlives it
    if (made == nullptr) {
        made = new writer;
    }
    return *made;
}

std::uint64_t nanoseconds(timespec const& time) {
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000 + static_cast<std::uint64_t>(time.tv_nsec);
}

std::byte* bytes_of(chunk* in) { return reinterpret_cast<std::byte*>(in + 1); }

chunk* map_chunk() {
    file& to = log();
    std::size_t const offset = (to.all.size() + 1) * chunk::size;
    int const flags = to.descriptor >= 0 ? MAP_SHARED : MAP_PRIVATE | MAP_ANONYMOUS;
    if (to.all.size() >= to.most_chunks ||
        (to.descriptor >= 0 && ftruncate(to.descriptor, static_cast<off_t>(offset + chunk::size)) != 0)) {
        return nullptr;
    }
    void* const mapped = mmap(nullptr, chunk::size, PROT_READ | PROT_WRITE, flags, to.descriptor,
                              to.descriptor >= 0 ? static_cast<off_t>(offset) : 0);
    return mapped != MAP_FAILED ? static_cast<chunk*>(mapped) : nullptr;
}

void count_lost(chunk const& emptied) {
    for_each_entry(emptied, [](entry_kind, auto) { ++log().lost; });
}

// A new chunk, or the thread's oldest.
chunk* next_chunk(writer& of) {
    std::scoped_lock const lock{log().mutex};
    if (of.current != nullptr) {
        of.older.push_back(of.current);
    }
    chunk* next = map_chunk();
    if (next != nullptr) {
        log().all.push_back(next);
    } else if (!of.older.empty()) {
        next = of.older.front();
        of.older.erase(of.older.begin());
        count_lost(*next);
        log().all.erase(std::find(log().all.begin(), log().all.end(), next));
        log().all.push_back(next);
    }
    if (next != nullptr) {
        next->used = 0;
        next->thread = static_cast<std::uint32_t>(gettid());
    }
    return next;
}

} // namespace

std::uint64_t now() noexcept {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return nanoseconds(time);
}

std::int64_t own_rank() noexcept {
    for (char const* const name : {"OMPI_COMM_WORLD_RANK", "PMIX_RANK", "PMI_RANK", "SLURM_PROCID"}) {
        char const* const text = ::secure_getenv(name);
        std::int64_t rank = -1;
        if (text != nullptr && std::from_chars(text, text + std::strlen(text), rank).ec == std::errc{} && rank >= 0) {
            return rank;
        }
    }
    return -1;
}

file_head file_head::own() noexcept {
    file_head made;
    made.process = getpid();
    made.rank = own_rank();
    timespec wall{};
    clock_gettime(CLOCK_REALTIME, &wall);
    made.wall_clock = static_cast<std::int64_t>(nanoseconds(wall) - now());
    if (int const file = open("/proc/sys/kernel/random/boot_id", O_RDONLY | O_CLOEXEC); file >= 0) {
        if (read(file, made.boot.data(), made.boot.size() - 1) < 0) {
            made.boot = {};
        }
        close(file);
    }
    std::strncpy(made.program.data(), program_invocation_short_name, made.program.size() - 1);
    return made;
}

std::string expanded(std::string name) {
    for (auto const& [key, value] :
         {std::pair("%r", std::max<std::int64_t>(own_rank(), 0)), std::pair("%p", std::int64_t{getpid()})}) {
        for (std::size_t at = 0; (at = name.find(key, at)) != std::string::npos;) {
            std::string const text = std::to_string(value);
            name.replace(at, 2, text);
            at += text.size();
        }
    }
    return name;
}

std::string recording_of(std::string const& output) {
    struct stat about {};
    if (lstat(output.c_str(), &about) == 0 && !S_ISREG(about.st_mode)) {
        return ""; // what is beside /dev/null is no place for files
    }
    return output.ends_with(".part") ? output : output + ".part";
}

int open_log(std::string const& path, std::size_t limit_in_bytes) {
    file& to = log();
    std::scoped_lock const lock{to.mutex};
    to.most_chunks = std::max<std::size_t>(limit_in_bytes / chunk::size, 1);
    if (path.empty()) {
        return 0;
    }
    file_head const head = file_head::own();
    int const opened = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    // The lock lasts as long as the process: one whose file is cut off while it writes would end by a signal.
    if (opened < 0 || flock(opened, LOCK_EX | LOCK_NB) != 0 || ftruncate(opened, 0) != 0 ||
        pwrite(opened, &head, sizeof head, 0) < 0) {
        int const why = errno;
        if (opened >= 0) {
            close(opened);
        }
        return why;
    }
    to.descriptor = opened;
    return 0;
}

std::byte* begin_entry(std::size_t size) noexcept {
    writer& of = own();
    constexpr std::size_t room = chunk::size - sizeof(chunk);
    if (of.current == nullptr || of.current->used + size > room) {
        chunk* const next = size <= room ? next_chunk(of) : nullptr;
        if (next == nullptr) {
            ++log().lost;
            return nullptr;
        }
        of.current = next;
    }
    return bytes_of(of.current) + of.current->used;
}

// Only this thread writes the chunk: a crash leaves it as of before or after this.
void end_entry(std::size_t size) noexcept {
    std::atomic_ref const used(own().current->used);
    used.store(used.load(std::memory_order_relaxed) + static_cast<std::uint32_t>(size), std::memory_order_release);
}

std::vector<chunk const*> chunks() {
    std::scoped_lock const lock{log().mutex};
    return {log().all.begin(), log().all.end()};
}

left_log read_log(std::string const& path) {
    int const descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    auto const size =
        descriptor >= 0 ? static_cast<std::size_t>(std::max<off_t>(lseek(descriptor, 0, SEEK_END), 0)) : 0;
    void* const mapped =
        size >= sizeof(file_head) ? mmap(nullptr, size, PROT_READ, MAP_PRIVATE, descriptor, 0) : MAP_FAILED;
    std::string why = descriptor < 0 ? std::strerror(errno) : "it is no recording of calls";
    if (descriptor >= 0) {
        close(descriptor);
    }
    left_log made;
    if (mapped != MAP_FAILED) {
        std::memcpy(&made.head, mapped, sizeof made.head);
        if (std::equal(made.head.magic.begin(), made.head.magic.end() - 1, file_head::right_magic.begin())) {
            why = "another version wrote it; read it with the vorn-mero of that version";
        }
    }
    if (mapped == MAP_FAILED || made.head.magic != file_head::right_magic) {
        throw std::runtime_error("cannot read " + path + ": " + why);
    }
    made.head.program.back() = '\0';
    for (std::size_t at = chunk::size; at + chunk::size <= size; at += chunk::size) {
        made.chunks.push_back(reinterpret_cast<chunk const*>(static_cast<std::byte const*>(mapped) + at));
    }
    return made;
}

std::uint64_t lost_entries() noexcept { return log().lost; }

} // namespace nq::layer::trace
