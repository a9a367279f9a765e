#include "TriangleFiles.h"

#include "OutputFile.h"
#include "Progress.h"
#include "Report.h"
#include "SceneFiles.h"

#include <brix/triangles/StlFormats.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace brix::tools {
namespace {

StlImport Load(std::streambuf& source, const std::filesystem::path& name, StlReadOptions options)
{
    const Progress progress("reading " + name.string());
    options.name = name;
    std::istream stream(&source);
    return ReadStl(stream, options);
}

// The first thing that was not read as the file says it, and how many there are.
std::string SentenceOf(const StlReport& report)
{
    const auto changes = [](const StlFinding& finding) { return finding.effect != StlEffect::None; };
    const auto first = std::find_if(report.findings.begin(), report.findings.end(), changes);
    const std::string sentence = first == report.findings.end() ? report.findings.front().sentence : first->sentence;
    const std::uint64_t others = report.findingCount - 1;
    if (others == 0) return sentence;
    return sentence + " brix check lists " + std::to_string(others) + (others == 1 ? " more finding." : " more findings.");
}

} // namespace

StlImport LoadStl(const std::filesystem::path& input, const StlReadOptions& options)
{
    if (input == "-") return Load(*std::cin.rdbuf(), "standard input", options);
    RequireNoDevice(input);
    std::filebuf file;
    if (file.open(input, std::ios::in | std::ios::binary) == nullptr)
        throw std::runtime_error("Failed to open STL file " + Quoted(input) + ": " + SystemReason(errno) + ".");
    return Load(file, input, options);
}

SceneImport ReadScene(const std::filesystem::path& input, bool swapYZ)
{
    const SceneFormat& format = *SceneFormatOf(input);
    SceneImport import = LoadScene(input, format, swapYZ);
    const bool isTurned = format.hasYUp || swapYZ;
    PrintStep("format",
              std::string(format.name) + ": " + format.remark + (isTurned ? ", turned upright: (X, Y, Z) became (X, -Z, Y)" : ""),
              {{"format", std::string(format.name)}, {"turned", isTurned}});
    if (import.notFinite > 0)
        Warn("Triangles of the file " + Quoted(input) +
             " with infinite or undefined coordinates were left out: " + std::to_string(import.notFinite) + ".");
    return import;
}

std::vector<WorldTriangle> LoadUsableTriangles(const std::filesystem::path& input, bool swapYZ)
{
    if (SceneFormatOf(input) != nullptr) {
        std::vector<WorldTriangle> triangles = ReadScene(input, swapYZ).triangles;
        if (triangles.empty()) throw std::runtime_error("The file " + Quoted(input) + " holds no triangles.");
        return triangles;
    }
    StlImport import = LoadStl(input, {.swapYZ = swapYZ});
    if (import.report.drops + import.report.guesses > 0) Warn(SentenceOf(import.report));
    if (import.triangles.empty()) throw std::runtime_error("The file " + Quoted(input) + " holds no triangles.");
    return std::move(import.triangles);
}

std::string FormatName(StlVariant variant) { return variant == StlVariant::Ascii ? "ASCII STL" : "binary STL"; }

double StlBytes(double triangleCount, bool ascii) { return ascii ? 260 * triangleCount : 84 + 50 * triangleCount; }

void SaveTriangles(const std::filesystem::path& output, const std::vector<WorldTriangle>& triangles, bool ascii, bool swapYZ)
{
    if (!ascii) RequireBinaryTriangleCount(triangles.size());
    OutputFile file(output, StlBytes(static_cast<double>(triangles.size()), ascii));
    try {
        (ascii ? WriteAsciiTriangles : WriteBinaryTriangles)(file.Stream(), output, triangles, swapYZ);
    } catch (const std::runtime_error&) {
        if (!file.Stream()) throw file.Failure(); // it knows the system's reason
        throw;
    }
    file.Commit();
    ReportFile(output, {{"format", FormatName(ascii ? StlVariant::Ascii : StlVariant::Binary)},
                        {"bytes", file.BytesWritten()},
                        {"triangles", triangles.size()}});
}

} // namespace brix::tools
