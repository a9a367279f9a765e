// The table of the steps of `brix run`: a new operation is one more line.
#pragma once

#include "Arguments.h"
#include "Pipeline.h"

#include <string>
#include <vector>

namespace brix::tools {

struct Step
{
    std::string name;
    std::string arguments; // words in capitals, and options in brackets
    std::string meaning;
    std::function<std::function<void(Pipeline&)>(Plan&, Arguments&)> read; // what to run
};

const std::vector<Step>& AllSteps();

} // namespace brix::tools
