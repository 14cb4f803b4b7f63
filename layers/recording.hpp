#pragma once

// The file that the layer `record` writes and `vorn-mero replay` reads: a head, then entries in one stream of zstd.
// Each piece of the program's memory is there once. Numbers are as the machine has them.

#include <nq/describe.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <vector>

namespace nq::recording {

struct file_head {
    static constexpr std::array<char, 8> right_magic{'n', 'q', 'r', 'e', 'c', 'o', 'r', 'd'};
    static constexpr std::uint32_t right_version = 1;

    std::array<char, 8> magic = right_magic;
    std::uint32_t version = right_version;
    std::uint32_t reserved = 0;
};

enum class entry_kind : std::uint32_t { memory = 1, handle, call, contents, shared, end };

/// Begins each entry. Its body follows.
struct entry_head {
    entry_kind kind{};
    std::uint32_t reserved = 0;
    std::uint64_t size = 0; ///< of the body
};

/// A call handle, at its first call. The names of platform and device follow. Entries of memory and of handles are
/// numbered from 0, each for themselves.
struct handle_entry {
    std::uint64_t version = 0;
    std::uint64_t platform = 0; ///< OpenCL's raw handle
    std::uint64_t device = 0;   ///< OpenCL's raw handle
    std::uint32_t platform_size = 0;
    std::uint32_t device_size = 0;
};

/// A call. Its block as it was after the call follows, then its segments.
struct call_entry {
    std::uint64_t order = 0; ///< entries happened in this order
    std::uint32_t thread = 0;
    std::uint32_t handle = 0; ///< the number of its entry
    std::uint32_t id = 0;
    std::int32_t result = 0;
    std::uint32_t pixel_size = 0; ///< of the image, in bytes
    std::uint32_t segments = 0;
};

/// What a field refers to. Item 0 is the memory behind the pointer; item n is the n-th text, binary or name in a list.
struct segment {
    std::uint32_t offset = 0; ///< of the field
    std::uint32_t item = 0;
    std::uint64_t memory = 0; ///< the number of its entry
};

/// What a call has written to memory of the program, as it was when its command was done.
struct contents_entry {
    std::uint64_t order = 0;
    std::uint64_t call = 0; ///< its order
    std::uint64_t offset = 0;
    std::uint64_t memory = 0;
};

/// What an allocation of fine-grained shared memory held, before a command or after waiting.
struct shared_entry {
    std::uint64_t order = 0;
    std::uint64_t address = 0;
    std::uint64_t is_result = 0;
    std::uint64_t memory = 0;
};

/// The last entry: how many there were before.
struct end_entry {
    std::uint64_t entries = 0;
};

using memory = std::span<std::byte const>;

/// Writes a file. Any thread may call the functions, one at a time.
class writer {
public:
    writer();
    ~writer();
    writer(writer const&) = delete;
    writer& operator=(writer const&) = delete;

    /// Returns why it cannot be written, or nothing.
    std::string open(std::string const& path);

    /// The number of the memory's entry, which is written if there was none with these bytes.
    std::uint64_t keep(memory bytes);

    /// `tail` has what follows the body.
    template <class Body>
    void write(entry_kind kind, Body const& body, memory tail = {}) {
        write_entry(kind, std::as_bytes(std::span(&body, 1)), tail);
    }

    /// Writes the last entry. Returns why the file could not be written, or nothing.
    std::string close();

private:
    struct state;
    void write_entry(entry_kind kind, memory body, memory tail);
    void put(memory bytes, bool last);

    std::unique_ptr<state> state_;
};

/// A call that was read. Refers to the recording.
struct read_call {
    call_entry entry;
    description const* about = nullptr;
    memory block;
    std::vector<segment> segments;

    std::uint64_t field(std::size_t offset, std::size_t size = 8) const {
        return read_field(block.data(), offset, size);
    }
    /// What OpenCL answered; 0 for a call without a status.
    std::int32_t status() const {
        return about->status != absent ? static_cast<std::int32_t>(field(about->status, 4)) : 0;
    }
    bool succeeded() const { return entry.result == 0 && status() == 0; }
    segment const* find(std::size_t offset, std::uint32_t item = 0) const;
};

struct read_handle {
    handle_entry entry;
    std::string platform;
    std::string device;
};

/// What happened, by the number of the call, of the contents, or of the shared memory.
struct event {
    std::uint64_t order;
    entry_kind kind;
    std::size_t index;
};

/// A recording in memory.
struct session {
    std::vector<std::vector<std::byte>> memories;
    std::vector<read_handle> handles;
    std::vector<std::vector<std::byte>> bodies; ///< of the calls
    std::vector<read_call> calls;
    std::vector<contents_entry> contents;
    std::vector<shared_entry> shared;
    std::vector<event> events; ///< in order

    memory at(segment const& of) const { return memories[of.memory]; }
};

/// Reads a file. Throws `std::runtime_error`, which says what is wrong with it and what to do.
session read_file(std::string const& path);

/// The same of an open file, which it closes; null has the reason in `errno`.
session read_file(std::FILE* file);

/// Where entries are read from. Returns fewer bytes at the end.
class source {
public:
    virtual ~source() = default;
    virtual std::size_t read(std::span<std::byte> into) = 0;
};

/// Reads the entries, and checks each number in them. Throws as `read_file` does.
session read_entries(source& from);

} // namespace nq::recording
