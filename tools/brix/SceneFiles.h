// Triangles of formats other than STL, read with assimp where the program has that part. Of a scene the triangles of all meshes
// are taken where its nodes place them; polygons are triangulated; materials and the rest are left.
#pragma once

#include <brix/triangles/Triangle.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace brix::tools {

struct SceneFormat
{
    const char* ending;
    const char* name;
    bool hasYUp;        // by its definition, as is
    const char* remark; // what its lengths are
};

/// The format that the file's ending stands for, in any case: .obj, .ply, .gltf, .glb or .3mf; nullptr for others.
const SceneFormat* SceneFormatOf(const std::filesystem::path& filePath);

struct SceneImport
{
    std::vector<WorldTriangle> triangles; // with Z up; all coordinates are finite
    std::uint64_t notFinite = 0;          // triangles that were left out
};

/// Reads a file of such a format; where the format has Y up, (X, Y, Z) become (X, -Z, Y), as with `swapYZ`.
/// Throws std::runtime_error, naming the file, when the program has no such part, and when the file is empty or cannot be read.
SceneImport LoadScene(const std::filesystem::path& filePath, const SceneFormat& format, bool swapYZ);

} // namespace brix::tools
