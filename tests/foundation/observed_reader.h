// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/description.h"
#include "foundation/observable.h"
#include "tests/foundation/observed_book.h"

#include <QStringList>

namespace havrel {

/// An owner whose methods are called in place of blocks; each writes a line with its name and its arguments.
class ObservedReader : public Observable
{
    Q_OBJECT
    Q_PROPERTY(int chapter READ chapter WRITE setChapter)
    Q_PROPERTY(int verse READ verse WRITE setVerse)

public:
    [[nodiscard]] int chapter() const { return m_chapter; }
    void setChapter(int chapter) { assign(m_chapter, chapter, "chapter"); }
    [[nodiscard]] int verse() const { return m_verse; }
    void setVerse(int verse) { assign(m_verse, verse, "verse"); }

    Q_INVOKABLE void turned() { write({QStringLiteral("turned")}); }
    Q_INVOKABLE void turnedIn(QObject* book) { write({QStringLiteral("turnedIn"), book->objectName()}); }
    Q_INVOKABLE void turnedFrom(havrel::ObservedBook* book, const QVariant& before)
    {
        write({QStringLiteral("turnedFrom"), book->objectName(), descriptionOf(before)});
    }
    Q_INVOKABLE void turnedFromTo(QObject* book, const QVariant& before, const QVariant& now)
    {
        write({QStringLiteral("turnedFromTo"), book->objectName(), descriptionOf(before), descriptionOf(now)});
    }
    Q_INVOKABLE void page() { write({QStringLiteral("page")}); }
    Q_INVOKABLE void page(QObject* book, int before)
    {
        write({QStringLiteral("page"), book->objectName(), QString::number(before)});
    }
    Q_INVOKABLE void page(QObject* /*book*/, int /*before*/, int /*now*/, int /*more*/) { write({}); }
    Q_INVOKABLE void converted(havrel::ObservedBook* book, double before, int now)
    {
        write({QStringLiteral("converted"), book->objectName(), QString::number(before), QString::number(now)});
    }
    Q_INVOKABLE void overloaded(QObject* /*book*/, int /*before*/, int /*now*/, int /*more*/) { write({}); }
    void noted(QObject* book) const { write({QStringLiteral("noted"), book->objectName()}); }
    Q_SIGNAL void finished();

    /// The lines since the last call, joined by "; ".
    [[nodiscard]] std::string read() { return std::exchange(m_lines, {}).join(QStringLiteral("; ")).toStdString(); }

private:
    void write(const QStringList& words) const { m_lines.push_back(words.join(u' ')); }

    int m_chapter = 0;
    int m_verse = 0;
    mutable QStringList m_lines;
};

} // namespace havrel
