#include "FilePlan.h"

#include "OutputFile.h"
#include "Report.h"
#include "SceneFiles.h"
#include "SliceStack.h"
#include "System.h"
#include "VoxelFiles.h"

#include <algorithm>

namespace brix::tools {
namespace {

namespace fs = std::filesystem;

std::string KindOf(const fs::path& filePath)
{
    if (const SceneFormat* const format = SceneFormatOf(filePath)) return std::string(format->name) + " file";
    return filePath.extension() == ".brix" ? "the saved model" : "STL file";
}

void RequireReadable(const fs::path& filePath)
{
    if (const int error = ReadingError(filePath))
        throw std::runtime_error("Failed to open " + KindOf(filePath) + " " + Quoted(filePath) + ": " + SystemReason(error) +
                                 ".");
}

// By whatever names. A file that is not there yet is known by its place.
bool IsSame(const fs::path& a, const fs::path& b)
{
    std::error_code error;
    if (a == b || fs::equivalent(a, b, error)) return true;
    return !fs::exists(a, error) && !fs::exists(b, error) &&
           fs::weakly_canonical(fs::absolute(a, error), error) == fs::weakly_canonical(fs::absolute(b, error), error);
}

bool Holds(const std::vector<fs::path>& files, const fs::path& file)
{
    return std::any_of(files.begin(), files.end(), [&](const fs::path& other) { return IsSame(file, other); });
}

// What may be used as often as one likes: a file that is read, a device that is written.
bool IsRegular(const fs::path& filePath)
{
    std::error_code error;
    return filePath != "-" && fs::is_regular_file(filePath, error);
}

bool IsDevice(const fs::path& filePath)
{
    std::error_code error;
    return fs::is_character_file(filePath, error);
}

} // namespace

void FilePlan::Read(const fs::path& filePath)
{
    if (filePath != "-") RequireReadable(filePath);
    if (!IsRegular(filePath) && Holds(inputs_, filePath))
        throw UsageError("The input " + Quoted(filePath) + " can be read only once.");
    if (filePath != "-" && Holds(outputs_, filePath))
        throw UsageError("The file " + Quoted(filePath) + " is both input and output.");
    inputs_.push_back(filePath);
}

void FilePlan::Write(const fs::path& filePath)
{
    RequireWritable(filePath);
    NoteOutput(filePath);
}

void FilePlan::WriteVoxels(const fs::path& filePath)
{
    RequireVoxelFormat(filePath);
    IsFolderName(filePath) ? NoteOutput(filePath) : Write(filePath);
}

void FilePlan::NoteOutput(const fs::path& filePath)
{
    if (IsStandardOutput(filePath)) GiveStandardOutputAway();
    if (!IsDevice(filePath)) {
        if (Holds(outputs_, filePath)) throw UsageError("The output " + Quoted(filePath) + " is given twice.");
        if (filePath != "-" && Holds(inputs_, filePath))
            throw UsageError("The file " + Quoted(filePath) + " is both input and output.");
    }
    outputs_.push_back(filePath);
}

} // namespace brix::tools
