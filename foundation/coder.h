// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace havrel {

/// Where an object writes its fields when it is archived.
///
/// A keyed encoder takes the forms with a key, an unkeyed one (allowsKeyedCoding() is false) the forms without, in the
/// order in which they are read back. Using the wrong form is a program error and raises "Bug".
///
/// Threads: one thread at a time.
class Encoder
{
public:
    Encoder() = default;
    virtual ~Encoder() = default;
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;
    Encoder(Encoder&&) = delete;
    Encoder& operator=(Encoder&&) = delete;

    [[nodiscard]] virtual bool allowsKeyedCoding() const = 0;

    /// Any property-list value, null object, or instance of a registered class; nil is kept and read back as nil.
    virtual void encodeObject(const QVariant& object, const QString& key) = 0;
    virtual void encodeBool(bool value, const QString& key) = 0;
    virtual void encodeInteger(qint64 value, const QString& key) = 0;
    virtual void encodeBytes(const QByteArray& bytes, const QString& key) = 0;

    virtual void encodeObject(const QVariant& object) = 0;
    virtual void encodeUnsigned32(quint32 value) = 0;
    virtual void encodeBytes(const QByteArray& bytes) = 0;

    /// Whether encodeObject() would take \p object, without looking into it: nil, property-list values, the null object
    /// and instances of archivable classes, but none that is just being encoded further out, and none that would nest
    /// too deep. For objects that would rather archive a stand-in than fail.
    [[nodiscard]] virtual bool canEncodeObject(const QVariant& /*object*/) const { return true; }
    /// Says that what is being encoded will unfold to \p objects more than were given one by one.
    /// \throws HVException "Bug" when that is more than may be read back.
    virtual void charge(quint64 /*objects*/) {}
};

/// Where an object reads its fields back. A missing key gives nil, false, 0 or no bytes.
///
/// Threads: one thread at a time.
class Decoder
{
public:
    Decoder() = default;
    virtual ~Decoder() = default;
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;
    Decoder(Decoder&&) = delete;
    Decoder& operator=(Decoder&&) = delete;

    [[nodiscard]] virtual bool allowsKeyedCoding() const = 0;
    [[nodiscard]] virtual bool containsValueForKey(const QString& key) const = 0;

    /// \param classes archive names of the classes that the object may have, itself and inside ("NSString" ...).
    /// \throws HVException "Bug" when the archive holds an object of another class there.
    [[nodiscard]] virtual QVariant decodeObject(const QStringList& classes, const QString& key) = 0;
    [[nodiscard]] virtual bool decodeBool(const QString& key) = 0;
    [[nodiscard]] virtual qint64 decodeInteger(const QString& key) = 0;
    [[nodiscard]] virtual QByteArray decodeBytes(const QString& key) = 0;

    [[nodiscard]] virtual QVariant decodeObject() = 0;
    [[nodiscard]] virtual quint32 decodeUnsigned32() = 0;
    [[nodiscard]] virtual QByteArray decodeBytes() = 0;

    /// To be called before few bytes are unfolded to \p objects.
    /// \throws HVException "Bug" when all that was read would be too much.
    virtual void charge(quint64 /*objects*/) {}
};

/// How archives treat instances of one class: a row that each archivable class adds to the table of classes.
///
/// Instances travel as QVariants: values (Error, Exception, IndexSet) by value, shared objects as std::shared_ptr to
/// the base of their family. A row for a subclass stands beside that of its base; className tells them apart.
struct ArchivableClass
{
    /// The class's name in archives ("HVException"), and its superclasses, nearest first, the root "NSObject" last.
    QString name;
    QStringList superclasses;
    /// Whether \p object is exactly of this class.
    bool (*isInstance)(const QVariant& object) = nullptr;
    /// The object's identity: two references to the same identity are written once. Null: always written anew.
    const void* (*identity)(const QVariant& object) = nullptr;
    void (*encode)(const QVariant& object, Encoder& encoder) = nullptr;
    /// Answers the new object; nil or an exception when the fields make none.
    QVariant (*decode)(Decoder& decoder) = nullptr;
    /// Whether decode() asks for every object by class, so that hostile archives cannot choose what is made.
    bool supportsSecureCoding = true;
};

/// Adds a class to the process-wide table; a second class of the same name replaces the first. The classes of this
/// library ("NSError", "NSIndexSet", "NSException", "HVException", "LogLineIdent", "LogLinePin" and the property-list
/// values) are there from the start.
///
/// Threads: any thread.
void registerArchivableClass(const ArchivableClass& archivable);

} // namespace havrel
