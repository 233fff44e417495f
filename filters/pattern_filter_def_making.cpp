// SPDX-License-Identifier: MIT
#include "filters/pattern_file_lines.h"
#include "filters/pattern_filter_def.h"
#include "filters/placeholder_pattern_filter_def.h"
#include "foundation/property_access.h"
#include "fs/path.h"
#include "platform/file_contents.h"

#include <QMetaProperty>
#include <QUrl>

namespace havrel {
namespace {

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
    return filterDefsFromStrings(linesOfPatternFile(textOfFileAt(url)), environment);
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
