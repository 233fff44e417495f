// SPDX-License-Identifier: MIT
#include "integrations/thunar_actions.h"

#include "integrations/catalogue.h"
#include "integrations/thunar_actions_layout.h"

#include <QSet>
#include <QXmlStreamWriter>

#include <algorithm>

namespace havrel::integrations {
namespace {

void writeText(QXmlStreamWriter& xml, const QString& element, const Text& text)
{
    xml.writeTextElement(element, QString::fromUtf8(text.english));
    xml.writeStartElement(element);
    xml.writeAttribute(QStringLiteral("xml:lang"), QStringLiteral("de"));
    xml.writeCharacters(QString::fromUtf8(text.german));
    xml.writeEndElement();
}

QByteArray xmlOf(const MenuCommand& command, const QByteArray& id)
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    const auto write = [&xml](const char* element, const QByteArray& text) {
        xml.writeTextElement(QString::fromLatin1(element), QString::fromUtf8(text));
    };
    xml.writeStartElement(QStringLiteral("action"));
    write("icon", kApplicationId);
    writeText(xml, QStringLiteral("name"), command.title);
    write("submenu", kMenuTitle);
    write("unique-id", id);
    write("command", QByteArray("havrel ") + command.words + " -- %F");
    writeText(xml, QStringLiteral("description"), command.hint);
    write("range", {});
    write("patterns", "*");
    for (const char* kind : {"directories", "audio-files", "image-files", "other-files", "text-files", "video-files"})
        xml.writeEmptyElement(QString::fromLatin1(kind));
    xml.writeEndElement();
    return bytes;
}

QList<ThunarAction> makeActions()
{
    QList<ThunarAction> actions;
    for (const MenuCommand& each : menuCommands()) {
        const QByteArray id = QByteArray(kApplicationId) + '.' + each.id;
        actions.append({id, xmlOf(each, id)});
    }
    return actions;
}

const ThunarAction* havrelActionOf(const QString& id)
{
    const auto found = std::find_if(thunarActions().begin(), thunarActions().end(), [&id](const ThunarAction& each) {
        return QString::fromLatin1(each.id) == id;
    });
    return found == thunarActions().end() ? nullptr : &*found;
}

/// A part of the text and what takes its place.
struct Edit
{
    qsizetype from;
    qsizetype to;
    QString text;
};

/// \p edits in the order of the text, none overlapping.
ThunarActionsText edited(const ThunarActionsLayout& layout, const QList<Edit>& edits)
{
    QString text;
    qsizetype at = 0;
    for (const Edit& each : edits) {
        text += QStringView(layout.text).mid(at, each.from - at);
        text += each.text;
        at = each.to;
    }
    text += QStringView(layout.text).mid(at);
    return {layout.byteOrderMark + text.toUtf8(), {}};
}

/// The line end after an action belongs to it, when it was added by us.
Edit removalOf(const ThunarActionsLayout& layout, const ThunarActionsLayout::Action& action)
{
    const bool hasLineEnd = action.to < layout.text.size() && layout.text[action.to] == QLatin1Char('\n');
    return {action.from, action.to + (hasLineEnd ? 1 : 0), {}};
}

QString missingActions(const QSet<QByteArray>& present)
{
    QString text;
    for (const ThunarAction& each : thunarActions())
        if (!present.contains(each.id))
            text += QString::fromUtf8(each.xml) + QLatin1Char('\n');
    return text;
}

Edit additionTo(const ThunarActionsLayout& layout, const QString& text)
{
    if (text.isEmpty() || !layout.isRootEmptyElement())
        return {layout.endOfContents, layout.endOfContents, text};
    return {layout.endOfContents, layout.endOfContents + 2, QLatin1Char('>') + text + QStringLiteral("</actions>")};
}

} // namespace

const QList<ThunarAction>& thunarActions()
{
    static const QList<ThunarAction> actions = makeActions();
    return actions;
}

ThunarActionsText withHavrelActions(const QByteArray& file)
{
    const ThunarActionsLayout layout = layoutOfThunarActions(file);
    if (!layout.fault.isNull())
        return {{}, layout.fault};
    QList<Edit> edits;
    QSet<QByteArray> present;
    for (const ThunarActionsLayout::Action& each : layout.actions) {
        const ThunarAction* own = havrelActionOf(each.id);
        if (own == nullptr)
            continue;
        if (present.contains(own->id)) {
            edits.append(removalOf(layout, each));
            continue;
        }
        present.insert(own->id);
        edits.append({each.from, each.to, QString::fromUtf8(own->xml)});
    }
    edits.append(additionTo(layout, missingActions(present)));
    return edited(layout, edits);
}

ThunarActionsText withoutHavrelActions(const QByteArray& file)
{
    const ThunarActionsLayout layout = layoutOfThunarActions(file);
    if (!layout.fault.isNull())
        return {{}, layout.fault};
    QList<Edit> edits;
    for (const ThunarActionsLayout::Action& each : layout.actions)
        if (havrelActionOf(each.id) != nullptr)
            edits.append(removalOf(layout, each));
    return edited(layout, edits);
}

qsizetype countOfHavrelActions(const QByteArray& file)
{
    const ThunarActionsLayout layout = layoutOfThunarActions(file);
    return std::count_if(layout.actions.begin(), layout.actions.end(), [](const ThunarActionsLayout::Action& each) {
        return havrelActionOf(each.id) != nullptr;
    });
}

} // namespace havrel::integrations
