// The value of one voxel, and the loop that computes it over a stretch of plates.
//
// Everything here runs towards larger x, y and z; who sweeps another way mirrors the plates. Values are carried in sixteen lanes,
// one per row y of the plates. Every lane is one voxel behind the lane before it, so that all sixteen values of a step are
// independent:
//
//   step     0   1   2   3  ..  15  16  17                     upstream along x   the lane's value of the last step
//   lane 0   0   1   2   3  ..  15   0'  1'    voxel x         upstream along y   the value of lane y - 1 of the last step
//   lane 1       0   1   2  ..  14  15   0'    of a plate,     upstream along z   the lane's value of 16 steps ago
//   lane 2           0   1  ..  13  14  15     ' of the next
//
// Lane y is at voxel  step - y  of the row that the plates' rows y form one behind the other.
#pragma once

#include "../model/VoxelPlate.h"

namespace brix::sight {

/// The most plates of one stretch.
inline constexpr std::int64_t MaxPlates = 16;

inline constexpr std::array<std::uint64_t, PlateWidth> LaneBits = [] {
    std::array<std::uint64_t, PlateWidth> bits{};
    for (std::size_t y = 0; y < bits.size(); ++y) bits[y] = std::uint64_t{1} << y;
    return bits;
}();

/// The value of an empty voxel: that of its upstream neighbours when all three agree, so that full sight and darkness travel
/// exactly, otherwise their mix. A mix of values up to 1 need not be held at 1. Rounding keeps order, so it is at most what three
/// ones give; that is (x + y + z) / (x + y + z), or s * n with s = x + y + z in 1 .. 1.74 and n = 1 / s: half a unit in the last
/// place of n, 2^-54, makes s * n less than 1 + 2^-53, which rounds to 1.
inline double ValueOfEmptyVoxel(double a, double b, double c, double mix) { return a == b && b == c ? a : mix; }

/// Mixes upstream values in the proportions of one direction: (a * x + b * y + c * z) * normaliser.
struct DirectionRule
{
    double x, y, z;
    double normaliser;

    struct Step
    {
        const DirectionRule& rule;
        double Mix(std::size_t, double a, double b, double c) const
        {
            return (a * rule.x + b * rule.y + c * rule.z) * rule.normaliser;
        }
    };
    Step At(std::int64_t) const { return {*this}; }
};

/// Mixes upstream values in the proportions of each voxel's own offset: (x * a + y * b + z * c) / (x + y + z).
struct OffsetRule
{
    alignas(64) std::array<double, PlateWidth * PlateWidth> x{}; // of column x in lane y, at (x + y) % 16 * 16 + y
    alignas(64) std::array<double, PlateWidth> y{};              // of row y
    std::array<double, MaxPlates + 2> z{};                       // of plate k, at k + 1

    struct Step
    {
        const double* x;
        const double* y;
        double here, before;         // of the plate that the first lanes have reached, and of the one below it
        std::uint64_t lanesThatHave; // reached it

        double Mix(std::size_t lane, double a, double b, double c) const
        {
            const double offsetZ = (lanesThatHave & LaneBits[lane]) != 0 ? here : before;
            return (x[lane] * a + y[lane] * b + offsetZ * c) / (x[lane] + y[lane] + offsetZ);
        }
    };
    Step At(std::int64_t step) const
    {
        const auto plate = static_cast<std::size_t>(step / PlateWidth);
        return {x.data() + step % PlateWidth * PlateWidth, y.data(), z[plate + 1], z[plate],
                (std::uint64_t{2} << step % PlateWidth) - 1};
    }
};

/// One bit per lane and step: bit  step % 64  of word  step / 64.  Plate k's row y is lane y's steps 16k + y to 16k + y + 15.
class LaneStreams
{
public:
    using Word = std::array<std::uint64_t, PlateWidth>;

    void Put(std::size_t k, const VoxelPlate<bool>& plate)
    {
        const std::size_t shift = k % 4 * PlateWidth;
        for (std::size_t y = 0; y < PlateWidth; ++y) words_[k / 4][y] |= std::uint64_t{plate.rows[y]} << (shift + y);
        if (shift < 48) return; // the next three plates do not reach the word's end
        for (std::size_t y = 0; y < PlateWidth; ++y) words_[k / 4 + 1][y] |= std::uint64_t{plate.rows[y]} >> (PlateWidth - y);
    }

    VoxelPlate<bool> Get(std::size_t k) const
    {
        const std::size_t shift = k % 4 * PlateWidth;
        return MakePlate([&](std::size_t y) {
            const std::uint64_t bits = words_[k / 4][y] >> (shift + y);
            return shift < 48 ? bits : bits | words_[k / 4 + 1][y] << (PlateWidth - y);
        });
    }

    Word& AtStep(std::int64_t step) { return words_[static_cast<std::size_t>(step / 64)]; }
    const Word& AtStep(std::int64_t step) const { return words_[static_cast<std::size_t>(step / 64)]; }

private:
    alignas(64) std::array<Word, MaxPlates / 4 + 1> words_{};
};

/// The values of one plate's voxels, those that are upstream along z of the next plate. Column (x + y) % 16 holds what the lanes
/// computed in one step; before its lanes there is room for what enters lane 0 a step later.
class SightPlane
{
public:
    SightPlane() {} // written before it is read

    double* Column(std::int64_t step) { return values_ + (step & (PlateWidth - 1)) * Stride + First; }

    void Fill(double value) { std::fill(std::begin(values_), std::end(values_), value); }

    /// Whether all sixteen times sixteen voxels have one value.
    bool IsUniform() const
    {
        for (std::int64_t step = 0; step < PlateWidth; ++step) {
            for (std::int64_t y = 0; y < PlateWidth; ++y) {
                if (values_[step * Stride + First + y] != values_[First]) return false;
            }
        }
        return true;
    }
    double FirstValue() const { return values_[First]; }

private:
    static constexpr std::int64_t First = 8;
    static constexpr std::int64_t Stride = First + PlateWidth + 8; // columns start at a cache line

    alignas(64) double values_[PlateWidth * Stride];
};

/// A stretch of plates and what surrounds it. Values are replaced where they stand: what enters by what leaves.
struct Stretch
{
    std::int64_t plates; // 1..MaxPlates
    LaneStreams filled;
    LaneStreams visible; // out: where the value is not less than the threshold
    double* alongX;      // entering at x = 0 and leaving at x = 15: rows of plate 0, of plate 1 and so on
    double* alongY;      // the same across y: columns of plate 0, of plate 1 and so on
    SightPlane& plane;   // below plate 0, then of the last plate
    double threshold;
};

enum class ActiveLanes
{
    All,
    Some // the first 15 and the last 15 steps
};

template <ActiveLanes active, class RuleStep>
inline void SweepStep(Stretch& stretch, std::int64_t step, const RuleStep& rule, double enteringX, std::uint64_t lanes)
{
    const std::uint64_t stepBit = std::uint64_t{1} << (step & 63);
    const std::uint64_t enteringLane = std::uint64_t{1} << (step & (PlateWidth - 1));
    const LaneStreams::Word& filled = stretch.filled.AtStep(step);
    LaneStreams::Word& visible = stretch.visible.AtStep(step);
    const double* const last = stretch.plane.Column(step - 1);
    double* const column = stretch.plane.Column(step);
    const double threshold = stretch.threshold;

    std::array<double, PlateWidth> values; // lanes read what others will overwrite
    for (std::size_t y = 0; y < PlateWidth; ++y) {
        const double a = (LaneBits[y] & enteringLane) != 0 ? enteringX : last[y];
        const double b = *(last + y - 1);
        const double c = column[y];
        const double ifEmpty = ValueOfEmptyVoxel(a, b, c, rule.Mix(y, a, b, c));
        const double value = (filled[y] & stepBit) != 0 ? 0.0 : ifEmpty;
        const bool isActive = active == ActiveLanes::All || (lanes & LaneBits[y]) != 0;
        visible[y] |= isActive && value >= threshold ? stepBit : 0;
        values[y] = isActive ? value : c;
    }
    for (std::size_t y = 0; y < PlateWidth; ++y) column[y] = values[y];
}

template <class Rule> inline void SweepPlates(Stretch& stretch, const Rule& rule)
{
    constexpr std::uint64_t allLanes = 0xFFFF;
    const std::int64_t length = PlateWidth * stretch.plates;
    for (std::int64_t step = 0; step < length + PlateWidth - 1; ++step) {
        const bool isEntering = step < length;
        if (step % PlateWidth == 0 && isEntering) {
            for (std::int64_t x = 0; x < PlateWidth; ++x) stretch.plane.Column(x - 1)[-1] = stretch.alongY[step + x];
        }
        const double enteringX = isEntering ? stretch.alongX[step] : 0.0;
        const std::uint64_t lanes = isEntering ? (step < PlateWidth ? (std::uint64_t{2} << step) - 1 : allLanes)
                                               : allLanes << (step - length + 1) & allLanes;
        if (lanes == allLanes)
            SweepStep<ActiveLanes::All>(stretch, step, rule.At(step), enteringX, lanes);
        else
            SweepStep<ActiveLanes::Some>(stretch, step, rule.At(step), enteringX, lanes);
        if (step < PlateWidth - 1) continue;
        // Lane 15 is at voxel step - 15 of its row, and one lane has just left its plate at x = 15: lane (step + 1) % 16.
        stretch.alongX[step - (PlateWidth - 1)] = stretch.plane.Column(step)[(step + 1) % PlateWidth];
        stretch.alongY[step - (PlateWidth - 1)] = stretch.plane.Column(step)[PlateWidth - 1];
    }
}

} // namespace brix::sight
