// The lenient reader of text STL files. StlReader.h says what it reads.
#pragma once

#include "ByteReader.h"
#include "StlIntake.h"

namespace brix {

/// How many bytes LooksLikeStlText wants to see.
inline constexpr std::size_t stlStartSize = 1 << 16;

/// Whether a file with this start (a binary one of this size is excluded already) is to be read as text.
bool LooksLikeStlText(std::string_view start);

/// Whether there is nothing in the start of a file that text has not: control characters other than white space.
bool LooksLikeText(std::string_view start);

/// The first word of a text, after a byte-order mark, blanks and comment lines.
std::string_view FirstWord(std::string_view text);

/// Reads a text file from its start to its end.
void ReadStlText(ByteReader& file, StlIntake& intake);

} // namespace brix
