// Triangles of other formats than STL: files as other programs write them, made by hand here.
#ifdef BRIX_PROGRAM
#include "ProgramFixture.h"

namespace brix {
namespace {

constexpr const char* BoxInObj = "mtllib none.mtl\no box\n"
                                 "v 0 0 0\nv 2 0 0\nv 2 3 0\nv 0 3 0\nv 0 0 5\nv 2 0 5\nv 2 3 5\nv 0 3 5\n"
                                 "usemtl red\nf 4 3 2 1\nf 5 6 7 8\nf 1 2 6 5\nf 2 3 7 6\nf 3 4 8 7\nf 4 1 5 8\n";

std::string BoxInPly()
{
    return "ply\nformat ascii 1.0\nelement vertex 8\nproperty float x\nproperty float y\nproperty float z\n"
           "element face 6\nproperty list uchar int vertex_indices\nend_header\n"
           "0 0 0\n2 0 0\n2 3 0\n0 3 0\n0 0 5\n2 0 5\n2 3 5\n0 3 5\n"
           "4 3 2 1 0\n4 4 5 6 7\n4 0 1 5 4\n4 1 2 6 5\n4 2 3 7 6\n4 3 0 4 7\n";
}

// A tetrahedron of 1 m, twice: enlarged and moved by a node and its parent, and mirrored.
constexpr const char* Tetrahedra = R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 2]}],
"nodes": [{"translation": [10, 0, 0], "children": [1]}, {"scale": [2, 3, 4], "mesh": 0}, {"scale": [-1, 1, 1], "mesh": 0}],
"meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "indices": 1}]}],
"accessors": [{"bufferView": 0, "componentType": 5126, "count": 4, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 1]},
{"bufferView": 1, "componentType": 5121, "count": 12, "type": "SCALAR"}],
"bufferViews": [{"buffer": 0, "byteLength": 48}, {"buffer": 0, "byteOffset": 48, "byteLength": 12}],
"buffers": [{"byteLength": 60 URI}]})";

std::string TetrahedronBytes()
{
    const std::array<float, 12> places{0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1};
    std::string bytes(reinterpret_cast<const char*>(places.data()), sizeof places);
    for (const int vertex : {0, 2, 1, 0, 1, 3, 0, 3, 2, 1, 2, 3}) bytes += static_cast<char>(vertex);
    return bytes;
}

std::string GltfWith(const std::string& uri) { return std::regex_replace(Tetrahedra, std::regex(" URI"), uri); }

std::string Word(std::size_t number)
{
    const auto word = static_cast<std::uint32_t>(number);
    return {reinterpret_cast<const char*>(&word), sizeof word};
}

std::string GlbOfTetrahedra()
{
    std::string json = GltfWith("");
    json.resize((json.size() + 3) / 4 * 4, ' ');
    const std::string chunks =
        Word(json.size()) + "JSON" + json + Word(TetrahedronBytes().size()) + std::string("BIN\0", 4) + TetrahedronBytes();
    return "glTF" + Word(2) + Word(12 + chunks.size()) + chunks;
}

// Two instances of a tetrahedron of 10 units, by Python's own archives.
constexpr const char* Write3mf = R"(import zipfile
with zipfile.ZipFile('parts.3mf', 'w') as z:
    formats = 'http://schemas.openxmlformats.org/package/2006/'
    microsoft = 'http://schemas.microsoft.com/3dmanufacturing/'
    z.writestr('[Content_Types].xml', '<?xml version="1.0"?><Types xmlns="' + formats + 'content-types">'
        '<Default Extension="rels" ContentType="application/vnd.openxmlformats-package.relationships+xml"/>'
        '<Default Extension="model" ContentType="application/vnd.ms-package.3dmanufacturing-3dmodel+xml"/></Types>')
    z.writestr('_rels/.rels', '<?xml version="1.0"?><Relationships xmlns="' + formats + 'relationships"><Relationship Id="r" '
        'Type="' + microsoft + '2013/01/3dmodel" Target="/3D/3dmodel.model"/></Relationships>')
    z.writestr('3D/3dmodel.model', '<?xml version="1.0"?>'
        '<model unit="millimeter" xmlns="' + microsoft + 'core/2015/02"><resources><object id="1" type="model">'
        '<mesh><vertices><vertex x="0" y="0" z="0"/><vertex x="10" y="0" z="0"/><vertex x="0" y="10" z="0"/>'
        '<vertex x="0" y="0" z="10"/>'
        '</vertices><triangles><triangle v1="0" v2="2" v3="1"/><triangle v1="0" v2="1" v3="3"/><triangle v1="0" v2="3" v3="2"/>'
        '<triangle v1="1" v2="2" v3="3"/></triangles></mesh></object></resources><build>'
        '<item objectid="1"/><item objectid="1" transform="1 0 0 0 1 0 0 0 1 30 0 7"/></build></model>')
)";

class Scenes : public Program
{
protected:
    void SetUp() override
    {
        Write("box.obj", BoxInObj);
        if (Run("info box.obj").error.find("made without the library assimp") != std::string::npos)
            GTEST_SKIP() << "this brix reads STL only";
    }
};

void ExpectLines(const Outcome& outcome, const std::vector<std::string>& lines)
{
    for (const std::string& line : lines)
        EXPECT_NE(outcome.output.find(line + '\n'), std::string::npos) << line << '\n' << outcome.output << outcome.error;
}

TEST_F(Scenes, AreReadWithTheirPolygonsNodesAndAxes)
{
    Write("box.PLY", BoxInPly());
    for (const std::string file : {"box.obj", "box.PLY"}) {
        ExpectLines(Run("check " + file),
                    {"triangles 12 read", "lower     0 0 0", "upper     2 3 5", "volume    30", "result    sound"});
        ExpectLines(Run("info --swap-yz " + file), {"lower     0 -5 0", "upper     2 0 3"});
    }
    Write("two.gltf", GltfWith(", \"uri\": \"two.bin\""));
    Write("two.bin", TetrahedronBytes());
    Write("two.glb", GlbOfTetrahedra());
    for (const std::string name : {"glTF", "glTF (GLB)"})
        for (const std::string swap : {"", " --swap-yz"}) // it is upright already
            ExpectLines(Run("check " + std::string(name == "glTF" ? "two.gltf" : "two.glb") + swap),
                        {"format    " + name + ": lengths in metres, turned upright: (X, Y, Z) became (X, -Z, Y)",
                         "triangles 8 read", "lower     -1 -4 0", "upper     12 0 3", "shells    2", "volume    4.166667",
                         "result    sound"});
    Write("write.py", Write3mf);
    if (std::system(("cd '" + folder_.string() + "' && python3 write.py").c_str()) != 0) GTEST_SKIP() << "no Python";
    ExpectLines(Run("check parts.3mf"),
                {"triangles 8 read", "lower     0 0 0", "upper     40 10 17", "shells    2", "result    sound"});
}

TEST_F(Scenes, AreReadByEveryCommandAndBesideStl)
{
    ASSERT_EQ(Run("convert box.obj box.npy --voxel 0.3 --origin 0.1 0.1 0.1").exitCode, 0);
    ASSERT_EQ(Run("convert box.obj box.json --voxel 0.3 --origin 0.1 0.1 0.1").exitCode, 0);
    std::vector<WorldTriangle> triangles;
    std::istringstream obj(BoxInObj);
    std::vector<std::array<double, 3>> places;
    for (std::string word; obj >> word;) {
        std::array<int, 4> corners;
        if (word == "v") obj >> places.emplace_back()[0] >> places.back()[1] >> places.back()[2];
        if (word != "f") continue;
        for (int& corner : corners) obj >> corner;
        const auto at = [&](std::size_t i) { return places[static_cast<std::size_t>(corners[i]) - 1]; };
        triangles.push_back({at(0), at(1), at(2)});
        triangles.push_back({at(0), at(2), at(3)});
    }
    SaveTrianglesToBinarySTL(folder_ / "same.stl", triangles, false);
    ASSERT_EQ(Run("convert same.stl same.npy --voxel 0.3 --origin 0.1 0.1 0.1").exitCode, 0);
    EXPECT_EQ(ContentOf(folder_ / "box.npy"), ContentOf(folder_ / "same.npy"));
    const Outcome run = Run("run same.stl --voxel 0.3 --origin 0.1 0.1 0.1 -- subtract box.obj write none.npy");
    EXPECT_NE(run.output.find("box.obj: 12 triangles"), std::string::npos) << run.output << run.error;
    EXPECT_EQ(ContentOf(folder_ / "none.npy").find('\1', 10), std::string::npos) << "all of it is gone";
}

TEST_F(Scenes, AreRefusedInOneSentenceWhereThereIsNothingToRead)
{
    Write("empty.obj", "");
    Write("points.obj", "v 1 2 3\nv 4 5 6\nv 0 0 1\n");
    Write("lines.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nend_header\n1\n");
    Write("half.glb", GlbOfTetrahedra().substr(0, 300));
    Write("text.3mf", "solid\n");
    Write("lost.gltf", GltfWith(", \"uri\": \"lost.bin\""));
    Write("far.obj", "v 1e999 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    for (const auto& [file, sentence] : std::vector<std::pair<std::string, std::string>>{
             {"empty.obj", "The file \"empty.obj\" cannot be read as OBJ: it is empty."},
             {"none.obj", "Failed to open OBJ file \"none.obj\": No such file or directory."},
             {"points.obj", "The file \"points.obj\" holds no triangles."},
             {"lines.ply", "The file \"lines.ply\" holds no triangles."},
             {"half.glb", "\"half.glb\" cannot be read as glTF (GLB): "},
             {"text.3mf", "\"text.3mf\" cannot be read as 3MF: "},
             {"lost.gltf", "\"lost.gltf\" cannot be read as glTF: "},
             {"far.obj", "The file \"far.obj\" holds no triangles."}}) {
        const Outcome outcome = Run("voxelize " + file + " --voxel 1 -o v.stl");
        EXPECT_EQ(outcome.exitCode, 1) << file;
        EXPECT_NE(outcome.error.find(sentence), std::string::npos) << file << ' ' << outcome.error;
        EXPECT_EQ(Run("check " + file).exitCode == 0, false) << file;
    }
}

// As a release is: the parts of the program lie beside it.
TEST_F(Program, TellsWhichLibraryItWasMadeWithout)
{
    Write("box.obj", BoxInObj);
    fs::copy_file(BRIX_PROGRAM, folder_ / "alone");
    Run("--version", "! ./alone info box.obj &&");
    EXPECT_EQ(ContentOf(folder_ / "stderr.txt"),
              "brix: The file \"box.obj\" cannot be read: this brix was made without the library assimp, which reads OBJ "
              "(Debian: libassimp-dev, before brix is built); it reads STL.\n");
}

} // namespace
} // namespace brix
#endif
