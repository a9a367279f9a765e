// The subcommands of brix. Each has a file of its own, which adds its options to the program and does the work when it is called.
#pragma once

#include <CLI/CLI.hpp>

namespace brix::tools {

void AddCheckCommand(CLI::App& program);
void AddConvertCommand(CLI::App& program);
void AddInfoCommand(CLI::App& program);
void AddLeakCommand(CLI::App& program);
void AddRunCommand(CLI::App& program);
void AddSceneCommand(CLI::App& program);
void AddSliceCommand(CLI::App& program);
void AddTravelCommand(CLI::App& program);
void AddVoxelizeCommand(CLI::App& program);
void AddWalkableCommand(CLI::App& program);

} // namespace brix::tools
