// SPDX-License-Identifier: MIT
#include "integrations/catalogue.h"
#include "integrations/entry_files.h"

#include <QXmlStreamWriter>

namespace havrel::integrations {
namespace {

QString textOf(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

void writeText(QXmlStreamWriter& xml, const char* element, const Text& text)
{
    xml.writeTextElement(textOf(element), textOf(text.english));
    xml.writeStartElement(textOf(element));
    xml.writeAttribute(QStringLiteral("xml:lang"), QStringLiteral("de"));
    xml.writeCharacters(textOf(text.german));
    xml.writeEndElement();
}

void writeElement(QXmlStreamWriter& xml, const char* element, const char* text)
{
    xml.writeTextElement(textOf(element), textOf(text));
}

void writeLaunching(QXmlStreamWriter& xml)
{
    xml.writeStartElement(QStringLiteral("launchable"));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("desktop-id"));
    xml.writeCharacters(textOf(kApplicationId) + QStringLiteral(".desktop"));
    xml.writeEndElement();
    xml.writeStartElement(QStringLiteral("provides"));
    writeElement(xml, "binary", "havrel");
    writeElement(xml, "binary", "havrel-service");
    xml.writeStartElement(QStringLiteral("dbus"));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("user"));
    xml.writeCharacters(textOf(kApplicationId));
    xml.writeEndElement();
    xml.writeEndElement();
}

} // namespace

QList<EntryFile> metainfo()
{
    QByteArray bytes;
    QXmlStreamWriter xml(&bytes);
    xml.setAutoFormatting(true);
    xml.setAutoFormattingIndent(2);
    xml.writeStartDocument();
    xml.writeComment(QStringLiteral(" SPDX-License-Identifier: MIT "));
    xml.writeStartElement(QStringLiteral("component"));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("desktop-application"));
    writeElement(xml, "id", kApplicationId);
    writeElement(xml, "metadata_license", "MIT");
    writeElement(xml, "project_license", "MIT");
    writeText(xml, "name", kApplicationName);
    writeText(xml, "summary", kApplicationSummary);
    writeElement(xml, "developer_name", "Havrel");
    xml.writeStartElement(QStringLiteral("description"));
    for (const Text& each : applicationDescription())
        writeText(xml, "p", each);
    xml.writeEndElement();
    writeLaunching(xml);
    xml.writeStartElement(QStringLiteral("content_rating"));
    xml.writeAttribute(QStringLiteral("type"), QStringLiteral("oars-1.1"));
    xml.writeEndElement();
    xml.writeEndElement();
    xml.writeEndDocument();
    return {{QByteArray("metainfo/") + kApplicationId + ".metainfo.xml", bytes}};
}

} // namespace havrel::integrations
