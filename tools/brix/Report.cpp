#include "Report.h"

#include "System.h"
#include "Text.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iomanip>
#include <iostream>
#include <sstream>

namespace brix::tools {
namespace {

using Json = nlohmann::ordered_json;

struct Report
{
    bool isQuiet = false;
    bool isVerbose = false;
    bool isJson = false;
    bool isOutputGivenAway = false;
    ExitCode endsWith = ExitDone;
    Json steps = Json::array();
    Json files = Json::array();
    Json warnings = Json::array();
    Stopwatch watch{};

    std::ostream& Stream() const { return isOutputGivenAway ? std::cerr : std::cout; }
};

Report& TheReport()
{
    static Report report;
    return report;
}

// An entry of a list: what it is about, and the facts.
Json Entry(const char* name, const std::string& value, const Facts& facts)
{
    Json entry{{name, value}};
    for (const auto& [key, fact] : facts) std::visit([&, key = key](const auto& v) { entry[key] = v; }, fact.value);
    return entry;
}

void Add(const std::string& step, const std::string& result, const Facts& facts, bool isPrinted)
{
    Report& report = TheReport();
    report.steps.push_back(Entry("step", step, facts));
    if (isPrinted && !report.isQuiet && !report.isJson)
        report.Stream() << std::left << std::setw(9) << step << ' ' << Printable(result) << '\n';
}

} // namespace

void AddReportOptions(CLI::App& command)
{
    Report& report = TheReport();
    const std::string group = "Report";
    CLI::Option* const quiet = command.add_flag("-q,--quiet", report.isQuiet, "Tell nothing but warnings and errors");
    CLI::Option* const verbose = command.add_flag("-v,--verbose", report.isVerbose, "Tell estimates and the memory used, too");
    CLI::Option* const json = command.add_flag("--json", report.isJson, "Report as one JSON object instead of lines of text");
    quiet->excludes(verbose, json);
    for (CLI::Option* const option : {quiet, verbose, json}) option->group(group);
}

void PrintStep(const std::string& step, const std::string& result, const Facts& facts) { Add(step, result, facts, true); }

void PrintDetail(const std::string& step, const std::string& result, const Facts& facts)
{
    Add(step, result, facts, TheReport().isVerbose);
}

void PrintBounds(const std::array<double, 3>& lower, const std::array<double, 3>& upper)
{
    const std::array size{upper[0] - lower[0], upper[1] - lower[1], upper[2] - lower[2]};
    PrintStep("lower", Text(lower, " "), {{"point", lower}});
    PrintStep("upper", Text(upper, " "), {{"point", upper}});
    PrintStep("size", Text(size, " x "), {{"size", size}});
}

void Warn(const std::string& sentence)
{
    TheReport().warnings.push_back(sentence);
    std::cout.flush();
    std::cerr << "brix: warning: " << Printable(sentence) << '\n';
}

void ReportFile(const std::filesystem::path& filePath, const Facts& facts)
{
    TheReport().files.push_back(Entry("path", filePath.string(), facts));
}

void GiveStandardOutputAway() { TheReport().isOutputGivenAway = true; }

void EndWith(ExitCode code) { TheReport().endsWith = code; }

ExitCode EndsWith() { return TheReport().endsWith; }

bool IsQuiet() { return TheReport().isQuiet; }

void FinishReport(const std::string& command, ExitCode code, const std::string& error)
{
    const Report& report = TheReport();
    if (report.isVerbose && !report.isJson && code == ExitDone)
        report.Stream() << "memory    " << BytesText(static_cast<double>(PeakMemory())) << " at most " << report.watch.Text()
                        << '\n';
    if (!report.isJson) return;

    Json whole{{"program", "brix " BRIX_VERSION}, {"command", command}, {"exitCode", static_cast<int>(code)}};
    if (!error.empty()) whole["error"] = error;
    whole["steps"] = report.steps;
    whole["files"] = report.files;
    whole["warnings"] = report.warnings;
    whole["seconds"] = report.watch.Seconds();
    whole["peakBytes"] = PeakMemory();
    // Names of files may hold any bytes; what is no UTF-8 becomes U+FFFD.
    report.Stream() << whole.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

double Stopwatch::Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count(); }

std::string Stopwatch::Text() const
{
    std::ostringstream text;
    text << '(' << std::fixed << std::setprecision(3) << Seconds() << " s)";
    return text.str();
}

} // namespace brix::tools
