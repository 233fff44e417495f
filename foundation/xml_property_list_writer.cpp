// SPDX-License-Identifier: MIT
#include "foundation/property_list_kind.h"
#include "foundation/xml_property_list.h"

#include <QDateTime>
#include <QXmlStreamWriter>

#include <cmath>

namespace havrel {
namespace {

using Kind = PropertyListKind;

/// \source the document type that the format's own tools write.
constexpr QLatin1StringView kDocumentType{
    R"(<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">)"};

/// \source XML 1.0, production 2 (Char); surrogates only in pairs.
bool fitsXML(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        const bool isPair = QChar::isHighSurrogate(unit) && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (isPair)
            ++i;
        else if (QChar::isSurrogate(unit) || unit > 0xFFFD)
            return false;
        if (unit < 0x20 && unit != u'\t' && unit != u'\n' && unit != u'\r')
            return false;
    }
    return true;
}

/// A reference is a dictionary in XML.
bool isContainer(Kind kind)
{
    return kind == Kind::List || kind == Kind::Map || kind == Kind::UID;
}

QString realText(double number)
{
    if (std::isnan(number))
        return QStringLiteral("nan");
    if (std::isinf(number))
        return number > 0 ? QStringLiteral("+infinity") : QStringLiteral("-infinity");
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

/// One writing. The first fault is kept, and nothing is written from then on.
class Writer
{
public:
    PropertyListWriting write(const QVariant& value);

private:
    void add(const QVariant& value, int depth);
    void addContainer(const QVariant& value, Kind kind, int depth);
    void addScalar(const QVariant& value, Kind kind);
    void addMap(const QVariantMap& map, int depth);
    void addText(QLatin1StringView name, const QString& text);
    void addDate(const QDateTime& date);
    void addUID(PropertyListUID uid);
    void element(QLatin1StringView name, const QString& text) { m_xml.writeTextElement(QString(name), text); }
    bool isRefused(Kind kind, const QVariant& value, int depth);
    void fail(const QString& fault);

    QByteArray m_bytes;
    QXmlStreamWriter m_xml{&m_bytes};
    int m_visited = 0;
    QString m_fault;
};

PropertyListWriting Writer::write(const QVariant& value)
{
    m_xml.setAutoFormatting(true);
    m_xml.setAutoFormattingIndent(-1); // a tab a level
    m_xml.writeStartDocument();
    m_xml.writeDTD(kDocumentType);
    m_xml.writeStartElement(QStringLiteral("plist"));
    m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
    add(value, 0);
    m_xml.writeEndDocument();
    PropertyListWriting writing;
    if (m_fault.isNull())
        writing.bytes = m_bytes;
    else
        writing.error = propertyListWriteError(m_fault);
    return writing;
}

void Writer::add(const QVariant& value, int depth)
{
    const Kind kind = propertyListKindOf(value);
    if (isRefused(kind, value, depth))
        return;
    if (kind == Kind::List || kind == Kind::Map)
        addContainer(value, kind, depth + 1);
    else
        addScalar(value, kind);
}

bool Writer::isRefused(Kind kind, const QVariant& value, int depth)
{
    if (kind == Kind::None)
        fail(notAPropertyListValue(value));
    else if (kind == Kind::Null)
        fail(QStringLiteral("XML has no null object"));
    else if (++m_visited > kMostPropertyListObjects)
        fail(property_list_fault::tooManyValues());
    else if (depth == kDeepestPropertyList && isContainer(kind))
        fail(property_list_fault::tooDeep());
    return !m_fault.isNull();
}

void Writer::addContainer(const QVariant& value, Kind kind, int depth)
{
    const bool isList = kind == Kind::List;
    m_xml.writeStartElement(isList ? QStringLiteral("array") : QStringLiteral("dict"));
    if (isList) {
        const QVariantList elements = value.toList();
        for (const QVariant& each : elements)
            add(each, depth);
    } else {
        addMap(value.toMap(), depth);
    }
    m_xml.writeEndElement();
}

void Writer::addMap(const QVariantMap& map, int depth)
{
    m_visited += static_cast<int>(map.size());
    for (auto it = map.begin(); it != map.end(); ++it) {
        addText(QLatin1StringView("key"), it.key());
        add(it.value(), depth);
    }
}

void Writer::addScalar(const QVariant& value, Kind kind)
{
    switch (kind) {
    case Kind::Bool:
        return m_xml.writeEmptyElement(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
    case Kind::Signed:
        return element(QLatin1StringView("integer"), QString::number(value.toLongLong()));
    case Kind::Unsigned:
        return element(QLatin1StringView("integer"), QString::number(value.toULongLong()));
    case Kind::Real:
        return element(QLatin1StringView("real"), realText(value.toDouble()));
    case Kind::Date:
        return addDate(value.toDateTime().toUTC());
    case Kind::Data:
        return element(QLatin1StringView("data"), QString::fromLatin1(value.toByteArray().toBase64()));
    case Kind::String:
        return addText(QLatin1StringView("string"), value.toString());
    case Kind::UID:
        return addUID(value.value<PropertyListUID>());
    case Kind::None:
    case Kind::Null:
    case Kind::List:
    case Kind::Map:
        break;
    }
}

/// A carriage return goes as a character reference: readers turn a bare one into a newline.
void Writer::addText(QLatin1StringView name, const QString& text)
{
    if (!fitsXML(text))
        return fail(QStringLiteral("a string holds characters that XML cannot hold"));
    m_xml.writeStartElement(QString(name));
    const QStringList parts = text.split(u'\r');
    for (qsizetype i = 0; i < parts.size(); ++i) {
        if (i > 0)
            m_xml.writeEntityReference(QStringLiteral("#13"));
        m_xml.writeCharacters(parts[i]);
    }
    m_xml.writeEndElement();
}

void Writer::addDate(const QDateTime& date)
{
    if (const int year = date.date().year(); year < 1 || year > 9999)
        return fail(QStringLiteral("a date lies outside the years 1 to 9999"));
    element(QLatin1StringView("date"), date.toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss")) + u'Z');
}

void Writer::addUID(PropertyListUID uid)
{
    m_visited += 2; // its key and its number
    m_xml.writeStartElement(QStringLiteral("dict"));
    element(QLatin1StringView("key"), QString(xml_property_list::kUIDKey));
    element(QLatin1StringView("integer"), QString::number(uid.number));
    m_xml.writeEndElement();
}

void Writer::fail(const QString& fault)
{
    if (m_fault.isNull())
        m_fault = fault;
}

} // namespace

PropertyListWriting xmlPropertyList(const QVariant& value)
{
    return Writer().write(value);
}

} // namespace havrel
