// brix leak: why a cavity is not filled. The shortest way out of it, and the gap that would have to be closed.
#include "Commands.h"

#include "../FilePlan.h"
#include "../Grid.h"
#include "../Places.h"
#include "../Report.h"
#include "../SlicePage.h"
#include "../Units.h"

#include <brix/operations/Leaks.h>

#include <algorithm>
#include <cstdlib>

namespace brix::tools {
namespace {

// Of different lightness: to be told apart without red and green.
constexpr Colour Way{220, 110, 20};
constexpr Colour Hole{30, 90, 160};

struct Options
{
    GridOptions grid;
    std::array<double, 3> start{};
    std::filesystem::path output;
    std::string unit;
};

Box BoxAround(const Voxels& model, const Leak& leak)
{
    Box box = FilledBox(model, model.FinestLOD());
    for (const Triple& voxel : leak.voxels) {
        box.lower = Lowest(box.lower, voxel);
        box.upper = Highest(box.upper, voxel);
    }
    return box;
}

// The voxel of the way that is nearest to another one.
Triple NearestOnWay(const Leak& leak, const Triple& voxel)
{
    const auto distance = [&](const Triple& other) {
        const auto [x, y, z] = Minus(other, voxel);
        return std::abs(x) + std::abs(y) + std::abs(z);
    };
    return *std::min_element(leak.voxels.begin(), leak.voxels.end(),
                             [&](const Triple& a, const Triple& b) { return distance(a) < distance(b); });
}

// A slice through a voxel of the way, and on it all of the way and the gap, as seen from where the slice is looked at.
Panel DrawLeak(const Voxels& model, const Leak& leak, const Triple& gap, Axis axis, const Box& box, std::int64_t scale)
{
    const auto along = static_cast<std::size_t>(axis);
    const std::int64_t lod = model.FinestLOD();
    Panel panel =
        MakePanel(model.AxesRef(), lod, axis, DrawSlice({{model, Ink}}, lod, {axis, NearestOnWay(leak, gap)[along]}, box), scale);
    panel.title = axis == Axis::Z ? "Plan" : "Section";
    const auto spotOf = [axis, box, width = panel.cellWidth, height = panel.cellHeight](const Triple& voxel, Spot corner) {
        const auto [column, row] = CellOf(voxel, axis, box);
        return Spot{corner.x + (static_cast<double>(column) + 0.5) * static_cast<double>(width),
                    corner.y + (static_cast<double>(row) + 0.5) * static_cast<double>(height)};
    };
    panel.draw = [&leak, gap, spotOf](Canvas& canvas, Spot corner) {
        std::vector<Spot> way;
        for (const Triple& voxel : leak.voxels) way.push_back(spotOf(voxel, corner));
        canvas.Line(way, 6, White);
        canvas.Line(way, 3, Way);
        const auto mark = [&](Spot spot, Colour colour) {
            canvas.Disc(spot, 8, White);
            canvas.Disc(spot, 6.5, Ink);
            canvas.Disc(spot, 4.5, colour);
        };
        mark(way.front(), White);
        if (leak.gap) mark(spotOf(gap, corner), Hole);
    };
    return panel;
}

void Draw(const Voxels& model, const Leak& leak, const Triple& gap, const Options& options)
{
    const Axes& axes = model.AxesRef();
    const Box box = BoxAround(model, leak);
    const std::int64_t scale = ScaleForSize(axes, model.FinestLOD(), box, 500);
    Section section{"", {}, {{Ink, "filled"}, {White, "start"}, {Way, "the way out"}, {Hole, "narrowest place"}}};
    const auto at = axes.ToWorldCoordinates(axes.VoxelCenter(NearestOnWay(leak, gap), model.FinestLOD()));
    for (const Axis axis : {Axis::Z, Axis::Y, Axis::X}) {
        Panel& panel = section.panels.emplace_back(DrawLeak(model, leak, gap, axis, box, scale));
        const auto along = static_cast<std::size_t>(axis);
        panel.note = std::string("near ") + "xyz"[along] + " = " + WithUnit(at[along], options.unit);
    }
    const std::string voxel = options.grid.input.filename().string() + ", voxels " +
                              WithUnit(axes.WorldVoxelWidth(model.FinestLOD()), options.unit) + " wide";
    SavePage(options.output,
             {"The way out of the model", voxel, options.unit, LengthOfPixel(axes, model.FinestLOD(), scale), {section}});
}

void RunLeak(const Options& options)
{
    RequireGrid(options.grid);
    FilePlan files;
    files.Read(options.grid.input);
    if (!options.output.empty()) {
        FormatOf(options.output);
        files.Write(options.output);
    }
    const Voxels model = Voxelize(ReadInput(options.grid), options.grid, {{"fill-enclosed"}});
    const Axes& axes = model.AxesRef();
    const Stopwatch watch;
    const std::optional<Leak> leak = FindLeak(model, EyePoint(model, options.start));
    if (!leak)
        return PrintStep("leak", "none: the point is enclosed, and fill-enclosed fills the space around it " + watch.Text(),
                         {{"voxels", 0}});

    const auto voxels = std::ssize(leak->voxels);
    PrintStep("leak", "the outside is " + std::to_string(voxels) + " voxels away " + watch.Text(),
              {{"voxels", voxels}, {"seconds", watch.Seconds()}});
    Triple gap = leak->voxels.back();
    if (leak->gap) {
        const auto& [centre, width] = *leak->gap;
        gap = axes.ContainingVoxel(axes.FromWorldCoordinates(centre), model.FinestLOD());
        PrintStep("gap",
                  "the way is " + std::to_string(width) + " voxels wide at its narrowest place, near " + Text(centre, " ") +
                      "; the step fill-sealed " + std::to_string(width) + " closes it",
                  {{"width", width}, {"x", centre[0]}, {"y", centre[1]}, {"z", centre[2]}});
    } else {
        PrintStep("gap", "none: the way is " + std::to_string(MostGapWidth) + " voxels wide or more everywhere", {{"width", 0}});
    }
    if (!options.output.empty()) Draw(model, *leak, gap, options);
}

} // namespace

void AddLeakCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("leak", "Find the way out of a cavity, and the gap that keeps it from being filled");
    AddGridOptions(command, options->grid);
    command.add_option("--from", options->start, "A point inside, in the units of the file")->required()->type_name("X Y Z");
    command.add_option("-o,--output", options->output, "Picture to write; its ending, .png, .svg or .pdf, is its format [none]")
        ->type_name("OUT.png");
    AddUnitOption(command, options->unit);
    command.footer("Gaps that are narrower than a voxel are closed already.\n"
                   "Example: brix leak house.stl --voxel 0.1 --from 4 3 1.5 --unit m -o leak.png");
    command.callback([options] { RunLeak(*options); });
}

} // namespace brix::tools
