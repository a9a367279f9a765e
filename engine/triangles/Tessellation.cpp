#include "Tessellation.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "BoxesOfStack.h"

namespace brix {
namespace {

// Corner k of a box lies at the upper side along x, y and z where bit 0, 1 and 2 of k is set.
constexpr std::array<std::array<std::size_t, 3>, 12> BoxTriangles{{
    {0, 2, 1},
    {1, 2, 3}, // lower z
    {0, 4, 2},
    {2, 4, 6}, // lower x
    {0, 1, 4},
    {4, 1, 5}, // lower y
    {4, 5, 6},
    {6, 5, 7}, // upper z
    {1, 3, 5},
    {5, 3, 7}, // upper x
    {2, 6, 3},
    {3, 6, 7}, // upper y
}};
constexpr auto TrianglesPerBox = static_cast<std::int64_t>(BoxTriangles.size());

std::array<std::int32_t, 3> Narrowed(const Triple& indices)
{
    return {static_cast<std::int32_t>(indices[0]), static_cast<std::int32_t>(indices[1]), static_cast<std::int32_t>(indices[2])};
}

std::size_t CountBoxes(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel tessellation", lod);
    std::size_t count = 0;
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        ForEachBoxOfStack(store.VoxelStackRef(ij), [&](const Triple&, const Triple&) { ++count; });
    });
    return count;
}

} // namespace

std::int64_t Tessellation::CountTriangles(const VoxelModel<bool>& model, std::int64_t lod)
{
    return TrianglesPerBox * static_cast<std::int64_t>(CountBoxes(model, lod));
}

Tessellation::Tessellation(const VoxelModel<bool>& model, std::int64_t lod)
    : axes_(model.AxesRef()), voxelSize_(axes_.VoxelSize(lod))
{
    // Counted first: a list that grows would be copied again and again.
    const std::size_t boxCount = CountBoxes(model, lod);
    boxes_.reserve(boxCount);
    WatchedLoop loop(boxCount);
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const Triple corner = store.LowerIndices(ij);
        ForEachBoxOfStack(store.VoxelStackRef(ij), [&](const Triple& lower, const Triple& upper) {
            boxes_.push_back({Narrowed(Plus(corner, lower)), Narrowed(Plus(corner, upper))});
            loop.Step();
        });
    });
}

std::int64_t Tessellation::TriangleCount() const { return TrianglesPerBox * static_cast<std::int64_t>(boxes_.size()); }

void Tessellation::WriteBox(const Box& box, WorldTriangle* output) const
{
    const auto corner = [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        return axes_.ToWorldCoordinates({x * voxelSize_[0], y * voxelSize_[1], z * voxelSize_[2]});
    };
    // World x and y do not depend on the height, nor does world z on anything else: four corners have the numbers of all eight.
    const std::array standing{corner(box.lower[0], box.lower[1], box.lower[2]), corner(box.upper[0], box.lower[1], box.lower[2]),
                              corner(box.lower[0], box.upper[1], box.lower[2]), corner(box.upper[0], box.upper[1], box.upper[2])};
    std::array<std::array<double, 3>, 8> corners;
    for (std::size_t k = 0; k < 8; ++k) corners[k] = {standing[k & 3][0], standing[k & 3][1], standing[k & 4 ? 3 : 0][2]};
    for (const auto& [a, b, c] : BoxTriangles) *output++ = {corners[a], corners[b], corners[c]};
}

void Tessellation::CopyTriangles(std::int64_t first, std::span<WorldTriangle> room) const
{
    WorldTriangle* destination = room.data();
    // A part may begin and end inside a box.
    for (const auto end = first + static_cast<std::int64_t>(room.size()); first < end;) {
        const Box& box = boxes_[static_cast<std::size_t>(first / TrianglesPerBox)];
        const std::int64_t skipped = first % TrianglesPerBox;
        if (skipped == 0 && end - first >= TrianglesPerBox) {
            WriteBox(box, destination);
            destination += TrianglesPerBox;
            first += TrianglesPerBox;
            continue;
        }
        std::array<WorldTriangle, BoxTriangles.size()> whole;
        WriteBox(box, whole.data());
        const std::int64_t taken = std::min(TrianglesPerBox - skipped, end - first);
        destination = std::copy_n(whole.begin() + skipped, taken, destination);
        first += taken;
    }
}

void TessellateVoxelModel(std::vector<WorldTriangle>& triangles, const VoxelModel<bool>& model, std::int64_t lod)
{
    const Tessellation tessellation(model, lod);
    const std::size_t before = triangles.size();
    const std::int64_t count = tessellation.TriangleCount();
    triangles.reserve(before + static_cast<std::size_t>(count));
    constexpr std::int64_t partSize = 1 << 12; // the list grows by what a fast cache holds, to be written twice there
    WatchedLoop loop(static_cast<std::size_t>(count / partSize + 1));
    for (std::int64_t first = 0; first < count; first += partSize) {
        const std::int64_t size = std::min(partSize, count - first);
        triangles.resize(before + static_cast<std::size_t>(first + size));
        tessellation.CopyTriangles(first, std::span(triangles).last(static_cast<std::size_t>(size)));
        loop.Step();
    }
}

} // namespace brix
