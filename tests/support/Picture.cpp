#include "Picture.h"

#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace brix {
namespace tests {
namespace {

std::string DrawRow(const VoxelPlate<bool>& plate, std::int64_t y)
{
    std::string row;
    for (std::int64_t x = 0; x < 16; ++x) row += plate.Value({x, y}) ? '#' : '.';
    return row;
}

} // namespace

VoxelPlate<bool> Picture(std::string_view drawing)
{
    VoxelPlate<bool> plate;
    std::istringstream input{std::string(drawing)};
    std::string row;
    for (std::size_t y = 0; input >> row; ++y) {
        if (y >= 16 || row.size() > 16) throw std::logic_error("a drawing is larger than a plate");
        for (std::size_t x = 0; x < row.size(); ++x) {
            if (row[x] == '#') plate.rows[y] = static_cast<std::uint16_t>(plate.rows[y] | 1U << x);
        }
    }
    return plate;
}

std::string Draw(const VoxelPlate<bool>& plate)
{
    std::string drawing;
    for (std::int64_t y = 0; y < 16; ++y) drawing += DrawRow(plate, y) + "\n";
    return drawing;
}

std::string Draw(std::string_view leftTitle, const VoxelPlate<bool>& left, std::string_view rightTitle,
                 const VoxelPlate<bool>& right)
{
    std::ostringstream output;
    output << std::left << std::setw(20) << leftTitle << rightTitle << "\n";
    for (std::int64_t y = 0; y < 16; ++y) output << DrawRow(left, y) << "    " << DrawRow(right, y) << "\n";
    return output.str();
}

} // namespace tests

void PrintTo(const VoxelPlate<bool>& plate, std::ostream* output) { *output << "\n" << tests::Draw(plate); }

} // namespace brix
