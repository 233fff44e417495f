// SPDX-License-Identifier: MIT
#include "filters/pattern_filter_def.h"
#include "filters/placeholder_pattern_filter_def.h"
#include "foundation/property_access.h"
#include "fs/path.h"
#include "platform/file_contents.h"

#include <QMetaProperty>
#include <QUrl>

namespace havrel {
namespace {

bool isNewline(QChar unit)
{
    switch (unit.unicode()) {
    case 0x0A: // line feed
    case 0x0B: // line tabulation
    case 0x0C: // form feed
    case 0x0D: // carriage return
    case 0x85: // next line
    case 0x2028:
    case 0x2029:
        return true;
    default:
        return false;
    }
}

QStringList linesOf(const QString& text)
{
    QStringList lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        if (i < text.size() && !isNewline(text[i]))
            continue;
        lines << text.sliced(start, i - start);
        start = i + 1;
    }
    return lines;
}

QString textOfFileAt(const QUrl& url)
{
    const JNPathPtr path = JNPath::withURL(url);
    if (!path)
        return {};
    const platform::FileContents contents = platform::readFile(path->cPath());
    if (contents.error != 0 || !contents.bytes.isValidUtf8())
        return {};
    return QString::fromUtf8(contents.bytes);
}

} // namespace

PatternFilterDefPtr PatternFilterDef::filterDefFromString(const QString& string, const QVariantMap& environment)
{
    auto definition = std::make_shared<PatternFilterDef>(string);
    definition->configure(environment);
    if (!definition->valid())
        return nullptr;
    definition->simplify();
    return definition;
}

PatternFilterDefs PatternFilterDef::filterDefsFromStrings(const QStringList& strings, const QVariantMap& environment)
{
    PatternFilterDefs definitions;
    for (const QString& string : strings)
        if (auto definition = filterDefFromString(string, environment))
            definitions << std::move(definition);
    return definitions;
}

PatternFilterDefs PatternFilterDef::filterDefsFromURL(const QUrl& url, const QVariantMap& environment)
{
    return filterDefsFromStrings(linesOf(textOfFileAt(url)), environment);
}

const QVariantMap& PatternFilterDef::repositoryEnvironment()
{
    static const QVariantMap s_environment{{QStringLiteral("rooted"), true}};
    return s_environment;
}

const QVariantMap& PatternFilterDef::itemEnvironment()
{
    static const QVariantMap s_environment;
    return s_environment;
}

PatternFilterDefPtr PatternFilterDef::filterDefPlaceholder()
{
    return std::make_shared<PlaceholderPatternFilterDef>();
}

void PatternFilterDef::configure(const QVariantMap& environment)
{
    for (auto setting = environment.begin(); setting != environment.end(); ++setting) {
        const KeyPath key = KeyPath::fromText(setting.key());
        (void)propertyNamed(*this, key); // a key is one name: a path, of which a part may be nil, is refused
        setValueAtKeyPath(*this, key, setting.value());
    }
}

} // namespace havrel
