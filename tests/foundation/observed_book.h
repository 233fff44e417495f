// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/observable.h"

#include <QString>

#include <memory>

namespace havrel {

/// An observable class with a property of each sort.
class ObservedBook : public Observable
{
    Q_OBJECT
    Q_PROPERTY(QString title READ title WRITE setTitle)
    Q_PROPERTY(QString subtitle READ subtitle WRITE setSubtitle)
    Q_PROPERTY(int pages READ pages WRITE setPages)
    Q_PROPERTY(QVariant note READ note WRITE setNote)
    Q_PROPERTY(QList<int> marks READ marks WRITE setMarks)
    Q_PROPERTY(havrel::ObservedBook* sequel READ sequel WRITE setSequel)
    Q_PROPERTY(std::shared_ptr<havrel::ObservedBook> prequel READ prequel WRITE setPrequel)
    Q_PROPERTY(QObject* window READ window WRITE setWindow)
    Q_PROPERTY(int edition READ edition CONSTANT)

public:
    [[nodiscard]] QString title() const { return m_title; }
    void setTitle(const QString& title) { assign(m_title, title, "title"); }
    [[nodiscard]] QString subtitle() const { return m_subtitle; }
    void setSubtitle(const QString& subtitle) { assign(m_subtitle, subtitle, "subtitle"); }
    [[nodiscard]] int pages() const { return m_pages; }
    void setPages(int pages) { assign(m_pages, pages, "pages"); }
    [[nodiscard]] QVariant note() const { return m_note; }
    void setNote(const QVariant& note) { assign(m_note, note, "note"); }
    [[nodiscard]] QList<int> marks() const { return m_marks; }
    void setMarks(const QList<int>& marks) { assign(m_marks, marks, "marks"); }
    void insertMarks(const QList<int>& marks, const IndexSet& at) { insertObjects(m_marks, marks, at, "marks"); }
    void removeMarks(const IndexSet& at) { removeObjects(m_marks, at, "marks"); }
    void replaceMarks(const IndexSet& at, const QList<int>& marks) { replaceObjects(m_marks, at, marks, "marks"); }
    [[nodiscard]] ObservedBook* sequel() const { return m_sequel; }
    void setSequel(ObservedBook* sequel) { assign(m_sequel, sequel, "sequel"); }
    [[nodiscard]] std::shared_ptr<ObservedBook> prequel() const { return m_prequel; }
    void setPrequel(const std::shared_ptr<ObservedBook>& prequel) { assign(m_prequel, prequel, "prequel"); }
    [[nodiscard]] QObject* window() const { return m_window; }
    void setWindow(QObject* window) { assign(m_window, window, "window"); }
    [[nodiscard]] int edition() const { return 1; }

private:
    QString m_title;
    QString m_subtitle;
    int m_pages = 0;
    QVariant m_note;
    QList<int> m_marks;
    ObservedBook* m_sequel = nullptr;
    std::shared_ptr<ObservedBook> m_prequel;
    QObject* m_window = nullptr;
};

} // namespace havrel
