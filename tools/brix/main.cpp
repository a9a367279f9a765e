// The command-line program brix.
#include "Commands/Commands.h"
#include "Report.h"

#include <algorithm>
#include <iostream>
#include <new>

namespace brix::tools {
namespace {

void AddCommands(CLI::App& program)
{
    program.set_version_flag("--version", "brix " BRIX_VERSION);
    program.footer("Each command tells its options and examples: brix voxelize --help\n"
                   "Exit codes: 0 done; 1 the operation failed; 2 the command line is wrong.");
    AddInfoCommand(program);
    AddVoxelizeCommand(program);
    AddRunCommand(program);
    AddSliceCommand(program);
    AddWalkableCommand(program);
    AddTravelCommand(program);
    AddSceneCommand(program);
}

int Fail(std::string message, ExitCode code)
{
    std::replace(message.begin(), message.end(), '\n', ' ');
    std::cout.flush();
    std::cerr << "brix: " << message << '\n';
    return code;
}

int Run(CLI::App& program, int argc, char** argv)
{
    try {
        program.parse(argc, argv);
        if (program.get_subcommands().empty()) throw UsageError("A command is required: brix --help lists them.");
        if (!std::cout.flush()) return Fail("Failed to write to standard output.", ExitFailure);
        return ExitDone;
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) return program.exit(error); // help or version was asked for
        return Fail(std::string(error.what()) + " (brix --help tells more)", ExitUsage);
    } catch (const UsageError& error) {
        return Fail(error.what(), ExitUsage);
    } catch (const std::bad_alloc&) {
        return Fail("There is not enough memory. Choose a larger --width or a lower --lod.", ExitFailure);
    } catch (const std::exception& error) {
        return Fail(error.what(), ExitFailure);
    }
}

} // namespace
} // namespace brix::tools

int main(int argc, char** argv)
{
    CLI::App program("Voxel geometry: fills grids with the triangles of STL files and draws them.", "brix");
    brix::tools::AddCommands(program);
    return brix::tools::Run(program, argc, argv);
}
