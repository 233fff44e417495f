// SPDX-License-Identifier: MIT
#include "integrations/thunar_actions_layout.h"

#include <QXmlStreamReader>

namespace havrel::integrations {
namespace {

const QByteArray kByteOrderMark = "\xEF\xBB\xBF";

class Reading
{
public:
    explicit Reading(const QByteArray& file)
        : m_layout{.byteOrderMark = file.startsWith(kByteOrderMark) ? kByteOrderMark : QByteArray(),
                   .text = QString::fromUtf8(file), // which leaves the mark out
                   .actions = {},
                   .fault = {}}
        , m_xml(m_layout.text)
    {
        if (m_layout.byteOrderMark + m_layout.text.toUtf8() != file)
            m_layout.fault = QStringLiteral("it is not in UTF-8");
        else if (m_layout.text.startsWith(QChar::ByteOrderMark)) // the reader would skip it and count from behind it
            m_layout.fault = QStringLiteral("it begins with two byte order marks");
    }

    ThunarActionsLayout layout() &&
    {
        while (m_layout.fault.isNull() && !m_xml.atEnd())
            read(m_xml.readNext());
        if (m_layout.fault.isNull() && m_xml.hasError())
            m_layout.fault = QStringLiteral("line %1: %2").arg(m_xml.lineNumber()).arg(m_xml.errorString());
        if (!m_layout.fault.isNull())
            m_layout.actions.clear();
        return std::move(m_layout);
    }

private:
    void read(QXmlStreamReader::TokenType token)
    {
        if (token == QXmlStreamReader::StartElement)
            beginElement();
        else if (token == QXmlStreamReader::EndElement)
            endElement();
        else if (token == QXmlStreamReader::Characters && m_isInId)
            m_id += m_xml.text();
    }

    void beginElement()
    {
        ++m_depth;
        if (m_depth == 1 && m_xml.qualifiedName() != QLatin1String("actions"))
            m_layout.fault = QStringLiteral("its root is not \"actions\"");
        if (m_depth == 2 && m_xml.qualifiedName() == QLatin1String("action")) {
            m_isInAction = true;
            m_id.clear();
            m_from = beginningOfTag();
        }
        if (m_depth == 3 && m_isInAction && m_xml.qualifiedName() == QLatin1String("unique-id")) {
            m_isInId = true;
            m_id.clear(); // the last one counts, as for Thunar
        }
    }

    void endElement()
    {
        if (m_depth == 3)
            m_isInId = false;
        if (m_depth == 2 && m_isInAction) {
            m_layout.actions.append({m_id, m_from, m_xml.characterOffset()});
            m_isInAction = false;
        }
        if (m_depth == 1)
            m_layout.endOfContents = endOfRoot();
        --m_depth;
    }

    /// No "<" can stand inside of a tag.
    [[nodiscard]] qsizetype beginningOfTag() const
    {
        return m_layout.text.lastIndexOf(QLatin1Char('<'), m_xml.characterOffset() - 1);
    }

    [[nodiscard]] qsizetype endOfRoot() const
    {
        const qsizetype end = m_xml.characterOffset();
        const bool isEmptyElement = m_layout.text.mid(end - 2, 2) == QLatin1String("/>") &&
                                    m_layout.text[beginningOfTag() + 1] != QLatin1Char('/');
        return isEmptyElement ? end - 2 : beginningOfTag();
    }

    ThunarActionsLayout m_layout;
    QXmlStreamReader m_xml;
    int m_depth = 0;
    bool m_isInAction = false;
    bool m_isInId = false;
    QString m_id;
    qsizetype m_from = 0;
};

} // namespace

ThunarActionsLayout layoutOfThunarActions(const QByteArray& file)
{
    return Reading(file).layout();
}

} // namespace havrel::integrations
