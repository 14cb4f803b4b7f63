#pragma once

// Runs a program once for each of its calls, and fails that call.

#include "run.hpp"

namespace nq::command {

struct sweep_options {
    std::vector<std::string> failures{"CL_OUT_OF_RESOURCES", "result=-1"}; ///< As the layer faults takes them.
    std::vector<std::string> except; ///< Entry points whose failures do not count.
    unsigned jobs = 0;               ///< How many run at once; 0 stands for one on each processor.
    unsigned step = 1;               ///< Of so many calls one is failed.
    double seconds = 0;  ///< After which a run counts as hanging; 0 stands for 10 and ten times the first run's.
    int exit_status = 1; ///< If a run broke; 0 stands for the program's own.
};

/// Prints each run that a signal ended, that hung, or that released less than it should, then what became of how many.
/// Returns the exit status for the command. Throws as `launch` does, if the layer does not know a failure, and if the
/// program makes no call.
int sweep(command_line const& program, sweep_options options);

} // namespace nq::command
