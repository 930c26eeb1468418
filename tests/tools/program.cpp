#include "tools/program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

namespace kzb::test {

namespace {

int output_at(const std::string& path) {
    return open(path.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
}

[[noreturn]] void become_kzb(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                             const std::map<std::string, std::string>& environment, int out, int err) {
    std::vector<std::string> words = {KZB_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    for (const auto& [name, value] : environment) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    dup2(open("/dev/null", O_RDONLY), STDIN_FILENO);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    if (chdir(folder.c_str()) == 0) {
        execv(KZB_PROGRAM, argv.data());
    }
    _exit(127);
}

pid_t start_kzb(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                const std::map<std::string, std::string>& environment, int out, int err) {
    const pid_t child = fork();
    if (child == 0) {
        become_kzb(arguments, folder, environment, out, err);
    }
    if (child < 0) {
        throw std::runtime_error("kzb could not be started");
    }
    return child;
}

void take_end(int status, Finished& finished) {
    finished.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    finished.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}

void wait_for(pid_t child, Finished& finished) {
    int status = 0;
    if (waitpid(child, &status, 0) == child) {
        take_end(status, finished);
    }
}

}  // namespace

Finished run_kzb(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                 const std::map<std::string, std::string>& environment) {
    const Folder outputs;
    const int out = output_at(outputs / "out");
    const int err = output_at(outputs / "err");
    Finished finished;
    wait_for(start_kzb(arguments, folder, environment, out, err), finished);
    close(out);
    close(err);
    finished.out = read_file(outputs / "out");
    finished.err = read_file(outputs / "err");
    return finished;
}

Finished run_kzb_for(const std::vector<std::string>& arguments, const std::filesystem::path& folder, double seconds) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    const pid_t child = start_kzb(arguments, folder, {}, nowhere, nowhere);
    close(nowhere);
    Finished finished;
    const auto limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    int status = 0;
    while (waitpid(child, &status, WNOHANG) == 0) {
        if (std::chrono::steady_clock::now() > limit) {
            kill(child, SIGTERM);
            wait_for(child, finished);
            return finished;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    take_end(status, finished);
    return finished;
}

Finished run_kzb_on_terminal(const std::vector<std::string>& arguments, const std::filesystem::path& folder,
                             const std::map<std::string, std::string>& environment, const std::string& until) {
    const Folder outputs;
    const int out = output_at(outputs / "out");
    const int master = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (master < 0 || grantpt(master) != 0 || unlockpt(master) != 0) {
        throw std::runtime_error("no terminal for the test");
    }
    const int terminal = open(ptsname(master), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const pid_t child = start_kzb(arguments, folder, environment, out, terminal);
    close(terminal);
    Finished finished;
    char block[4096];
    // Reading fails once the program, the last one at the other end, has gone.
    for (ssize_t n = read(master, block, sizeof block); n > 0; n = read(master, block, sizeof block)) {
        finished.err.append(block, static_cast<std::size_t>(n));
        if (!until.empty() && finished.err.find(until) != std::string::npos) {
            kill(child, SIGTERM);
        }
    }
    wait_for(child, finished);
    close(out);
    close(master);
    finished.out = read_file(outputs / "out");
    return finished;
}

Finished build_linear_wound_field(const Folder& folder) {
    std::vector<std::string> arguments{"build", "wfsm", "--field", "winding", "--position-step", "5", "--out", "m.kzb"};
    for (const char* word : {"pole_pairs=2", "resistance=0.5", "field_resistance=2", "d_inductance=0.01",
                             "q_inductance=0.006", "mutual_inductance=0.05", "field_inductance=0.5"}) {
        arguments.insert(arguments.end(), {"--parameter", word});
    }
    return run_kzb(arguments, folder.path());
}

int line_count(const std::string& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

}  // namespace kzb::test
