// The table of the steps of `brix run`: a new operation is one more line.
#pragma once

#include "Arguments.h"
#include "Pipeline.h"

#include <algorithm>
#include <string>
#include <vector>

namespace brix::tools {

struct Step
{
    std::string name;
    std::string arguments; // words in capitals
    std::string meaning;
    std::function<std::function<void(Pipeline&)>(Plan&, Arguments&)> read; // what to run

    std::ptrdiff_t ArgumentCount() const
    {
        return arguments.empty() ? 0 : 1 + std::count(arguments.begin(), arguments.end(), ' ');
    }
};

const std::vector<Step>& AllSteps();

} // namespace brix::tools
