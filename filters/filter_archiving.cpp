// SPDX-License-Identifier: MIT
#include "filters/filter_archiving.h"

#include "filters/exclude_patterns_filter_def.h"
#include "filters/placeholder_pattern_filter_def.h"
#include "foundation/coder.h"

#include <typeinfo>

namespace havrel {
namespace {

using FilterDefinitionPtr = std::shared_ptr<FilterDefinition>;

FilterDefinitionPtr definitionIn(const QVariant& object)
{
    return object.metaType() == QMetaType::fromType<FilterDefinitionPtr>() ? object.value<FilterDefinitionPtr>()
                                                                           : nullptr;
}

/// The row of one class; \p superclasses are those of the family, nearest first.
template<class Definition>
ArchivableClass archivable(const char* name, QStringList superclasses)
{
    ArchivableClass row;
    row.name = QLatin1StringView{name};
    row.superclasses = std::move(superclasses << QStringLiteral("NSObject"));
    row.isInstance = [](const QVariant& object) {
        const FilterDefinitionPtr definition = definitionIn(object);
        if (!definition)
            return false;
        const FilterDefinition& found = *definition;
        return typeid(found) == typeid(Definition);
    };
    row.identity = [](const QVariant& object) -> const void* { return definitionIn(object).get(); };
    row.encode = [](const QVariant& object, Encoder& encoder) { definitionIn(object)->encodeWithCoder(encoder); };
    row.decode = [](Decoder& decoder) {
        return QVariant::fromValue<FilterDefinitionPtr>(std::make_shared<Definition>(decoder));
    };
    row.supportsSecureCoding = Definition::supportsSecureCoding();
    return row;
}

} // namespace

bool registerFilterDefinitions()
{
    const QString base = QStringLiteral("FilterDefinition");
    const QString items = QStringLiteral("ExcludeMultipleItemsFilterDef");
    const QString pattern = QStringLiteral("PatternFilterDef");
    for (const ArchivableClass& row :
         {archivable<FilterDefinition>("FilterDefinition", {}),
          archivable<ExcludeMultipleItemsFilterDef>("ExcludeMultipleItemsFilterDef", {base}),
          archivable<ExcludePatternsFilterDef>("ExcludePatternsFilterDef", {items, base}),
          archivable<PatternFilterDef>("PatternFilterDef", {base}),
          archivable<PlaceholderPatternFilterDef>("PlaceholderPatternFilterDef", {pattern, base})})
        registerArchivableClass(row);
    return true;
}

} // namespace havrel
