#pragma once

// The formats of a trace: each is a writer that is told of processes, their rows, and the slices on them.

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace nq::layer::trace {

/// A thread, or a queue; a queue whose commands overlap has several rows of one name.
struct row {
    std::uint64_t number = 0; ///< of the thread; unique in its process
    std::string name;
    bool is_queue = false;
};

/// Where an arrow begins or ends: at the start of a slice.
struct arrow_end {
    std::uint64_t arrow;
    bool begins;
    bool waits; ///< from a command to one that waited for it, otherwise from the call that enqueued it
};

/// A call, or a command. Times are in nanoseconds.
struct slice {
    std::string name;
    std::uint64_t row = 0; ///< its number
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
    std::vector<std::pair<std::string, std::string>> arguments{};
    bool failed = false;
    std::vector<arrow_end> arrows{};
};

/// Objects that an entry point has made, and that were not released.
struct kept_objects {
    std::string entry;
    std::uint64_t count;
    std::int64_t references; ///< of each
};

class writer {
public:
    writer() = default;
    writer(writer const&) = delete;
    writer& operator=(writer const&) = delete;
    virtual ~writer() = default;

    /// What follows is of this process.
    virtual void begin_process(std::int64_t number, std::string const& name) = 0;
    virtual void add(row const& each) = 0;
    /// Those of a row in the order of their beginning. The row is known.
    virtual void add(slice const& each) = 0;
    virtual void add(kept_objects const& each) = 0;
    /// Ends the file. False if not all of it could be written.
    virtual bool close() = 0;

    /// For an arrow of this file.
    std::uint64_t number_of_next_arrow() noexcept { return ++arrows_; }

private:
    std::uint64_t arrows_ = 0;
};

/// With three digits after the point.
std::string microseconds(std::uint64_t nanoseconds);

/// Events as JSON, which ui.perfetto.dev and chrome://tracing open. Owns the file.
std::unique_ptr<writer> make_json(std::FILE* to);

/// Perfetto's own format. Owns the file.
std::unique_ptr<writer> make_perfetto(std::FILE* to);

/// A page for a browser, with everything in it. Owns the file.
std::unique_ptr<writer> make_page(std::FILE* to);

} // namespace nq::layer::trace
