// The command-line program brix.
#include "Commands/Commands.h"
#include "Documents.h"
#include "Hints.h"
#include "PlainNumbers.h"
#include "Report.h"
#include "Signals.h"
#include "System.h"

#include <brix/frame/Watch.h>

#include <algorithm>
#include <iostream>
#include <new>

namespace brix::tools {
namespace {

// The commands that have no commands of their own.
std::vector<CLI::App*> Leaves(CLI::App& command)
{
    std::vector<CLI::App*> leaves;
    for (CLI::App* const child : command.get_subcommands([](const CLI::App*) { return true; }))
        for (CLI::App* const leaf : Leaves(*child)) leaves.push_back(leaf);
    if (leaves.empty()) leaves.push_back(&command);
    return leaves;
}

void AddCommands(CLI::App& program)
{
    program.set_version_flag("--version", "brix " BRIX_VERSION);
    program.footer("Each command tells its options and examples: brix voxelize --help\n"
                   "Exit codes: 0 done; 1 the operation failed; 2 the command line is wrong.");
    AddInfoCommand(program);
    AddCheckCommand(program);
    AddVoxelizeCommand(program);
    AddConvertCommand(program);
    AddRunCommand(program);
    AddSliceCommand(program);
    AddLeakCommand(program);
    AddWalkableCommand(program);
    AddTravelCommand(program);
    AddSceneCommand(program);
    for (CLI::App* const command : Leaves(program)) {
        AddReportOptions(*command);
        RequirePlainNumbers(*command);
    }
    program
        .add_option_function<std::string>("--document",
                                          [&program](const std::string& kind) { std::cout << MakeDocument(program, kind); })
        ->group(""); // for the build
}

// The command that was called, as in "scene building".
std::string NameOf(const CLI::App& program)
{
    std::string name;
    for (const CLI::App* command = &program; !command->get_subcommands().empty();) {
        command = command->get_subcommands().front();
        name += (name.empty() ? "" : " ") + command->get_name();
    }
    return name;
}

int Fail(const CLI::App& program, std::string message, ExitCode code)
{
    std::replace(message.begin(), message.end(), '\n', ' ');
    FinishReport(NameOf(program), code, message);
    std::cout.flush();
    std::cerr << "brix: " << Printable(message) << '\n';
    return code;
}

int Run(CLI::App& program, std::vector<std::string> words)
{
    try {
        program.parse(std::move(words));
        if (program.get_subcommands().empty() && program.count("--document") == 0)
            throw UsageError("A command is required: brix --help lists them.");
        FinishReport(NameOf(program), EndsWith(), "");
        if (!std::cout.flush()) return Fail(program, "Failed to write to standard output.", ExitFailure);
        return EndsWith();
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return program.exit(error); // help or version was asked for
        return Fail(program, std::string(error.what()) + " (brix --help tells more)", ExitUsage);
    } catch (const UsageError& error) {
        return Fail(program, WithHint(error.what()), ExitUsage);
    } catch (const Cancelled&) {
        Fail(program, "Interrupted.", ExitFailure);
        EndAsInterrupted();
    } catch (const std::bad_alloc&) {
        return Fail(
            program,
            "There is not enough memory within the limit. Choose a larger --voxel or a lower --lod, or raise --memory-limit.",
            ExitFailure);
    } catch (const std::exception& error) {
        return Fail(program, WithHint(error.what()), ExitFailure);
    }
}

} // namespace
} // namespace brix::tools

int main(int argc, char** argv)
{
    std::vector<std::string> words = brix::tools::PrepareConsole(argc, argv);
    words.erase(words.begin(), words.begin() + std::min<std::ptrdiff_t>(1, std::ssize(words))); // the program's own name
    std::reverse(words.begin(), words.end());                                                   // as the parser takes them
    brix::tools::CleanUpOnSignals();
    CLI::App program("Voxel geometry: fills grids with the triangles of STL files and draws them.", "brix");
    brix::tools::AddCommands(program);
    return brix::tools::Run(program, std::move(words));
}
