// brix travel: how far people walk from a point, where they end up farthest away, and what they see from where they start.
#include "Commands.h"

#include "../ColourScale.h"
#include "../Report.h"
#include "../Storeys.h"
#include "../TriangleFiles.h"

#include <brix/model/VoxelIterator.h>
#include <brix/operations/BasicOperations.h>
#include <brix/operations/FillOperations.h>
#include <brix/travel/Path.h>
#include <brix/visibility/Visibility.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace brix::tools {
namespace {

using Voxels = VoxelModel<bool>;

constexpr Colour Things{176, 180, 190};
constexpr Colour NoWay{222, 218, 208};
constexpr Colour Seen{250, 204, 92};
constexpr Colour Unseen{150, 160, 178};
constexpr Colour Way{220, 30, 60};

struct Options : StoreyOptions
{
    double eye = 1.6;
};

// Everything that a plan shows.
struct Travel
{
    Voxels solid;
    DistanceField field;
    std::vector<Path> ways; // to the farthest place of every storey
    Voxels seen;
};

// A place on a storey's floor plan: the lowest reached voxel of its column.
struct Place
{
    std::int64_t z;
    double distance; // world units
};
using Places = std::map<std::array<std::int64_t, 2>, Place>;

Places PlacesOf(const DistanceField& field, const Storey& storey)
{
    Places places;
    field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) { // upwards in each column
        if (storey.layer <= voxel[2] && voxel[2] <= storey.top)
            places.try_emplace({voxel[0], voxel[1]}, Place{voxel[2], field.AxesRef().ToWorldDistance(distance)});
    });
    return places;
}

// A plan of a storey in pixels; voxels are squares.
class Plan
{
public:
    Plan(const Travel& travel, const Storey& storey, std::int64_t scale)
        : travel_(travel), storey_(storey), scale_(scale), extents_(travel.field.ExtentsRef()), picture_(Background())
    {}

    const Picture& PictureRef() const { return picture_; }

    void Paint(std::int64_t x, std::int64_t y, Colour colour) { picture_.Fill(Left(x), Top(y), scale_, scale_, colour); }

    /// A way as a line three pixels wide, where it is on this storey.
    void DrawWay(const std::vector<Triple>& points)
    {
        for (std::size_t i = 1; i < points.size(); ++i) {
            const Triple piece = Minus(points[i], points[i - 1]);
            const std::int64_t count =
                1 + std::max(std::abs(piece[0]), std::abs(piece[1])) * scale_ / VoxelSpacing(extents_.VoxelLOD());
            for (std::int64_t step = 0; step <= count; ++step) {
                Triple point = points[i - 1];
                for (std::size_t k = 0; k < 3; ++k) point[k] += piece[k] * step / count;
                if (IsOnStorey(point)) DrawDisc(point, 1, Way);
            }
        }
    }

    /// A mark of two colours at a point, where it is on this storey.
    void DrawMark(const Triple& point, Colour inside)
    {
        if (!IsOnStorey(point)) return;
        DrawDisc(point, 9, White);
        DrawDisc(point, 7, Ink);
        DrawDisc(point, 5, inside);
    }

private:
    Picture Background() const
    {
        const Voxels floor = SeenInLayer(travel_.solid, {storey_.layer, storey_.layer}, storey_.layer);
        const Voxels things = SeenInLayer(travel_.solid, {storey_.base + 1, storey_.cut}, storey_.layer);
        const Voxels walls = SeenInLayer(travel_.solid, {storey_.cut, storey_.cut}, storey_.layer);
        return DrawSlice({{floor, NoWay}, {things, Things}, {walls, Ink}}, extents_.VoxelLOD(), {Axis::Z, storey_.layer}, scale_);
    }

    std::int64_t Left(std::int64_t x) const { return (x - extents_.LowerIndices()[0]) * scale_; }
    std::int64_t Top(std::int64_t y) const { return (extents_.UpperIndices()[1] - y) * scale_; }

    bool IsOnStorey(const Triple& point) const
    {
        const std::int64_t z = extents_.AxesRef().ContainingVoxel(point, extents_.VoxelLOD())[2];
        return storey_.layer <= z && z <= storey_.top;
    }

    void DrawDisc(const Triple& point, std::int64_t radius, Colour colour)
    {
        const Triple corner = extents_.AxesRef().VoxelCorner(extents_.LowerIndices(), extents_.VoxelLOD());
        const std::int64_t spacing = VoxelSpacing(extents_.VoxelLOD());
        const std::int64_t x = (point[0] - corner[0]) * scale_ / spacing;
        const std::int64_t y = picture_.Height() - 1 - (point[1] - corner[1]) * scale_ / spacing;
        for (std::int64_t row = -radius; row <= radius; ++row) {
            const auto half = static_cast<std::int64_t>(std::sqrt(radius * (radius + 1) - row * row));
            const std::int64_t from = std::max<std::int64_t>(0, x - half);
            const std::int64_t to = std::min(picture_.Width() - 1, x + half);
            if (0 <= y + row && y + row < picture_.Height() && from <= to) picture_.Fill(from, y + row, to - from + 1, 1, colour);
        }
    }

    const Travel& travel_;
    Storey storey_;
    std::int64_t scale_;
    Extents extents_;
    Picture picture_;
};

// Contours where the next place east or north lies in another band.
Picture DrawDistances(const Travel& travel, const Storey& storey, const ColourScale& colours, std::int64_t scale)
{
    Plan plan(travel, storey, scale);
    const Places places = PlacesOf(travel.field, storey);
    const auto isOtherBand = [&](std::int64_t x, std::int64_t y, double distance) {
        const auto place = places.find({x, y});
        return place != places.end() && colours.Band(place->second.distance) != colours.Band(distance);
    };
    for (const auto& [xy, place] : places) {
        const Colour colour = colours.At(place.distance);
        const bool isContour = isOtherBand(xy[0] + 1, xy[1], place.distance) || isOtherBand(xy[0], xy[1] + 1, place.distance);
        plan.Paint(xy[0], xy[1], isContour ? Mixed(colour, White, 0.55) : colour);
    }
    for (const Path& way : travel.ways) plan.DrawWay(way.Points());
    for (const Path& way : travel.ways) {
        plan.DrawMark(way.Points().front(), Way);
        plan.DrawMark(way.Points().back(), White);
    }
    return plan.PictureRef();
}

// A place is seen where any part of a body that stands there is.
Picture DrawSeen(const Travel& travel, const Storey& storey, std::int64_t bodyVoxels, std::int64_t scale)
{
    Plan plan(travel, storey, scale);
    const std::int64_t lod = travel.field.VoxelLOD();
    for (const auto& [xy, place] : PlacesOf(travel.field, storey)) {
        bool isSeen = false;
        for (std::int64_t z = place.z; z < place.z + bodyVoxels && !isSeen; ++z) {
            const ConstVoxelIterator voxel = travel.seen.FindVoxel({xy[0], xy[1], z}, lod);
            isSeen = voxel.IsValid() && voxel.Value();
        }
        plan.Paint(xy[0], xy[1], isSeen ? Seen : Unseen);
    }
    for (const Path& way : travel.ways) plan.DrawMark(way.Points().back(), White);
    return plan.PictureRef();
}

Picture Stacked(const std::vector<Picture>& pictures)
{
    std::int64_t width = 0;
    std::int64_t height = 0;
    for (const Picture& picture : pictures) {
        width = std::max(width, picture.Width());
        height += picture.Height();
    }
    Picture stack(width, height, White);
    std::int64_t y = 0;
    for (const Picture& picture : pictures) {
        stack.Place(picture, 0, y);
        y += picture.Height();
    }
    return stack;
}

Picture DrawTravel(const Travel& travel, const Options& options, std::int64_t bodyVoxels)
{
    constexpr std::int64_t margin = 24;
    const Axes& axes = travel.field.AxesRef();
    const ColourScale colours(axes.ToWorldDistance(travel.field.FarthestDistance()));
    std::vector<Picture> distances;
    std::vector<Picture> seen;
    for (const double floor : options.floors) {
        const Storey storey = StoreyAbove(axes, floor, options.person.height);
        distances.push_back(DrawDistances(travel, storey, colours, options.scale));
        seen.push_back(DrawSeen(travel, storey, bodyVoxels, options.scale));
    }
    const Picture upper = SideBySide(distances, margin);
    return Stacked({upper, colours.Legend(upper.Width()), SideBySide(seen, margin)});
}

void AddFarthestWay(const DistanceField& field, const Storey& storey, std::vector<Path>& ways)
{
    const Places places = PlacesOf(field, storey);
    if (places.empty()) return;
    const auto& [xy, place] = *std::max_element(
        places.begin(), places.end(), [](const auto& a, const auto& b) { return a.second.distance < b.second.distance; });
    const Path& way = ways.emplace_back(field, field.AxesRef().VoxelCenter({xy[0], xy[1], place.z}, field.VoxelLOD()));
    PrintStep("way", Text(place.distance) + " long, " + std::to_string(way.Points().size() - 1) + " straight pieces over " +
                         std::to_string(CountFilled(way.Voxels(), field.VoxelLOD())) + " voxels");
}

Travel MakeTravel(Voxels solid, const Options& options, const std::array<std::int64_t, 2>& body)
{
    const Axes axes = solid.AxesRef();
    const Stopwatch watch;
    const PathModel path(solid, options.grid.lod, body[0], body[1], false);
    PrintStep("walkable", std::to_string(CountFilled(path.TraversableVoxels(), options.grid.lod)) + " voxels for a person of " +
                              std::to_string(body[0]) + " x " + std::to_string(body[1]) + " voxels " + watch.Text());
    const Stopwatch fieldWatch;
    const Triple start = axes.FromWorldCoordinates({options.start[0], options.start[1], options.start[2]});
    DistanceField field(path, {start}, std::int64_t{1} << 62);
    PrintStep("reachable", std::to_string(CountFilled(field.ReachableVoxels(), options.grid.lod)) + " of them, the farthest " +
                               Text(axes.ToWorldDistance(field.FarthestDistance())) + " away " + fieldWatch.Text());
    std::vector<Path> ways;
    for (const double floor : options.floors) AddFarthestWay(field, StoreyAbove(axes, floor, options.person.height), ways);
    const Stopwatch sightWatch;
    const Triple eye = axes.FromWorldCoordinates({options.start[0], options.start[1], options.start[2] + options.eye});
    Voxels seen = VisibilityFromPoint(solid, eye, options.grid.lod, std::int64_t{1} << 62, 0.5, false);
    PrintStep("seen", std::to_string(CountFilled(seen, options.grid.lod)) + " voxels from the start " + sightWatch.Text());
    return {std::move(solid), std::move(field), std::move(ways), std::move(seen)};
}

void RunTravel(const Options& options)
{
    const Axes axes = MakeAxes(options.grid);
    const std::array body{ToVoxels(options.person.diameter, axes.WorldVoxelWidth(options.grid.lod), "diameter"),
                          ToVoxels(options.person.height, axes.WorldVoxelHeight(), "height")};
    RequireOutputFolder(options.output);
    // Triangles are skins: what they enclose, the inside of walls, is solid, too.
    const Travel travel = MakeTravel(FillEnclosedRegions(VoxelizeInput(options.grid)), options, body);
    const Picture picture = DrawTravel(travel, options, body[1]);
    picture.SavePng(options.output);
    PrintStep(
        "picture",
        options.output.string() + ": " + std::to_string(picture.Width()) + " x " + std::to_string(picture.Height()) +
            " pixels; above: distance by colour, the ways to every storey's farthest place in red; below: what is seen from " +
            "the start in yellow");
}

} // namespace

void AddTravelCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("travel", "Draw how far people walk from a point in an STL file, and what they see");
    AddStoreyOptions(command, *options, "Where the ways start, on the ground", true);
    command.add_option("--eye", options->eye, "Height of the eye above the start")->capture_default_str()->type_name("LENGTH");
    command.footer(
        "A person climbs steps of one voxel: choose voxels as high as a step, with --vertical-lod.\n"
        "Example: brix travel house.stl -w 3.2 --lod 5 --vertical-lod 4 --from -1 5 0.1 --floor 0 --floor 3 -o travel.png");
    command.callback([options] { RunTravel(*options); });
}

} // namespace brix::tools
