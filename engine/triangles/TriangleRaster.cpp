#include "TriangleRaster.h"

#include <numeric>

namespace brix {

namespace {

constexpr auto PlateRow = static_cast<std::int32_t>(PlateWidth);
constexpr std::int32_t HalfPlate = PlateRow / 2; // in rows

Plate* WritablePlates(Stack& stack)
{
    if (!stack.IsFullyDecompressed()) stack.Decompress();
    return &stack.LayerVoxelPlateRef(0);
}

// Half a plate: eight rows, the lowest in the lowest bits.
__extension__ typedef unsigned __int128 EightRows;
typedef std::uint16_t RowLanes __attribute__((vector_size(16)));
static_assert(std::endian::native == std::endian::little && sizeof(Plate) == 2 * sizeof(EightRows));

// Plates are written by halves as they lie in memory. Eight rows from anywhere would be faster to write, but much slower to read
// soon after what was written at another offset, and neighbouring triangles do that all the time.
void FillHalf(std::byte* half, std::int32_t z, EightRows rows)
{
    std::byte* const atHeight = half + z * static_cast<std::ptrdiff_t>(sizeof(Plate));
    EightRows stored;
    std::memcpy(&stored, atHeight, sizeof stored);
    stored |= rows;
    std::memcpy(atHeight, &stored, sizeof stored);
}

// Fills eight rows that begin with row y of the first half.
void FillHalves(const PlateHalves& halves, std::int32_t y, std::int32_t z, const RowLanes& lanes)
{
    const auto rows = std::bit_cast<EightRows>(lanes);
    FillHalf(halves[0], z, rows << PlateRow * y);
    if (halves[1] != nullptr) FillHalf(halves[1], z, rows >> PlateRow * (HalfPlate - y));
}

// Fills voxels of a tile at height z: bit i of lane j is its voxel (i, j).
void FillRows(const RasterTile& tile, std::int32_t z, const Lanes& rows)
{
    typedef std::uint16_t BothStacks __attribute__((vector_size(32)));
    const std::int32_t y = tile.y & (HalfPlate - 1);
    const auto both = reinterpret_cast<BothStacks>(rows << static_cast<std::uint32_t>(tile.x & (PlateRow - 1)));
    FillHalves(tile.halves, y, z, __builtin_shufflevector(both, both, 0, 2, 4, 6, 8, 10, 12, 14));
    if (tile.halvesOfNextX[0] == nullptr) return;
    FillHalves(tile.halvesOfNextX, y, z, __builtin_shufflevector(both, both, 1, 3, 5, 7, 9, 11, 13, 15));
}

// Fills what a triangle touches of a tile. Rows of columns are found from the last column back; `PlaneRows` is the plane's
// numbers.
template <class PlaneRows, ThickAlong thick> class TileFilling
{
public:
    TileFilling(const Conditions<thick>& conditions, const RasterBox& box, const RasterTile& tile)
        : conditions_(conditions),
          box_(box),
          tile_(tile),
          groups_(Groups(tile.columns)),
          firstX_(tile.x - box.lower[0]),
          lastX_(firstX_ + groups_ * GroupSize - 1),
          y_(tile.y - box.lower[1])
    {}

    void Run() const
    {
        Lanes rows = tile_.rows;
        if constexpr (Conditions<thick>::HasXY) {
            Lanes outside;
            ProjectionLanes(conditions_.xy, lastX_, y_).OutsideUpToHere(groups_, outside);
            rows &= ~outside;
        }
        if constexpr (thick == ThickAlong::XY) return FillRows(tile_, box_.lowerFilled[2], rows);

        for (std::int32_t z = box_.lowerFilled[2]; z <= box_.upperFilled[2]; z += LaneCount)
            FillHeights(rows, z, std::min(z + LaneCount - 1, box_.upperFilled[2]));
    }

private:
    // Only in large boxes are there tiles that the plane misses.
    bool PlaneReaches(std::int32_t z, std::int32_t lastZ) const
    {
        if constexpr (!std::is_same_v<PlaneRows, WidePlaneLanes>) return true;
        return conditions_.plane.Reaches({firstX_, y_, z}, {firstX_ + tile_.columns - 1, y_ + LaneCount - 1, lastZ});
    }

    // Fills up to eight heights, given the rows that the xy projection leaves.
    void FillHeights(const Lanes& rowsOfXY, std::int32_t lowerZ, std::int32_t upperZ) const
    {
        const std::int32_t z = lowerZ - box_.lower[2];
        if (!PlaneReaches(z, upperZ - box_.lower[2])) return;

        std::array<std::uint32_t, LaneCount> outsideXZ;
        ProjectionLanes zy;
        PlaneRows plane;
        if constexpr (Conditions<thick>::HasXZ) {
            Lanes outside;
            ProjectionLanes(conditions_.xz, lastX_, z).OutsideUpToHere(groups_, outside);
            std::memcpy(&outsideXZ, &outside, sizeof outside);
        }
        if constexpr (Conditions<thick>::HasYZ) zy = ProjectionLanes(conditions_.zy, z, y_);
        if constexpr (Conditions<thick>::HasPlane) plane = PlaneRows(conditions_.plane, {lastX_, y_, z});

        for (std::int32_t height = lowerZ; height <= upperZ; ++height) {
            Lanes rows = rowsOfXY;
            Lanes outside;
            if constexpr (Conditions<thick>::HasXZ) rows &= ~outsideXZ[static_cast<std::size_t>(height - lowerZ)];
            if constexpr (Conditions<thick>::HasYZ) {
                zy.Outside(outside);
                zy.ToNext();
                rows &= ~outside;
            }
            if constexpr (Conditions<thick>::HasPlane) {
                plane.BesideUpToHere(groups_, outside);
                plane.ToNextHeight();
                rows &= ~outside;
            }
            FillRows(tile_, height, rows);
        }
    }

    const Conditions<thick>& conditions_;
    const RasterBox& box_;
    const RasterTile& tile_;
    std::int32_t groups_;
    std::int32_t firstX_; // of the tile and the end of its last group, counted from the box's corner
    std::int32_t lastX_;
    std::int32_t y_;
};

} // namespace

TriangleRaster::TriangleRaster(VoxelStore<bool>& store, const Triple& voxelSize)
    : store_(store),
      size_{},
      perSize_{},
      origin_{},
      lowerInExtents_{},
      upperInExtents_{},
      stacksPerRow_(static_cast<std::uint32_t>(store.StacksPerRow())),
      plates_(stacksPerRow_ * stacksPerRow_)
{
    const Triple corner = store.LowerIndices();
    const std::int64_t width = PlateWidth * store.StacksPerRow();
    const Triple lastVoxel{width - 1, width - 1, StackHeight - 1};
    const Triple lower = Highest(Minus(store.ExtentsRef().LowerIndices(), corner), {0, 0, 0});
    const Triple upper = Lowest(Minus(store.ExtentsRef().UpperIndices(), corner), lastVoxel);
    const std::int64_t unit = std::gcd(voxelSize[0], voxelSize[2]);
    sizes_ = {Quad{}, static_cast<std::int32_t>(unit), 1.0 / static_cast<double>(unit)};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto i = static_cast<int>(axis);
        size_[i] = static_cast<std::int32_t>(voxelSize[axis]);
        perSize_[i] = 1.0 / static_cast<double>(voxelSize[axis]);
        sizes_.inUnits[i] = static_cast<std::int32_t>(voxelSize[axis] / unit);
        origin_[i] = static_cast<std::int32_t>(corner[axis] * voxelSize[axis]);
        lowerInExtents_[i] = static_cast<std::int32_t>(lower[axis]);
        upperInExtents_[i] = static_cast<std::int32_t>(upper[axis]);
    }
    mostVoxelsOfNarrowPlane_ = PlaneLanes::MostVoxels(sizes_);
}

void TriangleRaster::Fill(const TriangleChunk& triangles, InstructionSet instructionSet)
{
    RunWith(instructionSet, [&] {
        triangles.ForEachTriangle([&](const PackedTriangle& triangle) { Fill(triangle); },
                                  [&](const LatticeTriangle& triangle) { FillLarge(triangle); });
    });
}

// Triangles are filed in pieces already. Whatever else was put into a chunk is cut here, and dropped where it misses the chunk.
[[gnu::noinline]] void TriangleRaster::FillLarge(const LatticeTriangle& triangle)
{
    Triple lower{};
    Triple upper{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto i = static_cast<int>(axis);
        lower[axis] = origin_[i] + std::int64_t{lowerInExtents_[i]} * size_[i];
        upper[axis] = origin_[i] + std::int64_t{upperInExtents_[i] + 1} * size_[i];
    }
    const auto touches = [&](const TriangleBox& box) {
        return box.upper[0] >= lower[0] && box.upper[1] >= lower[1] && box.upper[2] >= lower[2] && box.lower[0] <= upper[0] &&
               box.lower[1] <= upper[1] && box.lower[2] <= upper[2];
    };
    const Triple margin{MaxPieceSpan, MaxPieceSpan, MaxPieceSpan};
    ForEachNearPart(triangle, Minus(lower, margin), Plus(upper, margin), [&](const LatticeTriangle& part) {
        ForEachPiece(part, touches, [&](const LatticeTriangle& piece, const TriangleBox&) {
            Fill(Packed(piece));
            CheckWatch();
        });
    });
}

void TriangleRaster::Fill(const PackedTriangle& triangle, InstructionSet instructionSet)
{
    RunWith(instructionSet, [&] { Fill(triangle); });
}

std::size_t TriangleRaster::FillThoseInside(std::span<const PackedTriangle> triangles, PackedBounds& bounds,
                                            InstructionSet instructionSet)
{
    constexpr auto mostSpan = static_cast<std::int32_t>(MaxPieceSpan);
    std::size_t count = 0;
    RunWith(instructionSet, [&] {
        for (; count < triangles.size(); ++count) {
            const PackedCorners corners(triangles[count], origin_);
            const RasterBox box = BoxOf(corners);
            const Quad isOther =
                (box.lower < lowerInExtents_) | (box.upper > upperInExtents_) | (corners.upper - corners.lower > mostSpan);
            if (IsAnyOf(isOther)) return;
            KeepLower(bounds.lower, corners.lower + origin_);
            KeepUpper(bounds.upper, corners.upper + origin_);
            FillIn(corners, box);
        }
    });
    return count;
}

void TriangleRaster::FillWhole(const LatticeTriangle& triangle)
{
    const Triple corner = store_.LowerIndices();
    const auto voxel = [&](const Quad& inChunk) { return Plus(corner, {inChunk[0], inChunk[1], inChunk[2]}); };
    const Triple size{size_[0], size_[1], size_[2]};
    TriangleRows(triangle, size)
        .ForEachRow(voxel(lowerInExtents_), voxel(upperInExtents_), [&](std::int64_t y, std::int64_t z, const VoxelRun& columns) {
            FillRow(static_cast<std::int32_t>(y - corner[1]), static_cast<std::int32_t>(z - corner[2]),
                    {columns.first - corner[0], columns.last - corner[0]});
        });
}

void TriangleRaster::FillRow(std::int32_t y, std::int32_t z, const VoxelRun& columns)
{
    const auto last = static_cast<std::int32_t>(columns.last);
    for (auto x = static_cast<std::int32_t>(columns.first); x <= last; x = (x | (PlateRow - 1)) + 1) {
        const std::int32_t lastHere = std::min(last, x | (PlateRow - 1));
        Plate& plate = PlatesOf(x, y)[z];
        plate.rows[static_cast<std::size_t>(y & (PlateRow - 1))] |=
            static_cast<std::uint16_t>((2U << (lastHere & (PlateRow - 1))) - (1U << (x & (PlateRow - 1))));
    }
}

void TriangleRaster::Close()
{
    for (std::size_t stack = 0; stack < plates_.size() && openStacks_ > 0; ++stack) {
        if (plates_[stack] == nullptr) continue;
        store_.VoxelStackRef({static_cast<std::int64_t>(stack % stacksPerRow_), static_cast<std::int64_t>(stack / stacksPerRow_)})
            .Compress();
        plates_[stack] = nullptr;
        --openStacks_;
    }
}

inline RasterBox TriangleRaster::BoxOf(const PackedCorners& corners) const
{
    RasterBox box;
    ContainingCell(corners.lower, perSize_, box.lower);
    ContainingCell(corners.upper, perSize_, box.upper);
    box.lowerFilled = box.lower;
    box.upperFilled = box.upper;
    return box;
}

void TriangleRaster::Fill(const PackedTriangle& triangle)
{
    const PackedCorners corners(triangle, origin_);
    RasterBox box = BoxOf(corners);
    KeepUpper(box.lowerFilled, lowerInExtents_);
    KeepLower(box.upperFilled, upperInExtents_);
    if (!IsAnyOf(box.lowerFilled > box.upperFilled)) FillIn(corners, box);
}

inline void TriangleRaster::FillIn(const PackedCorners& corners, const RasterBox& box)
{
    const Quad isThick = (box.lower < box.upper) & Quad{1, 2, 4, 0};
    switch (isThick[0] + isThick[1] + isThick[2]) {
    case 3:
        return FillTouched<ThickAlong::XY>(corners, box);
    case 5:
        return FillTouched<ThickAlong::XZ>(corners, box);
    case 6:
        return FillTouched<ThickAlong::YZ>(corners, box);
    case 7:
        return FillTouched<ThickAlong::XYZ>(corners, box);
    default:
        return FillAll(box);
    }
}

// At most two voxels along each axis, all of them in one stack and to be filled where they are touched.
inline bool TriangleRaster::IsSmall(const RasterBox& box) const
{
    const Quad isOther = (box.upper - box.lower > 1) | (box.lower != box.lowerFilled) | (box.upper != box.upperFilled) |
                         (((box.lower ^ box.upper) & Quad{-PlateRow, -PlateRow, 0, 0}) != 0);
    return !IsAnyOf(isOther);
}

// Fills the voxels of a small box for which bit x + 2 * y + 4 * z is set.
inline void TriangleRaster::FillSmall(const RasterBox& box, std::uint32_t touched)
{
    const Quad isTwo = box.upper - box.lower;
    const std::uint32_t columns = isTwo[0] != 0 ? 3 : 1;
    const std::int32_t x = box.lower[0] & (PlateRow - 1);
    const std::int32_t y = box.lower[1] & (PlateRow - 1);
    Plate* const plates = PlatesOf(box.lower[0], box.lower[1]);
    for (std::int32_t z = 0; z <= isTwo[2]; ++z) {
        std::uint16_t* const rows = &plates[box.lower[2] + z].rows[static_cast<std::size_t>(y)];
        rows[0] |= static_cast<std::uint16_t>((touched >> 4 * z & columns) << x);
        if (isTwo[1] != 0) rows[1] |= static_cast<std::uint16_t>((touched >> (4 * z + 2) & columns) << x);
    }
}

void TriangleRaster::FillAll(const RasterBox& box)
{
    if (IsSmall(box)) return FillSmall(box, ~std::uint32_t{0});
    ForEachTile(box, [&](const RasterTile& tile) {
        for (std::int32_t z = box.lowerFilled[2]; z <= box.upperFilled[2]; ++z) FillRows(tile, z, tile.rows);
    });
}

template <ThickAlong thick> void TriangleRaster::FillTouched(const PackedCorners& corners, const RasterBox& box)
{
    const Quad corner = box.lower * size_;
    const Conditions<thick> conditions(Corners(corners.a - corner, corners.b - corner, corners.c - corner), sizes_);
    if (IsSmall(box)) return FillSmall(box, conditions.TouchedOfEight());
    if constexpr (thick == ThickAlong::XYZ) {
        const Quad size = box.upper - box.lower + 1;
        if (std::int64_t{size[0]} * size[1] * size[2] > mostVoxelsOfNarrowPlane_) {
            return ForEachTile(box,
                               [&](const RasterTile& tile) { TileFilling<WidePlaneLanes, thick>(conditions, box, tile).Run(); });
        }
    }
    ForEachTile(box, [&](const RasterTile& tile) { TileFilling<PlaneLanes, thick>(conditions, box, tile).Run(); });
}

template <class Visit> void TriangleRaster::ForEachTile(const RasterBox& box, const Visit& visit)
{
    RasterTile tile;
    const std::int32_t lastX = box.upperFilled[0];
    const std::int32_t lastY = box.upperFilled[1];
    for (tile.y = box.lowerFilled[1]; tile.y <= lastY; tile.y += LaneCount) {
        const std::int32_t rows = std::min(lastY - tile.y + 1, LaneCount);
        const auto isInBox = reinterpret_cast<Lanes>(reinterpret_cast<SignedLanes>(LaneNumbers) < rows);
        const bool reachesNextY = (tile.y & (HalfPlate - 1)) + rows > HalfPlate;
        for (tile.x = box.lowerFilled[0]; tile.x <= lastX; tile.x += PlateRow) {
            tile.columns = std::min(lastX - tile.x + 1, PlateRow);
            tile.rows = isInBox & ((1U << tile.columns) - 1);
            tile.halves = HalvesOf(tile.x, tile.y, reachesNextY);
            const bool reachesNextX = (tile.x & (PlateRow - 1)) + tile.columns > PlateRow;
            tile.halvesOfNextX = reachesNextX ? HalvesOf(tile.x + PlateRow, tile.y, reachesNextY) : PlateHalves{};
            visit(tile);
        }
    }
}

inline PlateHalves TriangleRaster::HalvesOf(std::int32_t x, std::int32_t y, bool reachesNext)
{
    return {HalfOf(x, y), reachesNext ? HalfOf(x, y + HalfPlate) : nullptr};
}

// The plates of the stack that has voxel (x, y).
inline Plate* TriangleRaster::PlatesOf(std::int32_t x, std::int32_t y)
{
    const std::uint32_t i = static_cast<std::uint32_t>(x) / PlateRow;
    const std::uint32_t j = static_cast<std::uint32_t>(y) / PlateRow;
    Plate*& plates = plates_[j * stacksPerRow_ + i];
    if (plates == nullptr) {
        plates = WritablePlates(store_.VoxelStackRef({i, j}));
        ++openStacks_;
    }
    return plates;
}

// The half of the plate at height 0 that has voxel (x, y).
inline std::byte* TriangleRaster::HalfOf(std::int32_t x, std::int32_t y)
{
    return reinterpret_cast<std::byte*>(&PlatesOf(x, y)->rows[static_cast<std::size_t>(y & HalfPlate)]);
}

} // namespace brix
