#include "System.h"

#include <algorithm>
#include <cerrno>
#include <limits>
#include <system_error>

#include <fcntl.h>
#include <io.h>
#include <process.h>
#include <sys/stat.h>

#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// After it, as they take its types:
#include <psapi.h>
#include <shellapi.h>

namespace brix::tools {
namespace {

constexpr int MayWrite = 2;
constexpr int MayRead = 4;

int AccessError(const std::filesystem::path& filePath, int mode) { return _waccess(filePath.c_str(), mode) == 0 ? 0 : errno; }

int LastError()
{
    return std::error_code(static_cast<int>(GetLastError()), std::system_category()).default_error_condition().value();
}

std::string Utf8(const wchar_t* text) { return std::filesystem::path(text).string(); }

} // namespace

// The words that the C library hands over have lost what the machine's own code page does not know.
std::vector<std::string> PrepareConsole(int argc, char** argv)
{
    for (const int file : {_fileno(stdin), _fileno(stdout), _fileno(stderr)}) _setmode(file, _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
    int count = 0;
    wchar_t** const words = CommandLineToArgvW(GetCommandLineW(), &count);
    if (words == nullptr) return {argv, argv + argc};
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) texts.push_back(Utf8(words[i]));
    LocalFree(words);
    return texts;
}

// A console understands escape sequences once it is told to.
bool IsErrorOutputTerminal()
{
    constexpr DWORD UnderstandEscapes = 4;
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) != 0 && SetConsoleMode(console, mode | UnderstandEscapes) != 0;
}

int ReadingError(const std::filesystem::path& filePath)
{
    struct _stat64 status
    {};
    if (_wstat64(filePath.c_str(), &status) != 0) return errno;
    return S_ISDIR(status.st_mode) ? EISDIR : AccessError(filePath, MayRead);
}

int WritingError(const std::filesystem::path& filePath)
{
    struct _stat64 status
    {};
    if (_wstat64(filePath.c_str(), &status) != 0) return errno == ENOENT ? 0 : errno;
    return S_ISDIR(status.st_mode) ? EISDIR : AccessError(filePath, MayWrite);
}

int FolderError(const std::filesystem::path& folder) { return AccessError(folder, MayWrite); }

int OpenToOverwrite(const std::filesystem::path& filePath)
{
    return _wopen(filePath.c_str(), _O_WRONLY | _O_TRUNC | _O_BINARY | _O_NOINHERIT);
}

// Shared so that it can be removed while it is open.
int OpenNew(const std::filesystem::path& filePath)
{
    const HANDLE file = CreateFileW(filePath.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file != INVALID_HANDLE_VALUE) return _open_osfhandle(reinterpret_cast<std::intptr_t>(file), _O_BINARY);
    errno = LastError();
    return -1;
}

std::ptrdiff_t WriteBytes(int file, const char* bytes, std::size_t count)
{
    constexpr std::size_t MostAtATime = 1 << 20; // pipes refuse more
    return _write(file, bytes, static_cast<unsigned>(std::min(count, MostAtATime)));
}

int CloseFile(int file) { return _close(file) == 0 ? 0 : errno; }

int FlushToDisk(int file) { return _commit(file) == 0 || errno == EBADF || errno == EINVAL ? 0 : errno; }

// A new file has those of its folder.
int CopyPermissions(const std::filesystem::path&, int) { return 0; }

int RenameOver(const std::filesystem::path& from, const std::filesystem::path& to)
{
    return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0 ? 0 : LastError();
}

void RemoveFile(const std::filesystem::path& filePath) { DeleteFileW(filePath.c_str()); }

// There are no parts of the program to be loaded.
std::filesystem::path ProgramFolder() { return {}; }
void* FindFunction(const std::filesystem::path&, const std::string&) { return nullptr; }
std::string LoadingReason() { return {}; }

int ProcessNumber() { return _getpid(); }

double MachineMemory()
{
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) != 0 ? static_cast<double>(status.ullTotalPhys) : 4e9;
}

double GrantedMemory() { return std::numeric_limits<double>::infinity(); }

std::int64_t PeakMemory()
{
    PROCESS_MEMORY_COUNTERS counters{};
    if (K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof counters) == 0) return 0;
    return static_cast<std::int64_t>(counters.PeakWorkingSetSize);
}

// A job with this process alone, which ends with it.
void HoldMemory(double bytes)
{
    if (!(bytes < 1e18)) return;
    const HANDLE job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits{};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_PROCESS_MEMORY;
    limits.ProcessMemoryLimit = static_cast<SIZE_T>(bytes);
    if (job != nullptr && SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits) != 0)
        AssignProcessToJobObject(job, GetCurrentProcess());
}

} // namespace brix::tools
