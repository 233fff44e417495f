// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace havrel {

/// Room for something that a queue runs once: any callable without arguments, which need not be copyable. One of at
/// most 120 bytes is held in place; a larger one is put on the heap. Stays where it is, so that what it holds is moved
/// only once, from the caller into the queue.
///
/// A type may name another as its `QueuedAs`: that one is made of it in place, and run. So a request that refers to
/// what its caller has becomes a callable that owns it, with one copy of each part.
///
/// Threads: one thread at a time.
class QueuedBlock
{
    template<class Callable>
    struct QueuedForm
    {
        using Type = Callable;
    };
    template<class Callable>
    requires requires { typename Callable::QueuedAs; }
    struct QueuedForm<Callable>
    {
        using Type = typename Callable::QueuedAs;
    };
    template<class Callable>
    using QueuedAs = typename QueuedForm<std::decay_t<Callable>>::Type;

public:
    /// A callable that is about to be queued; refers to it.
    class Source
    {
    public:
        template<class Callable>
        requires(!std::same_as<std::remove_cvref_t<Callable>, Source> && std::invocable<QueuedAs<Callable>&>)
            Source(Callable&& callable) // NOLINT(google-explicit-constructor,bugprone-forwarding-reference-overload):
                                        // stands where a callable is expected
            : m_callable(const_cast<void*>(static_cast<const void*>(std::addressof(callable))))
            , m_place(placeFrom<Callable&&>)
        {
        }

    private:
        friend class QueuedBlock;
        void* m_callable;
        void (*m_place)(QueuedBlock& block, void* callable);
    };

    QueuedBlock() noexcept {} // NOLINT(modernize-use-equals-default): leaves the storage as it is
    QueuedBlock(const QueuedBlock&) = delete;
    QueuedBlock& operator=(const QueuedBlock&) = delete;
    QueuedBlock(QueuedBlock&&) = delete;
    QueuedBlock& operator=(QueuedBlock&&) = delete;
    ~QueuedBlock() { reset(); }

    /// Takes what \p source refers to, in place of what was held.
    void take(const Source& source)
    {
        reset();
        source.m_place(*this, source.m_callable);
    }
    /// Runs what is held; there must be something.
    void operator()() { m_operations->run(m_storage); }
    /// Lets go of what is held.
    void reset() noexcept
    {
        if (m_operations)
            std::exchange(m_operations, nullptr)->destroy(m_storage);
    }

private:
    static constexpr std::size_t kSize = 120; // with the pointer, two cache lines

    struct Operations
    {
        void (*run)(void* held);
        void (*destroy)(void* held) noexcept;
    };

    template<class Held>
    struct OnHeap
    {
        std::unique_ptr<Held> held;
        void operator()() { (*held)(); }
    };

    template<class Held>
    static constexpr Operations kOperations{[](void* held) { (*static_cast<Held*>(held))(); },
                                            [](void* held) noexcept { static_cast<Held*>(held)->~Held(); }};

    template<class Callable>
    static void placeFrom(QueuedBlock& block, void* callable)
    {
        using Held = QueuedAs<Callable>;
        auto&& source = static_cast<Callable>(*static_cast<std::remove_reference_t<Callable>*>(callable));
        // NOLINTNEXTLINE(misc-redundant-expression): what the two sizes are depends on the callable
        if constexpr (sizeof(Held) <= kSize && alignof(Held) <= alignof(void*))
            block.hold<Held>(std::forward<Callable>(source));
        else
            block.hold<OnHeap<Held>>(OnHeap<Held>{std::make_unique<Held>(std::forward<Callable>(source))});
    }

    template<class Held, class From>
    void hold(From&& from)
    {
        ::new (static_cast<void*>(m_storage)) Held(std::forward<From>(from));
        m_operations = &kOperations<Held>;
    }

    const Operations* m_operations = nullptr;
    alignas(void*) std::byte m_storage[kSize]; // NOLINT(modernize-avoid-c-arrays): raw memory
};

} // namespace havrel
