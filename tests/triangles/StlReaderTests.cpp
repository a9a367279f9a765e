#include "triangles/StlReader.h"

#include "support/Messages.h"
#include "support/StlSamples.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace brix {
namespace {

using tests::BinaryFile;
using tests::OneWayDevice;
using tests::Random;
using tests::TemporaryFolder;
using Triangles = std::vector<WorldTriangle>;
using Sentences = std::vector<std::string>;
using namespace std::literals;

StlImport ReadBytes(const std::string& content, const StlReadOptions& options = {})
{
    return ReadStl(std::span(reinterpret_cast<const std::uint8_t*>(content.data()), content.size()), options);
}

Sentences SentencesOf(const StlReport& report)
{
    Sentences sentences;
    for (const StlFinding& finding : report.findings) sentences.push_back(finding.sentence);
    return sentences;
}

std::string NumberText(double number)
{
    std::ostringstream text;
    text.precision(17);
    text << number;
    return text.str();
}

/// How a text file is laid out; any combination is read.
struct Layout
{
    explicit Layout(Random& random)
        : lineEnd(tests::OneOf(random, "\n|\r\n|\r")),
          indent(tests::OneOf(random, "|  |\t| \v\f")),
          casing(random.Between(0, 3)),
          hasMark(random.OneIn(3)),
          hasComments(random.OneIn(3)),
          isOneLine(random.OneIn(4)),
          endsSolids(!random.OneIn(3)),
          endsLastLine(random.OneIn(2))
    {
        if (isOneLine) lineEnd = " ", hasComments = false;
    }

    std::string lineEnd, indent;
    std::int64_t casing;
    bool hasMark, hasComments, isOneLine, endsSolids, endsLastLine;
};

/// A plain writer with every habit of other programs.
class Writer
{
public:
    Writer(const Layout& layout, Random& random) : layout_(layout), random_(random) {}

    void Solid(const std::string& name, const Triangles& triangles)
    {
        if (layout_.hasComments) Line("# an extra line", "");
        Line("solid", name);
        for (const WorldTriangle& triangle : triangles) {
            Line("facet normal", "0 -1e-05 nan");
            Line("outer loop", "");
            for (const auto& p : triangle) Line("vertex", NumberText(p[0]) + " \t" + NumberText(p[1]) + ' ' + NumberText(p[2]));
            Line("endloop", "");
            Line("endfacet", "");
        }
        if (layout_.endsSolids) Line("endsolid", name);
    }

    std::string Content() const
    {
        const std::string text = layout_.endsLastLine ? text_ : text_.substr(0, text_.size() - layout_.lineEnd.size());
        return (layout_.hasMark ? "\xEF\xBB\xBF" : "") + text;
    }

private:
    void Line(std::string words, const std::string& rest)
    {
        for (char& c : words)
            if (c >= 'a' && c <= 'z' && (layout_.casing == 1 || (layout_.casing == 2 && random_.OneIn(2)))) c ^= 0x20;
        if (layout_.casing == 3 && words[0] >= 'a') words[0] ^= 0x20;
        if (layout_.hasComments && random_.OneIn(4)) text_ += (random_.OneIn(2) ? "// outer loop" : "") + layout_.lineEnd;
        text_ += layout_.indent + words + ' ' + rest;
        if (layout_.hasComments && random_.OneIn(4) && words.size() > 8) text_ += " ; vertex 1 2 3";
        text_ += layout_.lineEnd;
    }

    const Layout& layout_;
    Random& random_;
    std::string text_;
};

/// Any doubles; sometimes small whole numbers, of which some triangles have no area.
Triangles RandomTriangles(Random& random)
{
    Triangles triangles(static_cast<std::size_t>(random.Between(0, 9)));
    for (std::size_t i = 0; i < 9 * triangles.size(); ++i) {
        const double any = std::ldexp(static_cast<double>(random.Bits() >> 11), static_cast<int>(random.Between(-90, 60)));
        const auto whole = static_cast<double>(random.Between(-1, 1));
        triangles[i / 9][i % 9 / 3][i % 3] = random.OneIn(3) ? any : whole;
    }
    return triangles;
}

TEST(ReadStl, TakesTextInEveryLayout)
{
    const TemporaryFolder folder;
    Random random(1);
    for (std::uint64_t round = 0; round < tests::Rounds(1000); ++round) {
        const Layout layout(random);
        Writer writer(layout, random);
        Triangles all;
        std::vector<std::uint64_t> sizes;
        for (std::int64_t solids = random.Between(1, 3); solids > 0; --solids) {
            const Triangles triangles = RandomTriangles(random);
            if (layout.isOneLine && triangles.empty()) continue; // its name would have no end
            writer.Solid("part " + std::to_string(sizes.size()), triangles);
            sizes.push_back(triangles.size());
            all.insert(all.end(), triangles.begin(), triangles.end());
        }
        if (all.empty()) continue;
        const std::string content = writer.Content();
        std::istringstream stream(content);
        OneWayDevice device(content, OneWayDevice::After::Ends);
        std::istream pipe(&device);
        const StlImport import = round % 4 == 0   ? ReadStl(folder.With(content))
                                 : round % 4 == 1 ? ReadStl(stream)
                                 : round % 4 == 2 ? ReadStl(pipe)
                                                  : ReadBytes(content);
        const StlReport& report = import.report;
        ASSERT_EQ(import.triangles, all) << content;
        ASSERT_EQ(report.variant, StlVariant::Ascii);
        ASSERT_EQ(report.bytes, content.size());
        ASSERT_EQ(report.found, all.size());
        ASSERT_EQ(report.read, all.size());
        ASSERT_EQ(report.drops + report.guesses, 0U) << content;
        ASSERT_EQ(report.findingCount, layout.endsSolids ? 0 : sizes.size()) << content << SentencesOf(report).front();
        ASSERT_EQ(report.solidCount, sizes.size()) << content;
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            ASSERT_EQ(report.solids[i].name, "part " + std::to_string(i)) << content;
            ASSERT_EQ(report.solids[i].triangles, sizes[i]) << content;
        }
        const auto flat = std::count_if(all.begin(), all.end(), [](const WorldTriangle& t) { return !HasArea(t); });
        ASSERT_EQ(report.degenerate, static_cast<std::uint64_t>(flat));
        const StlReport dropping = ReadBytes(content, {.dropDegenerate = true}).report;
        ASSERT_EQ(dropping.read + dropping.degenerate, all.size());
    }
}

const std::string v = "vertex 0 0 0\nvertex 1 0 0\nvertex 0 1 0\n";
const std::string facet = "facet normal 0 0 1\nouter loop\n" + v + "endloop\nendfacet\n";
std::string Solid(const std::string& facets) { return "solid s\n" + facets + "endsolid s\n"; }
std::string Loop(const std::string& vertices) { return "facet normal 0 0 1\nouter loop\n" + vertices + "endloop\nendfacet\n"; }

struct Case
{
    std::string content;
    std::uint64_t read, incomplete, notFinite, guesses;
    Sentences findings;
};

void ExpectCases(const std::vector<Case>& cases)
{
    for (const Case& c : cases) {
        const StlReport report = ReadBytes(c.content, {.name = "a.stl"}).report;
        EXPECT_EQ(report.read, c.read) << c.content;
        EXPECT_EQ(report.incomplete, c.incomplete) << c.content;
        EXPECT_EQ(report.notFinite, c.notFinite) << c.content;
        EXPECT_EQ(report.guesses, c.guesses) << c.content;
        EXPECT_EQ(report.findingCount, c.findings.size()) << c.content;
        EXPECT_EQ(SentencesOf(report), c.findings) << c.content;
        EXPECT_EQ(report.IsSound(), c.findings.empty()) << c.content;
    }
}

TEST(ReadStl, TellsDamagedTextLineByLine)
{
    const auto one = [](std::uint64_t read, std::uint64_t incomplete, const std::string& content, const std::string& sentence) {
        return Case{content, read, incomplete, 0, 0, {sentence}};
    };
    const auto left = [](const std::string& what) { return what + "; its triangle was left out."; };
    const std::string w = "vertex 1 0 0\nvertex 0 1 0\n";
    ExpectCases({
        {Solid(facet), 1, 0, 0, 0, {}},
        {Solid(Loop("vertex 1,5 0 0\nvertex 1 0 0\nvertex 0 -2,25e1 0\n")),
         1,
         0,
         0,
         2,
         {R"(Line 4 of "a.stl": "1,5" was read as a number with a decimal comma.)",
          R"(Line 6 of "a.stl": "-2,25e1" was read as a number with a decimal comma.)"}},
        one(1, 1, Solid(Loop("vertex 1,000.5 0 0\n" + w) + facet),
            left(R"(Line 4 of "a.stl": "1,000.5" stands where a number is expected)")),
        one(0, 1, Solid(Loop("vertex 1, 2, 3\n" + w)), left(R"(Line 4 of "a.stl": "1," stands where a number is expected)")),
        one(0, 1, Solid(Loop("vertex 1 2\n" + w)), left(R"(Line 4 of "a.stl": a vertex has 2 numbers instead of 3)")),
        one(0, 1, Solid(Loop("vertex # none\n" + w)), left(R"(Line 4 of "a.stl": a vertex has 0 numbers instead of 3)")),
        one(0, 1, Solid(Loop("vertex 1 x\x1b 3\n" + w)), left(R"(Line 4 of "a.stl": "x\x1b" stands where a number is expected)")),
        one(0, 1, Solid(Loop(w)), left(R"(Line 6 of "a.stl": a loop ends with 2 vertices instead of 3)")),
        one(0, 1, Solid(Loop(v + "vertex 1 1 0\n")), left(R"(Line 8 of "a.stl": a loop ends with 4 vertices instead of 3)")),
        one(1, 0, Solid(Loop("vertex 0 0 0 7\n" + w)),
            R"(Line 4 of "a.stl": "7" is no entry of an STL file; the rest of the line was not read.)"),
        one(1, 0, "solid a\0b\n"s + facet + "endsolid", R"(Line 1 of "a.stl": the name of a solid holds a zero byte.)"),
        one(1, 0, Solid("colour 1 2 3\n" + facet),
            R"(Line 2 of "a.stl": "colour" is no entry of an STL file; the rest of the line was not read.)"),
        one(1, 0, Solid("vertex 1 2 3\n" + facet), R"(Line 2 of "a.stl": a vertex stands outside of a loop; it was left out.)"),
        one(1, 0, Solid("facet normal 0 0 1\nouter loop\n" + v + "endfacet\n"),
            R"(Line 7 of "a.stl": a loop lacks its endloop.)"),
        one(2, 0, Solid("facet normal 0 0 0\nouter\n" + v + "outer loop\n" + v + "endloop\nendfacet\n"),
            R"(Line 7 of "a.stl": a loop lacks its endloop.)"),
        one(1, 0, Solid("outer loop\n" + v + "endloop\n"), R"(Line 2 of "a.stl": a loop stands outside of a facet.)"),
        one(2, 0, Solid("facet normal 0 nan -1e-7\nouter loop\n" + v + "endloop\n" + facet),
            R"(Line 8 of "a.stl": a facet lacks its endfacet.)"),
        one(1, 0, Solid("facet normal 0 1\nouter loop\n" + v + "endloop\nendfacet\n"),
            R"(Line 2 of "a.stl": the normal of a facet is not three numbers; it is not needed.)"),
        one(1, 0, Solid("facet 0,5 0 1 outer loop\n" + v + "endloop\nendfacet\n"),
            R"(Line 2 of "a.stl": the normal of a facet is not three numbers; it is not needed.)"),
        one(2, 0, "solid a\n" + facet + "solid b\n" + facet + "endsolid\n",
            R"(Line 9 of "a.stl": a solid begins before the one above ended.)"),
        one(1, 0, "solid a\n" + facet, R"(Line 9 of "a.stl": the file ends before its last solid does.)"),
        {facet,
         1,
         0,
         0,
         0,
         {R"(Line 1 of "a.stl": a facet stands outside of a solid.)",
          R"(Line 8 of "a.stl": the file ends before its last solid does.)"}},
        one(0, 0, "solid a\nendsolid a\n", R"(Line 3 of "a.stl": the file ends without a triangle.)"),
        {"solid\nfacet normal 0 0 1 outer loop\n" + v,
         1,
         0,
         0,
         0,
         {R"(Line 6 of "a.stl": a loop lacks its endloop.)", R"(Line 6 of "a.stl": the file ends before its last solid does.)"}},
        {"solid\nfacet normal 0 0 1 outer loop\n" + v.substr(0, v.size() - 1),
         0,
         1,
         0,
         0,
         {left(R"(Line 5 of "a.stl": the file ends within a loop)"),
          R"(Line 5 of "a.stl": the file ends before its last solid does.)"}},
    });
}

TEST(ReadStl, LeavesOutWhatIsNotFinite)
{
    const std::string sentence = "a triangle has coordinates that are infinite or not numbers; it was left out.";
    for (const char* word : {"nan", "-NaN(ind)", "inf", "-INFINITY", "1.#QNAN", "-1.#IND00", "1e400", "-9e999"})
        ExpectCases({{Solid(facet + Loop("vertex 0 0 " + std::string(word) + "\nvertex 1 0 0\nvertex 0 1 0\n")),
                      1,
                      0,
                      1,
                      0,
                      {"Line 10 of \"a.stl\": " + sentence}}});
    const float infinity = std::numeric_limits<float>::infinity();
    ExpectCases({{BinaryFile(2, {{0, 0, 1, 0, 0, 0, 1, 0, 0, 0, -infinity, 0}, {infinity, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0}}),
                  1,
                  0,
                  1,
                  0,
                  {"Byte 84 of \"a.stl\": " + sentence}}});
}

std::string Records(std::uint32_t announced, std::size_t records, const std::string& after = "")
{
    return BinaryFile(announced, std::vector<std::array<float, 12>>(records, {0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0}), after);
}

TEST(ReadStl, TellsCountsThatDoNotFit)
{
    const std::string count = R"(Byte 80 of "a.stl": )";
    const std::string cut(49, 'x');
    ExpectCases({
        {Records(3, 3), 3, 0, 0, 0, {}},
        {Records(0, 0), 0, 0, 0, 0, {count + "the file announces no triangles."}},
        {Records(2, 3), 3, 0, 0, 1, {count + "2 triangles are announced; the file holds 3, which were read."}},
        {Records(0, 1), 1, 0, 0, 1, {count + "0 triangles are announced; the file holds 1, which were read."}},
        {Records(0xffffffff, 2), 2, 0, 0, 0, {count + "4294967295 triangles are announced; the file ends after 2 whole ones."}},
        {Records(1, 0), 0, 0, 0, 0, {count + "1 triangle is announced; the file ends after 0 whole ones."}},
        {Records(2, 1, cut),
         1,
         0,
         0,
         0,
         {count + "2 triangles are announced; the file ends after 1 whole ones.",
          R"(Byte 134 of "a.stl": 49 bytes after the last whole triangle were left.)"}},
        {Records(1, 1, "x"), 1, 0, 0, 0, {R"(Byte 134 of "a.stl": 1 byte after the last whole triangle were left.)"}},
        {Records(1, 2, "x"), 1, 0, 0, 0, {R"(Byte 134 of "a.stl": 51 bytes after the last whole triangle were left.)"}},
        {Records(0, 2, "x"),
         2,
         0,
         0,
         1,
         {count + "0 triangles are announced; the file holds 2, which were read.",
          R"(Byte 184 of "a.stl": 1 byte after the last whole triangle were left.)"}},
    });
    const StlReport report = ReadBytes(Records(7, 2, cut)).report;
    EXPECT_EQ(report.announced, 7U);
    EXPECT_EQ(report.found, 2U);
    EXPECT_EQ(report.bytesLeft, 49U);
}

// Whatever the header says, also where the count is wrong or the file is cut off.
TEST(ReadStl, TakesBinaryFilesForBinary)
{
    for (const std::string header :
         {"solid", "solid facet normal", "  SOLID x\n", "facet", "# a\nsolid b\n", "\xEF\xBB\xBFsolid"})
        for (const std::uint32_t announced : {2U, 0U, 0xffffffffU})
            for (const char* after : {"", "x"}) {
                std::string content = Records(announced, 2, after).replace(0, header.size(), header);
                std::fill(content.begin() + std::ssize(header), content.begin() + 79, ' ');
                const StlImport import = ReadBytes(content);
                EXPECT_EQ(import.report.variant, StlVariant::Binary) << header;
                EXPECT_EQ(import.report.read, 2U) << header;
            }
    const StlReport named = ReadBytes(Records(1, 1).replace(0, 80, "made by\x01 \xff" + std::string(70, '\0'))).report;
    EXPECT_EQ(named.header, "made by\\x01 \xEF\xBF\xBD");
}

TEST(ReadStl, RefusesWhatIsNoStl)
{
    const TemporaryFolder folder;
    const std::pair<std::string, std::string> cases[] = {
        {"", "it is empty."},
        {"v 1 2 3\n", "its text begins with \"v\" instead of \"solid\"."},
        {"v 1 2 3\n" + std::string(2000, 'x'), "its text begins with \"v\" instead of \"solid\"."},
        {std::string(83, '\0'), "it has 83 bytes, and a binary one has 84 at least."},
        {"PK\3\4" + std::string(200, '\0'), "it is a ZIP archive, as 3MF files are."},
        {"ply\nformat binary\n" + std::string(200, '\0'), "it is a PLY file."},
        {"\xff\xfes\0o\0l\0i\0d\0"s + std::string(100, '\0'), "it is text in UTF-16, or something else."},
    };
    for (const auto& [content, reason] : cases)
        EXPECT_EQ(tests::MessageOf<std::runtime_error>([&, &file = content] { return ReadStl(folder.With(file)); }),
                  "The file \"" + (folder.path / "file.stl").string() + "\" is no STL file: " + reason);
    EXPECT_EQ(tests::MessageOf<std::runtime_error>([&] { return ReadStl(folder.path / "none"); }),
              "Failed to open STL file \"" + (folder.path / "none").string() + "\".");
    EXPECT_EQ(tests::MessageOf<std::runtime_error>([&] { return ReadStl(std::filesystem::path("a\0b"s)); }),
              "Failed to open STL file \"a\\x00b\", as a file path cannot hold a null character.");
}

TEST(ReadStl, RefusesDevicesThatNeverEnd)
{
    if (!std::filesystem::is_character_file("/dev/zero")) GTEST_SKIP() << "This system has no device that never ends.";
    EXPECT_EQ(tests::MessageOf<std::runtime_error>([] { return ReadStl("/dev/zero"); }),
              "Failed to open STL file \"/dev/zero\", as it is a device, which may never end.");
}

TEST(ReadStl, TellsThatADeviceFailed)
{
    std::string facets;
    for (int i = 0; i < 3000; ++i) facets += facet;
    for (const std::string& content : {Solid(facets), Records(3000, 3000)}) {
        OneWayDevice device(content, OneWayDevice::After::Fails);
        std::istream stream(&device);
        const StlImport import = ReadStl(stream);
        EXPECT_GT(import.triangles.size(), 1000U); // the last block is lost
        EXPECT_LT(import.triangles.size(), 3000U);
        const Sentences sentences = SentencesOf(import.report);
        EXPECT_TRUE(
            std::ranges::any_of(sentences, [](auto& s) { return s.ends_with(": the file cannot be read any further."); }));
    }
}

TEST(ReadStl, ListsSoManyFindingsAndCountsAll)
{
    std::string lines;
    for (int i = 0; i < 1000; ++i) lines += "odd\nendsolid\nsolid\n";
    const StlReport report = ReadBytes(Solid(lines + facet), {.mostListed = 7}).report;
    EXPECT_EQ(report.findings.size(), 7U);
    EXPECT_EQ(report.findingCount, 1000U);
    EXPECT_EQ(report.solids.size(), 7U);
    EXPECT_EQ(report.solidCount, 1001U);
    EXPECT_EQ(ReadBytes("solid " + std::string(1000, 'n') + "\n" + facet).report.solids[0].name, std::string(200, 'n') + "...");
}

/// What the report promises of any file.
void ExpectConsistent(const StlImport& import, const StlReadOptions& options)
{
    const StlReport& r = import.report;
    ASSERT_EQ(r.read, import.triangles.size());
    ASSERT_EQ(r.found, r.read + r.incomplete + r.notFinite + (options.dropDegenerate ? r.degenerate : 0));
    ASSERT_EQ(r.findings.size(), std::min<std::uint64_t>(r.findingCount, options.mostListed));
    ASSERT_LE(r.guesses + r.drops, r.findingCount);
    ASSERT_LE(r.notFinite + r.incomplete, r.drops + r.incomplete);
    for (const WorldTriangle& triangle : import.triangles)
        for (const auto& corner : triangle)
            for (const double coordinate : corner) ASSERT_TRUE(std::isfinite(coordinate));
}

/// The triangles of a damaged file, or its message.
std::pair<Triangles, std::string> OutcomeOf(const std::string& content, bool swapYZ)
{
    try {
        const StlReadOptions options{.swapYZ = swapYZ, .dropDegenerate = swapYZ, .countMesh = true, .mostListed = 3};
        const StlImport import = ReadBytes(content, options);
        ExpectConsistent(import, options);
        std::string sentences;
        for (const StlFinding& finding : import.report.findings) sentences += finding.sentence;
        return {import.triangles, sentences};
    } catch (const std::runtime_error& error) {
        return {{}, error.what()};
    }
}

TEST(ReadStl, TakesDamagedFilesInOneWayByAllRoutes)
{
    Random random(2);
    std::size_t read = 0;
    for (std::uint64_t round = 0; round < tests::Rounds(5000); ++round) {
        const std::string whole =
            random.OneIn(3) ? Records(static_cast<std::uint32_t>(random.Between(0, 3)), 3) : Solid(facet + facet);
        const std::string content = tests::Damaged(whole, random);
        const bool swapYZ = random.OneIn(2);
        const auto [triangles, message] = OutcomeOf(content, swapYZ);
        read += !triangles.empty();
        std::istringstream stream(content);
        try {
            ASSERT_EQ(ReadStl(stream, {.swapYZ = swapYZ, .dropDegenerate = swapYZ}).triangles, triangles);
        } catch (const std::runtime_error& error) {
            ASSERT_EQ(error.what(), message);
        }
    }
    EXPECT_GT(read, tests::Rounds(1000));
}

// A file that is cut off gives the first of its triangles, and says so.
TEST(ReadStl, ReadsWhatIsLeftOfAFile)
{
    const std::string digits = Loop("vertex 0 0 123.25\nvertex 0 1e-12 1\nvertex -1 17 123456\n");
    for (const std::string& whole : {Solid(digits + facet + digits), Records(3, 3)}) {
        const Triangles all = ReadBytes(whole).triangles;
        const std::size_t end = whole[0] == 'h' ? whole.size() : whole.rfind("endsolid") + 8;
        for (std::size_t size = whole[0] == 'h' ? 84 : 8; size < end; ++size) {
            const StlImport import = ReadBytes(whole.substr(0, size));
            ASSERT_GE(import.report.findingCount, 1U) << whole.substr(0, size);
            ASSERT_LE(import.triangles.size(), all.size());
            ASSERT_TRUE(std::equal(import.triangles.begin(), import.triangles.end(), all.begin())) << whole.substr(0, size);
        }
    }
}

// The reader that asks the first five bytes takes sound files in the same way.
TEST(ReadStl, AgreesWithTheStrictReaderOnRealFiles)
{
    std::size_t files = 0;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(BRIX_DATA, none)) {
        if (entry.path().extension() != ".stl") continue;
        ++files;
        for (const bool swapYZ : {false, true}) {
            const StlImport import = ReadStl(entry.path(), {.swapYZ = swapYZ});
            const Triangles strict = LoadTrianglesFromSTL(entry.path(), swapYZ);
            EXPECT_EQ(import.report.findingCount, 0U) << entry.path();
            EXPECT_GT(import.report.read, 1000U) << entry.path();
            EXPECT_TRUE(strict.empty() || import.triangles == strict) << entry.path(); // none where "solid" begins a header
        }
    }
    if (files == 0) GTEST_SKIP() << "There are no STL files in " << BRIX_DATA << ".";
}

} // namespace
} // namespace brix
