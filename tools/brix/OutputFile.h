// A file that the program writes. It is there as a whole or not at all: what is written goes to a temporary file beside the
// target, which takes the target's place when it is complete. A failure, an exception, Ctrl-C or a crash leaves an older file.
//
//   house.stl            the old content, until Commit
//   .brix-4711-0.part    the new content; removed when it does not become house.stl
#pragma once

#include "Progress.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string_view>

namespace brix::tools {

/// Where `-` writes to.
bool IsStandardOutput(const std::filesystem::path& filePath);

/// Throws, before work is done that could not be saved, std::runtime_error with the system's reason when the file cannot be
/// written there: the folder is missing or may not be written to, or the target is a folder or may not be written to.
void RequireWritable(const std::filesystem::path& filePath);

class OutputFile
{
public:
    /// Links are followed. What is no ordinary file (a device, a pipe, standard output for `-`) is written straight.
    /// Progress is shown when the size is told. Throws std::runtime_error with the system's reason when that cannot be.
    explicit OutputFile(const std::filesystem::path& target, double expectedBytes = 0);

    /// Without Commit, the target stays as it was.
    ~OutputFile();

    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Where the content goes. Its state turns bad when the system takes no more.
    std::ostream& Stream();

    void Write(std::string_view bytes) { Stream().write(bytes.data(), static_cast<std::streamsize>(bytes.size())); }

    /// Puts the content in the target's place, with the permissions of the file that it replaces.
    /// Throws std::runtime_error with the system's reason when not all of it could be written.
    void Commit();

    /// What went wrong with the stream, as a sentence.
    std::runtime_error Failure() const;

    std::int64_t BytesWritten() const;

private:
    class Buffer;

    void OpenTemporary();
    void Discard();

    std::filesystem::path name_;      // as the user gave it
    std::filesystem::path target_;    // behind all links
    std::filesystem::path temporary_; // empty when the target is written straight
    Progress progress_;
    double expectedBytes_;
    std::unique_ptr<Buffer> buffer_;
    std::ostream stream_{nullptr};
};

} // namespace brix::tools
