// The shortest way out of a model through empty voxels (breadth-first search), a plate of voxels at a time.
//
// A wave starts at a voxel and takes a step to all six sides at a time (Lee, "An algorithm for path connections and its
// applications", 1961). Of every voxel that it has come to, two bits are kept: its step modulo 3. As neighbours are one step
// apart, that is enough to find the way back (Akers, "A modification of Lee's path connection algorithm", 1967).
//
//   steps  2 3 4 5      kept  2 0 1 2      from the last voxel, a 2, the way back leads to a 1,
//          1 # 5 6            1 # 2 0      then to a 0, a 2, a 1, a 0
//          0 # # 7            0 # # 1
#pragma once

#include "LevelGrid.h"

#include <map>
#include <memory>
#include <vector>

namespace brix {

class Wavefront
{
public:
    /// The model must outlive it.
    explicit Wavefront(const VoxelModel<bool>& model);

    /// The voxels of a shortest way from an empty voxel of the extents to one at a face of them, each beside the next; none when
    /// there is no way. Of several ways it is the one to the lowest voxel by z, y and x, with few turns. To be called once.
    std::vector<Triple> WayOut(const Triple& start);

private:
    static constexpr std::size_t Heights = static_cast<std::size_t>(StackHeight);
    static constexpr std::int32_t None = -1;

    // A stack that the wave has come to.
    struct Place
    {
        Triple stack;
        std::array<VoxelPlate<bool>, Heights> open; // empty voxels inside the extents
        std::array<VoxelPlate<bool>, Heights> lowBit{};
        std::array<VoxelPlate<bool>, Heights> highBit{};
        std::array<std::int32_t, Heights> front{}; // number of the plate's front in the step at work, or None
        VoxelPlate<bool> rim;                      // its voxels at the faces across x and y
        std::int64_t lowestFace;                   // its heights at the faces across z; outside 0..63 when it has none
        std::int64_t highestFace;
        std::array<Place*, 4> beside{}; // lower x, upper x, lower y, upper y; null where not asked for yet
        std::array<Place*, 2> stacked{};
    };
    struct Front // voxels that the wave has just come to
    {
        Place* place;
        std::int64_t z;
        VoxelPlate<bool> voxels;
    };

    Place* PlaceAt(const Triple& stack);
    Place* Neighbour(const Place& place, Place*& known, const Triple& step);
    void Enter(Place* place, std::int64_t z, const VoxelPlate<bool>& voxels);
    void Spread(const Front& front);
    bool Settle(std::int64_t step, Triple& exit);
    std::int64_t CodeOf(const Triple& voxel) const;
    std::vector<Triple> WayBack(Triple voxel, std::int64_t steps) const;

    LevelGrid grid_;
    std::map<Triple, std::unique_ptr<Place>> places_;
    std::vector<Front> fronts_; // of the step at work
};

} // namespace brix
