// What the parser lets through as a number and a person does not mean: an empty text, nan, inf, or more digits than 64 bits hold.
#pragma once

namespace CLI {
class App;
}

namespace brix::tools {

/// Makes the options of a command that take numbers refuse everything else. Which ones do is told by the names of their values:
/// those of files, words and choices hold a dot, an equals sign, a bar or a brace, or are TEXT, UNIT or STEP.
void RequirePlainNumbers(CLI::App& command);

} // namespace brix::tools
