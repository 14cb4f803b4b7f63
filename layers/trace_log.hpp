#pragma once

// What a trace is recorded in: entries in chunks of a file that is mapped into memory, so that what was recorded
// outlives a crash. Each thread writes to chunks of its own, without locks.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <vector>

namespace nq::layer::trace {

/// Nanoseconds; the clock of all entries.
std::uint64_t now() noexcept;

enum class entry_kind : std::uint32_t { call = 1, command, label };

/// Begins each entry. Sizes are multiples of 8 bytes.
struct entry_head {
    std::uint32_t size;
    entry_kind kind;
};

/// A call. Its block follows, then segments: copies of the memory that the block refers to.
struct call_entry {
    entry_head head{0, entry_kind::call};
    std::uint64_t number = 0; ///< of the call, in the order of beginning
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::uint32_t id = 0; ///< of the command in its version
    std::int32_t result = 0;
    std::uint32_t version = 0;
    std::uint32_t block_size = 0;
};

/// A piece of memory of the program. Its bytes follow.
struct segment_head {
    std::uint64_t address = 0;
    std::uint64_t size = 0; ///< without the bytes up to a multiple of 8
};

/// What a device did for a call that enqueued a command, by the clock of the device.
struct command_entry {
    entry_head head{sizeof(command_entry), entry_kind::command};
    std::uint64_t number = 0; ///< of the call
    std::uint64_t queue = 0;
    std::uint64_t event = 0;
    std::uint64_t queued = 0;
    std::uint64_t submitted = 0;
    std::uint64_t started = 0;
    std::uint64_t ended = 0;
};

/// What a kernel or queue is called, from a time on. The text fills its place up with zeros.
struct label_entry {
    entry_head head{sizeof(label_entry), entry_kind::label};
    std::uint64_t address = 0;
    std::uint64_t time = 0;
    std::array<char, 104> text{};
};

constexpr std::size_t rounded(std::size_t size) { return (size + 7) / 8 * 8; }

/// A piece of the file, of `size` bytes. In place of the first one is a `file_head`.
struct chunk {
    static constexpr std::size_t size = std::size_t{1} << 18U;

    std::uint32_t used;   ///< bytes behind the head
    std::uint32_t thread; ///< that wrote it
};

/// Whose calls a file has.
struct file_head {
    static constexpr std::array<char, 8> right_magic{'n', 'q', 't', 'r', 'a', 'c', 'e', '2'};

    std::array<char, 8> magic = right_magic;
    std::int64_t process = 0;
    std::int64_t rank = -1;         ///< among the processes of an MPI program; less than 0 if it is none
    std::int64_t wall_clock = 0;    ///< of the wall, when that of the entries is 0; in nanoseconds
    std::array<char, 40> boot{};    ///< tells whether two processes have one clock: what the system calls its start
    std::array<char, 48> program{}; ///< ends with a zero

    /// That of this process.
    static file_head own() noexcept;
};

/// The rank of this process among those of an MPI program, as its launcher tells in the environment; otherwise -1.
std::int64_t own_rank() noexcept;

/// A name of a file, with the rank of this process in place of `%r`, 0 if it has none, and its number in place of `%p`.
std::string expanded(std::string name);

/// Where the entries are until a file of this name is written: the file itself if it is `FILE.part`; empty, for memory,
/// if it is a device or a link.
std::string recording_of(std::string const& output);

/// Makes the file. An empty path: memory without a file. Returns 0 or an error number: `EWOULDBLOCK` if another process
/// writes the file.
int open_log(std::string const& path, std::size_t limit_in_bytes);

/// Where the calling thread writes its next entry, of at most `size` bytes; null if there is no room. If all chunks are
/// in use, the thread's oldest entries make room.
std::byte* begin_entry(std::size_t size) noexcept;

/// Makes the entry that was begun part of the log.
void end_entry(std::size_t size) noexcept;

/// Appends an entry without a tail.
template <class Entry>
void append(Entry const& entry) noexcept {
    if (std::byte* const place = begin_entry(sizeof entry); place != nullptr) {
        std::memcpy(place, &entry, sizeof entry);
        end_entry(sizeof entry);
    }
}

/// The chunks in use, those of a thread in the order of writing. For when no thread writes any more.
std::vector<chunk const*> chunks();

/// A log that a process has left behind, mapped into memory for good.
struct left_log {
    file_head head;
    std::vector<chunk const*> chunks;
};

/// Throws `std::runtime_error` if the file cannot be read, or is none of this kind. Of one that was cut off, the chunks
/// that are whole.
left_log read_log(std::string const& path);

/// How many entries had no room, or made room for later ones.
std::uint64_t lost_entries() noexcept;

/// Visits the entries of a chunk; stops at a damaged one.
template <class Visit>
void for_each_entry(chunk const& from, Visit visit) {
    auto const* const bytes = reinterpret_cast<std::byte const*>(&from + 1);
    std::size_t const used = from.used < chunk::size - sizeof(chunk) ? from.used : chunk::size - sizeof(chunk);
    for (std::size_t at = 0; at + sizeof(entry_head) <= used;) {
        entry_head head{};
        std::memcpy(&head, bytes + at, sizeof head);
        if (head.size < sizeof head || head.size % 8 != 0 || head.size > used - at) {
            return;
        }
        visit(head.kind, std::span(bytes + at, head.size));
        at += head.size;
    }
}

} // namespace nq::layer::trace
