// Prints a line "name hash" for the result of every operation of the engine, on generated scenes and on the meshes of a folder.
// The lines are the same on every machine, with every compiler and instruction set.
//
//   brix_golden FOLDER_OF_MESHES [TABLE]
//
// With a table it prints the lines that differ from it instead, and which meshes were not there; the exit code tells whether any
// do. To make the table of tests/golden again: brix_golden ../shared/data > tests/golden/expected.txt
#include "ContentHash.h"

#include <scenes/Building.h>
#include <scenes/City.h>

#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <optional>
#include <sstream>
#include <string>

namespace brix::golden {
namespace {

namespace fs = std::filesystem;
using Model = VoxelModel<bool>;
using WorldTriangles = std::vector<WorldTriangle>;

struct Line
{
    std::string name;
    std::uint64_t hash;
};

/// Collects lines whose names share a beginning.
class Lines
{
public:
    template <class... Contents> void Add(const std::string& name, const Contents&... contents)
    {
        ContentHash hash;
        (hash.Add(contents), ...);
        lines_.push_back({prefix_ + name, hash.Value()});
    }
    void Begin(const std::string& prefix) { prefix_ = prefix; }
    const std::vector<Line>& All() const { return lines_; }

private:
    std::string prefix_;
    std::vector<Line> lines_;
};

/// The same numbers from the same seed everywhere (a linear congruential generator, Knuth's constants), from -1 to 1.
class Numbers
{
public:
    double Next()
    {
        state_ = state_ * 6364136223846793005U + 1442695040888963407U;
        return static_cast<double>(static_cast<std::int64_t>(state_)) * 0x1p-63;
    }

private:
    std::uint64_t state_ = 1;
};

void AddFrames(Lines& lines)
{
    lines.Begin("frame ");
    ContentHash turns, toWorld, fromWorld;
    Numbers numbers;
    for (int i = 0; i <= 14400; ++i) {
        const Axes axes(1.7, {0.1, -2.3, 17}, (i - 7200) / 40.0, 3);
        const Axes::Conversion turn = axes.WorldConversion();
        turns.Add(std::array{turn.sin, turn.cos});
        const auto coordinate = [&] { return static_cast<std::int64_t>(numbers.Next() * 1e9); };
        const Triple coords{coordinate(), coordinate(), coordinate()};
        const std::array<double, 3> worldCoords = axes.ToWorldCoordinates(coords);
        toWorld.Add(worldCoords);
        fromWorld.Add(axes.FromWorldCoordinates(worldCoords));
    }
    lines.Add("turns", turns.Value());
    lines.Add("to-world", toWorld.Value());
    lines.Add("from-world", fromWorld.Value());
}

/// What a chain of operations works on: voxels at the finest level are `width` wide and half as high as at the level before.
struct Subject
{
    Axes axes;
    WorldTriangles triangles;
    Model model;
    Model other; // the same triangles elsewhere, partly in the same place
    Triple eye;  // base units
    double width;

    std::int64_t LOD() const { return model.FinestLOD(); }
    const Extents& FinestExtents() const { return model.ExtentsRef(LOD()); }
};

Model Voxelized(const Axes& axes, const WorldTriangles& triangles, std::int64_t finestLOD)
{
    const Extents extents = DetectTriangleExtents(axes, triangles);
    TriangleModel filed(extents);
    filed.AddWorldTriangles(triangles);
    Model model(extents, finestLOD);
    VoxelizeTriangleModel(model, filed);
    return model;
}

WorldTriangles Shifted(WorldTriangles triangles, double by)
{
    for (WorldTriangle& triangle : triangles) {
        for (auto& [x, y, z] : triangle) x += by, y -= by / 3, z += by / 5;
    }
    return triangles;
}

// The width of voxels of which so many go along the longest side of triangles.
double WidthFor(const WorldTriangles& triangles, int voxels)
{
    std::array lower = triangles[0][0], upper = lower;
    for (const WorldTriangle& triangle : triangles) {
        for (const std::array<double, 3>& corner : triangle) {
            for (std::size_t i = 0; i < 3; ++i) {
                lower[i] = std::min(lower[i], corner[i]);
                upper[i] = std::max(upper[i], corner[i]);
            }
        }
    }
    return std::max({upper[0] - lower[0], upper[1] - lower[1], upper[2] - lower[2]}) / voxels;
}

Subject MakeSubject(const WorldTriangles& triangles, int voxels, double rotation)
{
    constexpr std::int64_t finestLOD = 4;
    const double width = WidthFor(triangles, voxels);
    const Axes axes(width * 16, {0.03, -0.02, 0.01}, rotation, 4);
    Subject subject{
        axes, triangles, Voxelized(axes, triangles, finestLOD), Voxelized(axes, Shifted(triangles, 9 * width), finestLOD),
        {},   width};
    const Extents& extents = subject.FinestExtents();
    const Triple lower = axes.VoxelCorner(extents.LowerIndices(), finestLOD);
    const Triple upper = axes.VoxelCorner(extents.UpperIndices(), finestLOD);
    for (std::size_t i = 0; i < 3; ++i) subject.eye[i] = lower[i] + (upper[i] - lower[i]) * 5 / 8 + 17;
    return subject;
}

void AddTriangles(Lines& lines, const Subject& subject)
{
    lines.Add("triangles", subject.triangles);
    ContentHash normals;
    for (const WorldTriangle& triangle : subject.triangles) normals.Add(WorldTriangleNormal(triangle));
    lines.Add("normals", normals.Value());
    lines.Add("voxelize", subject.model);
    lines.Add("voxelize-other", subject.other);

    WorldTriangles boxes;
    TessellateVoxelModel(boxes, subject.model, 3);
    lines.Add("tessellate", boxes);
    const TriangleMesh mesh(boxes);
    lines.Add("mesh", mesh.VerticesRef(), mesh.IndexedTrianglesRef());

    const std::vector<VoxelCuboid> cuboids = CuboidizeVoxelModel(subject.model, 4);
    const std::vector<VoxelRectangle> rectangles = SolidizeVoxelModel(subject.model, 4);
    ContentHash inWorld;
    for (const VoxelCuboid& cuboid : cuboids) inWorld.Add(ToWorldCuboid(cuboid, subject.axes, 4));
    for (const VoxelRectangle& rectangle : rectangles) inWorld.Add(ToWorldRectangle(rectangle, subject.axes, 4));
    lines.Add("cuboids", cuboids);
    lines.Add("rectangles", rectangles);
    lines.Add("cuboids-and-rectangles-in-world", inWorld.Value());
}

// Saved and loaded again: numbers as text and as floats, and the bytes themselves.
void AddFiles(Lines& lines, const Subject& subject)
{
    const fs::path path = fs::temp_directory_path() / "brix-golden.stl";
    const WorldTriangles some(subject.triangles.begin(), subject.triangles.begin() + 500);
    for (const StlVariant variant : {StlVariant::Ascii, StlVariant::Binary}) {
        SaveTrianglesToSTL(path, some, variant, true);
        const bool isText = variant == StlVariant::Ascii; // whose lines end as the system's do
        std::ifstream file(path, isText ? std::ios::in : std::ios::in | std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        ContentHash hash;
        for (const char byte : bytes) hash.Add(std::uint64_t{static_cast<unsigned char>(byte)});
        lines.Add(isText ? "stl-ascii" : "stl-binary", hash.Value(), LoadTrianglesFromSTL(path, false));
    }
    fs::remove(path);
}

void AddQueries(Lines& lines, const Subject& subject)
{
    const Model& model = subject.model;
    ContentHash counts;
    for (std::int64_t lod = 0; lod <= subject.LOD(); ++lod) {
        counts.Add(CountFilled(model, lod));
        counts.Add(IsEmpty(model, lod));
        counts.Add(IsFull(model, lod));
    }
    lines.Add("counts", counts.Value());
    const Triple middle = subject.axes.ContainingVoxel(subject.eye, subject.LOD());
    lines.Add("slices", RowsAtSliceXIndex(model, middle[0], 4, false, true), RowsAtSliceYIndex(model, middle[1], 4, true, false),
              RowsAtSliceZIndex(model, middle[2], 4, true, true));
    ContentHash nearest;
    for (std::int64_t i = -9; i <= 9; ++i) {
        const Triple point = Plus(subject.eye, {i * 6001, i * 7001, i * 3001});
        nearest.Add(NearestFilledAlongX(model, point, 40, 50));
        nearest.Add(NearestFilledAlongY(model, point, 50, 40));
        nearest.Add(NearestFilledAlongZ(model, point, 40, 40));
        nearest.Add(NearestFilledHorizontally(model, point, 41));
    }
    lines.Add("nearest", nearest.Value());
}

void AddBounds(Lines& lines, const Subject& subject)
{
    const Model& model = subject.model;
    const Axes& axes = subject.axes;
    lines.Add("crop", Crop(model, 5, 3, 7, 2, 1, 4));
    lines.Add("enlarge", Enlarge(model, 1, 17, 3, 2, 5, 1));
    lines.Add("auto-crop", AutoCrop(Enlarge(model, 20, 0, 0, 33, 4, 5)));
    lines.Add("resize", Resize(model, subject.other.ExtentsRef(2)));
    lines.Add("relocate", Relocate(model, Axes(subject.width * 16, {5, 6, 7}, axes.WorldVoxelRotation() + 12.5, 4)));
    lines.Add("refine", Refine(Crop(model, 30, 3, 20, 2, 1, 4), 5));
}

void AddCombinations(Lines& lines, const Subject& subject)
{
    const std::vector<const Model*> both{&subject.model, &subject.other};
    lines.Add("union", Union(both, 4, false));
    lines.Add("intersect", Intersect(both, 4, true));
    lines.Add("subtract", Subtract(subject.model, subject.other, 3, true));
    lines.Add("invert", Invert(subject.model));
    lines.Add("density-map", DensityMap(both, {0.7, 0.4}, {0.3, 0.5, 1.1}, 4));
    lines.Add("auto-split", AutoSplit(subject.model));
    lines.Add("fill-from-point", FillFromPoint(subject.model, subject.eye));
    lines.Add("fill-exposed", FillExposedRegions(subject.model));
    lines.Add("fill-enclosed", FillEnclosedRegions(subject.model));
}

void AddGrowth(Lines& lines, const Subject& subject, const std::optional<Model>& guide, const std::string& suffix)
{
    const Model& model = subject.model;
    const bool isAuto = guide.has_value();
    lines.Add("expand-along-x" + suffix, ExpandAlongX(model, 2, 5, guide, isAuto));
    lines.Add("expand-along-y" + suffix, ExpandAlongY(model, 17, 1, guide, isAuto));
    lines.Add("expand-along-z" + suffix, ExpandAlongZ(model, 3, 0, guide, isAuto));
    lines.Add("expand-by-one" + suffix, ExpandByOneVoxel(model, 2, 1, guide, isAuto));
    lines.Add("expand-horizontally" + suffix, ExpandHorizontally(model, 5, guide, isAuto));
    const Model grown = ExpandHorizontally(model, 4, {}, true);
    lines.Add("reduce-along-x" + suffix, ReduceAlongX(grown, 1, 2, guide, isAuto));
    lines.Add("reduce-along-y" + suffix, ReduceAlongY(grown, 2, 1, guide, isAuto));
    lines.Add("reduce-along-z" + suffix, ReduceAlongZ(grown, 1, 0, guide, isAuto));
    lines.Add("reduce-by-one" + suffix, ReduceByOneVoxel(grown, 3, 1, guide, isAuto));
    lines.Add("reduce-horizontally" + suffix, ReduceHorizontally(grown, 3, guide, isAuto));
}

void AddSights(Lines& lines, const Subject& subject)
{
    const Model& model = subject.model;
    const std::int64_t far = subject.axes.FromWorldDistance(60 * subject.width);
    const Triple ahead{-5000, 3001, -707};
    lines.Add("visibility-along-axis", VisibilityFromDirection(model, {0, -4, 0}, 4, 0.5));
    lines.Add("visibility-oblique", VisibilityFromDirection(model, ahead, 4, 0.5),
              VisibilityFromDirection(model, ahead, 3, 0.99));
    lines.Add("visibility-from-point", VisibilityFromPoint(model, subject.eye, 4, far, 0.6, false),
              VisibilityFromPoint(model, subject.eye, 3, far, 0.3, true));
    ContentHash cones, pyramids;
    for (const double angle : {7.0, 60.0, 97.3, 250.0}) {
        cones.Add(VisibilityWithinCone(model, subject.eye, ahead, angle, 4, far, 0.4, false));
        pyramids.Add(VisibilityWithinPyramid(model, subject.eye, ahead, angle * 0.7, angle / 2, 4, far, 0.4, false));
    }
    lines.Add("visibility-within-cone", cones.Value());
    lines.Add("visibility-within-pyramid", pyramids.Value());
}

// Walks on all that is level enough, from where the agent stands first.
void AddTravel(Lines& lines, const Subject& subject)
{
    const PathModel paths(subject.model, 4, 2, 6, true);
    lines.Add("path-model", paths.TraversableVoxels());
    lines.Add("sample-points", paths.GenerateSamplePoints(6 * VoxelSpacing(4), 2));
    const std::vector<VoxelCuboid> ground = CuboidizeVoxelModel(paths.TraversableVoxels(), 4);
    if (ground.empty()) return;
    const DistanceField field(paths, {subject.axes.VoxelCenter(ground[ground.size() / 2].lower, 4)}, 4000000);
    ContentHash distances, ways;
    std::int64_t number = 0;
    field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        distances.Add(voxel);
        distances.Add(distance);
        if (++number % 499 != 0) return;
        const Path path(field, subject.axes.VoxelCenter(voxel, 4));
        ways.Add(path.Length());
        ways.Add(path.Points());
        ways.Add(path.Voxels());
    });
    lines.Add("distances", field.FarthestVoxel(), distances.Value());
    lines.Add("reachable", field.ReachableVoxels(field.FarthestDistance() / 2));
    lines.Add("paths", ways.Value());
}

void AddScene(Lines& lines, const std::string& name, const WorldTriangles& triangles)
{
    for (const double rotation : {0.0, 33.7}) {
        lines.Begin(name + (rotation == 0 ? " " : "-turned "));
        const Subject subject = MakeSubject(triangles, 90, rotation);
        AddTriangles(lines, subject);
        AddFiles(lines, subject);
        AddQueries(lines, subject);
        AddBounds(lines, subject);
        AddCombinations(lines, subject);
        AddGrowth(lines, subject, {}, "");
        AddGrowth(lines, subject, ExpandHorizontally(subject.other, 2, {}, true), "-guided");
        AddSights(lines, subject);
        AddTravel(lines, subject);
    }
}

constexpr std::array Meshes{"dungeon", "rocker-arm", "stanford-bunny"};

/// The table of expected lines, "name hash".
std::map<std::string, std::string> ReadTable(const fs::path& path)
{
    std::map<std::string, std::string> table;
    std::ifstream file(path);
    for (std::string scene, operation, hash; file >> scene >> operation >> hash;) table[scene + ' ' + operation] = hash;
    return table;
}

std::string Hexadecimal(std::uint64_t hash)
{
    std::ostringstream text;
    text << std::hex << std::setw(16) << std::setfill('0') << hash;
    return text.str();
}

// Prints what differs from a table. A line that the table lacks differs, as does one that is missing, unless its mesh is.
int Compare(const Lines& lines, std::map<std::string, std::string> table, const std::vector<std::string>& missing)
{
    int findings = 0;
    for (const auto& [name, hash] : lines.All()) {
        const std::string expected = table[name];
        table.erase(name);
        if (expected == Hexadecimal(hash)) continue;
        ++findings;
        std::cout << name << ": " << Hexadecimal(hash) << " instead of " << (expected.empty() ? "nothing" : expected) << '\n';
    }
    for (const auto& [name, hash] : table) {
        const std::string scene = name.substr(0, name.find(' '));
        const std::string mesh = scene.substr(0, scene.find("-turned"));
        if (std::find(missing.begin(), missing.end(), mesh) != missing.end()) continue;
        ++findings;
        std::cout << name << ": nothing instead of " << hash << '\n';
    }
    for (const std::string& mesh : missing) std::cout << "SKIPPED, there is no mesh " << mesh << '\n';
    std::cout << lines.All().size() << " results, " << findings << " differ from the table\n";
    return findings == 0 && !lines.All().empty() ? 0 : 1;
}

int Run(const fs::path& data, const std::string& table)
{
    Lines lines;
    AddFrames(lines);
    AddScene(lines, "building", scenes::MakeBuilding());
    AddScene(lines, "city", scenes::MakeCity({1, 6000}));
    std::vector<std::string> missing;
    for (const std::string mesh : Meshes) {
        const fs::path path = data / (mesh + ".stl");
        if (fs::exists(path))
            AddScene(lines, mesh, LoadTrianglesFromSTL(path, false));
        else
            missing.push_back(mesh);
    }
    if (!table.empty()) return Compare(lines, ReadTable(table), missing);
    for (const auto& [name, hash] : lines.All()) std::cout << name << ' ' << Hexadecimal(hash) << '\n';
    return 0;
}

} // namespace
} // namespace brix::golden

int main(int argc, char** argv)
try {
    if (argc == 2 || argc == 3) return brix::golden::Run(argv[1], argc == 3 ? argv[2] : "");
    std::cerr << "brix_golden FOLDER_OF_MESHES [TABLE]\n";
    return 2;
} catch (const std::exception& error) {
    std::cerr << error.what() << '\n';
    return 2;
}
