#include "run.hpp"

#include <elf.h>
#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace nq::command {
namespace {

namespace fs = std::filesystem;

constexpr int not_run = 127;

[[noreturn]] void give_up(std::string const& what) { throw std::runtime_error(what); }

// As a shell looks for it.
fs::path find_program(std::string const& name) {
    if (name.find('/') != std::string::npos) {
        return name;
    }
    char const* const path = std::getenv("PATH");
    std::istringstream folders(path != nullptr ? path : "");
    for (std::string folder; std::getline(folders, folder, ':');) {
        fs::path candidate = fs::path(folder) / name;
        if (access(candidate.c_str(), X_OK) == 0 && fs::is_regular_file(candidate)) {
            return candidate;
        }
    }
    give_up(name.empty() ? "give the name of a program after --, not ''"
                         : "there is no program " + name + "; give a path such as ./" + name);
}

// Programs that are not of this format are scripts, whose interpreter is preloaded.
bool is_static(fs::path const& program) {
    std::ifstream file(program, std::ios::binary);
    Elf64_Ehdr head{};
    file.read(reinterpret_cast<char*>(&head), sizeof head);
    if (!file || std::memcmp(head.e_ident, ELFMAG, SELFMAG) != 0 || head.e_ident[EI_CLASS] != ELFCLASS64) {
        return false;
    }
    for (unsigned i = 0; i < head.e_phnum; ++i) {
        Elf64_Phdr part{};
        file.seekg(static_cast<std::streamoff>(head.e_phoff + std::uint64_t{i} * head.e_phentsize));
        file.read(reinterpret_cast<char*>(&part), sizeof part);
        if (!file || part.p_type == PT_INTERP) {
            return false;
        }
    }
    return true;
}

void check(fs::path const& program) {
    struct stat about {};
    if (stat(program.c_str(), &about) != 0 || access(program.c_str(), X_OK) != 0 || S_ISDIR(about.st_mode)) {
        give_up("cannot run " + program.string() + ": " + std::strerror(S_ISDIR(about.st_mode) ? EISDIR : errno));
    }
    bool const raised = ((about.st_mode & S_ISUID) != 0 && about.st_uid != geteuid()) ||
                        ((about.st_mode & S_ISGID) != 0 && about.st_gid != getegid());
    if (raised) {
        give_up(program.string() + " runs with another user's rights, and ignores what is preloaded; run a copy of it");
    }
    if (getxattr(program.c_str(), "security.capability", nullptr, 0) > 0) {
        give_up(program.string() + " has capabilities, and ignores what is preloaded; run a copy of it");
    }
    if (is_static(program)) {
        give_up(program.string() + " is linked statically, and has no place for a layer; link it dynamically");
    }
}

// Beside this program, as installed and as built; empty if it is not there.
fs::path find_installed(std::string const& name) {
    fs::path const here = fs::read_symlink("/proc/self/exe").parent_path();
    for (fs::path const& folder : {here / VORN_MERO_LAYERS_FOLDER, here / "../lib"}) {
        if (fs::path const file = folder / name; fs::exists(file)) {
            return fs::canonical(file);
        }
    }
    return {};
}

fs::path find_layer(std::string const& name) {
    fs::path found = find_installed("libnq-" + name + ".so");
    if (found.empty()) {
        give_up("there is no libnq-" + name + ".so beside this program; install it again");
    }
    return found;
}

void add(std::string& list, std::string const& entry) { list += list.empty() || entry.empty() ? entry : ":" + entry; }

std::string environment(char const* variable) {
    char const* const value = std::getenv(variable);
    return value != nullptr ? value : "";
}

} // namespace

launch::launch(std::vector<layer_use> layers, command_line program)
    : layers_(std::move(layers)), arguments_(std::move(program)) {
    fs::path const path = find_program(arguments_.at(0));
    check(path);
    path_ = path;
    for (layer_use const& each : layers_) {
        add(preload_, find_layer(each.name).string());
    }
    add(preload_, environment("LD_PRELOAD"));
    // For every program: a script does not tell what it will load, and programs of this library find the loader behind.
    // Preloaded it comes before a loader that a program brings along, but after a tool; in the path it has one more
    // name.
    if (fs::path const dropin = find_installed("vorn-mero/libOpenCL.so.1"); !dropin.empty()) {
        add(preload_, dropin.string());
        add(library_path_, dropin.parent_path().string());
        add(library_path_, environment("LD_LIBRARY_PATH"));
    }
}

// Waits until the child is the program, or has told why not.
pid_t launch::begun(pid_t child, std::array<int, 2> const& told) const {
    close(told[1]);
    int why = 0;
    bool const is_begun = read(told[0], &why, sizeof why) != sizeof why;
    close(told[0]);
    if (!is_begun) {
        waitpid(child, nullptr, 0);
        give_up("cannot run " + path_ + ": " +
                (why == ENOEXEC  ? "it is no program; let a script begin with #! and its interpreter"
                 : why == ENOENT ? "the interpreter that it names is not there"
                                 : std::strerror(why)));
    }
    return child;
}

pid_t launch::start(int errors) const {
    std::vector<char*> arguments;
    for (std::string const& each : arguments_) {
        arguments.push_back(const_cast<char*>(each.c_str()));
    }
    arguments.push_back(nullptr);
    std::array<int, 2> told{}; // why the program does not begin; closed when it does
    pid_t const child = pipe2(told.data(), O_CLOEXEC) == 0 ? fork() : -1;
    if (child < 0) {
        give_up("cannot run " + path_ + ": " + std::strerror(errno));
    }
    if (child != 0) {
        return begun(child, told);
    }
    if (errors >= 0) {
        int const nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
        dup2(nothing, STDIN_FILENO);
        dup2(nothing, STDOUT_FILENO);
        dup2(errors, STDERR_FILENO);
        setpgid(0, 0);
        prctl(PR_SET_PDEATHSIG, SIGKILL); // the keys that end this program do not reach other process groups
    }
    setenv("LD_PRELOAD", preload_.c_str(), 1);
    if (!library_path_.empty()) {
        setenv("LD_LIBRARY_PATH", library_path_.c_str(), 1);
    }
    for (layer_use const& each : layers_) {
        std::string variable = "NQ_" + each.name;
        std::transform(variable.begin(), variable.end(), variable.begin(),
                       [](unsigned char letter) { return static_cast<char>(std::toupper(letter)); });
        setenv(variable.c_str(), each.settings.c_str(), 1);
    }
    execv(path_.c_str(), arguments.data());
    int const why = errno;
    [[maybe_unused]] ssize_t const wrote = write(told[1], &why, sizeof why);
    _exit(not_run);
}

int shell_status(int status) noexcept { return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status); }

int run_under(std::string const& layer, std::string const& settings, command_line const& program) {
    pid_t const child = launch({{layer, settings}}, program).start();
    // These end the program; what it did is still to be written.
    std::signal(SIGINT, SIG_IGN);
    std::signal(SIGQUIT, SIG_IGN);
    int status = 0;
    if (waitpid(child, &status, 0) != child) {
        give_up("cannot wait for " + program.at(0) + ": " + std::strerror(errno));
    }
    return shell_status(status);
}

} // namespace nq::command
