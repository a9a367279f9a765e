// Path models.
#include "Objects.h"

using namespace brix;
using namespace brix::capi;

std::int32_t brix_path_model_create(const brix_model* environment, std::int64_t voxel_lod, std::int64_t agent_diameter_offset,
                                    std::int64_t agent_height_offset, std::int32_t auto_adjust_extents, brix_path_model** result,
                                    brix_error* error)
{
    return Guarded(error, [&] {
        Make(result, Given(environment).voxels,
             PathModel(VoxelsOf(environment), voxel_lod, agent_diameter_offset, agent_height_offset, auto_adjust_extents != 0));
    });
}

void brix_path_model_free(brix_path_model* path_model) { delete path_model; }

std::int32_t brix_path_model_environment(const brix_path_model* path_model, brix_model** result, brix_error* error)
{
    return Guarded(error, [&] { Make(result, Given(path_model).environment); });
}

std::int32_t brix_path_model_traversable_voxels(const brix_path_model* path_model, brix_model** result, brix_error* error)
{
    return Guarded(error, [&] { MakeModel(result, VoxelModel<bool>(Given(path_model).pathModel.TraversableVoxels())); });
}

std::int32_t brix_path_model_voxel_lod(const brix_path_model* path_model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, [&] { Given(result) = Given(path_model).pathModel.VoxelLOD(); });
}

std::int32_t brix_path_model_agent_diameter_offset(const brix_path_model* path_model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, [&] { Given(result) = Given(path_model).pathModel.AgentDiameterOffset(); });
}

std::int32_t brix_path_model_agent_height_offset(const brix_path_model* path_model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, [&] { Given(result) = Given(path_model).pathModel.AgentHeightOffset(); });
}
