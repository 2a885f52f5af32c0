#include "simulation/page/Browser.hpp"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" char** environ; // POSIX leaves its declaration to the program

namespace sentrel::simulation {

namespace {

/// The setup of a quiet process that gets the signals which this program blocks.
class Setup {
public:
    Setup()
    {
        posix_spawn_file_actions_init(&files);
        posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawnattr_init(&attributes);
        sigset_t none{};
        sigemptyset(&none);
        posix_spawnattr_setsigmask(&attributes, &none);
        posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK);
    }
    ~Setup()
    {
        posix_spawn_file_actions_destroy(&files);
        posix_spawnattr_destroy(&attributes);
    }
    Setup(const Setup&) = delete;

    posix_spawn_file_actions_t files{};
    posix_spawnattr_t attributes{};
};

} // namespace

bool Browser::open(const std::string& address)
{
    std::string program = "xdg-open";
    std::string argument = address;
    const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
    const Setup setup;
    pid_t process = 0;
    if (posix_spawnp(&process, program.c_str(), &setup.files, &setup.attributes, arguments.data(), environ) != 0) {
        return false;
    }
    command_ = process;
    return true;
}

bool Browser::hasFailed()
{
    int status = 0;
    if (!command_ || waitpid(*command_, &status, WNOHANG) != *command_) {
        return false;
    }
    command_.reset();
    return !WIFEXITED(status) || WEXITSTATUS(status) != 0;
}

} // namespace sentrel::simulation
