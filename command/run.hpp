#pragma once

// Runs a program under a layer.

#include <sys/types.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace nq::command {

/// A program and its arguments.
using command_line = std::vector<std::string>;

/// A layer by its name, "faults", and what its variable in the environment holds.
struct layer_use {
    std::string name;
    std::string settings;
};

/// A program with layers before it, to be started any number of times.
class launch {
public:
    /// The first layer is nearest to the program. Throws `std::runtime_error` if the program cannot be run, or no layer
    /// can be put before it.
    launch(std::vector<layer_use> layers, command_line program);

    /// Starts it and returns the number of its process. With a file its standard error goes there, its output and
    /// input nowhere, and it leads a process group of its own; it is ended with the thread that called this.
    pid_t start(int errors = -1) const;

    /// Of the last layer.
    void set(std::string settings) { layers_.back().settings = std::move(settings); }

private:
    pid_t begun(pid_t child, std::array<int, 2> const& told) const;

    std::vector<layer_use> layers_;
    command_line arguments_;
    std::string path_;
    std::string preload_;
    std::string library_path_;
};

/// Its exit status, 128 and the number of the signal if one ended it, as a shell has it.
int shell_status(int status) noexcept;

/// Runs it with a layer before it, and returns its exit status as a shell has it. Throws as `launch` does.
int run_under(std::string const& layer, std::string const& settings, command_line const& program);

} // namespace nq::command
