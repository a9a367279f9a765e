// Chunks that readers of a model asked for where none is stored. Reading may not change a model that several threads read, so
// these stand beside it, made under a lock; the first writer of such a place takes its chunk over, and references to it go on
// holding.
#pragma once

#include "../frame/Triples.h"
#include "SpinLock.h"

#include <map>
#include <memory>

namespace brix {

template <class Chunk> class ReaderChunks
{
public:
    ReaderChunks() = default;
    ReaderChunks(const ReaderChunks&) {} // a copy has readers of its own
    ReaderChunks(ReaderChunks&& other) noexcept : chunks_(std::move(other.chunks_)) {}
    ReaderChunks& operator=(ReaderChunks other) noexcept
    {
        chunks_ = std::move(other.chunks_);
        return *this;
    }
    ~ReaderChunks() = default;

    /// The chunk of a place, made by make() (a unique_ptr) when it is asked for first. May be called by several threads.
    template <class Make> const Chunk& FindOrMake(const Triple& chunkIndices, const Make& make)
    {
        const SpinLock::Holder holder(isBusy_);
        if (chunks_ == nullptr) chunks_ = std::make_unique<Chunks>();
        std::unique_ptr<Chunk>& chunk = (*chunks_)[chunkIndices];
        if (chunk == nullptr) chunk = make();
        return *chunk;
    }

    /// Gives a chunk away; null when nobody asked for it.
    std::unique_ptr<Chunk> Take(const Triple& chunkIndices)
    {
        if (chunks_ == nullptr) return nullptr;
        const auto node = chunks_->extract(chunkIndices);
        return node.empty() ? nullptr : std::move(node.mapped());
    }

private:
    using Chunks = std::map<Triple, std::unique_ptr<Chunk>>;

    SpinLock isBusy_;
    std::unique_ptr<Chunks> chunks_; // none, mostly
};

} // namespace brix
