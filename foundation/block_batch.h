// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/queued_block.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

namespace havrel {

/// Blocks in the order they came. Room for them is taken in chunks, never moved, and kept for the next ones.
///
/// Threads: one thread at a time.
class BlockBatch
{
public:
    [[nodiscard]] bool isEmpty() const noexcept { return m_size == 0; }

    void push(const QueuedBlock::Source& block)
    {
        if (m_size == m_chunks.size() * kChunkBlocks)
            m_chunks.push_back(std::make_unique_for_overwrite<Chunk>());
        at(m_size).take(block);
        ++m_size;
    }

    /// Hands every block to \p visit, and lets go of what it holds before the next one.
    template<class Visit>
    void drain(const Visit& visit)
    {
        for (std::size_t i = 0; i < m_size; ++i) {
            visit(at(i));
            at(i).reset();
        }
        m_size = 0;
        if (m_chunks.size() > kMostChunksKept)
            m_chunks.resize(kMostChunksKept);
    }

    void swap(BlockBatch& other) noexcept
    {
        m_chunks.swap(other.m_chunks);
        std::swap(m_size, other.m_size);
    }

private:
    static constexpr std::size_t kChunkBlocks = 256;
    static constexpr std::size_t kMostChunksKept = 16; // half a megabyte

    using Chunk = std::array<QueuedBlock, kChunkBlocks>;

    QueuedBlock& at(std::size_t i) { return (*m_chunks[i / kChunkBlocks])[i % kChunkBlocks]; }

    std::vector<std::unique_ptr<Chunk>> m_chunks;
    std::size_t m_size = 0;
};

} // namespace havrel
