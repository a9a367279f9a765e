// Seeing how far an operation has come, and ending it.
//
//     brix::Watch watch([&](double share) { bar.Show(share); return !bar.WasClosed(); });
//     const brix::VoxelModel<bool> grown = brix::ExpandHorizontally(model, 33, std::nullopt, true); // may throw Cancelled
#pragma once

#include "Compiler.h"

#include <chrono>
#include <exception>
#include <functional>

namespace brix {

/// Thrown by an operation whose watch said stop. What the operation was given is as it was before, what it had made is gone.
class Cancelled : public std::exception
{
public:
    const char* what() const noexcept override { return "The operation was cancelled."; }
};

/// While it lives, every operation of its thread asks it from time to time whether to go on: all that take longer than a tenth of
/// a second do, whatever header they come from. It is the only thing that operations are not given as arguments.
///
/// `goesOn`   gets the share that is done, from 0 to 1; it never falls. False makes the operation throw
///            Cancelled; what `goesOn` throws itself leaves the operation as well. Operations that it calls are not watched.
/// `pause`    the least time between two calls; with none, operations ask wherever they can
///
/// A watch is meant for one operation: for several see BeginPart. Watches nest: the operations of an inner one are told to the
/// outer ones as well, which may also stop them. It has to end on the thread on which it began, the innermost one first.
///
/// From false to the exception it takes a hundredth of a second or two, and the time to give back the memory of what was made so
/// far. Functions that change a model where it stands leave it unchanged, too, with these exceptions, which leave a well-formed
/// model with a part of the work done: VoxelizeTriangleModel, TriangleModel::AddWorldTriangles, PropagateLevel and what writes
/// voxel by voxel. A file whose writing was stopped is left incomplete. Cost without a watch: a comparison at each such place,
/// one for every few thousand voxels; with one, about 30 nanoseconds there.
class Watch
{
public:
    using Duration = std::chrono::steady_clock::duration;

    explicit Watch(std::function<bool(double share)> goesOn, Duration pause = std::chrono::milliseconds(10));
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
    ~Watch();

    /// What operations do from here on is told as the part of the whole up to `end`, a share up to 1 that is not less than the
    /// one before. The first part needs no end of its own when there is no other.
    void BeginPart(double end);

private:
    friend class WatchedLoop;
    friend void CheckWatch();

    void MoveTo(double share);
    void Ask();

    std::function<bool(double share)> goesOn_;
    Duration pause_;
    std::chrono::steady_clock::time_point lastAsked_;
    double share_ = 0; // that is done
    double end_ = 1;   // of the part at work
    Watch* outer_;
    double outerShare_ = 0; // the part of the outer watch that this one is
    double outerEnd_ = 0;
};

} // namespace brix
