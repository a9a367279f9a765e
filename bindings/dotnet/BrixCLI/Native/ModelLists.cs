using System;
using System.Collections.Generic;

namespace BrixCLI;

// Lists of models on their way across.
internal static unsafe class ModelLists
{
    // The engine's models in the order of the list, with one more item, so that there is an address for an empty list.
    // A null is left to the engine, which has a message for it at its place among the others.
    internal static IntPtr[] Pointers(List<VoxelModelCLI> models, string parameter)
    {
        var pointers = new IntPtr[Arguments.Required(models, parameter).Count + 1];
        for (int i = 0; i < models.Count; ++i) pointers[i] = models[i].Optional(parameter + "[" + i + "]");
        return pointers;
    }

    // A wrapper for each model of a native list, which is freed; all or none.
    internal static List<VoxelModelCLI> Take(IntPtr models)
    {
        var wrappers = new List<VoxelModelCLI>();
        try {
            long count = Engine.Call<long>((result, error) => NativeMethods.brix_models_size(models, result, error));
            for (long i = 0; i < count; ++i) {
                long index = i;
                wrappers.Add(new VoxelModelCLI((result, error) => NativeMethods.brix_models_get(models, index, result, error)));
            }
            return wrappers;
        } catch {
            foreach (VoxelModelCLI wrapper in wrappers) wrapper.Dispose();
            throw;
        } finally {
            NativeMethods.brix_models_free(models);
        }
    }
}
