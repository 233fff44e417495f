// SPDX-License-Identifier: MIT
#pragma once

#include "filters/filter_definition.h"
#include "filters/pattern_filter_defs.h"
#include "filters/pattern_line.h"
#include "filters/validity.h"

#include <QVariantMap>

class QUrl;

namespace havrel {

/// One exclusion pattern: what stands in a line such as `Library//Caches` or `//*.tmp/+:glob`.
///
/// Has one of two forms. In complete form it holds the line; in simple form, which lasts while there is no line, it
/// holds an anchor path and a single pattern, to be edited apart. Compiling reads either into components. What is
/// compiled stays until a setter changes the line, the anchor, the pattern or the switch for indefinite depth;
/// `simplify`, decoding and the constructors write fields directly and leave it. Faults of a pattern are values, never
/// thrown.
///
/// Texts tell absence (null) from emptiness: an empty line is a complete form.
///
/// Threads: one thread at a time.
class PatternFilterDef : public FilterDefinition
{
    Q_OBJECT
    Q_PROPERTY(bool rooted READ rooted WRITE setRooted)
    Q_PROPERTY(bool absolute READ absolute)
    Q_PROPERTY(int type READ typeNumber WRITE setTypeNumber)
    Q_PROPERTY(QString completePattern READ completePattern WRITE setCompletePattern)
    Q_PROPERTY(QString anchorPath READ anchorPath WRITE setAnchorPath)
    Q_PROPERTY(QString singlePattern READ singlePattern WRITE setSinglePattern)
    Q_PROPERTY(quint64 depth READ depth)
    Q_PROPERTY(quint64 effectiveDepth READ effectiveDepth)
    Q_PROPERTY(bool propagateIndefinitely READ propagateIndefinitely WRITE setPropagateIndefinitely)

public:
    PatternFilterDef();                          ///< Simple, with nothing in it. \selector init
    explicit PatternFilterDef(PatternType type); ///< Simple, of that type. \selector initWithType:
    /// Complete, unless \p pattern is null. \selector initWithPattern:
    explicit PatternFilterDef(const QString& pattern);
    /// \throws HVException "Bug" when the archive holds other objects than texts. \selector initWithCoder:
    explicit PatternFilterDef(Decoder& decoder);
    void encodeWithCoder(Encoder& encoder) const override; ///< \selector encodeWithCoder:

    /// The simplified definition of a valid line; null for any other. \selector filterDefFromString:environment:
    [[nodiscard]] static PatternFilterDefPtr filterDefFromString(const QString& string, const QVariantMap& environment);
    /// Those of the valid lines, in order. \selector filterDefsFromStrings:environment:
    [[nodiscard]] static PatternFilterDefs filterDefsFromStrings(const QStringList& strings,
                                                                 const QVariantMap& environment);
    /// Those of the valid lines of the file at \p url; none when it cannot be read or is not UTF-8 throughout. Lines
    /// end at U+000A to U+000D, U+0085, U+2028 or U+2029. Blocks on the disk.
    ///
    /// \selector filterDefsFromURL:environment:
    [[nodiscard]] static PatternFilterDefs filterDefsFromURL(const QUrl& url, const QVariantMap& environment);
    /// For patterns that belong to an archive: absolute ones are permitted. \selector repositoryEnvironment
    [[nodiscard]] static const QVariantMap& repositoryEnvironment();
    /// For patterns that belong to an item: sets nothing. \selector itemEnvironment
    [[nodiscard]] static const QVariantMap& itemEnvironment();
    /// A new stand-in for patterns that differ between items. \selector filterDefPlaceholder
    [[nodiscard]] static PatternFilterDefPtr filterDefPlaceholder();
    /// Whether \p component is well-formed for \p type. \selector validPattern:type:error:
    [[nodiscard]] static Validity validPattern(const QString& component, PatternType type);

    /// Sets the property of each key to its value, in the order of the keys.
    ///
    /// \selector configure:
    /// \throws HVException "Bug" for a key that names no property, one that cannot be set, or a value that does not
    /// fit;
    ///         the properties before it are set.
    void configure(const QVariantMap& environment);

    /// Reads the line, or what the anchor and the pattern stand for; nothing when that is done already. Takes time
    /// linear in the length of a glob line.
    ///
    /// \selector compile
    /// \return whether the definition is valid; else compilationError and errorInPattern tell why not.
    [[nodiscard]] bool compile();
    void uncompile();                                ///< Forgets what compile found. \selector uncompile
    [[nodiscard]] bool valid() { return compile(); } ///< \selector valid
    [[nodiscard]] bool compiled() const noexcept { return !m_line.components.isEmpty(); } ///< \selector compiled
    /// Why the last compilation failed; none when it did not. \selector compilationError
    [[nodiscard]] std::optional<Error> compilationError() const;
    /// The line in its usual form, empty when not valid. It does not always read back as the same pattern, see
    /// canonicalTextOf. \selector canonicalPattern
    [[nodiscard]] virtual QString canonicalPattern();
    /// Turns the complete form into the simple one where that loses nothing: exactly one pattern, at the end, of depth
    /// 0 or indefinite. What was compiled stays.
    ///
    /// \selector simplify
    /// \return whether it is in simple form now.
    bool simplify();

    /// Whether the definition would be valid with \p proposed as its line; nothing is changed.
    /// \selector validateCompletePattern:error:
    [[nodiscard]] Validity validateCompletePattern(const QString& proposed) const;
    /// Whether \p proposed will do as the anchor, whatever the pattern. \selector validateAnchorPath:error:
    [[nodiscard]] Validity validateAnchorPath(const QString& proposed) const;
    /// Whether \p proposed will do as the pattern, whatever the anchor. \selector validateSinglePattern:error:
    [[nodiscard]] Validity validateSinglePattern(const QString& proposed) const;

    /// The names and patterns without the options; empty while not compiled. \selector components
    [[nodiscard]] const QStringList& components() const noexcept { return m_line.components; }
    /// Which of the components are patterns; empty while not compiled. \selector patternComponents
    [[nodiscard]] const IndexSet& patternComponents() const noexcept { return m_line.patternComponents; }
    /// Null when the last compilation did not fail. \selector compileFailureDescription
    [[nodiscard]] const QString& compileFailureDescription() const noexcept { return m_compileFailureDescription; }
    /// The last failure lies in the pattern, not in the anchor. \selector errorInPattern
    [[nodiscard]] bool errorInPattern() const noexcept { return m_errorInPattern; }

    [[nodiscard]] bool rooted() const noexcept { return m_rooted; } ///< absolute paths are permitted. \selector rooted
    void setRooted(bool rooted);                                    ///< \selector setRooted:
    /// As the last compilation found; a copy has lost it. \selector absolute
    [[nodiscard]] bool absolute() const noexcept { return m_line.absolute; }
    [[nodiscard]] PatternType type() const noexcept { return m_line.options.type; } ///< \selector type
    void setType(PatternType type); ///< Leaves what is compiled. \selector setType:
    /// Null in simple form. \selector completePattern
    [[nodiscard]] const QString& completePattern() const noexcept { return m_completePattern; }
    /// \selector setCompletePattern:
    void setCompletePattern(const QString& completePattern);
    [[nodiscard]] const QString& anchorPath() const noexcept { return m_anchorPath; } ///< \selector anchorPath
    void setAnchorPath(const QString& anchorPath);                                    ///< \selector setAnchorPath:
    [[nodiscard]] const QString& singlePattern() const noexcept { return m_singlePattern; } ///< \selector singlePattern
    void setSinglePattern(const QString& singlePattern); ///< \selector setSinglePattern:
    /// Levels below the matched item; kIndefiniteDepth for all. \selector depth
    [[nodiscard]] quint64 depth() const noexcept { return m_line.options.depth; }
    /// Number of components + depth - 1, wrapping; as the last compilation found. \selector effectiveDepth
    [[nodiscard]] quint64 effectiveDepth() const noexcept { return m_effectiveDepth; }

    [[nodiscard]] bool simple() const noexcept { return m_completePattern.isNull(); } ///< \selector simple
    [[nodiscard]] bool propagateIndefinitely() const noexcept; ///< \selector propagateIndefinitely
    /// Makes the depth indefinite, or 0. \selector setPropagateIndefinitely:
    void setPropagateIndefinitely(bool indefinitely);
    [[nodiscard]] QString typeSuffix() const
    {
        return typeSuffixOf(m_line.options.type);
    } ///< "re" or "glob". \selector typeSuffix
    /// \selector multiplePatternsPlaceholder
    [[nodiscard]] virtual bool multiplePatternsPlaceholder() const noexcept { return false; }

    /// A copy that shares what is compiled, but whose `absolute` and `effectiveDepth` are clear until it is compiled
    /// anew. \selector copyWithZone:
    [[nodiscard]] PatternFilterDefPtr copyWithZone();
    /// Whether \p other is of exactly this class and the same form, with the same line, or the same type, depth, anchor
    /// and pattern. Not whether they mean the same. \selector isEqual:
    [[nodiscard]] bool isEqual(const FilterDefinition& other) const override;
    /// Made of the compiled state: equal definitions hash alike only when both are compiled or neither is.
    /// \selector hash
    [[nodiscard]] std::size_t hash() const noexcept;

protected:
    [[nodiscard]] std::shared_ptr<FilterDefinition> makeCopy() override;

private:
    [[nodiscard]] PatternFilterDefPtr plainCopy() const;
    [[nodiscard]] int typeNumber() const noexcept { return static_cast<int>(m_line.options.type); }
    void setTypeNumber(int type) { setType(static_cast<PatternType>(type)); }

    void encodeSimpleForm(Encoder& encoder) const;
    [[nodiscard]] bool compileLine(QStringView text);
    [[nodiscard]] bool validateComponents(const PatternLine& line);
    void takeOver(const PatternLineReading& reading);
    bool fail(const QString& description, bool inPattern);
    [[nodiscard]] bool isSimplifiable() const;

    PatternLine m_line; // has components while compiled, and only then; its options count always
    QString m_compileFailureDescription;
    QString m_completePattern;
    QString m_anchorPath;
    QString m_singlePattern;
    quint64 m_effectiveDepth = 0;
    bool m_errorInPattern = false;
    bool m_rooted = false;
};

} // namespace havrel
