#include "triangles/StlFiles.h"

#include "support/StlSamples.h"
#include "triangles/StlFormats.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <fstream>
#include <functional>
#include <limits>
#include <locale>
#include <random>
#include <sstream>
#include <string>
#include <thread>

#if __has_include(<sys/stat.h>) && !defined(_WIN32)
#include <csignal>
#include <sys/resource.h>
#include <sys/stat.h>
#define BRIX_TESTS_HAVE_DEVICES 1
#endif

namespace brix {
namespace {

using tests::BinaryFile;
using tests::Damaged;
using tests::OneWayDevice;
using tests::Random;
using tests::TemporaryFolder;
using Triangles = std::vector<WorldTriangle>;
using Path = std::filesystem::path;
using namespace std::literals;

constexpr float infinity = std::numeric_limits<float>::infinity();

std::string Content(const Path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Coordinates bit by bit, for comparisons that tell 0 from -0 and know one NaN from another.
std::vector<std::uint64_t> Bits(const Triangles& triangles)
{
    std::vector<std::uint64_t> bits;
    for (const WorldTriangle& triangle : triangles)
        for (const auto& corner : triangle)
            for (const double coordinate : corner) bits.push_back(std::bit_cast<std::uint64_t>(coordinate));
    return bits;
}

/// What loading gives: triangles, or a message (and no triangles).
struct Outcome
{
    std::vector<std::uint64_t> bits;
    std::string message;
    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Outcome& outcome)
{
    return stream << outcome.bits.size() / 9 << " triangles, \"" << outcome.message << '"';
}

Outcome OutcomeOf(const std::function<Triangles()>& load)
{
    try {
        return {Bits(load()), ""};
    } catch (const std::runtime_error& error) {
        return {{}, error.what()};
    }
}

Outcome Loaded(const Path& path, bool swapYZ = false)
{
    return OutcomeOf([&] { return LoadTrianglesFromSTL(path, swapYZ); });
}

std::string MessageOf(const std::function<void()>& act)
{
    return OutcomeOf([&] { return act(), Triangles{}; }).message;
}

/// The definition of the ASCII reader, in streams.
Triangles ReadByDefinition(const std::string& content, const std::string& path, bool swapYZ)
{
    std::istringstream file(content);
    std::string line;
    std::istringstream words;
    words.imbue(std::locale::classic());
    const auto firstWordOfNextLine = [&] {
        std::getline(file, line);
        words.clear();
        words.str(line);
        std::string word;
        words >> word;
        return word;
    };

    Triangles triangles;
    while (file.good()) {
        const std::string word = firstWordOfNextLine();
        if (word != "outer" && word != "OUTER") continue;
        triangles.emplace_back();
        for (auto& corner : triangles.back()) {
            const std::string vertex = firstWordOfNextLine();
            if (!file.good()) throw std::runtime_error("Incomplete triangle encountered in STL file \"" + path + "\".");
            if (vertex != "vertex" && vertex != "VERTEX")
                throw std::runtime_error("Unexpected token encountered in STL file \"" + path +
                                         "\". A vertex entry was expected.");
            double x = 0;
            double y = 0;
            double z = 0;
            words >> x >> y >> z;
            corner = swapYZ ? std::array<double, 3>{x, -z, y} : std::array<double, 3>{x, y, z};
        }
    }
    return triangles;
}

const std::string twoFacets =
    "solid two\n"
    "  facet normal 0 0 1\n    outer loop\n      vertex 0 0 0\n      vertex 1 0 0\n      vertex 0 1.5e0 -2\n"
    "    endloop\n  endfacet\r\n"
    "FACET NORMAL 0 0 1\nOUTER LOOP\nVERTEX .5 -0 7\r\nvertex 1e-3 2\nVERTEX 3 x 4\nENDLOOP\nENDFACET\n"
    "endsolid two\n";

const std::array<float, 12> recordA{9, 9, 9, 1, 2, 3, 4, 5, 6, 7, 8.5F, -0.0F};
const std::array<float, 12> recordB{8, 8, 8, -1, 0.1F, 3e38F, 1e-45F, infinity, -infinity, 0, 1, 2};
const WorldTriangle triangleA{{{1, 2, 3}, {4, 5, 6}, {7, 8.5, -0.0}}};
const WorldTriangle triangleB = [] {
    WorldTriangle triangle{};
    for (std::size_t i = 0; i < 9; ++i) triangle[i / 3][i % 3] = static_cast<double>(recordB[i + 3]);
    return triangle;
}();

TEST(SaveTrianglesToAsciiSTL, WritesTheTextByteForByte)
{
    const TemporaryFolder folder;
    const Path path = folder.path / "a.stl";
    const Triangles triangles{{{{0, 0, 0}, {1234567, 0, 0}, {0, 0.1, 0}}}, {{{1, 2, 3}, {1, 2, 3}, {1, 2, 3}}}};

    // Facets are given as their normal and three vertices.
    const auto text = [](std::initializer_list<std::array<const char*, 4>> facets) {
        std::ostringstream lines;
        for (const auto& [normal, a, b, c] : facets) {
            lines << "    facet normal " << normal << "\n        outer loop\n";
            for (const char* vertex : {a, b, c}) lines << "            vertex " << vertex << "\n";
            lines << "        endloop\n    endfacet\n";
        }
        return "solid Exported-by-BRIX\n" + lines.str() + "endsolid Exported-by-BRIX\n";
    };
    SaveTrianglesToAsciiSTL(path, triangles, false);
    EXPECT_EQ(Content(path), text({{"0 0 1", "0 0 0", "1.23457e+06 0 0", "0 0.1 0"}, {"0 0 0", "1 2 3", "1 2 3", "1 2 3"}}));
    SaveTrianglesToAsciiSTL(path, triangles, true);
    EXPECT_EQ(Content(path),
              text({{"0 1 -0", "0 0 -0", "1.23457e+06 0 -0", "0 0 -0.1"}, {"0 0 -0", "1 3 -2", "1 3 -2", "1 3 -2"}}));

    SaveTrianglesToAsciiSTL(path, {}, false);
    EXPECT_EQ(Content(path), "solid Exported-by-BRIX\nendsolid Exported-by-BRIX\n");
}

TEST(SaveTrianglesToBinarySTL, WritesTheRecordsByteForByte)
{
    const TemporaryFolder folder;
    const Path path = folder.path / "b.stl";
    const auto expected = [](const std::array<float, 12>& first, const std::array<float, 12>& second) {
        return BinaryFile(2, {first, second}, "", '\0', "\0\0"s);
    };
    const Triangles triangles{{{{0, 0, 0}, {2, 0, 0}, {0, 2, 0}}}, {{{0.1, 1e300, -1e300}, {0, 0, 0}, {0, 0, 0}}}};

    SaveTrianglesToBinarySTL(path, triangles, false);
    EXPECT_EQ(Content(path), expected({0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 2, 0}, {0, 0, 0, 0.1F, infinity, -infinity}));
    SaveTrianglesToBinarySTL(path, triangles, true);
    EXPECT_EQ(Content(path), expected({0, 1, -0.0F, 0, 0, -0.0F, 2, 0, -0.0F, 0, 0, -2},
                                      {0, 0, -0.0F, 0.1F, -infinity, -infinity, 0, 0, -0.0F, 0, 0, -0.0F}));
    SaveTrianglesToBinarySTL(path, {}, false);
    EXPECT_EQ(Content(path), std::string(84, '\0'));
}

TEST(StlFiles, ComeBackAsTheyWereSaved)
{
    const TemporaryFolder folder;
    const Path path = folder.path / "file.stl";
    Random random(3);
    for (const std::size_t count : {0u, 1u, 7u, 999u, 1000u, 1001u, 30000u}) {
        Triangles wholeNumbers(count);
        Triangles anyFloats(count);
        for (std::size_t i = 0; i < count * 9; ++i) {
            wholeNumbers[i / 9][i % 9 / 3][i % 3] = static_cast<double>(random.Between(-999'999, 999'999));
            const auto bits = static_cast<std::uint32_t>(random.Bits()) | 0x400000; // no NaN that would be quietened
            anyFloats[i / 9][i % 9 / 3][i % 3] = static_cast<double>(std::bit_cast<float>(bits));
        }
        for (const bool swapYZ : {false, true}) {
            SaveTrianglesToAsciiSTL(path, wholeNumbers, swapYZ);
            EXPECT_EQ(Loaded(path, swapYZ), (Outcome{Bits(wholeNumbers), ""}));
            SaveTrianglesToBinarySTL(path, anyFloats, swapYZ);
            EXPECT_EQ(Loaded(path, swapYZ), (Outcome{Bits(anyFloats), ""}));
            EXPECT_EQ(std::filesystem::file_size(path), 84 + 50 * count);
        }
    }
}

TEST(LoadTrianglesFromSTL, TellsTheVariantsApartByTheFirstFiveBytes)
{
    const TemporaryFolder folder;
    const std::string facet = "\nouter\nvertex 1 2 3\nvertex 4 5 6\nVERTEX 7 8.5 -0\n";
    for (const std::string start : {"solid", "SOLID", "solidity"})
        EXPECT_EQ(Loaded(folder.With(start + facet)), (Outcome{Bits({triangleA}), ""})) << start;
    for (const std::string& start : {"Solid"s, " solid"s, "soli\0d"s}) // fewer than 80 bytes of a binary file
        EXPECT_EQ(Loaded(folder.With(start + facet)).message,
                  "Failed to read header of binary STL file \"" + (folder.path / "file.stl").string() + "\".");

    const std::string solidHeader = "solid" + BinaryFile(1, {recordA}).substr(5); // a binary file that poses as ASCII
    EXPECT_EQ(Loaded(folder.With(solidHeader)), (Outcome{}));
}

TEST(LoadTrianglesFromSTL, IgnoresBytesAfterTheLastRecord)
{
    const TemporaryFolder folder;
    EXPECT_EQ(Loaded(folder.With(BinaryFile(2, {recordA, recordB, recordA}))), (Outcome{Bits({triangleA, triangleB}), ""}));
    EXPECT_EQ(Loaded(folder.With(BinaryFile(1, {recordA}, "x"))), (Outcome{Bits({triangleA}), ""}));
}

TEST(LoadTrianglesFromSTL, SaysWhatIsWrong)
{
    const TemporaryFolder folder;
    const std::string quoted = '"' + (folder.path / "file.stl").string() + '"';
    const std::string noTriangle = "Failed to read triangle in STL file " + quoted + ".";
    const std::string noVertex = "Unexpected token encountered in STL file " + quoted + ". A vertex entry was expected.";
    const std::string incomplete = "Incomplete triangle encountered in STL file " + quoted + ".";
    const std::string v = "vertex 1 2 3\n";
    const std::pair<std::string, std::string> cases[] = {
        {BinaryFile(3, {recordA, recordB}), noTriangle},
        {BinaryFile(2, {recordA}, std::string(49, 'x')), noTriangle},
        {BinaryFile(0xffffffff, {recordA, recordB}), noTriangle},
        {"solid\nouter loop\n" + v + v + "endloop\n", noVertex},
        {"solid\nouter\nVertex 1 2 3\n" + v + v, noVertex},
        {"solid\nouter\n\n" + v + v + v, noVertex},
        {"solid\nouter\nvertex1 2 3\n" + v + v, noVertex},
        {"solid\nouter\n" + v + "vertex\0 1 2 3\n"s + v, noVertex},
        {"solid\nouter", incomplete},
        {"solid\nouter\n" + v + v, incomplete},
        {"solid\nouter\n" + v + v + "vertex 1 2 3", incomplete}, // no line break
        {"solid\nouter\n" + v + v + "endloop", incomplete},      // which comes before the wrong word
    };
    for (const auto& [content, message] : cases) EXPECT_EQ(Loaded(folder.With(content)).message, message) << content;
    EXPECT_EQ(Loaded(folder.With("solid\nOuter\n" + v + " outerloop\nouter\0\n"s + v)), (Outcome{}));
}

TEST(LoadTrianglesFromSTL, FailsOnEveryTruncationOfABinaryFile)
{
    const TemporaryFolder folder;
    const std::string whole = BinaryFile(3, {recordA, recordB, recordA});
    const std::string quoted = '"' + (folder.path / "file.stl").string() + '"';
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const std::string what = length < 5    ? "first 5 bytes of STL file " + quoted + " to check whether it is an ASCII file."
                                 : length < 80 ? "header of binary STL file " + quoted + "."
                                 : length < 84 ? "triangle count of binary STL file " + quoted + "."
                                               : "triangle in STL file " + quoted + ".";
        ASSERT_EQ(Loaded(folder.With(whole.substr(0, length))).message, "Failed to read " + what) << length;
    }
}

TEST(LoadTrianglesFromSTL, TakesDamagedAsciiFilesByDefinition)
{
    const TemporaryFolder folder;
    Random random(4);
    std::size_t loaded = 0;
    for (int i = 0; i < 10'000; ++i) {
        const std::string content = Damaged(twoFacets, random);
        const bool swapYZ = random.OneIn(2);
        const Outcome expected = OutcomeOf([&] { return ReadByDefinition(content, "memory", swapYZ); });
        const Outcome fromMemory = OutcomeOf([&] {
            ByteReader bytes(content);
            return ReadAsciiTriangles(bytes, "memory", swapYZ);
        });
        ASSERT_EQ(fromMemory, expected) << content;
        if (i % 20 == 0) {
            std::istringstream file(content);
            ByteReader bytes(file);
            ASSERT_EQ(OutcomeOf([&] { return ReadAsciiTriangles(bytes, "memory", swapYZ); }), expected) << content;
        }
        loaded += expected.message.empty();
    }
    EXPECT_GT(loaded, 1000U); // neither all good nor all bad
    EXPECT_LT(loaded, 9000U);
}

TEST(LoadTrianglesFromSTL, ReadsFilesLongerThanItsBlocksByDefinition)
{
    const TemporaryFolder folder;
    std::string content = twoFacets;
    for (int i = 0; i < 1500; ++i) content += std::string(static_cast<std::size_t>(i % 97), ' ') + twoFacets.substr(10);
    content.insert(content.find("endsolid", content.size() / 2), std::string(300'000, 'x') + "\n");
    const Path path = folder.With(content);
    EXPECT_EQ(Loaded(path), OutcomeOf([&] { return ReadByDefinition(content, path.string(), false); }));
    EXPECT_EQ(LoadTrianglesFromSTL(path, false).size(), 3002U);
}

/// German habits, and a thousands separator where nobody expects one.
struct ForeignNumbers : std::numpunct<char>
{
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\1"; }
};

TEST(StlFiles, DoNotFollowTheLocaleOfTheHost)
{
    const TemporaryFolder folder;
    const Triangles triangles{{{{1.5, -1234.25, 1e-7}, {1e10, 1234567, 0.5}, {0.1, 3, 1e300}}}};
    SaveTrianglesToAsciiSTL(folder.path / "classic.stl", triangles, true);
    std::ofstream(folder.path / "classic.stl", std::ios::app)
        << "outer\nvertex 1." + std::string(2000, '0') + "e2 2 1.5e400\nvertex 1.5,5\nvertex 1,5\n";
    const Outcome expected = Loaded(folder.path / "classic.stl");

    const std::locale before = std::locale::global(std::locale(std::locale::classic(), new ForeignNumbers));
    const std::string cLocaleBefore = std::setlocale(LC_ALL, nullptr);
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8"})
        if (std::setlocale(LC_ALL, name) != nullptr) break;
    SaveTrianglesToAsciiSTL(folder.path / "foreign.stl", triangles, true);
    const Outcome inForeignLocale = Loaded(folder.path / "classic.stl");
    std::setlocale(LC_ALL, cLocaleBefore.c_str());
    std::locale::global(before);

    const std::string inClassicLocale = Content(folder.path / "classic.stl");
    EXPECT_EQ(Content(folder.path / "foreign.stl"), inClassicLocale.substr(0, inClassicLocale.find("outer\nvertex")));
    EXPECT_EQ(inForeignLocale, expected);
    EXPECT_EQ(expected.bits.size(), 18U);
}

TEST(StlFiles, SayWhichFileCannotBeOpened)
{
    const TemporaryFolder folder;
    const Path missing = folder.path / "no such folder" / "a.stl";
    for (const Path& path : {missing, folder.path}) {
        const std::string sentence = "Failed to open STL file \"" + path.string() + "\" to write triangle data in ";
        EXPECT_EQ(MessageOf([&] { SaveTrianglesToAsciiSTL(path, {}, false); }), sentence + "ASCII format.");
        EXPECT_EQ(MessageOf([&] { SaveTrianglesToBinarySTL(path, {}, false); }), sentence + "binary format.");
    }
    EXPECT_EQ(Loaded(missing).message, "Failed to open STL file \"" + missing.string() + "\".");
    EXPECT_NE(Loaded(folder.path).message.find(folder.path.string()), std::string::npos); // some systems open it, none reads it
}

// The system would take the path up to the null character: that of another file.
TEST(StlFiles, RefuseNullCharactersInPaths)
{
    const TemporaryFolder folder;
    const Path other = folder.With("keep", "a");
    const Path path = other.string() + '\0' + "b.stl";
    const std::string refusal =
        "Failed to open STL file \"" + other.string() + "\\x00b.stl\", as a file path cannot hold a null character.";
    EXPECT_EQ(Loaded(path).message, refusal);
    EXPECT_EQ(MessageOf([&] { SaveTrianglesToAsciiSTL(path, {}, false); }), refusal);
    EXPECT_EQ(MessageOf([&] { SaveTrianglesToBinarySTL(path, {}, false); }), refusal);
    EXPECT_EQ(Content(other), "keep");
}

TEST(SaveTrianglesToBinarySTL, RefusesMoreTrianglesThanTheFileCanCount)
{
    EXPECT_EQ(MessageOf([] { RequireBinaryTriangleCount(4'294'967'295); }), "");
    EXPECT_EQ(MessageOf([] { RequireBinaryTriangleCount(4'294'967'296); }),
              "The maximum number of triangles that can be saved to a binary STL file is 4294967295. "
              "The number encountered was 4294967296.");
}

TEST(StlFiles, DoNotTakeAFaultOfTheDeviceForTheEndOfTheFile)
{
    OneWayDevice device(twoFacets, OneWayDevice::After::Fails);
    std::istream file(&device);
    ByteReader bytes(file);
    EXPECT_EQ(MessageOf([&] { ReadAsciiTriangles(bytes, "torn", false); }),
              "Incomplete triangle encountered in STL file \"torn\".");
}

#ifdef BRIX_TESTS_HAVE_DEVICES

TEST(StlFiles, NoticeAFullDisk)
{
    if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "This system has no device that is always full.";
    const Triangles many(100'000, triangleA);
    for (const Triangles& triangles : {Triangles{}, Triangles{triangleA}, many}) {
        EXPECT_EQ(MessageOf([&] { SaveTrianglesToAsciiSTL("/dev/full", triangles, false); }),
                  "Failed to write triangle to STL file \"/dev/full\".");
        EXPECT_EQ(MessageOf([&] { SaveTrianglesToBinarySTL("/dev/full", triangles, false); }),
                  "Failed to write header to binary STL file \"/dev/full\".");
    }
    EXPECT_EQ(Loaded("/dev/full"), (Outcome{})); // it reads as zeros: a binary file without triangles
}

/// Files that this program writes may not grow beyond a size, as on a disk that fills up.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit()
    {
        ::setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, signalBefore_);
    }

private:
    rlimit before_{};
    void (*signalBefore_)(int) = std::signal(SIGXFSZ, SIG_IGN);
};

TEST(StlFiles, NoticeADiskThatFillsUp)
{
    const TemporaryFolder folder;
    const Path path = folder.path / "file.stl";
    const std::string quoted = '"' + path.string() + '"';
    const Triangles triangles(10, triangleA);
    const auto messageWithRoom = [&](decltype(SaveTrianglesToAsciiSTL) save, rlim_t room) {
        const FileSizeLimit limit(room);
        return MessageOf([&] { save(path, triangles, false); });
    };
    EXPECT_EQ(messageWithRoom(SaveTrianglesToBinarySTL, 79), "Failed to write header to binary STL file " + quoted + ".");
    EXPECT_EQ(messageWithRoom(SaveTrianglesToBinarySTL, 83), "Failed to write triangle count to binary STL file " + quoted + ".");
    EXPECT_EQ(messageWithRoom(SaveTrianglesToBinarySTL, 583), "Failed to write triangle to STL file " + quoted + ".");
    EXPECT_EQ(messageWithRoom(SaveTrianglesToBinarySTL, 584), "");
    EXPECT_EQ(messageWithRoom(SaveTrianglesToAsciiSTL, 1000), "Failed to write triangle to STL file " + quoted + ".");
    EXPECT_EQ(messageWithRoom(SaveTrianglesToAsciiSTL, 10'000), "");
}

TEST(LoadTrianglesFromSTL, ReadsPipes)
{
    const TemporaryFolder folder;
    const Path pipe = folder.path / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    const auto loadedFromPipe = [&](const std::string& content) {
        std::thread writer([&] { std::ofstream(pipe, std::ios::binary) << content; });
        const Outcome outcome = Loaded(pipe);
        writer.join();
        return outcome;
    };
    EXPECT_EQ(loadedFromPipe(BinaryFile(2, {recordA, recordB})), (Outcome{Bits({triangleA, triangleB}), ""}));
    EXPECT_EQ(loadedFromPipe(twoFacets), OutcomeOf([&] { return ReadByDefinition(twoFacets, pipe.string(), false); }));
    EXPECT_EQ(loadedFromPipe(BinaryFile(0xffffffff, {recordA})).message,
              "Failed to read triangle in STL file \"" + pipe.string() + "\".");
}

#endif

} // namespace
} // namespace brix
