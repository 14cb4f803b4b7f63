#pragma once

// Takes one launch of a kernel out of a session: its program, arguments and memory, as a program of its own.

#include "player.hpp"

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace nq::command {

/// An argument of the launch.
struct launch_argument {
    enum class kind { value, local, buffer, image, sampler };

    bool is_memory() const noexcept { return what == kind::buffer || what == kind::image; }

    kind what = kind::value;
    std::uint64_t size = 0;          ///< of a value or of local memory, in bytes
    std::vector<std::byte> before{}; ///< a value; what memory held
    std::vector<std::byte> after{};  ///< what memory holds after the launch
    std::uint32_t same_as = 0;       ///< the first argument that is this object
    std::uint64_t flags = 0;         ///< of memory, those of access
    std::uint32_t order = 0;         ///< of an image, or how a sampler addresses pixels
    std::uint32_t type = 0;          ///< of an image, or how a sampler filters
    std::uint64_t extent[3]{}; ///< of an image, in pixels; a sampler's first is whether coordinates are normalized
};

/// All that the program needs.
struct launch_parts {
    std::string kernel;
    unsigned nth = 1;
    std::string platform; ///< that the results are of
    std::vector<std::byte> source;
    std::string options;
    std::uint32_t dimensions = 1;
    std::uint64_t offset[3]{0, 0, 0};
    std::uint64_t global[3]{1, 1, 1};
    std::uint64_t local[3]{1, 1, 1};
    bool is_local_chosen = true; ///< the session left it to OpenCL, and this is a choice
    std::map<std::uint32_t, launch_argument> arguments;
};

/// Writes the folder. Throws `std::runtime_error` if it cannot be written.
void write_launch(launch_parts const& parts, std::string const& folder);

/// Looks for the launch while a session is replayed.
class extractor {
public:
    extractor(std::string kernel, unsigned nth);

    /// A `player::watcher`. Throws `std::runtime_error` if the launch has what cannot be taken out.
    bool watch(player& on, std::size_t index, bool is_before);

    bool is_found() const { return is_found_; }
    launch_parts const& parts() const { return parts_; }

    /// Why the launch was not found.
    std::string missing() const;

private:
    struct kernel_state {
        std::string name;
        std::uint64_t program = 0;
        std::map<std::uint32_t, std::size_t> arguments{}; ///< the call that set each
    };
    struct program_state {
        std::vector<std::byte> source{};
        std::string options{};
    };

    void note(recording::session const& from, recording::read_call const& call, std::size_t index);
    void note_kernels(recording::session const& from, recording::read_call const& call);
    void take(player& on, recording::read_call const& launch);
    void take_sizes(recording::session const& from, recording::read_call const& launch);
    launch_argument take_argument(player& on, recording::read_call const& launch, recording::read_call const& set);
    void take_memory(player& on, recording::read_call const& launch, std::uint64_t object, launch_argument& into) const;
    void take_sampler(recording::session const& from, recording::read_call const& made, launch_argument& into) const;

    std::map<std::uint64_t, kernel_state> kernels_{};
    std::map<std::uint64_t, program_state> programs_{};
    std::map<std::uint64_t, std::size_t> creations_{}; ///< the call that made a memory object or sampler
    std::map<std::uint32_t, std::uint64_t> objects_{}; ///< of the arguments
    std::set<std::uint64_t> gates_{};                  ///< user events that are not complete
    std::map<std::string, unsigned> launches_{};
    launch_parts parts_{};
    bool is_found_ = false;
};

} // namespace nq::command
