// A model as bytes: to a file, a database or another process and back, and a fingerprint of its content. docs/format.md describes
// the bytes, so that others can read them.
#pragma once

#include "../model/VoxelModel.h"
#include "Murmur3.h"

#include <iosfwd>
#include <span>
#include <vector>

namespace brix {

/// Writes a model: its frame, extents and levels, and what each level holds. Models of equal content give equal bytes, however
/// they are stored and wherever they were made; they take less than the model does in memory. The levels are written as they are,
/// also where they do not follow from each other.
/// Throws std::runtime_error when the stream fails. Cost: linear in what is stored.
void SaveModel(const VoxelModel<bool>& model, std::ostream& stream);
[[nodiscard]] std::vector<std::uint8_t> SaveModel(const VoxelModel<bool>& model);

/// The model that was saved. From a stream, its bytes are read and no more.
/// Throws std::runtime_error with a sentence when the bytes are no saved model, of a version that this one does not know, cut
/// off, or damaged: nothing else comes of bytes that are not what SaveModel has written. Throws std::bad_alloc when memory runs
/// out. Cost: linear in the bytes. Memory: the model's, at most 150 times the bytes and 4 MB, also for bytes that lie about their
/// content.
[[nodiscard]] VoxelModel<bool> LoadModel(std::istream& stream);
[[nodiscard]] VoxelModel<bool> LoadModel(std::span<const std::uint8_t> bytes);

/// 128 bits of a model's content: frame, extents, levels and voxels, the last 16 bytes of what SaveModel writes. Equal contents
/// have equal hashes, on every platform; contents that differ have different ones, but for one in 2^64 pairs and for those that
/// somebody makes on purpose.
/// Method: MurmurHash3 x64_128. Cost: linear in what is stored.
[[nodiscard]] Hash128 ContentHash(const VoxelModel<bool>& model);

} // namespace brix
