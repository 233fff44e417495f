// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace havrel {

/// Memory for many small objects of one size that are made on one thread and die, soon, on another, where the heap is
/// slow. Each thread cuts its blocks off a slab of its own without a lock; a slab goes back to the heap with the last
/// of its blocks. So one object that lives long keeps a slab of 42 alive.
///
/// Threads: any thread.
template<std::size_t kSize>
class BlockPool
{
public:
    /// A block of kSize bytes, aligned for pointers.
    [[nodiscard]] static void* take()
    {
        if (!t_slab)
            renew();
        Slab* const slab = t_slab;
        Block& block = slab->blocks[slab->taken++];
        if (slab->taken == kBlocks)
            t_slab = nullptr; // from here on it may go at any time
        block.slab = slab;
        return block.bytes;
    }

    /// Gives a block back.
    static void give(void* bytes) noexcept
    {
        Slab* const slab = *std::launder(reinterpret_cast<Slab**>(static_cast<std::byte*>(bytes) -
                                                                  sizeof(Slab*))); // NOLINT(bugprone-sizeof-expression)
        letGo(slab, 1);
    }

private:
    static constexpr std::size_t kBlocks = 42; // about a page of log line identities

    struct Slab;
    struct Block
    {
        Slab* slab;
        alignas(void*) std::byte bytes[kSize]; // NOLINT(modernize-avoid-c-arrays): raw memory
    };
    struct Slab
    {
        std::size_t taken = 0;                    // by the thread that cuts blocks off it
        std::atomic<std::size_t> alive = kBlocks; // blocks that were not given back, or not yet taken
        std::array<Block, kBlocks> blocks;
    };

    /// Lets go of the thread's slab when the thread ends.
    struct ThreadEnd
    {
        ThreadEnd() = default;
        ThreadEnd(const ThreadEnd&) = delete;
        ThreadEnd& operator=(const ThreadEnd&) = delete;
        ~ThreadEnd()
        {
            if (Slab* const slab = std::exchange(t_slab, nullptr))
                letGo(slab, kBlocks - slab->taken);
        }
    };

    static void renew()
    {
        thread_local const ThreadEnd t_end;
        static_cast<void>(t_end);
        t_slab = std::make_unique_for_overwrite<Slab>().release();
    }

    static void letGo(Slab* slab, std::size_t blocks) noexcept
    {
        if (slab->alive.fetch_sub(blocks, std::memory_order_acq_rel) == blocks)
            std::default_delete<Slab>()(slab);
    }

    static inline thread_local Slab* t_slab = nullptr;
};

/// An allocator for std::allocate_shared that takes single objects from a BlockPool.
///
/// Threads: any thread.
template<class T>
struct PooledAllocator
{
    using value_type = T;

    PooledAllocator() = default;
    template<class Other>
    PooledAllocator(const PooledAllocator<Other>&) noexcept // NOLINT(google-explicit-constructor): allocators convert
    {
    }

    [[nodiscard]] T* allocate(std::size_t count)
    {
        static_assert(alignof(T) <= alignof(void*));
        if (count != 1)
            return std::allocator<T>().allocate(count);
        return static_cast<T*>(BlockPool<sizeof(T)>::take());
    }
    void deallocate(T* object, std::size_t count) noexcept
    {
        if (count == 1)
            BlockPool<sizeof(T)>::give(object);
        else
            std::allocator<T>().deallocate(object, count);
    }

    template<class Other>
    friend bool operator==(const PooledAllocator&, const PooledAllocator<Other>&)
    {
        return true;
    }
};

} // namespace havrel
