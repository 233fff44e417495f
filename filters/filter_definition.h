// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/observable.h"

#include <QString>

#include <memory>

namespace havrel {

class Decoder;
class Encoder;

/// What is to be left out of a capture. The base of all definitions; says nothing by itself.
///
/// Definitions are shared: they are made by std::make_shared and handed on as std::shared_ptr.
///
/// Threads: one thread at a time.
class FilterDefinition : public Observable, public std::enable_shared_from_this<FilterDefinition>
{
    Q_OBJECT

public:
    FilterDefinition() = default;                         ///< \selector init
    explicit FilterDefinition(Decoder& decoder);          ///< Reads nothing. \selector initWithCoder:
    virtual void encodeWithCoder(Encoder& encoder) const; ///< Writes nothing. \selector encodeWithCoder:

    /// Archives may be decoded with a restriction to these classes. \selector supportsSecureCoding
    [[nodiscard]] static constexpr bool supportsSecureCoding() noexcept { return true; }

    /// A new object of the receiver's own class, with its fields as that class copies them. \selector copyWithZone:
    [[nodiscard]] std::shared_ptr<FilterDefinition> copyWithZone() { return makeCopy(); }
    /// Empty. \selector description
    [[nodiscard]] virtual QString description() const;
    /// Whether they are the same object; classes with fields compare those. \selector isEqual:
    [[nodiscard]] virtual bool isEqual(const FilterDefinition& other) const;

protected:
    [[nodiscard]] virtual std::shared_ptr<FilterDefinition> makeCopy();
};

} // namespace havrel
