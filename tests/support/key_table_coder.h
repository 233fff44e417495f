// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception.h"
#include "foundation/coder.h"

#include <QVariantMap>

namespace havrel {

/// Writes the fields of one object into a table, to be looked at or read back without an archive.
class KeyTableEncoder final : public Encoder
{
public:
    QVariantMap table;

    [[nodiscard]] bool allowsKeyedCoding() const override { return true; }
    void encodeObject(const QVariant& object, const QString& key) override { table[key] = object; }
    void encodeBool(bool value, const QString& key) override { table[key] = value; }
    void encodeInteger(qint64 value, const QString& key) override { table[key] = value; }
    void encodeBytes(const QByteArray& bytes, const QString& key) override { table[key] = bytes; }
    void encodeObject(const QVariant& /*object*/) override { refuse(); }
    void encodeUnsigned32(quint32 /*value*/) override { refuse(); }
    void encodeBytes(const QByteArray& /*bytes*/) override { refuse(); }

private:
    static void refuse()
    {
        HVException::exceptionWithName(exception_name::kBug, QStringLiteral("this encoder wants keys")).raise();
    }
};

/// Reads the fields of one object from a table. Judges the class of texts and lists, and takes everything else.
class KeyTableDecoder final : public Decoder
{
public:
    explicit KeyTableDecoder(QVariantMap table)
        : m_table(std::move(table))
    {
    }

    [[nodiscard]] bool allowsKeyedCoding() const override { return true; }
    [[nodiscard]] bool containsValueForKey(const QString& key) const override { return m_table.contains(key); }
    [[nodiscard]] QVariant decodeObject(const QStringList& classes, const QString& key) override
    {
        const QVariant object = m_table.value(key);
        const bool isText = object.typeId() == QMetaType::QString;
        const bool isList = object.typeId() == QMetaType::QVariantList;
        if ((isText && !classes.contains(QStringLiteral("NSString"))) ||
            (isList && !classes.contains(QStringLiteral("NSArray"))))
            HVException::exceptionWithName(exception_name::kBug, QStringLiteral("invalid archive data")).raise();
        return object;
    }
    [[nodiscard]] bool decodeBool(const QString& key) override { return m_table.value(key).toBool(); }
    [[nodiscard]] qint64 decodeInteger(const QString& key) override { return m_table.value(key).toLongLong(); }
    [[nodiscard]] QByteArray decodeBytes(const QString& key) override { return m_table.value(key).toByteArray(); }
    [[nodiscard]] QVariant decodeObject() override { return {}; }
    [[nodiscard]] quint32 decodeUnsigned32() override { return 0; }
    [[nodiscard]] QByteArray decodeBytes() override { return {}; }

private:
    QVariantMap m_table;
};

} // namespace havrel
