#include "System.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <limits>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brix::tools {
namespace {

constexpr double NoLimit = std::numeric_limits<double>::infinity();

int AccessError(const std::filesystem::path& filePath, int mode) { return access(filePath.c_str(), mode) == 0 ? 0 : errno; }

double ControlGroupMemory()
{
    double bytes = 0;
    return std::ifstream("/sys/fs/cgroup/memory.max") >> bytes ? bytes : NoLimit;
}

} // namespace

std::vector<std::string> PrepareConsole(int argc, char** argv) { return {argv, argv + argc}; }

bool IsErrorOutputTerminal() { return isatty(STDERR_FILENO) != 0; }

int ReadingError(const std::filesystem::path& filePath)
{
    struct stat status
    {};
    if (stat(filePath.c_str(), &status) != 0) return errno;
    if (const int error = AccessError(filePath, R_OK)) return error;
    return S_ISDIR(status.st_mode) ? EISDIR : 0;
}

int WritingError(const std::filesystem::path& filePath)
{
    struct stat status
    {};
    if (stat(filePath.c_str(), &status) != 0) return errno == ENOENT ? 0 : errno;
    return S_ISDIR(status.st_mode) ? EISDIR : AccessError(filePath, W_OK);
}

int FolderError(const std::filesystem::path& folder) { return AccessError(folder, W_OK | X_OK); }

int OpenToOverwrite(const std::filesystem::path& filePath) { return open(filePath.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC); }

int OpenNew(const std::filesystem::path& filePath)
{
    return open(filePath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}

std::ptrdiff_t WriteBytes(int file, const char* bytes, std::size_t count)
{
    for (;;)
        if (const ssize_t taken = write(file, bytes, count); taken >= 0 || errno != EINTR) return taken;
}

int CloseFile(int file) { return close(file) == 0 ? 0 : errno; }

int FlushToDisk(int file) { return fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP ? 0 : errno; }

int CopyPermissions(const std::filesystem::path& from, int file)
{
    struct stat status
    {};
    if (stat(from.c_str(), &status) != 0) return 0;
    if (fchown(file, status.st_uid, status.st_gid) != 0) errno = 0;
    return fchmod(file, status.st_mode & 07777) == 0 ? 0 : errno;
}

int RenameOver(const std::filesystem::path& from, const std::filesystem::path& to)
{
    return rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

void RemoveFile(const std::filesystem::path& filePath) { unlink(filePath.c_str()); }

std::filesystem::path ProgramFolder()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

void* FindFunction(const std::filesystem::path& library, const std::string& name)
{
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    return handle == nullptr ? nullptr : dlsym(handle, name.c_str());
}

std::string LoadingReason()
{
    const char* const reason = dlerror();
    return reason == nullptr ? "it lacks a function" : reason;
}

int ProcessNumber() { return getpid(); }

double MachineMemory()
{
    return std::min(static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGE_SIZE)),
                    ControlGroupMemory());
}

double GrantedMemory()
{
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    return limit.rlim_cur == RLIM_INFINITY ? NoLimit : static_cast<double>(limit.rlim_cur);
}

// As Linux tells it: "VmHWM:  5432 kB".
std::int64_t PeakMemory()
{
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;)
        if (std::int64_t kilobytes = 0; word == "VmHWM:" && status >> kilobytes) return 1024 * kilobytes;
    return 0;
}

void HoldMemory(double bytes)
{
    constexpr double Reserved = 64e6; // addresses of libraries and stack, of which little is used
    const double wanted = bytes + Reserved;
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    if (wanted < 1e18 && wanted < GrantedMemory()) limit.rlim_cur = static_cast<rlim_t>(wanted);
    setrlimit(RLIMIT_AS, &limit);
}

} // namespace brix::tools
