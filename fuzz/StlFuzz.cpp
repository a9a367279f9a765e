// Any bytes at all, read as an STL file that is in memory. Either a std::runtime_error says what is wrong with them, or there is
// a list of triangles; that list must come back from both variants of the format.
#include "triangles/StlFiles.h"
#include "triangles/StlFormats.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string>

namespace {

using Triangles = std::vector<brix::WorldTriangle>;

void Require(bool condition, const char* fact)
{
    if (condition) return;
    std::cerr << "This does not hold: " << fact << '\n';
    std::abort();
}

Triangles Load(std::string_view bytes, bool swapYZ)
{
    return brix::LoadTrianglesFromSTL({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, swapYZ);
}

Triangles SavedAndLoaded(decltype(brix::WriteAsciiTriangles) write, const Triangles& triangles, bool swapYZ)
{
    std::ostringstream file;
    write(file, "fuzz", triangles, swapYZ);
    return Load(file.str(), swapYZ);
}

template <class Relation> bool HoldsForAll(const Triangles& first, const Triangles& second, Relation holds)
{
    if (first.size() != second.size()) return false;
    for (std::size_t i = 0; i < first.size(); ++i)
        for (std::size_t c = 0; c < 9; ++c)
            if (!holds(first[i][c / 3][c % 3], second[i][c / 3][c % 3])) return false;
    return true;
}

bool IsSame(double a, double b) { return (std::isnan(a) && std::isnan(b)) || (a == b && std::signbit(a) == std::signbit(b)); }
bool IsNarrowed(double a, double b) { return IsSame(static_cast<double>(static_cast<float>(a)), b); }
bool IsFinite(double a, double) { return std::isfinite(a); }
bool IsNear(double a, double b) { return std::abs(a - b) <= 5.1e-6 * std::abs(a); }

void CheckSaving(const Triangles& triangles, bool swapYZ)
{
    const Triangles binary = SavedAndLoaded(brix::WriteBinaryTriangles, triangles, swapYZ);
    Require(HoldsForAll(triangles, binary, IsNarrowed), "a binary file keeps the triangles as floats");

    const Triangles ascii = SavedAndLoaded(brix::WriteAsciiTriangles, triangles, swapYZ);
    Require(ascii.size() == triangles.size(), "an ASCII file keeps the number of triangles");
    if (HoldsForAll(triangles, triangles, IsFinite))
        Require(HoldsForAll(triangles, ascii, IsNear), "an ASCII file keeps six digits");
    Require(HoldsForAll(ascii, SavedAndLoaded(brix::WriteAsciiTriangles, ascii, swapYZ), IsSame), "six digits stay as they are");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const bool swapYZ = size % 2 != 0;
    Triangles triangles;
    try {
        triangles = Load({reinterpret_cast<const char*>(data), size}, swapYZ);
    } catch (const std::runtime_error&) { // every other exception ends the program
        return 0;
    }
    if (triangles.size() > 3) triangles.resize(3); // more would be saved in the same way, and cost the time of many inputs
    CheckSaving(triangles, swapYZ);
    return 0;
}
