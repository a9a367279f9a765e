#include "Steps.h"

#include "Places.h"
#include "SlicePage.h"

#include <brix/operations/AutoSplit.h>
#include <brix/operations/BasicOperations.h>
#include <brix/operations/FillOperations.h>
#include <brix/operations/SolidOperations.h>
#include <brix/operations/SurfaceOperations.h>
#include <brix/travel/PathModel.h>
#include <brix/triangles/SurfaceMesh.h>
#include <brix/visibility/Visibility.h>

namespace brix::tools {
namespace {

using Run = std::function<void(Pipeline&)>;

// A step that replaces the model by what an operation makes of it; `makeOperation` reads the arguments.
template <class MakeOperation> auto Replace(MakeOperation makeOperation)
{
    return [makeOperation](Plan& plan, Arguments& arguments) -> Run {
        return [operation = makeOperation(plan, arguments)](Pipeline& pipeline) { pipeline.model = operation(pipeline); };
    };
}

// One that needs no arguments.
template <class Operation> auto Make(Operation operation)
{
    return Replace([operation](const Plan&, const Arguments&) {
        return [operation](const Pipeline& pipeline) { return operation(pipeline.model); };
    });
}

// The growth and shrinkage steps with two numbers, and those with one.
using TwoNumbers = Voxels (*)(const Voxels&, int, int, Guide, bool);
using OneNumber = Voxels (*)(const Voxels&, int, Guide, bool);

auto Change(TwoNumbers operation)
{
    return Replace([operation](Plan&, Arguments& arguments) {
        const int first = arguments.Integer();
        const int second = arguments.Integer();
        return [=](const Pipeline& p) { return operation(p.model, first, second, p.guide, p.autoAdjust); };
    });
}

auto Change(OneNumber operation)
{
    return Replace([operation](Plan&, Arguments& arguments) {
        const int number = arguments.Integer();
        return [=](const Pipeline& p) { return operation(p.model, number, p.guide, p.autoAdjust); };
    });
}

Voxels ReadOther(const Pipeline& pipeline, const std::string& file)
{
    if (pipeline.isRehearsal) return pipeline.model;
    GridOptions grid = pipeline.grid;
    grid.lod = pipeline.model.FinestLOD();
    return Voxelize(ReadInput(file, pipeline.model.AxesRef(), grid), grid);
}

// A step that combines the model with that of another file.
template <class Operation> auto Combine(Operation operation)
{
    return Replace([operation](Plan& plan, Arguments& arguments) {
        const std::string file = arguments.Word();
        plan.files.Read(file);
        plan.mayHaveGrown = true;
        return [operation, file](const Pipeline& p) {
            return operation(p.model, ReadOther(p, file), p.model.FinestLOD(), p.autoAdjust);
        };
    });
}

Run ReadGuide(Plan& plan, Arguments& arguments)
{
    const std::string file = arguments.Word();
    plan.files.Read(file);
    return [file](Pipeline& pipeline) { pipeline.guide = ReadOther(pipeline, file); };
}

Run AutoAdjust(Plan& plan, Arguments&)
{
    plan.mayHaveGrown = true;
    return [](Pipeline& pipeline) { pipeline.autoAdjust = !pipeline.isRehearsal; };
}

// The region with the most voxels, the first of several; the model itself when it is empty.
Voxels LargestRegion(const Voxels& model)
{
    std::vector<Voxels> regions = AutoSplit(model);
    const auto largest = std::max_element(regions.begin(), regions.end(), [](const Voxels& a, const Voxels& b) {
        return CountFilled(a, a.FinestLOD()) < CountFilled(b, b.FinestLOD());
    });
    return largest == regions.end() ? model : Resize(std::move(*largest), model.ExtentsRef(model.FinestLOD()));
}

auto ReadRefine(Plan& plan, Arguments& arguments)
{
    plan.lod = arguments.Integer();
    return [lod = plan.lod](const Pipeline& p) { return Refine(p.model, lod); };
}

auto ReadWalkable(Plan& plan, Arguments& arguments)
{
    const int diameter = arguments.Integer();
    const int height = arguments.Integer();
    plan.mayHaveGrown = true;
    return [=](const Pipeline& p) {
        return PathModel(p.model, p.model.FinestLOD(), diameter, height, p.autoAdjust).TraversableVoxels();
    };
}

auto ReadFillFrom(Plan&, Arguments& arguments)
{
    return [point = arguments.Point()](const Pipeline& p) {
        return FillFromPoint(p.model, p.model.AxesRef().FromWorldCoordinates(point));
    };
}

// A shell with the smallest hole stays hollow.
Voxels FillEnclosed(const Pipeline& p)
{
    Voxels filled = FillEnclosedRegions(p.model);
    const std::int64_t lod = filled.FinestLOD();
    if (!p.isRehearsal && !IsEmpty(p.model, lod) && CountFilled(filled, lod) == CountFilled(p.model, lod))
        Warn("The step fill-enclosed filled nothing: no empty space is enclosed. If there should be some, brix leak finds the "
             "hole, and "
             "the step fill-sealed fills as if holes up to a width were closed.");
    return filled;
}

auto ReadFillSealed(Plan&, Arguments& arguments)
{
    return [gap = arguments.Integer()](const Pipeline& p) { return SealedFill(p.model, gap); };
}

auto ReadVisibleAlong(Plan&, Arguments& arguments)
{
    const Triple direction = arguments.Direction();
    const double threshold = arguments.Number();
    return [=](const Pipeline& p) { return VisibilityFromDirection(p.model, direction, p.model.FinestLOD(), threshold); };
}

// What steps that look from a point have in common: the point first, the radius and the threshold last.
struct Sight
{
    std::array<double, 3> point;
    double radius, threshold;

    Triple Point(const Pipeline& p) const { return EyePoint(p.model, point); }
    std::int64_t Radius(const Pipeline& p) const { return p.model.AxesRef().FromWorldDistance(radius); }
};

auto ReadVisibleFrom(Plan&, Arguments& arguments)
{
    const auto point = arguments.Point();
    const double radius = arguments.Number();
    const Sight sight{point, radius, arguments.Number()};
    return [=](const Pipeline& p) {
        return VisibilityFromPoint(p.model, sight.Point(p), p.model.FinestLOD(), sight.Radius(p), sight.threshold, p.autoAdjust);
    };
}

auto ReadVisibleInCone(Plan&, Arguments& arguments)
{
    const auto point = arguments.Point();
    const Triple direction = arguments.Direction();
    const double angle = arguments.Number();
    const double radius = arguments.Number();
    const Sight sight{point, radius, arguments.Number()};
    return [=](const Pipeline& p) {
        return VisibilityWithinCone(p.model, sight.Point(p), direction, angle, p.model.FinestLOD(), sight.Radius(p),
                                    sight.threshold, p.autoAdjust);
    };
}

auto ReadVisibleInPyramid(Plan&, Arguments& arguments)
{
    const auto point = arguments.Point();
    const Triple direction = arguments.Direction();
    const double width = arguments.Number();
    const double height = arguments.Number();
    const double radius = arguments.Number();
    const Sight sight{point, radius, arguments.Number()};
    return [=](const Pipeline& p) {
        return VisibilityWithinPyramid(p.model, sight.Point(p), direction, width, height, p.model.FinestLOD(), sight.Radius(p),
                                       sight.threshold, p.autoAdjust);
    };
}

// A step that writes the model by one of the functions for it.
auto Write(void (*save)(const Voxels&, const LevelFile&, const GridOptions&, bool))
{
    return [save](Plan& plan, Arguments& arguments) -> Run {
        const LevelFile output = ParseLevelFile(arguments.Word(), plan.lod);
        save == SaveVoxels ? plan.files.WriteVoxels(output.filePath) : plan.files.Write(output.filePath);
        return [=](const Pipeline& p) {
            if (!p.isRehearsal) save(p.model, output, p.grid, p.ascii);
        };
    };
}

Run ReadWriteMesh(Plan& plan, Arguments& arguments)
{
    std::optional<int> smoothingSteps;
    if (arguments.Option("--smooth")) smoothingSteps = arguments.Integer();
    const LevelFile output = ParseLevelFile(arguments.Word(), plan.lod);
    plan.files.Write(output.filePath);
    return [=](const Pipeline& p) {
        // The engine judges the number of steps before the work, on the empty model of the rehearsal.
        if (p.isRehearsal && smoothingSteps) (void)SurfaceMesh(p.model, 0, {SurfaceStyle::Smooth, *smoothingSteps});
        if (!p.isRehearsal) SaveMesh(p.model, output, smoothingSteps, p.grid, p.ascii);
    };
}

Run ReadSlice(Plan& plan, Arguments& arguments)
{
    const SlicePosition position = ParseSlicePosition(arguments.Word());
    const std::filesystem::path file = arguments.Word();
    FormatOf(file);
    plan.files.Write(file);
    if (!plan.mayHaveGrown) plan.slices.push_back(position);
    return [=](const Pipeline& pipeline) {
        if (pipeline.isRehearsal) return;
        const Voxels& model = pipeline.model;
        const std::int64_t lod = model.FinestLOD();
        const Slice slice = FindSlice(model.ExtentsRef(lod), position);
        const std::string title = "Slice of " + pipeline.grid.input.filename().string();
        SaveSlices(file, model, {{position, slice}}, title, {.lod = lod});
    };
}

} // namespace

const std::vector<Step>& AllSteps()
{
    static const std::vector<Step> steps{
        {"union", "FILE", "add the voxels of another STL file",
         Combine([](const Voxels& a, const Voxels& b, std::int64_t lod, bool crop) {
             return Union({&a, &b}, lod, crop);
         })},
        {"intersect", "FILE", "keep what another STL file fills, too",
         Combine([](const Voxels& a, const Voxels& b, std::int64_t lod, bool crop) {
             return Intersect({&a, &b}, lod, crop);
         })},
        {"subtract", "FILE", "remove the voxels of another STL file", Combine(Subtract)},
        {"invert", "", "swap filled and empty", Make([](const Voxels& model) { return Invert(model); })},
        {"fill-enclosed", "", "fill the cavities",
         Replace([](const Plan&, const Arguments&) { return [](const Pipeline& p) { return FillEnclosed(p); }; })},
        {"fill-sealed", "GAP", "fill the cavities as if gaps up to that many voxels wide were closed", Replace(ReadFillSealed)},
        {"fill-exposed", "", "fill all that is open to the outside",
         Make([](const Voxels& model) { return FillExposedRegions(model); })},
        {"fill-from", "X Y Z", "fill the empty region around a point", Replace(ReadFillFrom)},
        {"expand-x", "LOWER UPPER", "grow along x by numbers of voxels", Change(ExpandAlongX)},
        {"expand-y", "LOWER UPPER", "grow along y", Change(ExpandAlongY)},
        {"expand-z", "LOWER UPPER", "grow along z", Change(ExpandAlongZ)},
        {"reduce-x", "LOWER UPPER", "shrink along x by numbers of voxels", Change(ReduceAlongX)},
        {"reduce-y", "LOWER UPPER", "shrink along y", Change(ReduceAlongY)},
        {"reduce-z", "LOWER UPPER", "shrink along z", Change(ReduceAlongZ)},
        {"expand-by-one", "BESIDE STACKED", "fill voxels with that many filled neighbours beside, and below or above",
         Change(ExpandByOneVoxel)},
        {"reduce-by-one", "BESIDE STACKED", "empty voxels with that many empty neighbours", Change(ReduceByOneVoxel)},
        {"expand-horizontally", "DIAMETER", "grow in each layer as if by a disc", Change(ExpandHorizontally)},
        {"reduce-horizontally", "DIAMETER", "shrink in each layer as if by a disc", Change(ReduceHorizontally)},
        {"guide", "FILE", "let a file's voxels restrain the growth and shrinkage that follow", ReadGuide},
        {"no-guide", "", "end that", [](Plan&, Arguments&) -> Run { return [](Pipeline& p) { p.guide.reset(); }; }},
        {"auto-adjust", "", "from here on, let extents follow the filled voxels", AutoAdjust},
        {"keep-largest", "", "keep the largest of the regions that do not touch", Make(LargestRegion)},
        {"auto-crop", "", "set the extents to the filled voxels", Make([](const Voxels& model) { return AutoCrop(model); })},
        {"refine", "LEVEL", "set the finest level of detail", Replace(ReadRefine)},
        {"walkable", "DIAMETER HEIGHT", "where an agent of that many voxels can stand", Replace(ReadWalkable)},
        {"visible-along", "X Y Z THRESHOLD", "what is seen looking in a direction of the grid", Replace(ReadVisibleAlong)},
        {"visible-from", "X Y Z RADIUS THRESHOLD", "what is seen from a point, up to a distance", Replace(ReadVisibleFrom)},
        {"visible-in-cone", "X Y Z DX DY DZ ANGLE RADIUS THRESHOLD", "what is seen in a cone along a direction of the grid",
         Replace(ReadVisibleInCone)},
        {"visible-in-pyramid", "X Y Z DX DY DZ WIDTH HEIGHT RADIUS THRESHOLD", "what a camera sees; angles in degrees",
         Replace(ReadVisibleInPyramid)},
        {"write", "[LEVEL=]FILE", "write the voxels as STL, or as brix convert does by the ending", Write(SaveVoxels)},
        {"write-surface", "[LEVEL=]FILE", "write the surface of the voxels as STL, in as few rectangles as it takes",
         Write(SaveSurface)},
        {"write-mesh", "[--smooth STEPS] [LEVEL=]FILE",
         "write the faces of the voxels as a closed STL mesh without T-junctions, or a smooth one", ReadWriteMesh},
        {"slice", "AXIS=POSITION FILE", "draw a slice as PNG, SVG or PDF", ReadSlice},
    };
    return steps;
}

} // namespace brix::tools
