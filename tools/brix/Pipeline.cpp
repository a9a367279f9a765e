#include "Pipeline.h"

#include "OutputFiles.h"
#include "Places.h"
#include "Report.h"
#include "SlicePage.h"

#include <brix/operations/AutoSplit.h>
#include <brix/operations/BasicOperations.h>
#include <brix/operations/FillOperations.h>
#include <brix/operations/SolidOperations.h>
#include <brix/operations/SurfaceOperations.h>
#include <brix/travel/PathModel.h>
#include <brix/visibility/Visibility.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>

namespace brix::tools {
namespace {

using Voxels = VoxelModel<bool>;

// The words after a step's name, read one after the other.
class Arguments
{
public:
    Arguments(const std::string& step, const std::string* first) : step_(step), next_(first) {}

    std::string Word() { return *next_++; }

    int Integer()
    {
        const std::string word = Word();
        int number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error != std::errc() || end != word.data() + word.size()) throw UsageError(Complaint("a whole number", word));
        return number;
    }

    double Number()
    {
        const std::string word = Word();
        double number = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
        if (error != std::errc() || end != word.data() + word.size() || !std::isfinite(number))
            throw UsageError(Complaint("a number", word));
        return number;
    }

    std::array<double, 3> Point()
    {
        const double x = Number();
        const double y = Number();
        return {x, y, Number()};
    }

    Triple Direction()
    {
        const int x = Integer();
        const int y = Integer();
        return {x, y, Integer()};
    }

private:
    std::string Complaint(const std::string& wanted, const std::string& word) const
    {
        return "The step " + step_ + " needs " + wanted + ", not \"" + word + "\".";
    }

    std::string step_;
    const std::string* next_;
};

struct Step
{
    std::string name;
    std::string arguments; // words in capitals
    std::string meaning;
    std::function<void(Pipeline&, Arguments&)> run;

    std::ptrdiff_t ArgumentCount() const
    {
        return arguments.empty() ? 0 : 1 + std::count(arguments.begin(), arguments.end(), ' ');
    }
};

Voxels ReadOther(const Pipeline& pipeline, const std::string& file)
{
    GridOptions grid = pipeline.grid;
    grid.input = file;
    return VoxelizeInput(grid);
}

Triple Point(const Pipeline& pipeline, Arguments& arguments)
{
    return pipeline.model.AxesRef().FromWorldCoordinates(arguments.Point());
}

// A step that replaces the model by what an operation makes of it.
template <class Operation> auto Replace(Operation operation)
{
    return [operation](Pipeline& pipeline, Arguments& arguments) { pipeline.model = operation(pipeline, arguments); };
}

// The growth and shrinkage steps with two numbers, and those with one.
using TwoNumbers = Voxels (*)(const Voxels&, int, int, const std::optional<Voxels>&, bool);
using OneNumber = Voxels (*)(const Voxels&, int, const std::optional<Voxels>&, bool);

auto Change(TwoNumbers operation)
{
    return Replace([operation](const Pipeline& pipeline, Arguments& arguments) {
        const int first = arguments.Integer();
        return operation(pipeline.model, first, arguments.Integer(), pipeline.guide, pipeline.autoAdjust);
    });
}

auto Change(OneNumber operation)
{
    return Replace([operation](const Pipeline& pipeline, Arguments& arguments) {
        return operation(pipeline.model, arguments.Integer(), pipeline.guide, pipeline.autoAdjust);
    });
}

// A step that writes the model by one of the functions for it.
auto Write(void (*save)(const Voxels&, const LevelFile&, bool, bool))
{
    return [save](Pipeline& pipeline, Arguments& arguments) {
        const LevelFile output = ParseLevelFile(arguments.Word(), pipeline.model.FinestLOD());
        save(pipeline.model, output, pipeline.ascii, pipeline.grid.swapYZ);
    };
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

void DrawModel(Pipeline& pipeline, Arguments& arguments)
{
    const Voxels& model = pipeline.model;
    const SlicePosition position = ParseSlicePosition(arguments.Word());
    const Slice slice = FindSlice(model, model.FinestLOD(), position, pipeline.grid);
    const std::string title = "Slice of " + pipeline.grid.input.filename().string();
    SaveSlices(arguments.Word(), model, {{position, slice}}, title, {.lod = model.FinestLOD()});
}

Voxels Combine(const Pipeline& pipeline, const std::string& file,
               Voxels (*operation)(const std::vector<const Voxels*>&, std::int64_t, bool))
{
    const Voxels other = ReadOther(pipeline, file);
    return operation({&pipeline.model, &other}, pipeline.model.FinestLOD(), pipeline.autoAdjust);
}

std::vector<Step> MakeSteps()
{
    return {
        {"union", "FILE", "add the voxels of another STL file",
         Replace([](const Pipeline& p, Arguments& a) { return Combine(p, a.Word(), Union); })},
        {"intersect", "FILE", "keep what another STL file fills, too",
         Replace([](const Pipeline& p, Arguments& a) { return Combine(p, a.Word(), Intersect); })},
        {"subtract", "FILE", "remove the voxels of another STL file", Replace([](const Pipeline& p, Arguments& a) {
             return Subtract(p.model, ReadOther(p, a.Word()), p.model.FinestLOD(), p.autoAdjust);
         })},
        {"invert", "", "swap filled and empty", Replace([](const Pipeline& p, Arguments&) { return Invert(p.model); })},
        {"fill-enclosed", "", "fill the cavities",
         Replace([](const Pipeline& p, Arguments&) { return FillEnclosedRegions(p.model); })},
        {"fill-exposed", "", "fill all that is open to the outside",
         Replace([](const Pipeline& p, Arguments&) { return FillExposedRegions(p.model); })},
        {"fill-from", "X Y Z", "fill the empty region around a point",
         Replace([](const Pipeline& p, Arguments& a) { return FillFromPoint(p.model, Point(p, a)); })},
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
        {"guide", "FILE", "let a file's voxels restrain the growth and shrinkage that follow",
         [](Pipeline& p, Arguments& a) { p.guide = ReadOther(p, a.Word()); }},
        {"no-guide", "", "end that", [](Pipeline& p, Arguments&) { p.guide.reset(); }},
        {"auto-adjust", "", "from here on, let extents follow the filled voxels",
         [](Pipeline& p, Arguments&) { p.autoAdjust = true; }},
        {"keep-largest", "", "keep the largest of the regions that do not touch",
         Replace([](const Pipeline& p, Arguments&) { return LargestRegion(p.model); })},
        {"auto-crop", "", "set the extents to the filled voxels",
         Replace([](const Pipeline& p, Arguments&) { return AutoCrop(p.model); })},
        {"refine", "LEVEL", "set the finest level of detail",
         Replace([](const Pipeline& p, Arguments& a) { return Refine(p.model, a.Integer()); })},
        {"walkable", "DIAMETER HEIGHT", "where an agent of that many voxels can stand",
         Replace([](const Pipeline& p, Arguments& a) {
             const int diameter = a.Integer();
             return PathModel(p.model, p.model.FinestLOD(), diameter, a.Integer(), p.autoAdjust).TraversableVoxels();
         })},
        {"visible-along", "X Y Z THRESHOLD", "what is seen looking in a direction of the grid",
         Replace([](const Pipeline& p, Arguments& a) {
             const Triple direction = a.Direction();
             return VisibilityFromDirection(p.model, direction, p.model.FinestLOD(), a.Number());
         })},
        {"visible-from", "X Y Z RADIUS THRESHOLD", "what is seen from a point, up to a distance",
         Replace([](const Pipeline& p, Arguments& a) {
             const Triple point = EyePoint(p.model, a.Point());
             const std::int64_t radius = p.model.AxesRef().FromWorldDistance(a.Number());
             return VisibilityFromPoint(p.model, point, p.model.FinestLOD(), radius, a.Number(), p.autoAdjust);
         })},
        {"visible-in-cone", "X Y Z DX DY DZ ANGLE RADIUS THRESHOLD", "what is seen in a cone along a direction of the grid",
         Replace([](const Pipeline& p, Arguments& a) {
             const Triple point = EyePoint(p.model, a.Point());
             const Triple direction = a.Direction();
             const double angle = a.Number();
             const std::int64_t radius = p.model.AxesRef().FromWorldDistance(a.Number());
             return VisibilityWithinCone(p.model, point, direction, angle, p.model.FinestLOD(), radius, a.Number(), p.autoAdjust);
         })},
        {"visible-in-pyramid", "X Y Z DX DY DZ WIDTH HEIGHT RADIUS THRESHOLD", "what a camera sees; angles in degrees",
         Replace([](const Pipeline& p, Arguments& a) {
             const Triple point = EyePoint(p.model, a.Point());
             const Triple direction = a.Direction();
             const double width = a.Number();
             const double height = a.Number();
             const std::int64_t radius = p.model.AxesRef().FromWorldDistance(a.Number());
             return VisibilityWithinPyramid(p.model, point, direction, width, height, p.model.FinestLOD(), radius, a.Number(),
                                            p.autoAdjust);
         })},
        {"write", "[LEVEL=]FILE", "write the voxels as STL", Write(SaveVoxels)},
        {"write-surface", "[LEVEL=]FILE", "write the surface of the voxels as STL, in as few rectangles as it takes",
         Write(SaveSurface)},
        {"slice", "AXIS=POSITION FILE", "draw a slice as PNG, SVG or PDF", DrawModel},
    };
}

const Step& FindStep(const std::vector<Step>& steps, const std::vector<std::string>& words, std::size_t position)
{
    const auto step = std::find_if(steps.begin(), steps.end(), [&](const Step& s) { return s.name == words[position]; });
    if (step == steps.end()) throw UsageError("There is no step \"" + words[position] + "\"; brix run --help lists them.");
    const auto left = static_cast<std::ptrdiff_t>(words.size() - position - 1);
    if (left < step->ArgumentCount()) throw UsageError("The step " + step->name + " needs " + step->arguments + ".");
    return *step;
}

// Calls visit(step, its first argument) for every step of the words.
template <class Visit> void ForEachStep(const std::vector<std::string>& words, const Visit& visit)
{
    const std::vector<Step> steps = MakeSteps();
    for (std::size_t position = 0; position < words.size();) {
        const Step& step = FindStep(steps, words, position);
        visit(step, words.data() + position + 1);
        position += static_cast<std::size_t>(step.ArgumentCount()) + 1;
    }
}

} // namespace

void RequireSteps(const std::vector<std::string>& words)
{
    ForEachStep(words, [](const Step&, const std::string*) {});
}

void RunSteps(Pipeline& pipeline, const std::vector<std::string>& words)
{
    ForEachStep(words, [&](const Step& step, const std::string* first) {
        const Stopwatch watch;
        Arguments arguments(step.name, first);
        step.run(pipeline, arguments);
        const std::int64_t lod = pipeline.model.FinestLOD();
        PrintStep(step.name, std::to_string(CountFilled(pipeline.model, lod)) + " voxels filled at level " + std::to_string(lod) +
                                 " " + watch.Text());
    });
}

std::string DescribeSteps()
{
    std::string text;
    for (const Step& step : MakeSteps()) {
        std::string line = "  " + step.name + " " + step.arguments;
        line.resize(std::max<std::size_t>(line.size() + 2, 38), ' ');
        text += line + step.meaning + "\n";
    }
    return text;
}

} // namespace brix::tools
