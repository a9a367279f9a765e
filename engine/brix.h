// The whole public interface of Brix, in the order in which data flows.
#pragma once

#include "brix/frame/Compiler.h"

#include "brix/frame/Lattice.h"
#include "brix/frame/Triples.h"

#include "brix/frame/Axes.h"
#include "brix/frame/Extents.h"
#include "brix/frame/NotEnoughMemory.h"
#include "brix/frame/Watch.h"
#include "brix/frame/WatchedLoop.h"

#include "brix/model/StackLattice.h"

#include "brix/model/LevelBounds.h"
#include "brix/model/VoxelPlate.h"
#include "brix/model/VoxelStack.h"
#include "brix/model/VoxelStore.h"

#include "brix/model/ChunkTable.h"
#include "brix/model/ReaderChunks.h"
#include "brix/model/SpinLock.h"

#include "brix/model/Model.h"
#include "brix/model/VoxelChunk.h"
#include "brix/model/VoxelModel.h"

#include "brix/model/AreFilled.h"
#include "brix/model/FilledRuns.h"
#include "brix/model/ModelSize.h"
#include "brix/model/StackIterator.h"
#include "brix/model/VoxelArrays.h"
#include "brix/model/VoxelIterator.h"

#include "brix/model/PropagateLevel.h"

#include "brix/storage/Murmur3.h"
#include "brix/storage/SavedModel.h"
#include "brix/storage/VoxelFiles.h"

#include "brix/triangles/Triangle.h"
#include "brix/triangles/TriangleMesh.h"
#include "brix/triangles/TriangleModel.h"

#include "brix/triangles/MeshReport.h"
#include "brix/triangles/StlFiles.h"
#include "brix/triangles/StlReader.h"

#include "brix/triangles/Cuboidization.h"
#include "brix/triangles/Solidization.h"
#include "brix/triangles/SurfaceMesh.h"
#include "brix/triangles/Tessellation.h"
#include "brix/triangles/Voxelization.h"
#include "brix/triangles/VoxelizationEstimate.h"
#include "brix/triangles/Voxelize.h"

#include "brix/operations/AutoSplit.h"
#include "brix/operations/BasicOperations.h"
#include "brix/operations/DensityMap.h"
#include "brix/operations/FillOperations.h"
#include "brix/operations/Guide.h"
#include "brix/operations/LabelRegions.h"
#include "brix/operations/Leaks.h"
#include "brix/operations/MemoryEstimates.h"
#include "brix/operations/ProximityOperations.h"
#include "brix/operations/SliceRows.h"
#include "brix/operations/SolidOperations.h"
#include "brix/operations/SurfaceOperations.h"

#include "brix/travel/PathModel.h"
#include "brix/travel/TraversableGraph.h"

#include "brix/travel/DistanceField.h"

#include "brix/travel/Path.h"

#include "brix/visibility/Visibility.h"
