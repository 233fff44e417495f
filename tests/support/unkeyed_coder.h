// SPDX-License-Identifier: MIT
#pragma once

#include "diagnostics/exception.h"
#include "foundation/coder.h"

#include <QVariantList>

namespace havrel {

/// Writes the fields of one object into a list, in order, to be looked at or read back.
class UnkeyedEncoder final : public Encoder
{
public:
    QVariantList fields;

    [[nodiscard]] bool allowsKeyedCoding() const override { return false; }
    void encodeObject(const QVariant& /*object*/, const QString& key) override { refuse(key); }
    void encodeBool(bool /*value*/, const QString& key) override { refuse(key); }
    void encodeInteger(qint64 /*value*/, const QString& key) override { refuse(key); }
    void encodeBytes(const QByteArray& /*bytes*/, const QString& key) override { refuse(key); }
    void encodeObject(const QVariant& object) override { fields.append(object); }
    void encodeUnsigned32(quint32 value) override { fields << value; }
    void encodeBytes(const QByteArray& bytes) override { fields << bytes; }

private:
    static void refuse(const QString& key)
    {
        HVException::exceptionWithName(exception_name::kBug, QStringLiteral("this encoder wants no key ") + key)
            .raise();
    }
};

/// Reads the fields of one object from a list, in order.
class UnkeyedDecoder final : public Decoder
{
public:
    explicit UnkeyedDecoder(QVariantList fields)
        : m_fields(std::move(fields))
    {
    }

    [[nodiscard]] bool allowsKeyedCoding() const override { return false; }
    [[nodiscard]] bool containsValueForKey(const QString& /*key*/) const override { return false; }
    [[nodiscard]] QVariant decodeObject(const QStringList& /*classes*/, const QString& /*key*/) override { return {}; }
    [[nodiscard]] bool decodeBool(const QString& /*key*/) override { return false; }
    [[nodiscard]] qint64 decodeInteger(const QString& /*key*/) override { return 0; }
    [[nodiscard]] QByteArray decodeBytes(const QString& /*key*/) override { return {}; }
    [[nodiscard]] QVariant decodeObject() override { return next(); }
    [[nodiscard]] quint32 decodeUnsigned32() override { return next().toUInt(); }
    [[nodiscard]] QByteArray decodeBytes() override { return next().toByteArray(); }

private:
    QVariant next() { return m_fields.isEmpty() ? QVariant() : m_fields.takeFirst(); }

    QVariantList m_fields;
};

} // namespace havrel
