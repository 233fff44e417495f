// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/archiving.h"
#include "foundation/coder.h"
#include "foundation/property_list.h"

#include <QHash>
#include <QSet>
#include <QVariantList>
#include <QVariantMap>

namespace havrel {

/// Makes one archive. Every operation raises "Bug" "cannot encode object" when it meets what cannot be archived; the
/// archiver is of no use then.
///
/// Threads: one thread at a time.
class KeyedArchiver final : public Encoder
{
public:
    explicit KeyedArchiver(SecureCoding requiring);

    /// The archive of \p root; to be called once.
    [[nodiscard]] QByteArray archive(const QVariant& root);

    [[nodiscard]] bool allowsKeyedCoding() const override { return true; }
    [[nodiscard]] bool canEncodeObject(const QVariant& object) const override;
    void encodeObject(const QVariant& object, const QString& key) override;
    void encodeBool(bool value, const QString& key) override;
    void encodeInteger(qint64 value, const QString& key) override;
    void encodeBytes(const QByteArray& bytes, const QString& key) override;
    void encodeObject(const QVariant& object) override;
    void encodeUnsigned32(quint32 value) override;
    void encodeBytes(const QByteArray& bytes) override;
    void charge(quint64 objects) override;

private:
    /// A reference as it stands in a field.
    QVariant add(const QVariant& object);
    qsizetype addValue(const QVariant& value);
    qsizetype addString(const QString& text);
    qsizetype addField(const QString& className, const QString& field, const QVariant& value);
    qsizetype addList(const QVariantList& list);
    qsizetype addMap(const QVariantMap& map);
    qsizetype addInstance(const QVariant& object);
    qsizetype encodeInstance(const ArchivableClass& archivable, const QVariant& object);
    qsizetype addNew(const QVariant& stored);
    QVariant classReference(const QString& name, const QStringList& superclasses);
    QVariantList references(const QVariantList& objects);
    void store(const QVariant& value, const QString& key);

    const SecureCoding m_requiring;
    QVariantList m_objects;
    QVariantMap m_fields; // of the instance that is being encoded
    QHash<QString, qsizetype> m_strings;
    QHash<QString, qsizetype> m_classes;
    QHash<const void*, qsizetype> m_instances; // by identity
    QSet<const void*> m_open;                  // identities of the instances around the current object
    QVariantList m_retained;                   // keeps the identities from being used again
    int m_depth = 0;
    int m_visited = 0;
};

} // namespace havrel
