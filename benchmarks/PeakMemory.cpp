#include "PeakMemory.h"

#include <fstream>
#include <stdexcept>
#include <string>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

namespace brix::benchmarks {
namespace {

// "VmHWM:     1234 kB" of the system's own report.
std::int64_t StatusBytes(const std::string& field)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(field + ":")) return 1024 * std::stoll(line.substr(field.size() + 1));
    }
    throw std::runtime_error("The system tells no " + field + ".");
}

std::int64_t PeakOfThisProcess(const std::function<void()>& work)
{
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << 5; // the peak so far is forgotten
    const std::int64_t before = StatusBytes("VmRSS");
    work();
    return StatusBytes("VmHWM") - before;
}

} // namespace

std::int64_t PeakBytes(const std::function<void()>& work)
{
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("There is no pipe to measure memory through.");
    const pid_t child = fork();
    if (child == 0) {
        const std::int64_t bytes = PeakOfThisProcess(work);
        _exit(write(ends[1], &bytes, sizeof bytes) == sizeof bytes ? 0 : 1);
    }
    close(ends[1]);
    std::int64_t bytes = 0;
    const bool isRead = child > 0 && read(ends[0], &bytes, sizeof bytes) == sizeof bytes;
    close(ends[0]);
    int status = 0;
    if (child > 0) waitpid(child, &status, 0);
    if (!isRead || status != 0) throw std::runtime_error("The memory of a piece of work could not be measured.");
    return bytes;
}

} // namespace brix::benchmarks
