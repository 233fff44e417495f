// SPDX-License-Identifier: MIT
#include "filters/pattern_filter_def.h"

#include "filters/anchored_pattern.h"
#include "filters/pattern_component.h"
#include "foundation/observing.h"

#include <typeinfo>
#include <utility>

namespace havrel {
namespace {

constexpr QLatin1StringView kInvalidPattern{"Invalid pattern"}; // the failure reason of every compilation

void uncompileChanged(QObject* /*owner*/, QObject* object, const QVariant& /*before*/, const QVariant& /*now*/)
{
    static_cast<PatternFilterDef*>(object)->uncompile();
}

/// Equal, and both absent or neither.
bool areSameTexts(const QString& left, const QString& right)
{
    return left.isNull() == right.isNull() && left == right;
}

} // namespace

PatternFilterDef::PatternFilterDef()
{
    static const KeyPaths s_compiledFrom{"completePattern", "anchorPath", "singlePattern", "propagateIndefinitely"};
    observeProperties(*this, s_compiledFrom, uncompileChanged);
}

PatternFilterDef::PatternFilterDef(PatternType type)
    : PatternFilterDef()
{
    m_line.options.type = type;
}

PatternFilterDef::PatternFilterDef(const QString& pattern)
    : PatternFilterDef()
{
    m_completePattern = pattern;
}

Validity PatternFilterDef::validPattern(const QString& component, PatternType type)
{
    return validatePatternComponent(component, type);
}

bool PatternFilterDef::compile()
{
    if (compiled())
        return true;
    m_compileFailureDescription.clear();
    m_errorInPattern = false;
    if (!simple())
        return compileLine(m_completePattern);
    if (const PatternFault fault = faultOfAnchor(m_anchorPath); fault != PatternFault::None)
        return fail(patternFaultText(fault), false);
    if (const PatternFault fault = faultOfSinglePattern(m_singlePattern); fault != PatternFault::None)
        return fail(patternFaultText(fault), true);
    return compileLine(completeTextOf({m_anchorPath, m_singlePattern, m_line.options}));
}

bool PatternFilterDef::compileLine(QStringView text)
{
    PatternLineReading reading = readPatternLine(text, m_rooted ? AbsolutePaths::Permitted : AbsolutePaths::Refused);
    takeOver(reading);
    if (reading.fault != PatternFault::None)
        return fail(patternFaultText(reading.fault), reading.reachedOptions);
    m_effectiveDepth = static_cast<quint64>(reading.line.components.size()) + m_line.options.depth - 1;
    if (!validateComponents(reading.line))
        return false;
    m_line.components = std::move(reading.line.components);
    m_line.patternComponents = std::move(reading.line.patternComponents);
    return true;
}

/// What a line sets also when it has a fault: all of it, but for the depth where the fault came before the options.
void PatternFilterDef::takeOver(const PatternLineReading& reading)
{
    if (reading.fault == PatternFault::Incomplete)
        return;
    m_line.absolute = reading.line.absolute;
    m_line.options.type = reading.line.options.type;
    if (reading.reachedOptions)
        m_line.options.depth = reading.line.options.depth;
}

bool PatternFilterDef::validateComponents(const PatternLine& line)
{
    for (const IndexSet::Index index : line.patternComponents) {
        const Validity validity = validPattern(line.components[static_cast<qsizetype>(index)], m_line.options.type);
        if (!validity)
            return fail(validity.error->localizedDescription(), true);
    }
    return true;
}

bool PatternFilterDef::fail(const QString& description, bool inPattern)
{
    m_compileFailureDescription = description;
    m_errorInPattern = inPattern;
    return false;
}

void PatternFilterDef::uncompile()
{
    m_line.components.clear();
    m_line.patternComponents = {};
    m_compileFailureDescription.clear();
}

std::optional<Error> PatternFilterDef::compilationError() const
{
    if (m_compileFailureDescription.isNull())
        return std::nullopt;
    return filterError(filter_error::kDomain, kInvalidPattern, m_compileFailureDescription);
}

QString PatternFilterDef::canonicalPattern()
{
    if (!valid())
        return QLatin1StringView{""};
    return canonicalTextOf(m_line);
}

bool PatternFilterDef::simplify()
{
    if (simple())
        return true;
    if (!valid() || !isSimplifiable())
        return false;
    m_anchorPath = QLatin1StringView{m_line.absolute ? "/" : ""} +
                   m_line.components.first(m_line.components.size() - 1).join(u'/');
    m_singlePattern = m_line.components.constLast();
    m_completePattern = QString();
    return true;
}

bool PatternFilterDef::isSimplifiable() const
{
    const auto last = static_cast<IndexSet::Index>(m_line.components.size()) - 1;
    return m_line.patternComponents == IndexSet{last} &&
           (m_line.options.depth == 0 || m_line.options.depth == kIndefiniteDepth);
}

Validity PatternFilterDef::validateCompletePattern(const QString& proposed) const
{
    const PatternFilterDefPtr copy = plainCopy();
    copy->setCompletePattern(proposed);
    return copy->valid() ? Validity{} : Validity{copy->compilationError()};
}

Validity PatternFilterDef::validateAnchorPath(const QString& proposed) const
{
    const PatternFilterDefPtr copy = plainCopy();
    copy->setAnchorPath(proposed);
    return copy->valid() || copy->errorInPattern() ? Validity{} : Validity{copy->compilationError()};
}

Validity PatternFilterDef::validateSinglePattern(const QString& proposed) const
{
    const PatternFilterDefPtr copy = plainCopy();
    copy->setSinglePattern(proposed);
    return copy->valid() || !copy->errorInPattern() ? Validity{} : Validity{copy->compilationError()};
}

void PatternFilterDef::setRooted(bool rooted)
{
    assign(m_rooted, rooted, "rooted");
}

void PatternFilterDef::setType(PatternType type)
{
    const int before = typeNumber();
    m_line.options.type = type;
    if (before != typeNumber())
        reportChange("type", {.kind = ChangeKind::Setting, .oldValue = before, .newValue = typeNumber()});
}

void PatternFilterDef::setCompletePattern(const QString& completePattern)
{
    assign(m_completePattern, completePattern, "completePattern");
}

void PatternFilterDef::setAnchorPath(const QString& anchorPath)
{
    assign(m_anchorPath, anchorPath, "anchorPath");
}

void PatternFilterDef::setSinglePattern(const QString& singlePattern)
{
    assign(m_singlePattern, singlePattern, "singlePattern");
}

bool PatternFilterDef::propagateIndefinitely() const noexcept
{
    return m_line.options.depth == kIndefiniteDepth;
}

void PatternFilterDef::setPropagateIndefinitely(bool indefinitely)
{
    const bool before = propagateIndefinitely();
    m_line.options.depth = indefinitely ? kIndefiniteDepth : 0;
    if (before != indefinitely)
        reportChange("propagateIndefinitely",
                     {.kind = ChangeKind::Setting, .oldValue = before, .newValue = indefinitely});
}

PatternFilterDefPtr PatternFilterDef::copyWithZone()
{
    return std::static_pointer_cast<PatternFilterDef>(makeCopy());
}

std::shared_ptr<FilterDefinition> PatternFilterDef::makeCopy()
{
    return plainCopy();
}

PatternFilterDefPtr PatternFilterDef::plainCopy() const
{
    auto copy = std::make_shared<PatternFilterDef>();
    copy->m_line = m_line;
    copy->m_line.absolute = false;
    copy->m_completePattern = m_completePattern;
    copy->m_anchorPath = m_anchorPath;
    copy->m_singlePattern = m_singlePattern;
    copy->m_rooted = m_rooted;
    return copy;
}

bool PatternFilterDef::isEqual(const FilterDefinition& other) const
{
    if (typeid(other) != typeid(PatternFilterDef))
        return false;
    const auto& same = static_cast<const PatternFilterDef&>(other);
    if (simple() != same.simple())
        return false;
    if (!simple())
        return m_completePattern == same.m_completePattern;
    return m_line.options == same.m_line.options && areSameTexts(m_anchorPath, same.m_anchorPath) &&
           areSameTexts(m_singlePattern, same.m_singlePattern);
}

std::size_t PatternFilterDef::hash() const noexcept
{
    const auto type = static_cast<std::size_t>(m_line.options.type) << 8U;
    return qHash(m_line.components, 0) ^ qHash(m_line.patternComponents, 0) ^ type ^ m_line.options.depth;
}

} // namespace havrel
