// Changes to a model where it stands, all or nothing.
#pragma once

#include "VoxelModel.h"

#include <utility>

namespace brix {

/// Calls change(model). Where a watch may end that half-way, a copy is changed and then takes the model's place.
template <class Change> void ChangeWhole(VoxelModel<bool>& model, const Change& change)
{
    if (!WatchedLoop::IsWatched()) return change(model);
    VoxelModel<bool> copy = model;
    change(copy);
    model = std::move(copy);
}

} // namespace brix
