// Sight in values from 0 to 1. A carrier takes what leaves one stack to the stacks behind it. It is asked, in this order:
//
//   EnterRow()                       a row of columns of stacks begins: sight enters fully along x
//   EnterColumn(column, corner)      a column begins: sight enters fully along z. `corner` is the lower corner of its first stack
//   Pass(view, number, corner, seen)  the next stack of the column, its `number` counted from its start: what is visible in it is
//                                     appended to `seen` at the heights of the view
//
// What waits for the stacks behind: along x the faces of one row's stacks, along y a face for every column and stack of it, along
// z one plate. A face holds 64 rows of 16 values, and one bit per height for rows that are fully lit or wholly dark; those cost
// nothing.
#pragma once

#include "../model/InstructionSet.h"
#include "StackView.h"
#include "VisibilitySweep.h"

#include <vector>

namespace brix::sight {

enum class Light
{
    Full,
    None,
    Mixed
};

class SightFace
{
public:
    SightFace() {} // rows are written before they are read

    std::uint64_t FullHeights() const { return full_; }
    std::uint64_t DarkHeights() const { return dark_; }

    /// Marks heights as fully lit or wholly dark.
    void Set(std::uint64_t heights, Light light)
    {
        full_ = light == Light::Full ? full_ | heights : full_ & ~heights;
        dark_ = light == Light::None ? dark_ | heights : dark_ & ~heights;
    }

    /// The values from a height on, with those of `count` rows written out.
    double* RowsForWriting(std::int64_t height, std::int64_t count)
    {
        for (std::int64_t h = height; h < height + count; ++h) {
            if (((full_ | dark_) >> h & 1) == 0) continue;
            std::fill_n(values_ + h * PlateWidth, PlateWidth, (full_ >> h & 1) != 0 ? 1.0 : 0.0);
        }
        return values_ + height * PlateWidth;
    }

    /// Finds out which of the rows that were written are fully lit or wholly dark.
    void Inspect(std::int64_t height, std::int64_t count)
    {
        for (std::int64_t h = height; h < height + count; ++h) {
            const double* const row = values_ + h * PlateWidth;
            const bool isUniform = std::all_of(row, row + PlateWidth, [row](double value) { return value == row[0]; });
            Set(HeightBits(h, h + 1), !isUniform ? Light::Mixed : LightOf(row[0]));
        }
    }

    static Light LightOf(double value) { return value == 1.0 ? Light::Full : value == 0.0 ? Light::None : Light::Mixed; }

private:
    std::uint64_t full_ = ~std::uint64_t{0};
    std::uint64_t dark_ = 0;
    double values_[StackHeight * PlateWidth];
};

/// Weights say how values mix: EnterColumn(corner) and AtHeights(corner, height) prepare the rule of the voxels from a height on.
template <class Weights> class ValueCarrier
{
public:
    ValueCarrier(const Weights& weights, const Triple& stackCount, double threshold, InstructionSet instructionSet)
        : weights_(weights),
          threshold_(threshold),
          instructionSet_(instructionSet),
          stacksPerColumn_(stackCount[2]),
          alongX_(static_cast<std::size_t>(stacksPerColumn_)),
          alongY_(static_cast<std::size_t>(stackCount[0] * stacksPerColumn_))
    {}

    void EnterRow()
    {
        for (SightFace& face : alongX_) face.Set(~std::uint64_t{0}, Light::Full);
    }

    void EnterColumn(std::int64_t column, const Triple& corner)
    {
        column_ = column;
        light_ = Light::Full;
        weights_.EnterColumn(corner);
    }

    void Pass(const StackView& view, std::int64_t number, const Triple& corner, StackBuilder& seen)
    {
        SightFace& x = alongX_[static_cast<std::size_t>(number)];
        SightFace& y = alongY_[static_cast<std::size_t>(column_ * stacksPerColumn_ + number)];
        for (std::int64_t height = view.Begin(); height < view.End();) {
            const std::int64_t steady = PassSteadily(view, height, x, y, seen);
            height += steady > 0 ? steady : PassMixed(view, height, x, y, weights_.AtHeights(corner, height), seen);
        }
    }

private:
    // Passes the heights from this one on that need no arithmetic, and returns their number; it may reach beyond the view. A
    // plate is dark where no light enters, or where its filled voxels stop all of it; lit where full light enters and nothing is
    // filled.
    std::int64_t PassSteadily(const StackView& view, std::int64_t height, SightFace& x, SightFace& y, StackBuilder& seen)
    {
        std::int64_t count = 0;
        if (light_ == Light::Full) count = CountSetFrom(height, x.FullHeights() & y.FullHeights() & view.EmptyHeights());
        if (count > 0) {
            seen.Append(height, view.Inside());
            return count;
        }
        if (light_ == Light::None) count = CountSetFrom(height, x.DarkHeights() & y.DarkHeights());
        if (count == 0) count = CountSetFrom(height, view.FullHeights());
        if (count > 0) {
            light_ = Light::None;
            x.Set(HeightBits(height, height + count), Light::None);
            y.Set(HeightBits(height, height + count), Light::None);
            seen.Append(height, {});
        }
        return count;
    }

    template <class Rule>
    std::int64_t PassMixed(const StackView& view, std::int64_t height, SightFace& x, SightFace& y, const Rule& rule,
                           StackBuilder& seen)
    {
        std::int64_t count = 1;
        const std::int64_t most = std::min(MaxPlates, view.End() - height);
        while (count < most && (view.FullHeights() >> (height + count) & 1) == 0) ++count;

        if (light_ != Light::Mixed) plane_.Fill(light_ == Light::Full ? 1.0 : 0.0);
        Stretch stretch{count, {}, {}, x.RowsForWriting(height, count), y.RowsForWriting(height, count), plane_, threshold_};
        std::array<VoxelPlate<bool>, MaxPlates> visible;
        RunWith(instructionSet_, [&] {
            const auto plates = static_cast<std::size_t>(count);
            for (std::size_t k = 0; k < plates; ++k) {
                stretch.filled.Put(k, view.PlateAt(height + static_cast<std::int64_t>(k)));
            }
            SweepPlates(stretch, rule);
            for (std::size_t k = 0; k < plates; ++k) visible[k] = stretch.visible.Get(k) & view.Inside();
        });
        for (std::int64_t k = 0; k < count; ++k) seen.Append(height + k, visible[static_cast<std::size_t>(k)]);
        x.Inspect(height, count);
        y.Inspect(height, count);
        light_ = plane_.IsUniform() ? SightFace::LightOf(plane_.FirstValue()) : Light::Mixed;
        return count;
    }

    Weights weights_;
    double threshold_;
    InstructionSet instructionSet_;
    std::int64_t stacksPerColumn_;
    std::vector<SightFace> alongX_;
    std::vector<SightFace> alongY_;
    std::int64_t column_ = 0;
    Light light_ = Light::Full; // of plane_, which is written only where it is mixed
    SightPlane plane_;
};

} // namespace brix::sight
