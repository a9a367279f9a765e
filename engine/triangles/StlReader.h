// STL files as they are found: whatever their first bytes say, with damage told instead of guessed away or refused.
//
// LoadTrianglesFromSTL (StlFiles.h) takes what the first five bytes say, and either everything or nothing.
#pragma once

#include "MeshReport.h"
#include "StlFiles.h"

#include <optional>
#include <string>

namespace brix {

struct StlReadOptions
{
    bool swapYZ = false;                 // true: the file has its Y axis up; (X, Y, Z) become (X, -Z, Y)
    bool dropDegenerate = false;         // true: triangles without area are left out
    bool countMesh = false;              // true: the report tells what the triangles are as a surface
    std::size_t mostListed = 100;        // findings and solids that are listed; all are counted
    std::filesystem::path name = "data"; // what messages call bytes and streams
};

/// What a finding meant for the triangles.
enum class StlEffect
{
    None,    // they are as the file says
    Guessed, // what was read is one of the things that the file may mean
    Dropped  // something of the file is not among them
};

struct StlFinding
{
    std::uint64_t place; // the line, from 1, of a text file; the byte, from 0, of a binary one
    StlEffect effect;
    std::string sentence; // names the place and the file
};

struct StlSolid
{
    std::string name; // at most 200 bytes of it, as one line of UTF-8
    std::uint64_t triangles;
};

struct StlReport
{
    StlVariant variant = StlVariant::Binary;
    std::uint64_t bytes = 0; // of the file
    std::string header;      // of a binary file, without blanks and zeros at its end, as one line of UTF-8
    std::uint64_t solidCount = 0;
    std::vector<StlSolid> solids; // of a text file

    std::optional<std::uint64_t> announced; // triangles, by a binary file
    std::uint64_t found = 0;      // triangles that the file holds: read + incomplete + notFinite, and the degenerate ones
    std::uint64_t read = 0;       // triangles in the list
    std::uint64_t incomplete = 0; // left out, as corners are missing or cannot be read
    std::uint64_t notFinite = 0;  // left out, as coordinates are infinite or not numbers
    std::uint64_t degenerate = 0; // without area, as HasArea tells; left out where the options say so
    std::uint64_t bytesLeft = 0;  // of a binary file, after its last whole triangle

    std::uint64_t findingCount = 0;
    std::uint64_t guesses = 0; // findings of that effect
    std::uint64_t drops = 0;
    std::vector<StlFinding> findings;

    std::optional<MeshReport> mesh; // when it is asked for

    /// No finding, no triangle without area; and a solid, when the mesh was counted.
    [[nodiscard]] bool IsSound() const;
};

struct StlImport
{
    std::vector<WorldTriangle> triangles; // in the order of the file; all coordinates are finite
    StlReport report;
};

/// Reads the triangles of an STL file, and tells what the file is and what is wrong with it.
///
/// A file of 84 + 50 n bytes that announces n triangles is binary. Of the others, those are text whose first word, after a
/// byte-order mark, blanks and comment lines, begins with "solid" or "facet", and that look like text after it; the rest is
/// binary.
///
/// Text: words in any case; lines end with LF, CR or CRLF; white space is free, but a vertex's numbers stand on its line; lines
/// and ends of lines that begin with #, ; or // are comments. Several solids, a missing endsolid, endloop or last line break are
/// read.
/// A corner must have three numbers, in the "C" locale, and a loop three corners; else the triangle is left out. Digits on both
/// sides of one comma (1,5) are read as a number with a decimal comma, and told as a guess. Normals are not used; where one is
/// not three numbers, that is told.
/// Binary: the triangles that are announced, or as many whole ones as there are. Where more bytes follow, they are read as
/// triangles if the announced number is 0, or if the bytes make whole triangles; that is told as a guess. Else they are left.
/// Triangles with coordinates that are not finite are left out, each with a finding; those without area are counted only.
///
/// Throws std::runtime_error, naming the file: its path holds a null character; it is a device; it cannot be opened; nothing can
/// be read from it; it is empty; it is too short for a binary file, and no text that begins as STL does; it is text of another
/// kind, or begins with the signature of another format; and what CountMesh throws.
/// Cost: linear. Memory follows what the file holds, not what it announces; a file with CR line ends, and what comes from a pipe
/// or a stream whose size is not known, is held whole while it is read.
[[nodiscard]] StlImport ReadStl(const std::filesystem::path& filePath, const StlReadOptions& options = {});

/// The same from the bytes of a file, or from the rest of a stream, which has to be a binary one.
[[nodiscard]] StlImport ReadStl(std::span<const std::uint8_t> file, const StlReadOptions& options = {});
[[nodiscard]] StlImport ReadStl(std::istream& stream, const StlReadOptions& options = {});

} // namespace brix
