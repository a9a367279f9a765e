#include "Pipeline.h"

#include "Memory.h"
#include "Progress.h"
#include "Report.h"
#include "Steps.h"

#include <brix/operations/BasicOperations.h>

#include <algorithm>
#include <span>

namespace brix::tools {
namespace {

const Step& FindStep(const std::string& name)
{
    const std::vector<Step>& steps = AllSteps();
    const auto step = std::find_if(steps.begin(), steps.end(), [&](const Step& s) { return s.name == name; });
    if (step == steps.end()) throw UsageError("There is no step \"" + name + "\"; brix run --help lists them.");
    return *step;
}

} // namespace

std::vector<Action> ReadSteps(const std::vector<std::string>& words, Plan& plan)
{
    std::vector<Action> actions;
    for (std::span<const std::string> left = words; !left.empty();) {
        const Step& step = FindStep(left.front());
        Arguments arguments(step.name, step.arguments, left.subspan(1));
        std::function<void(Pipeline&)> run = step.read(plan, arguments);
        actions.push_back({{step.name, arguments.Integers()}, std::move(run)});
        left = arguments.Left();
    }
    return actions;
}

// The engine judges the arguments itself: none of its rules for them depends on what is filled.
void Rehearse(const std::vector<Action>& actions, const GridOptions& grid)
{
    const Axes axes(1, {}, 0, grid.verticalLOD.value_or(grid.lod));
    Pipeline pipeline{grid, false, VoxelModel<bool>(Extents(axes, {}, {}, 0), grid.lod)};
    pipeline.isRehearsal = true;
    for (const Action& action : actions) {
        try {
            action.run(pipeline);
        } catch (const std::domain_error& error) {
            throw UsageError("The step " + action.step.name + ": " + error.what());
        }
    }
}

void RunSteps(Pipeline& pipeline, const std::vector<Action>& actions)
{
    for (std::size_t number = 0; number < actions.size(); ++number) {
        const Stopwatch watch;
        const std::string& name = actions[number].step.name;
        const Progress progress("step " + std::to_string(number + 1) + " of " + std::to_string(actions.size()) + ", " + name);
        RequireMemoryForStep(actions[number].step, pipeline.model, pipeline.grid);
        actions[number].run(pipeline);
        const std::int64_t lod = pipeline.model.FinestLOD();
        const std::int64_t filled = CountFilled(pipeline.model, lod);
        PrintStep(name, std::to_string(filled) + " voxels filled at level " + std::to_string(lod) + " " + watch.Text(),
                  {{"filled", filled}, {"level", lod}, {"seconds", watch.Seconds()}});
    }
}

std::string DescribeSteps()
{
    std::string text;
    for (const Step& step : AllSteps()) {
        std::string line = "  " + step.name + " " + step.arguments;
        line.resize(std::max<std::size_t>(line.size() + 2, 38), ' ');
        text += line + step.meaning + "\n";
    }
    return text;
}

} // namespace brix::tools
