// Units of length: what a file's numbers mean, which STL does not say.
#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace brix::tools {

/// Adds --unit m|mm|cm|ft|in. `unit` stays empty when it is not given.
void AddUnitOption(CLI::App& command, std::string& unit);

/// A length in metres in a unit; in metres when it is empty.
double FromMetres(double metres, const std::string& unit);

/// A length as a person would write it: rounded to a digit that a voxel of that size can tell, with its unit.
std::string LengthText(double length, double voxel, const std::string& unit);

} // namespace brix::tools
