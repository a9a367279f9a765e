// What the readers of both STL variants hand their triangles and findings to.
#pragma once

#include "PathText.h"
#include "StlReader.h"

#include <cmath>

namespace brix {

class StlIntake
{
public:
    StlIntake(const StlReadOptions& options, const std::filesystem::path& name, StlVariant variant)
        : options_(options), quotedName_('"' + PathText(name) + '"')
    {
        result.report.variant = variant;
    }

    const StlReadOptions& Options() const { return options_; }

    /// Tells what was found at a place. `sentence` makes the rest of the sentence that begins with the place; it is called only
    /// where there is room in the list.
    template <class MakeText> void Find(std::uint64_t place, StlEffect effect, const MakeText& sentence)
    {
        StlReport& report = result.report;
        ++report.findingCount;
        report.guesses += effect == StlEffect::Guessed;
        report.drops += effect == StlEffect::Dropped;
        if (report.findings.size() >= options_.mostListed) return;
        const char* const unit = report.variant == StlVariant::Ascii ? "Line " : "Byte ";
        report.findings.push_back({place, effect, unit + std::to_string(place) + " of " + quotedName_ + ": " + sentence()});
    }

    /// Takes a triangle that stands at a place; what is not finite is left out.
    void Take(const WorldTriangle& triangle, std::uint64_t place)
    {
        StlReport& report = result.report;
        ++report.found;
        if (!IsFinite(triangle)) [[unlikely]]
            return DropNotFinite(place);
        if (!HasArea(triangle)) [[unlikely]] {
            ++report.degenerate;
            if (options_.dropDegenerate) return;
        }
        result.triangles.push_back(triangle);
    }

    /// Counts a triangle that cannot be read.
    void TakeIncomplete()
    {
        ++result.report.found;
        ++result.report.incomplete;
    }

    StlImport result;

private:
    static bool IsFinite(const WorldTriangle& triangle)
    {
        double sum = 0;
        for (const auto& corner : triangle)
            for (const double coordinate : corner) sum += coordinate * 0; // 0 for finite numbers, NaN for all others
        return !std::isnan(sum);
    }

    void DropNotFinite(std::uint64_t place)
    {
        ++result.report.notFinite;
        Find(place, StlEffect::Dropped,
             [] { return "a triangle has coordinates that are infinite or not numbers; it was left out."; });
    }

    const StlReadOptions& options_;
    std::string quotedName_;
};

} // namespace brix
