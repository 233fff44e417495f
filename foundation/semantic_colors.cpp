// SPDX-License-Identifier: MIT
#include "foundation/semantic_colors.h"

#include "foundation/process.h"

#include <QGuiApplication>
#include <QPalette>

#include <algorithm>
#include <array>

namespace havrel {
namespace {

struct NamedColor
{
    QLatin1StringView name;
    QPalette::ColorRole role; // NoRole: the fixed colour
    QRgb fixed = 0;
};

constexpr auto kNamedColors = std::to_array<NamedColor>({
    {QLatin1StringView("controlAccentColor"), QPalette::Highlight},
    {QLatin1StringView("controlBackgroundColor"), QPalette::Base},
    {QLatin1StringView("controlColor"), QPalette::Button},
    {QLatin1StringView("controlTextColor"), QPalette::ButtonText},
    {QLatin1StringView("darkGrayColor"), QPalette::NoRole, qRgb(0x55, 0x55, 0x55)},
    {QLatin1StringView("grayColor"), QPalette::NoRole, qRgb(0x80, 0x80, 0x80)},
    {QLatin1StringView("labelColor"), QPalette::WindowText},
    {QLatin1StringView("lightGrayColor"), QPalette::NoRole, qRgb(0xAA, 0xAA, 0xAA)},
    {QLatin1StringView("linkColor"), QPalette::Link},
    {QLatin1StringView("placeholderTextColor"), QPalette::PlaceholderText},
    {QLatin1StringView("secondaryLabelColor"), QPalette::PlaceholderText},
    {QLatin1StringView("selectedContentBackgroundColor"), QPalette::Highlight},
    {QLatin1StringView("selectedTextBackgroundColor"), QPalette::Highlight},
    {QLatin1StringView("selectedTextColor"), QPalette::HighlightedText},
    {QLatin1StringView("systemRedColor"), QPalette::NoRole, qRgb(0xE0, 0x1B, 0x24)}, // reads on light and on dark
    {QLatin1StringView("textBackgroundColor"), QPalette::Base},
    {QLatin1StringView("textColor"), QPalette::Text},
    {QLatin1StringView("underPageBackgroundColor"), QPalette::Mid},
    {QLatin1StringView("windowBackgroundColor"), QPalette::Window},
});

const NamedColor* offered(QStringView name)
{
    const auto* const found = std::find_if(
        kNamedColors.begin(), kNamedColors.end(), [name](const NamedColor& each) { return name == each.name; });
    return found == kNamedColors.end() ? nullptr : found;
}

QColor colorOf(const NamedColor& named)
{
    if (named.role == QPalette::NoRole)
        return QColor(named.fixed);
    return QGuiApplication::palette().color(QPalette::Active, named.role);
}

template<class Names>
QColor firstOffered(const Names& names)
{
    for (const QStringView name : names)
        if (const NamedColor* const named = offered(name))
            return colorOf(*named);
    return colorOf(*offered(u"grayColor"));
}

} // namespace

QColor bestSemanticColor(std::initializer_list<QStringView> names)
{
    return firstOffered(names);
}

QColor bestSemanticColorList(const QStringList& names)
{
    return firstOffered(names);
}

QColor selectedBackgroundColor()
{
    return bestSemanticColor({u"selectedContentBackgroundColor", u"selectedTextBackgroundColor"});
}

QColor progressBorderColor()
{
    return bestSemanticColor({u"secondaryLabelColor", u"darkGrayColor"});
}

QColor progressFillColor()
{
    return bestSemanticColor({u"controlAccentColor", u"selectedTextBackgroundColor"});
}

QColor searchProgressFillColor()
{
    return bestSemanticColor({u"systemRedColor", u"selectedTextBackgroundColor"});
}

QColor progressBackgroundColor()
{
    return bestSemanticColor({u"underPageBackgroundColor"});
}

QColor frostableWindowBackgroundColor()
{
    constexpr float kWhite = 0.937F;
    return Process::isMojaveOrLater() ? bestSemanticColor({u"windowBackgroundColor"})
                                      : QColor::fromRgbF(kWhite, kWhite, kWhite, 1.0F);
}

} // namespace havrel
