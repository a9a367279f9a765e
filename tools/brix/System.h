// What the program asks of the operating system beyond what C++ offers: SystemPosix.cpp, SystemWindows.cpp. Errors are numbers of
// <cerrno>, as SystemReason spells them; 0 is none.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace brix::tools {

/// To be called once, at the start: standard streams pass bytes as they are from then on. Returns the words of the command line
/// in UTF-8.
std::vector<std::string> PrepareConsole(int argc, char** argv);

/// Whether a person watches standard error, on something that understands escape sequences.
bool IsErrorOutputTerminal();

/// Why a file cannot be read; cannot be written where it stands (one that is not there yet can); why no file can be made in a
/// folder.
int ReadingError(const std::filesystem::path& filePath);
int WritingError(const std::filesystem::path& filePath);
int FolderError(const std::filesystem::path& folder);

/// The number of the open file, or -1 with the reason in errno: a file that is there and loses its content, or one that is not.
int OpenToOverwrite(const std::filesystem::path& filePath);
int OpenNew(const std::filesystem::path& filePath);

/// The bytes that were taken, or -1 with the reason in errno.
std::ptrdiff_t WriteBytes(int file, const char* bytes, std::size_t count);
int CloseFile(int file);

/// The content reaches the disk, where the file system offers that.
int FlushToDisk(int file);

/// Owner, if the system lets us, and permissions of another file, if there is one.
int CopyPermissions(const std::filesystem::path& from, int file);

/// One file takes another one's place, in one step.
int RenameOver(const std::filesystem::path& from, const std::filesystem::path& to);
void RemoveFile(const std::filesystem::path& filePath);

/// Where the running program lies; empty where nobody tells.
std::filesystem::path ProgramFolder();

/// A function of a library in a file, which stays loaded; nullptr with a LoadingReason when there is none.
void* FindFunction(const std::filesystem::path& library, const std::string& name);
std::string LoadingReason();

/// Of this process, unlike those of all others that run.
int ProcessNumber();

/// Bytes: what the machine, or the container around the program, has; what the program was granted, infinite without a limit;
/// what it had at most so far, 0 where nobody tells.
double MachineMemory();
double GrantedMemory();
std::int64_t PeakMemory();

/// Allocations beyond so many bytes fail from now on.
void HoldMemory(double bytes);

} // namespace brix::tools
