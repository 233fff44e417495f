// SPDX-License-Identifier: MIT
#include "cli/archives.h"

#include "cli/command.h"
#include "cli/items.h"
#include "cli/json_output.h"
#include "cli/report.h"
#include "components/item_names.h"
#include "platform/file_names.h"
#include "platform/own_process.h"

namespace havrel::cli {
namespace {

[[noreturn]] void raiseUnknownCapture(const QString& reason)
{
    HVException::exceptionWithName(kArchiveException, reason).raise();
}

} // namespace

QByteArray archivePath(const QByteArray& given)
{
    const ItemPath found = pathOfItem(given);
    if (!found.fault.isNull())
        throw WrongUsage(given + ": " + found.fault.toUtf8());
    return plainPath(found.path, platform::workingFolder());
}

QString archiveFailureText(const HVException& exception)
{
    return failureText(exception.reason(), exception.detail(detail_key::kErrDescription).toString());
}

QString failureText(const QString& reason, const QString& words)
{
    QString inLine = words.trimmed();
    if (inLine.isEmpty() || reason.contains(inLine))
        return reason;
    return reason + QStringLiteral(" (") + inLine.replace(u'\n', QStringLiteral("; ")) + u')';
}

void guarded(Report& report, const QByteArray& archive, const std::function<void()>& work)
{
    try {
        work();
    } catch (const HVException& exception) {
        if (exception.name() != kArchiveException)
            throw;
        report.failure(archive, archiveFailureText(exception));
    }
}

CaptureRecord chosenCapture(const QList<CaptureRecord>& captures, const std::optional<QByteArray>& given)
{
    constexpr qsizetype kFewestDigits = 4;
    if (captures.isEmpty())
        raiseUnknownCapture(QStringLiteral("nothing was captured into it yet"));
    if (!given)
        return captures.constLast();
    const QString beginning = QString::fromLatin1(*given);
    QList<CaptureRecord> found;
    for (const CaptureRecord& each : captures)
        if (beginning.size() >= kFewestDigits && each.id.startsWith(beginning))
            found.append(each);
    if (found.size() != 1)
        raiseUnknownCapture((found.isEmpty() ? QStringLiteral("it has no capture %1")
                                             : QStringLiteral("several of its captures begin with %1"))
                                .arg(beginning));
    return found.constFirst();
}

QByteArray shownDate(const QDateTime& date)
{
    return date.isValid() ? date.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")).toLatin1() : "never";
}

QByteArray jsonDate(const QDateTime& date)
{
    return date.isValid() ? jsonText(date.toUTC().toString(Qt::ISODateWithMs)) : kJsonNull.toByteArray();
}

QByteArray jsonPaths(const QByteArrayList& paths)
{
    QStringList texts;
    for (const QByteArray& each : paths)
        texts.append(platform::textOfFileName(each));
    return jsonTexts(texts);
}

} // namespace havrel::cli
