// What growth and shrinkage keep to, seen without a copy.
#pragma once

#include "../model/VoxelModel.h"

#include <optional>

namespace brix {

/// A model that guides an operation, or none: made of a model, of a pointer to one, which may be null, of an optional one, or of
/// std::nullopt. It only looks at the model, which has to live until the operation has returned.
class Guide
{
public:
    Guide() = default;
    Guide(std::nullopt_t) {}
    Guide(const VoxelModel<bool>& model) : model_(&model) {}
    Guide(const VoxelModel<bool>* model) : model_(model) {}
    Guide(const std::optional<VoxelModel<bool>>& model) : model_(model ? &*model : nullptr) {}

    explicit operator bool() const { return model_ != nullptr; }
    const VoxelModel<bool>& operator*() const { return *model_; }

private:
    const VoxelModel<bool>* model_ = nullptr;
};

} // namespace brix
