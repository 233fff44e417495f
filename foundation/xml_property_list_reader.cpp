// SPDX-License-Identifier: MIT
#include "foundation/property_list_kind.h"
#include "foundation/xml_property_list.h"

#include <QDateTime>
#include <QXmlStreamReader>

#include <limits>

namespace havrel {
namespace {

bool isUID(const QVariantMap& entries)
{
    if (entries.size() != 1 || entries.firstKey() != xml_property_list::kUIDKey)
        return false;
    const QVariant& number = entries.first();
    return number.typeId() == QMetaType::ULongLong ||
           (number.typeId() == QMetaType::LongLong && number.toLongLong() >= 0);
}

/// One reading. The first fault is kept; from then on every value is nil and nothing more is read.
class Reader
{
public:
    explicit Reader(const QByteArray& bytes)
        : m_xml(bytes)
    {
    }

    PropertyListReading read();

private:
    using Decode = QVariant (Reader::*)(const QString& text);

    QVariant document();
    void prologue();
    QXmlStreamReader::TokenType next();
    bool enterElement();
    QVariant value(int depth);
    QVariant list(int depth);
    QVariant map(int depth);
    QVariant scalar(const QString& name);
    QString text();
    void noteDamage();

    QVariant string(const QString& text) { return text; }
    QVariant integer(const QString& text);
    QVariant real(const QString& text);
    QVariant date(const QString& text);
    QVariant data(const QString& text);
    QVariant flag(const QString& text);

    bool isWithinBounds(int depth);
    QVariant fail(const QString& fault);
    [[nodiscard]] bool failed() const { return !m_fault.isNull(); }

    QXmlStreamReader m_xml;
    int m_visited = 0;
    QString m_fault;
};

PropertyListReading Reader::read()
{
    PropertyListReading reading;
    reading.format = PropertyListFormat::XML;
    reading.value = document();
    if (failed()) {
        reading.value.clear();
        reading.error = propertyListReadError(m_fault);
    }
    return reading;
}

QVariant Reader::document()
{
    prologue();
    if (!failed() && m_xml.name() != QLatin1StringView("plist"))
        return fail(QStringLiteral("its XML begins with “%1”, not with “plist”").arg(m_xml.name()));
    if (!enterElement())
        return fail(QStringLiteral("it is empty"));
    QVariant root = value(0);
    if (enterElement())
        return fail(QStringLiteral("it holds more than one value"));
    while (!failed() && !m_xml.atEnd())
        next();
    return root;
}

/// Up to the root element. Entity declarations are refused: no property list needs them, and they can multiply.
void Reader::prologue()
{
    while (!failed() && next() != QXmlStreamReader::StartElement) {
        if (m_xml.isDTD() && !m_xml.entityDeclarations().isEmpty())
            fail(QStringLiteral("its XML declares entities"));
    }
}

QXmlStreamReader::TokenType Reader::next()
{
    const QXmlStreamReader::TokenType token = m_xml.readNext();
    noteDamage();
    return token;
}

/// Whether an element begins before the current one ends; stands on its start or on that end.
bool Reader::enterElement()
{
    while (!failed()) {
        switch (next()) {
        case QXmlStreamReader::StartElement:
            return true;
        case QXmlStreamReader::EndElement:
            return false;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            break;
        default:
            if (!m_xml.isWhitespace())
                fail(QStringLiteral("text stands outside the values in line %1").arg(m_xml.lineNumber()));
        }
    }
    return false;
}

QVariant Reader::value(int depth)
{
    if (failed() || !isWithinBounds(depth))
        return {};
    const QString name = m_xml.name().toString();
    if (name == QLatin1StringView("dict"))
        return map(depth + 1);
    if (name == QLatin1StringView("array"))
        return list(depth + 1);
    return scalar(name);
}

bool Reader::isWithinBounds(int depth)
{
    if (++m_visited > kMostPropertyListObjects)
        fail(property_list_fault::tooManyValues());
    const bool isContainer = m_xml.name() == QLatin1StringView("dict") || m_xml.name() == QLatin1StringView("array");
    if (isContainer && depth == kDeepestPropertyList)
        fail(property_list_fault::tooDeep());
    return !failed();
}

QVariant Reader::list(int depth)
{
    QVariantList elements;
    while (enterElement())
        elements.append(value(depth));
    return elements;
}

QVariant Reader::map(int depth)
{
    QVariantMap entries;
    while (enterElement()) {
        if (m_xml.name() != QLatin1StringView("key"))
            return fail(QStringLiteral("a value without a key stands in line %1").arg(m_xml.lineNumber()));
        ++m_visited;
        const QString key = text();
        if (!enterElement())
            return fail(QStringLiteral("the key “%1” has no value").arg(key));
        entries.insert(key, value(depth));
    }
    return isUID(entries) ? QVariant::fromValue(PropertyListUID{entries.first().toULongLong()}) : QVariant(entries);
}

QVariant Reader::scalar(const QString& name)
{
    static constexpr struct // NOLINT(modernize-avoid-c-arrays): its rows are counted
    {
        QLatin1StringView name;
        Decode decode;
    } kDecoders[] = {
        {QLatin1StringView("string"), &Reader::string},
        {QLatin1StringView("integer"), &Reader::integer},
        {QLatin1StringView("real"), &Reader::real},
        {QLatin1StringView("date"), &Reader::date},
        {QLatin1StringView("data"), &Reader::data},
        {QLatin1StringView("true"), &Reader::flag},
        {QLatin1StringView("false"), &Reader::flag},
    };
    for (const auto& each : kDecoders) {
        if (each.name == name) {
            const QString content = text();
            return failed() ? QVariant() : (this->*each.decode)(content);
        }
    }
    return fail(QStringLiteral("“%1” in line %2 is no kind of value").arg(name).arg(m_xml.lineNumber()));
}

/// The current element's text; stands on its end.
QString Reader::text()
{
    QString content = m_xml.readElementText();
    noteDamage();
    return content;
}

void Reader::noteDamage()
{
    if (!m_xml.hasError())
        return;
    QString reason = m_xml.errorString();
    while (reason.endsWith(u'.'))
        reason.chop(1);
    fail(QStringLiteral("its XML is damaged in line %1: %2").arg(QString::number(m_xml.lineNumber()), reason));
}

QVariant Reader::integer(const QString& text)
{
    QStringView digits = QStringView(text).trimmed();
    const bool isHexadecimal = digits.startsWith(QLatin1StringView("0x"), Qt::CaseInsensitive);
    const int base = isHexadecimal ? 16 : 10;
    bool isSigned = false;
    bool isUnsigned = false;
    const qlonglong number = digits.toLongLong(&isSigned, base);
    const qulonglong large = digits.toULongLong(&isUnsigned, base);
    if (isSigned)
        return number;
    return isUnsigned ? QVariant(large) : fail(QStringLiteral("“%1” is no integer of 64 bits").arg(text.left(40)));
}

QVariant Reader::real(const QString& text)
{
    static constexpr struct // NOLINT(modernize-avoid-c-arrays): its rows are counted
    {
        QLatin1StringView text;
        double number;
    } kNames[] = {
        {QLatin1StringView("nan"), std::numeric_limits<double>::quiet_NaN()},
        {QLatin1StringView("inf"), std::numeric_limits<double>::infinity()},
        {QLatin1StringView("+inf"), std::numeric_limits<double>::infinity()},
        {QLatin1StringView("-inf"), -std::numeric_limits<double>::infinity()},
        {QLatin1StringView("infinity"), std::numeric_limits<double>::infinity()},
        {QLatin1StringView("+infinity"), std::numeric_limits<double>::infinity()},
        {QLatin1StringView("-infinity"), -std::numeric_limits<double>::infinity()},
    };
    const QStringView digits = QStringView(text).trimmed();
    for (const auto& each : kNames) {
        if (digits.compare(each.text, Qt::CaseInsensitive) == 0)
            return each.number;
    }
    bool isNumber = false;
    const double number = digits.toDouble(&isNumber);
    return isNumber ? QVariant(number) : fail(QStringLiteral("“%1” is no real number").arg(text.left(40)));
}

QVariant Reader::date(const QString& text)
{
    const QString moment = text.trimmed();
    const QDateTime date(
        QDate::fromString(moment.left(10), Qt::ISODate), QTime::fromString(moment.mid(11, 8), Qt::ISODate), Qt::UTC);
    const bool isWhole = moment.size() == 20 && moment[10] == u'T' && moment[19] == u'Z';
    if (!isWhole || !date.isValid())
        return fail(QStringLiteral("“%1” is no date").arg(text.left(40)));
    return date;
}

QVariant Reader::data(const QString& text)
{
    const QByteArray digits = text.toLatin1().simplified().replace(' ', "");
    const auto decoded = QByteArray::fromBase64Encoding(digits, QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? QVariant(*decoded) : fail(QStringLiteral("data is not written in base 64"));
}

QVariant Reader::flag(const QString& text)
{
    if (!text.trimmed().isEmpty())
        return fail(QStringLiteral("a truth value holds text"));
    return m_xml.name() == QLatin1StringView("true");
}

QVariant Reader::fail(const QString& fault)
{
    if (!failed())
        m_fault = fault;
    return {};
}

} // namespace

PropertyListReading readXMLPropertyList(const QByteArray& bytes)
{
    return Reader(bytes).read();
}

} // namespace havrel
