// SPDX-License-Identifier: MIT
#include "cli/described_preferences.h"

#include "cli/attribute_failure.h"
#include "cli/json_output.h"
#include "cli/output.h"
#include "cli/printable_text.h"
#include "cli/property_list_json.h"
#include "cli/report.h"
#include "filters/capture_preferences_attribute.h"
#include "filters/file_capture_preferences.h"
#include "platform/file_names.h"

namespace havrel::cli {
namespace {

namespace attribute = capture_preferences_attribute;

constexpr qsizetype kMostRemembered = 1000;

QString tooLongText()
{
    return QStringLiteral(
               "its preferences take more than %1 bytes, which no reader takes: it is captured as if it had none")
        .arg(attribute::kMostBytesRead);
}

QString malformedText(const QString& fault)
{
    return QStringLiteral("its preferences are malformed (%1): it is captured as if it had none").arg(fault);
}

} // namespace

DescribedPreferences::DescribedPreferences(ShownAs form, Report& report)
    : m_form(form)
    , m_report(report)
{
}

DescribedPreferences::Meaning DescribedPreferences::meaningOf(const platform::AttributeValue& value) const
{
    const attribute::Reading reading = attribute::readingOf(value);
    if (reading.state == attribute::State::Readable) {
        return {FileCapturePreferences(reading.dictionary).localizedDescription(),
                m_form == ShownAs::Json ? jsonOfPropertyList(reading.dictionary) : QByteArray(),
                {}};
    }
    Meaning none{FileCapturePreferences().localizedDescription(), kJsonNull.toByteArray(), {}};
    if (reading.state == attribute::State::Malformed)
        none.fault = malformedText(reading.fault);
    else if (reading.state == attribute::State::TooLong)
        none.fault = tooLongText();
    return none;
}

const DescribedPreferences::Meaning& DescribedPreferences::remembered(const platform::AttributeValue& value)
{
    const auto known = m_known.constFind(value.bytes);
    if (known != m_known.constEnd())
        return *known;
    if (m_known.size() >= kMostRemembered)
        m_known.clear();
    return *m_known.insert(value.bytes, meaningOf(value));
}

void DescribedPreferences::show(const QByteArray& path, const platform::AttributeValue& value)
{
    if (attribute::stateOf(value.error) == attribute::State::Unreadable) {
        m_report.failure(path, attributeFailureText(value.error, path, AttributeAccess::Read));
        return;
    }
    const Meaning& meaning = value.error == 0 ? remembered(value) : meaningOf(value);
    write(path, meaning);
    if (!meaning.fault.isNull())
        m_report.failure(path, meaning.fault);
}

void DescribedPreferences::write(const QByteArray& path, const Meaning& meaning) const
{
    switch (m_form) {
    case ShownAs::NulTerminatedNames:
        writeRecord(path, '\0');
        return;
    case ShownAs::Json:
        writeRecord(JsonObject()
                        .add(u"path", jsonText(platform::textOfFileName(path)))
                        .add(u"preferences", meaning.json)
                        .add(u"description", jsonText(meaning.description))
                        .take());
        return;
    case ShownAs::Words:
        writeRecord(toned(Tone::Name, printableName(path)) + ": " + printableText(meaning.description));
        return;
    }
}

} // namespace havrel::cli
