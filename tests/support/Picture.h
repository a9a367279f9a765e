// Plates as drawings, for tests that are to be read and for failure messages:
//
//   Picture(".##.............  #..............#")    row 0 has bits 1 and 2, row 1 bits 0 and 15, all other rows are empty
#pragma once

#include "model/VoxelPlate.h"

#include <ostream>
#include <string>
#include <string_view>

namespace brix {

/// Lets failure messages show plates as drawings.
void PrintTo(const VoxelPlate<bool>& plate, std::ostream* output);

namespace tests {

/// The plate of a drawing: rows from 0 up, parted by white space, `#` filled, `.` empty. What is not drawn is empty.
VoxelPlate<bool> Picture(std::string_view drawing);

/// Sixteen lines of sixteen characters.
std::string Draw(const VoxelPlate<bool>& plate);

/// Two plates beside each other, each below its title.
std::string Draw(std::string_view leftTitle, const VoxelPlate<bool>& left, std::string_view rightTitle,
                 const VoxelPlate<bool>& right);

} // namespace tests
} // namespace brix
