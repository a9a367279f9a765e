#include "SurfaceSmoothing.h"

#include "../frame/WatchedLoop.h"
#include "SurfaceShapes.h"

#include <cmath>

namespace brix {
namespace {

using Centres = std::array<std::array<CellPoint, 4>, 512>;

// A face reaches half a voxel from the corner along the two axes that follow its own.
Centres MakeCentres()
{
    Centres centres{};
    for (unsigned shape = 0; shape < centres.size(); ++shape) {
        const CornerShape& sheets = AllCornerShapes()[shape];
        std::array<int, 4> counts{};
        for (unsigned face = 0; face < CornerFaces; ++face) {
            if (!IsBoundary(shape % 256, face)) continue;
            CellPoint& centre = centres[shape][sheets.sheets[face]];
            for (unsigned side = 0; side < 2; ++side) centre[(face / 4 + 1 + side) % 3] += (face >> side & 1) != 0 ? 0.5F : -0.5F;
            ++counts[sheets.sheets[face]];
        }
        for (unsigned sheet = 0; sheet < sheets.sheetCount; ++sheet)
            for (float& part : centres[shape][sheet]) part /= static_cast<float>(counts[sheet]);
    }
    return centres;
}

// Twice the area of a face, as a vector: the cross product of its diagonals.
CellPoint AreaOf(const FaceMesh& mesh, const std::array<std::uint32_t, 4>& face, double scale)
{
    std::array<double, 3> across;
    std::array<double, 3> back;
    for (std::size_t i = 0; i < 3; ++i) {
        across[i] = (mesh.vertices[face[2]][i] - mesh.vertices[face[0]][i]) * scale;
        back[i] = (mesh.vertices[face[3]][i] - mesh.vertices[face[1]][i]) * scale;
    }
    return {static_cast<float>(across[1] * back[2] - across[2] * back[1]),
            static_cast<float>(across[2] * back[0] - across[0] * back[2]),
            static_cast<float>(across[0] * back[1] - across[1] * back[0])};
}

} // namespace

const CellPoint& CentreOfFaces(unsigned shape, unsigned sheet)
{
    static const Centres centres = MakeCentres();
    return centres[shape][sheet];
}

CornersToWorld::CornersToWorld(const Axes& axes, std::int64_t lod)
    : axes_(axes),
      size_(axes.VoxelSize(lod)),
      width_(axes.WorldVoxelWidth(lod)),
      height_(axes.WorldVoxelHeight()),
      sin_(axes.WorldConversion().sin),
      cos_(axes.WorldConversion().cos)
{}

Smoothing::Smoothing(std::size_t vertexCount)
{
    corners_.reserve(vertexCount);
    offsets_.reserve(vertexCount);
}

void Smoothing::AddVertex(const Triple& corner, const CellPoint& offset)
{
    corners_.push_back(
        {static_cast<std::int32_t>(corner[0]), static_cast<std::int32_t>(corner[1]), static_cast<std::int32_t>(corner[2])});
    offsets_.push_back(offset);
}

// Each edge runs along two faces, which take one direction each: so each vertex sees each of its neighbours once.
void Smoothing::Step(const std::vector<std::array<std::uint32_t, 4>>& faces)
{
    sums_.assign(corners_.size(), {});
    counts_.assign(corners_.size(), 0);
    WatchedLoop loop(faces.size());
    for (const auto& face : faces) {
        for (std::size_t side = 0; side < 4; ++side) AddNeighbour(face[side], face[(side + 1) % 4]);
        loop.Step();
    }
    MoveToMeans();
}

void Smoothing::AddNeighbour(std::size_t vertex, std::size_t neighbour)
{
    for (std::size_t i = 0; i < 3; ++i)
        sums_[vertex][i] += static_cast<float>(corners_[neighbour][i] - corners_[vertex][i]) + offsets_[neighbour][i];
    ++counts_[vertex];
}

void Smoothing::MoveToMeans()
{
    WatchedLoop loop(offsets_.size());
    for (std::size_t v = 0; v < offsets_.size(); ++v) {
        for (std::size_t i = 0; i < 3; ++i)
            offsets_[v][i] = std::clamp(sums_[v][i] / static_cast<float>(counts_[v]), -0.5F, 0.5F);
        loop.Step();
    }
}

std::vector<std::array<double, 3>> Smoothing::ToWorld(const CornersToWorld& toWorld) const
{
    std::vector<std::array<double, 3>> points;
    points.reserve(corners_.size());
    WatchedLoop loop(corners_.size());
    for (std::size_t i = 0; i < corners_.size(); ++i) {
        points.push_back(toWorld.At({corners_[i][0], corners_[i][1], corners_[i][2]}, offsets_[i]));
        loop.Step();
    }
    return points;
}

std::vector<CellPoint> NormalsOf(const FaceMesh& mesh, const CornersToWorld& toWorld)
{
    std::vector<CellPoint> normals(mesh.vertices.size());
    const double scale = 1 / toWorld.Width(); // so that no area is too large for a float
    WatchedLoop loop(mesh.faces.size());
    for (const auto& face : mesh.faces) {
        const CellPoint area = AreaOf(mesh, face, scale);
        for (const std::uint32_t vertex : face)
            for (std::size_t i = 0; i < 3; ++i) normals[vertex][i] += area[i];
        loop.Step();
    }
    for (CellPoint& normal : normals) {
        const float length = std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
        if (length > 0)
            for (float& part : normal) part /= length;
        else
            normal = {0, 0, 1}; // what surrounds the vertex has shrunk to nothing
    }
    return normals;
}

} // namespace brix
