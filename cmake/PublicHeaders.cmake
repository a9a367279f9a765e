# Which headers are for hosts. Every header below engine/ is public, unless it is named here: these serve the engine's own sources,
# no public header includes them, and they are not installed. tools/dev/check-layers holds <brix.h> and the includes to this list.
set(BRIX_INTERNAL_HEADERS
    frame/Require.h
    model/CheckInvariants.h
    model/CombineStacks.h
    model/ForEachStack.h
    model/InstructionSet.h
    model/PropagateChunk.h
    triangles/BoxesOfStack.h
    triangles/ByteReader.h
    triangles/StlFormats.h
    triangles/TextNumbers.h
    triangles/TrianglePieces.h
    triangles/TriangleRaster.h)
