// brix check: whether files of triangles are sound, and what is wrong with those that are not.
#include "Commands.h"

#include "../FilePlan.h"
#include "../Report.h"
#include "../Text.h"
#include "../TriangleFiles.h"

#include <algorithm>

namespace brix::tools {
namespace {

std::string Counted(std::uint64_t count, const std::string& one, const std::string& more)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : more);
}

std::string Triangles(std::uint64_t count) { return Counted(count, "triangle", "triangles"); }

// What there is none of is not worth a line.
void PrintIfAny(const std::string& step, std::uint64_t count, const std::string& text)
{
    if (count > 0) PrintStep(step, text, {{"count", count}});
}

std::string Joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const std::string& part : parts) text += (text.empty() ? "" : ", ") + part;
    return text;
}

void PrintSolids(const StlReport& report)
{
    std::vector<std::string> named;
    constexpr std::size_t mostNamed = 10;
    for (const StlSolid& solid : report.solids)
        if (named.size() < mostNamed) named.push_back(Quoted(solid.name) + " (" + Triangles(solid.triangles) + ')');
    if (report.solidCount > named.size()) named.push_back("...");
    PrintStep("solids", std::to_string(report.solidCount) + ": " + Joined(named), {{"count", report.solidCount}});
}

void PrintTriangles(const StlReport& report)
{
    Facts facts{{"read", report.read},           {"found", report.found},           {"incomplete", report.incomplete},
                {"notFinite", report.notFinite}, {"degenerate", report.degenerate}, {"bytesLeft", report.bytesLeft}};
    if (report.announced) facts.emplace_back("announced", *report.announced);
    std::string text = std::to_string(report.read) + " read";
    if (report.announced) text += " of " + std::to_string(*report.announced) + " announced";
    PrintStep("triangles", text, facts);

    std::vector<std::string> parts;
    if (report.incomplete > 0) parts.push_back(std::to_string(report.incomplete) + " incomplete");
    if (report.notFinite > 0) parts.push_back(std::to_string(report.notFinite) + " not finite");
    if (!parts.empty()) PrintStep("left out", Joined(parts));
    PrintIfAny("flat", report.degenerate, Triangles(report.degenerate) + " without area, kept");
}

void PrintFindings(const StlReport& report)
{
    constexpr std::array<const char*, 3> effects{"none", "guessed", "dropped"};
    for (const StlFinding& finding : report.findings)
        PrintStep("finding", finding.sentence,
                  {{"place", finding.place},
                   {"effect", std::string(effects[static_cast<std::size_t>(finding.effect)])},
                   {"sentence", finding.sentence}});
    const std::uint64_t others = report.findingCount - report.findings.size();
    PrintIfAny("others", others, Counted(others, "finding more", "findings more"));
}

void PrintEdges(const MeshReport& mesh)
{
    std::vector<std::string> parts;
    if (mesh.openEdges > 0) parts.push_back(std::to_string(mesh.openEdges) + " open");
    if (mesh.crowdedEdges > 0) parts.push_back(std::to_string(mesh.crowdedEdges) + " of more than two triangles");
    if (mesh.reversedEdges > 0) parts.push_back(std::to_string(mesh.reversedEdges) + " where one triangle is turned over");
    PrintStep(
        "edges", std::to_string(mesh.edges) + (parts.empty() ? ", each of two triangles" : ", of which " + Joined(parts)),
        {{"edges", mesh.edges}, {"open", mesh.openEdges}, {"crowded", mesh.crowdedEdges}, {"reversed", mesh.reversedEdges}});
}

void PrintMesh(const MeshReport& mesh)
{
    PrintBounds(mesh.lower, mesh.upper);
    double longest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) longest = std::max(longest, mesh.upper[axis] - mesh.lower[axis]);
    const UnitGuess guess = GuessUnit(longest);
    PrintStep("unit", (guess.unit.empty() ? "no guess. " : "perhaps " + guess.unit + ". ") + guess.reason,
              {{"guess", guess.unit}, {"reason", guess.reason}});
    PrintStep("vertices", std::to_string(mesh.vertices), {{"count", mesh.vertices}});
    PrintIfAny("repeated", mesh.duplicateTriangles, Triangles(mesh.duplicateTriangles) + " more than once");
    PrintEdges(mesh);
    PrintStep("shells", std::to_string(mesh.shells), {{"count", mesh.shells}});
    const std::string inside = mesh.signedVolume > 0 ? "" : ", as triangles face inwards";
    PrintStep("volume", mesh.isClosed ? Text(mesh.signedVolume) + inside : "none: the surface is open",
              {{"closed", mesh.isClosed}, {"volume", mesh.signedVolume}});
}

// Why a file is not sound.
std::vector<std::string> Faults(const StlReport& report)
{
    std::vector<std::string> faults;
    if (report.findingCount > 0) faults.push_back(Counted(report.findingCount, "finding", "findings"));
    if (report.degenerate > 0) faults.emplace_back("flat triangles");
    if (!report.mesh || report.found == 0) return faults;
    const MeshReport& mesh = *report.mesh;
    if (mesh.duplicateTriangles > 0) faults.emplace_back("repeated triangles");
    if (!mesh.isClosed) faults.emplace_back("not closed");
    if (mesh.crowdedEdges > 0) faults.emplace_back("edges of more than two triangles");
    if (mesh.reversedEdges > 0) faults.emplace_back("triangles turned over");
    if (mesh.isClosed && !(mesh.signedVolume > 0)) faults.emplace_back("no volume inside");
    return faults;
}

struct Options
{
    std::vector<std::filesystem::path> inputs;
    StlReadOptions reading{.countMesh = true, .mostListed = 20};
    bool skipsSurface = false;
};

// What is told of STL, as far as the other formats have it.
StlReport ReportScene(const std::filesystem::path& input, const StlReadOptions& options)
{
    const SceneImport import = ReadScene(input, options.swapYZ);
    StlReport report;
    report.read = import.triangles.size();
    report.notFinite = import.notFinite;
    report.found = report.read + report.notFinite;
    report.findingCount = report.notFinite; // a warning told them
    for (const WorldTriangle& triangle : import.triangles)
        if (!HasArea(triangle)) ++report.degenerate;
    if (options.countMesh) report.mesh = CountMesh(import.triangles);
    return report;
}

StlReport ReportStl(const std::filesystem::path& input, const StlReadOptions& options)
{
    StlReport report = LoadStl(input, options).report;
    PrintStep("format", FormatName(report.variant), {{"format", FormatName(report.variant)}});
    PrintStep("bytes", std::to_string(report.bytes), {{"bytes", report.bytes}});
    if (!report.header.empty()) PrintStep("header", report.header, {{"text", report.header}});
    if (report.solidCount > 0) PrintSolids(report);
    return report;
}

bool CheckFile(const std::filesystem::path& input, const StlReadOptions& options)
{
    const StlReport report = (SceneFormatOf(input) != nullptr ? ReportScene : ReportStl)(input, options);
    PrintTriangles(report);
    PrintFindings(report);
    if (report.mesh && report.read > 0) PrintMesh(*report.mesh);
    PrintStep("result", report.IsSound() ? "sound" : "not sound: " + Joined(Faults(report)), {{"sound", report.IsSound()}});
    return report.IsSound();
}

void Check(const Options& options)
{
    FilePlan files;
    StlReadOptions reading = options.reading;
    reading.countMesh = !options.skipsSurface;
    std::string firstError;
    for (const std::filesystem::path& input : options.inputs) {
        PrintStep("file", input.string(), {{"file", input.string()}});
        try {
            files.Read(input);
            if (!CheckFile(input, reading)) EndWith(ExitFailure);
        } catch (const std::runtime_error& error) {
            PrintStep("result", std::string("unreadable: ") + error.what(), {{"error", std::string(error.what())}});
            if (firstError.empty()) firstError = error.what();
        }
    }
    if (!firstError.empty()) throw UnreadableInput(firstError);
}

} // namespace

void AddCheckCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("check", "Tell whether files of triangles are sound, and what is wrong with them");
    command
        .add_option("input", options->inputs, "Files of triangles: STL, or OBJ, PLY, glTF, 3MF; - reads STL from standard input")
        ->required()
        ->type_name("IN.stl");
    command.add_option("--list", options->reading.mostListed, "How many findings of a file are listed; all are counted")
        ->capture_default_str()
        ->type_name("COUNT");
    command.add_flag("--skip-surface", options->skipsSurface, "Count no vertices, edges and shells");
    command.add_flag("--swap-yz", options->reading.swapYZ, "The files have their Y axis up; bounds are told with Z up");
    command.footer(
        "A sound file has nothing left out or guessed, and bounds a solid: closed, each edge with two triangles that face the\n"
        "same way, none flat or repeated.\n"
        "Exit codes: 0 all are sound; 1 not all are; 2 a file cannot be read, or the command line is wrong.\n"
        "Example: brix check building.stl");
    command.callback([options] { Check(*options); });
}

} // namespace brix::tools
