// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <string_view>
#include <vector>

namespace havrel {

/// The name of a property, or names joined by "." that lead over objects to one: "title", "document.author.name".
///
/// A small value that owns nothing. One written as a literal costs nothing to make; texts that are known only at run
/// time are kept for the life of the process, equal ones once.
///
/// Threads: any thread.
class KeyPath
{
public:
    /// Literals only, checked by the compiler: their characters never go away.
    consteval KeyPath(const char* literal) // NOLINT(google-explicit-constructor): reads like the text that it is
        : KeyPath(std::string_view(literal))
    {
    }

    [[nodiscard]] static KeyPath fromText(QStringView text);

    /// The names on the way, in order; one when there is no ".".
    [[nodiscard]] std::vector<KeyPath> names() const;
    [[nodiscard]] constexpr bool hasSeveralNames() const noexcept { return m_severalNames; }
    /// Ended by a NUL, which is not counted.
    [[nodiscard]] constexpr std::string_view chars() const noexcept { return {m_chars, m_size}; }
    [[nodiscard]] QString text() const;

    friend constexpr bool operator==(KeyPath left, KeyPath right) noexcept { return left.chars() == right.chars(); }

private:
    constexpr explicit KeyPath(std::string_view kept)
        : m_chars(kept.data())
        , m_size(static_cast<unsigned>(kept.size()))
        , m_severalNames(kept.find('.') != std::string_view::npos)
    {
    }

    static KeyPath kept(std::string_view chars);

    const char* m_chars;
    unsigned m_size;
    bool m_severalNames;
};

} // namespace havrel
