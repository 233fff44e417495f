// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/archiving.h"
#include "foundation/coder.h"

#include <QHash>
#include <QVariantList>
#include <QVariantMap>

#include <optional>
#include <utility>
#include <vector>

namespace havrel {

struct ArchivableClass;
struct PropertyListUID;

/// Reads one archive, whoever wrote it. Every operation raises "Bug" "invalid archive data" when the archive is not
/// what it should be; the reader is of no use then.
///
/// Threads: one thread at a time.
class KeyedUnarchiver final : public Decoder
{
public:
    /// \param requiring Yes: classes that do not support secure coding are refused.
    KeyedUnarchiver(const QByteArray& archive, SecureCoding requiring);

    /// The archived object, which must be nil or of one of the classes.
    [[nodiscard]] QVariant root(const QStringList& classes);

    [[nodiscard]] bool allowsKeyedCoding() const override { return true; }
    [[nodiscard]] bool containsValueForKey(const QString& key) const override;
    [[nodiscard]] QVariant decodeObject(const QStringList& classes, const QString& key) override;
    [[nodiscard]] bool decodeBool(const QString& key) override;
    [[nodiscard]] qint64 decodeInteger(const QString& key) override;
    [[nodiscard]] QByteArray decodeBytes(const QString& key) override;
    [[nodiscard]] QVariant decodeObject() override;
    [[nodiscard]] quint32 decodeUnsigned32() override;
    [[nodiscard]] QByteArray decodeBytes() override;
    void charge(quint64 objects) override;

private:
    /// What an index led to, and how many objects it unfolds to.
    struct Decoded
    {
        QVariant object;
        int weight = 0;
    };
    using Key = std::pair<qsizetype, int>; // the object's index and that of the set of classes it was read with

    QVariant decodeReference(const QVariant& reference);
    [[nodiscard]] qsizetype indexOf(const QVariant& reference) const;
    QVariant decodeAt(qsizetype index);
    QVariant decodeStored(qsizetype index);
    QVariant decodeFields(qsizetype index, const QVariantMap& fields);
    QVariant decodeValue(const QString& name, const QVariantMap& fields);
    QVariant instanceAt(qsizetype index, const ArchivableClass& archivable, const QVariantMap& fields);
    QVariant decodeList(const QVariantMap& fields);
    QVariant decodeMap(const QVariantMap& fields);
    QVariantList objectsIn(const QVariantMap& fields, const QString& field);
    [[nodiscard]] QString classNameOf(const QVariantMap& fields) const;
    void checkClass(const QString& name, const QStringList& superclasses) const;
    int indexOfClasses(const QStringList& classes);

    const SecureCoding m_requiring;
    QVariant m_top;
    QVariantList m_objects;
    QVariantMap m_fields; // of the instance that is being decoded
    std::vector<QStringList> m_classSets;
    int m_classes = 0; // index of the set that holds now
    QHash<Key, Decoded> m_decoded;
    std::vector<bool> m_open; // by index: the objects around the current one
    int m_depth = 0;
    int m_visited = 0;
};

} // namespace havrel
