#include "Units.h"

#include "Page.h"

#include <cmath>
#include <map>

namespace brix::tools {
namespace {

const std::map<std::string, double>& Units()
{
    static const std::map<std::string, double> metres{{"m", 1}, {"mm", 0.001}, {"cm", 0.01}, {"ft", 0.3048}, {"in", 0.0254}};
    return metres;
}

} // namespace

void AddUnitOption(CLI::App& command, std::string& unit)
{
    command.add_option("--unit", unit, "Unit of the file's lengths, for labels and a person's size: m, mm, cm, ft or in [none]")
        ->check(CLI::IsMember({"m", "mm", "cm", "ft", "in"}))
        ->type_name("UNIT");
}

double FromMetres(double metres, const std::string& unit)
{
    const auto found = Units().find(unit);
    return found == Units().end() ? metres : metres / found->second;
}

std::string LengthText(double length, double voxel, const std::string& unit)
{
    const double digit = std::pow(10, std::floor(std::log10(voxel)));
    return WithUnit(std::round(length / digit) * digit, unit);
}

} // namespace brix::tools
