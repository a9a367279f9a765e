// All files of a command line, looked at before any work is done, so that nothing is computed that could not be read or saved.
#pragma once

#include <filesystem>
#include <vector>

namespace brix::tools {

class FilePlan
{
public:
    /// Notes a file that will be read. Throws std::runtime_error with the system's reason when it cannot be; UsageError when it
    /// is written, too, or is a pipe that would be read twice.
    void Read(const std::filesystem::path& filePath);

    /// Notes a file that will be written. Throws as RequireWritable does; UsageError when it is read or written otherwise, too.
    /// When it is standard output, the report goes elsewhere from here on.
    void Write(const std::filesystem::path& filePath);

    /// The same for voxels: in a file, or in a folder of pictures, whose name ends with a slash.
    /// Throws as RequireVoxelFormat does, too.
    void WriteVoxels(const std::filesystem::path& filePath);

private:
    void NoteOutput(const std::filesystem::path& filePath);

    std::vector<std::filesystem::path> inputs_;
    std::vector<std::filesystem::path> outputs_;
};

} // namespace brix::tools
