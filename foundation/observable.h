// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/key_path.h"
#include "foundation/observed_change.h"
#include "foundation/observed_value.h"

#include <QList>
#include <QObject>

#include <atomic>
#include <memory>
#include <utility>

// Properties may hold their objects shared; this lets key paths lead through them.
// (The toolkit's macro is not clean under our warnings.)
QT_WARNING_PUSH
QT_WARNING_DISABLE_GCC("-Wsign-conversion")
QT_WARNING_DISABLE_CLANG("-Wsign-conversion")
Q_DECLARE_SMART_POINTER_METATYPE(std::shared_ptr)
QT_WARNING_POP

namespace havrel {

class ObservationHub;

/// An object whose properties can be observed. Setters change a field by `assign`, to-many edits by `insertObjects`,
/// `removeObjects` and `replaceObjects`; that is all that a class has to do:
/// \code
/// class Book : public Observable
/// {
///     Q_OBJECT
///     Q_PROPERTY(QString title READ title WRITE setTitle)
///
/// public:
///     [[nodiscard]] QString title() const { return m_title; }
///     void setTitle(const QString& title) { assign(m_title, title, "title"); }
/// \endcode
/// Costs one pointer and one test while nobody observes. Needs neither an event loop nor an application object. Code
/// that writes a field directly reports nothing.
///
/// Threads: one thread at a time.
class Observable : public QObject
{
    Q_OBJECT

public:
    explicit Observable(QObject* parent = nullptr);
    /// Runs the deallocation callbacks and ends the observations in which the object takes part. A class whose
    /// destructor still changes properties that its own blocks observe calls removeAllObservations(*this) first.
    ~Observable() override;
    Observable(const Observable&) = delete;
    Observable& operator=(const Observable&) = delete;
    Observable(Observable&&) = delete;
    Observable& operator=(Observable&&) = delete;

protected:
    /// Stores \p value in \p field, then tells the observers of \p name if it differs. A block may have deleted this
    /// object when it returns: the last thing that a setter does.
    template<class T, class Value>
    void assign(T& field, Value&& value, KeyPath name);

    /// Puts \p objects into \p list so that the first stands at the first of \p indexes afterwards, and so on.
    /// \throws HVException "Bug" "indexes do not fit" when there are not as many indexes as objects, or one lies
    ///         beyond the end; then nothing has changed. Also of the two operations below.
    template<class T>
    void insertObjects(QList<T>& list, QList<T> objects, const IndexSet& indexes, KeyPath name);
    /// Takes the elements at \p indexes out of \p list.
    template<class T>
    void removeObjects(QList<T>& list, const IndexSet& indexes, KeyPath name);
    /// Puts \p objects in the place of the elements at \p indexes.
    template<class T>
    void replaceObjects(QList<T>& list, const IndexSet& indexes, QList<T> objects, KeyPath name);

    /// Whether a change of \p name would reach anyone.
    [[nodiscard]] bool isObserved(KeyPath name) const noexcept
    {
        return m_hub.load(std::memory_order_relaxed) && isObservedInHub(name);
    }
    /// Tells the observers of \p name, for setters that the templates above do not fit.
    void reportChange(KeyPath name, const ObservedChange& change);

private:
    friend class ObservationHub;

    [[nodiscard]] bool isObservedInHub(KeyPath name) const noexcept;
    void requireIndexes(const IndexSet& indexes, qsizetype objects, qsizetype end, KeyPath name) const;

    std::atomic<ObservationHub*> m_hub{nullptr}; // owned
};

template<class T, class Value>
void Observable::assign(T& field, Value&& value, KeyPath name)
{
    if (!isObserved(name)) {
        field = std::forward<Value>(value);
        return;
    }
    const T before = std::exchange(field, std::forward<Value>(value));
    if (!areSameObserved(before, field))
        reportChange(
            name, {.kind = ChangeKind::Setting, .oldValue = observedValue(before), .newValue = observedValue(field)});
}

template<class T>
void Observable::insertObjects(QList<T>& list, QList<T> objects, const IndexSet& indexes, KeyPath name)
{
    requireIndexes(indexes, objects.size(), list.size() + objects.size(), name);
    auto object = objects.begin();
    for (const IndexSet::Index index : indexes)
        list.insert(static_cast<qsizetype>(index), *object++);
    if (!indexes.isEmpty() && isObserved(name))
        reportChange(name, {.kind = ChangeKind::Insertion, .newValue = observedValues(objects), .indexes = indexes});
}

template<class T>
void Observable::removeObjects(QList<T>& list, const IndexSet& indexes, KeyPath name)
{
    requireIndexes(indexes, static_cast<qsizetype>(indexes.count()), list.size(), name);
    QList<T> removed;
    QList<T> left;
    for (qsizetype i = 0; i < list.size(); ++i)
        (indexes.containsIndex(static_cast<IndexSet::Index>(i)) ? removed : left).push_back(list.at(i));
    list = left;
    if (!indexes.isEmpty() && isObserved(name))
        reportChange(name, {.kind = ChangeKind::Removal, .oldValue = observedValues(removed), .indexes = indexes});
}

template<class T>
void Observable::replaceObjects(QList<T>& list, const IndexSet& indexes, QList<T> objects, KeyPath name)
{
    requireIndexes(indexes, objects.size(), list.size(), name);
    QList<T> removed;
    auto object = objects.begin();
    for (const IndexSet::Index index : indexes)
        removed.push_back(std::exchange(list[static_cast<qsizetype>(index)], *object++));
    if (!indexes.isEmpty() && isObserved(name))
        reportChange(name,
                     {.kind = ChangeKind::Replacement,
                      .oldValue = observedValues(removed),
                      .newValue = observedValues(objects),
                      .indexes = indexes});
}

} // namespace havrel
