// brix travel: how far people walk from a point, where they end up farthest away, and what they see from where they start.
#include "Commands.h"

#include "../Places.h"
#include "../Report.h"
#include "../SlicePage.h"
#include "../Storeys.h"
#include "../Units.h"

#include <brix/model/VoxelIterator.h>
#include <brix/operations/BasicOperations.h>
#include <brix/travel/Path.h>
#include <brix/visibility/Visibility.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

namespace brix::tools {
namespace {

constexpr Colour Seen{244, 190, 66};
constexpr Colour Unseen{186, 198, 218};
constexpr Colour Way{213, 64, 0};

struct Options : StoreyOptions
{
    std::optional<double> eye;

    double Eye() const { return eye.value_or(FromMetres(1.6, unit)); }
};

// Everything that a plan shows.
struct Travel
{
    Voxels solid;
    DistanceField field;
    std::vector<Storey> storeys;
    std::vector<Path> ways; // to the farthest place of every storey
    Voxels seen;
    Box box;
    std::int64_t scale;
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

// Draws on the plan of a storey, whose upper left corner is given.
class Marks
{
public:
    Marks(Canvas& canvas, Spot corner, const Travel& travel, const Storey& storey)
        : canvas_(canvas),
          corner_(corner),
          travel_(travel),
          storey_(storey),
          pixel_(LengthOfPixel(travel.solid.AxesRef(), travel.solid.FinestLOD(), travel.scale))
    {}

    /// A way, where it is on this storey: white on both sides, to be seen on every colour.
    void DrawWay(const std::vector<Triple>& points) const
    {
        std::vector<Spot> line;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Triple piece = Minus(points[i], points[i == 0 ? 0 : i - 1]);
            const std::int64_t count =
                1 + std::max(std::abs(piece[0]), std::abs(piece[1])) / VoxelSpacing(travel_.field.VoxelLOD());
            for (std::int64_t step = 1; step <= count; ++step) {
                Triple point = points[i == 0 ? 0 : i - 1];
                for (std::size_t k = 0; k < 3; ++k) point[k] += piece[k] * step / count;
                if (IsOnStorey(point))
                    line.push_back(SpotOf(point));
                else
                    DrawLine(line);
            }
        }
        DrawLine(line);
    }

    /// A mark at a point, where it is on this storey.
    void DrawMark(const Triple& point, Colour inside) const
    {
        if (!IsOnStorey(point)) return;
        canvas_.Disc(SpotOf(point), 8, White);
        canvas_.Disc(SpotOf(point), 6.5, Ink);
        canvas_.Disc(SpotOf(point), 4.5, inside);
    }

private:
    bool IsOnStorey(const Triple& point) const
    {
        const std::int64_t z = travel_.solid.AxesRef().ContainingVoxel(point, travel_.field.VoxelLOD())[2];
        return storey_.layer <= z && z <= storey_.top;
    }

    Spot SpotOf(const Triple& point) const
    {
        const Axes& axes = travel_.solid.AxesRef();
        const std::int64_t lod = travel_.field.VoxelLOD();
        const Triple left = axes.VoxelCorner(travel_.box.lower, lod);
        const Triple top = axes.VoxelCorner(Plus(travel_.box.upper, {1, 1, 1}), lod);
        return {corner_.x + axes.ToWorldDistance(point[0] - left[0]) / pixel_,
                corner_.y + axes.ToWorldDistance(top[1] - point[1]) / pixel_};
    }

    void DrawLine(std::vector<Spot>& line) const
    {
        canvas_.Line(line, 6, White);
        canvas_.Line(line, 3, Way);
        line.clear();
    }

    Canvas& canvas_;
    Spot corner_;
    const Travel& travel_;
    const Storey& storey_;
    double pixel_;
};

Panel MakePanel(const Travel& travel, const Storey& storey, Raster raster, const std::string& note)
{
    Panel panel = MakePanel(travel.solid.AxesRef(), travel.field.VoxelLOD(), Axis::Z, std::move(raster), travel.scale);
    panel.title = storey.title;
    panel.note = note;
    return panel;
}

double Farthest(const Places& places)
{
    double farthest = 0;
    for (const auto& [xy, place] : places) farthest = std::max(farthest, place.distance);
    return farthest;
}

void Paint(Raster& raster, const Box& box, const std::array<std::int64_t, 2>& xy, Colour colour)
{
    raster.Set(xy[0] - box.lower[0], box.upper[1] - xy[1], colour);
}

// Contours where the next place east or north lies in another band.
Panel DrawDistances(const Travel& travel, const Storey& storey, const ColourScale& colours, const Options& options)
{
    const Places places = PlacesOf(travel.field, storey);
    const auto isOtherBand = [&](std::int64_t x, std::int64_t y, double distance) {
        const auto place = places.find({x, y});
        return place != places.end() && colours.Band(place->second.distance) != colours.Band(distance);
    };
    Raster raster = DrawBackground(travel.solid, storey, travel.box);
    for (const auto& [xy, place] : places) {
        const Colour colour = colours.At(place.distance);
        const bool isContour = isOtherBand(xy[0] + 1, xy[1], place.distance) || isOtherBand(xy[0], xy[1] + 1, place.distance);
        Paint(raster, travel.box, xy, isContour ? Mixed(colour, White, 0.55) : colour);
    }
    const double voxel = travel.solid.AxesRef().WorldVoxelWidth(travel.field.VoxelLOD());
    Panel panel =
        MakePanel(travel, storey, std::move(raster), "up to " + LengthText(Farthest(places), voxel, options.unit) + " away");
    panel.draw = [&travel, &storey](Canvas& canvas, Spot corner) {
        const Marks marks(canvas, corner, travel, storey);
        for (const Path& way : travel.ways) marks.DrawWay(way.Points());
        for (const Path& way : travel.ways) marks.DrawMark(way.Points().front(), Way);
        for (const Path& way : travel.ways) marks.DrawMark(way.Points().back(), White);
    };
    return panel;
}

// A place is seen where any part of a body that stands there is. Nothing when no place is.
std::optional<Panel> DrawSeen(const Travel& travel, const Storey& storey, std::int64_t bodyVoxels)
{
    Raster raster = DrawBackground(travel.solid, storey, travel.box);
    const Places places = PlacesOf(travel.field, storey);
    std::size_t count = 0;
    for (const auto& [xy, place] : places) {
        bool isSeen = false;
        for (std::int64_t z = place.z; z < place.z + bodyVoxels && !isSeen; ++z) {
            const ConstVoxelIterator voxel = travel.seen.FindVoxel({xy[0], xy[1], z}, travel.field.VoxelLOD());
            isSeen = voxel.IsValid() && voxel.Value();
        }
        count += isSeen ? 1 : 0;
        Paint(raster, travel.box, xy, isSeen ? Seen : Unseen);
    }
    if (count == 0) return std::nullopt;
    Panel panel =
        MakePanel(travel, storey, std::move(raster),
                  Text(std::round(100.0 * static_cast<double>(count) / static_cast<double>(places.size()))) + " % of it");
    panel.draw = [&travel, &storey](Canvas& canvas, Spot corner) {
        for (const Path& way : travel.ways) Marks(canvas, corner, travel, storey).DrawMark(way.Points().back(), White);
    };
    return panel;
}

Page DrawTravel(const Travel& travel, const Options& options, std::int64_t bodyVoxels)
{
    const Axes& axes = travel.field.AxesRef();
    const ColourScale colours(0, axes.ToWorldDistance(travel.field.FarthestDistance()), Light::Low);
    Section distances{"How far it is to walk",
                      {},
                      {{White, "start"},
                       {Way, "the way to the farthest place of a storey"},
                       {NoWay, "no room to stand"},
                       {Things, "things, low walls"},
                       {Ink, "walls"}}};
    Section seen{"What is seen from the start", {}, {{Seen, "places seen"}, {Unseen, "places hidden"}}};
    for (const Storey& storey : travel.storeys) {
        distances.panels.push_back(DrawDistances(travel, storey, colours, options));
        if (std::optional<Panel> panel = DrawSeen(travel, storey, bodyVoxels)) seen.panels.push_back(std::move(*panel));
    }
    distances.scale = {colours,
                       "Walking distance from the start; a contour every " + WithUnit(colours.ContourStep(), options.unit)};
    Page page = MakePage("Walking distances", axes, options, travel.scale);
    page.sections.push_back(std::move(distances));
    if (!seen.panels.empty()) page.sections.push_back(std::move(seen));
    return page;
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

Travel MakeTravel(Voxels solid, const Options& options, const Body& body)
{
    const Axes axes = solid.AxesRef();
    const std::int64_t lod = options.grid.lod;
    const Stopwatch watch;
    const PathModel path(solid, lod, body.diameter, body.height, false);
    PrintStep("walkable", std::to_string(CountFilled(path.TraversableVoxels(), lod)) + " voxels for a person of " +
                              std::to_string(body.diameter) + " x " + std::to_string(body.height) + " voxels " + watch.Text());
    const Stopwatch fieldWatch;
    const std::array point{options.start[0], options.start[1], options.start[2]};
    const Triple start = axes.VoxelCenter(StandingVoxel(solid, path.TraversableVoxels(), point, body.height), lod);
    DistanceField field(path, {start}, std::int64_t{1} << 62);
    const Voxels reachable = field.ReachableVoxels();
    PrintStep("reachable", std::to_string(CountFilled(reachable, lod)) + " of them, the farthest " +
                               Text(axes.ToWorldDistance(field.FarthestDistance())) + " away " + fieldWatch.Text());
    std::vector<Storey> storeys = StoreysOf(reachable, body, options);
    std::vector<Path> ways;
    for (const Storey& storey : storeys) AddFarthestWay(field, storey, ways);
    const Stopwatch sightWatch;
    Triple eye = axes.FromWorldCoordinates(point);
    eye[2] = start[2] - axes.VoxelSize(lod)[2] / 2 + axes.FromWorldDistance(options.Eye());
    Voxels seen = VisibilityFromPoint(solid, eye, lod, std::int64_t{1} << 62, 0.5, false);
    PrintStep("seen", std::to_string(CountFilled(seen, lod)) + " voxels from the start " + sightWatch.Text());
    const Box box = FilledBox(solid, lod);
    const std::int64_t scale = options.scale > 0 ? options.scale : ScaleForSize(axes, lod, box, 600);
    return {std::move(solid), std::move(field), std::move(storeys), std::move(ways), std::move(seen), box, scale};
}

void RunTravel(const Options& options)
{
    FormatOf(options.output);
    Input input = ReadStoreyInput(options);
    const Body body = BodyOf(options, input.axes);
    Voxels solid = SolidWithHeadroom(Voxelize(std::move(input), options.grid, {{"fill-enclosed"}, {"travel"}}), body);
    const Travel travel = MakeTravel(std::move(solid), options, body);
    SavePage(options.output, DrawTravel(travel, options, body.height));
}

} // namespace

void AddTravelCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("travel", "Draw how far people walk from a point in an STL file, and what they see");
    AddStoreyOptions(command, *options, "Where the ways start", true);
    command.add_option("--eye", options->eye, "Height of the eye above the floor [1.6 metres]")->type_name("LENGTH");
    command.footer("A person climbs steps of one voxel: choose voxels as high as a step, with --vertical-lod.\n"
                   "Example: brix travel house.stl --voxel 0.1 --lod 5 --vertical-lod 4 --from -1 5 0.1 --unit m -o travel.png");
    command.callback([options] { RunTravel(*options); });
}

} // namespace brix::tools
