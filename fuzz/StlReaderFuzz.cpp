// Any bytes at all, read leniently as an STL file. Either a std::runtime_error says what is wrong with them, or there are
// triangles and a report whose numbers fit together; written as a sound file, the triangles come back, without a finding on them.
#include "triangles/StlReader.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <sstream>

namespace {

void Require(bool condition, const char* fact)
{
    if (condition) return;
    std::cerr << "This does not hold: " << fact << '\n';
    std::abort();
}

void CheckReport(const brix::StlImport& import, const brix::StlReadOptions& options, std::size_t size)
{
    const brix::StlReport& r = import.report;
    Require(r.bytes == size, "all bytes are counted");
    Require(r.read == import.triangles.size(), "the triangles that were read are in the list");
    Require(r.found == r.read + r.incomplete + r.notFinite + (options.dropDegenerate ? r.degenerate : 0),
            "all are accounted for");
    Require(r.read * 45 <= size, "a triangle takes 45 bytes of text at least, or 50");
    Require(r.findings.size() == std::min<std::uint64_t>(r.findingCount, options.mostListed), "the list of findings is bounded");
    Require(r.solids.size() == std::min<std::uint64_t>(r.solidCount, options.mostListed), "the list of solids is bounded");
    Require(r.drops + r.guesses <= r.findingCount, "each finding has one effect");
    Require(r.incomplete == 0 || r.drops > 0, "nothing is left out in silence");
    Require(r.mesh && r.mesh->vertices <= 3 * r.read && r.mesh->edges <= 3 * r.read && r.mesh->shells <= r.read,
            "a mesh is counted");
    for (const brix::StlFinding& finding : r.findings)
        for (const char c : finding.sentence) Require(static_cast<unsigned char>(c) >= 0x20, "a sentence is one line of text");
    for (const auto& triangle : import.triangles)
        for (const auto& corner : triangle)
            for (const double coordinate : corner) Require(std::isfinite(coordinate), "all coordinates are finite");
}

void CheckSoundFile(const std::vector<brix::WorldTriangle>& triangles, const brix::StlReadOptions& options)
{
    std::stringstream file(std::ios::in | std::ios::out | std::ios::binary);
    brix::SaveTrianglesToSTL(file, triangles, brix::StlVariant::Ascii, options.swapYZ);
    const brix::StlReport report = brix::ReadStl(file, options).report;
    Require(report.found == triangles.size(), "a sound file holds as many triangles");
    Require(report.findingCount == report.notFinite, "rounding to infinity is all that can be found");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const brix::StlReadOptions options{
        .swapYZ = size % 2 != 0, .dropDegenerate = size % 3 == 0, .countMesh = true, .mostListed = size % 5, .name = "fuzz"};
    try {
        brix::StlImport import = brix::ReadStl(std::span(data, size), options);
        CheckReport(import, options, size);
        if (import.triangles.size() > 3) import.triangles.resize(3);
        if (!import.triangles.empty()) CheckSoundFile(import.triangles, options);
    } catch (const std::runtime_error&) { // every other exception ends the program
    }
    return 0;
}
