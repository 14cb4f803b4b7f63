#pragma once

// Makes the calls of a recording again, and compares what they return and write.

#include "machine.hpp"
#include "replay_block.hpp"

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace nq::command {

/// Which device stands for those of the recording.
struct device_choice {
    std::string platform; ///< a part of its name; empty: that of the recording, if it is here
    int number = -1;      ///< among those of the platform; -1: each in turn
};

/// What was compared.
struct comparison {
    std::uint64_t calls = 0;   ///< that were made
    std::uint64_t results = 0; ///< pieces of memory
    std::uint64_t bytes = 0;
    std::uint64_t different = 0; ///< calls and pieces of memory
    std::uint64_t missing = 0;   ///< calls that need what could not be made
    std::uint64_t left_out = 0;  ///< calls that cannot be made without the program
};

class player {
public:
    /// Sees a call that is about to be made, with its number, and after it. False ends the replay.
    using watcher = std::function<bool(player&, std::size_t number, bool is_before)>;

    /// Refers to the recording and the machine. Throws `std::runtime_error` if there is no device for it.
    player(recording::session const& from, machine& on, device_choice const& choice);
    ~player();
    player(player const&) = delete;
    player& operator=(player const&) = delete;

    /// Where it runs, as one line for each device.
    std::vector<std::string> devices() const;

    /// `print` gets a line for each difference.
    comparison run(std::function<void(std::string const&)> print, watcher const& watch = {});

    recording::session const& from() const { return from_; }
    translation const& names() const { return names_; }
    /// The call handle for a call of the recording.
    opened through(recording::read_call const& call);

private:
    struct awaited {
        opened through;
        std::unique_ptr<replay_block> block;
        std::map<std::size_t, place> places;
        _nq_cl_event* event = nullptr; ///< with a reference
        std::size_t contents = 0;      ///< that are still to come
    };

    void choose(device_choice const& choice);
    std::vector<std::uint64_t> objects_in(recording::read_call const& call, nq::field const& each) const;
    std::vector<std::uint64_t> used_devices() const;
    bool is_missing(recording::read_call const& call) const;
    void forget_results(recording::read_call const& call);
    bool is_replayed(recording::read_call const& call) const;
    void perform_call(recording::read_call const& call);
    bool has_right_pixels(recording::read_call const& call);
    void prepare(recording::read_call const& call, replay_block& block);
    bool make(recording::read_call const& call, replay_block& block);
    bool make_context(recording::read_call const& call, replay_block& block);
    bool make_marker(recording::read_call const& call, replay_block& block);
    void compare_status(recording::read_call const& call, replay_block const& block);
    void take_results(recording::read_call const& call, std::unique_ptr<replay_block> block, bool is_done);
    void name_kernels(recording::read_call const& call, replay_block const& block);
    void compare_contents(recording::contents_entry const& entry);
    void compare_shared(recording::shared_entry const& entry);
    void compare(recording::memory recorded, place const& here, std::string const& what);
    void differ(std::string const& what);

    recording::session const& from_;
    machine& machine_;
    translation names_{};
    std::set<std::uint64_t> parts_{};                    ///< devices that are parts of others
    std::map<std::uint64_t, device_here> chosen_{};      ///< by the device of the recording
    std::map<std::uint64_t, std::size_t> contents_of_{}; ///< how many, by the order of the call
    std::map<std::uint64_t, std::size_t> numbers_{};     ///< from 1 on, by the order of the call
    std::map<std::uint64_t, awaited> awaited_{};         ///< by the order of the call
    std::vector<std::unique_ptr<replay_block>> kept_{};
    _nq_cl_event* own_event_ = nullptr;
    comparison done_{};
    std::function<void(std::string const&)> print_{};
};

} // namespace nq::command
