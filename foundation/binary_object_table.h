// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/binary_scalar_writer.h"

#include <QVarLengthArray>

namespace havrel {

/// The objects of a binary property list that is being written, each with the index that others refer to it by: scalars
/// once each, containers as often as they are added. Everything lies in a few buffers, which the lists that are written
/// most leave on the stack.
///
/// Threads: one thread at a time.
class BinaryObjectTable
{
public:
    using Index = quint32;

    BinaryObjectTable();

    /// The index of \p value, which is no container.
    [[nodiscard]] Index addScalar(const QVariant& value, PropertyListKind kind);
    [[nodiscard]] Index addString(const QString& text);
    /// The index of a new container with \p count elements or pairs, and room for so many references.
    [[nodiscard]] Index addContainer(int type, qsizetype count, qsizetype references);
    void refer(Index container, qsizetype place, Index object);

    /// The whole list; the object that was added first is its root.
    [[nodiscard]] QByteArray assembled() const;

private:
    /// Where an object's bytes and references begin; they end where those of the next one begin.
    struct Object
    {
        qsizetype bytes;
        qsizetype references;
    };

    [[nodiscard]] Index beginObject();
    [[nodiscard]] Index known(Index last);
    [[nodiscard]] Index* slotOf(QByteArrayView bytes);
    void growSlots();
    [[nodiscard]] QByteArrayView bytesOf(Index object) const;
    [[nodiscard]] qsizetype referencesEnd(Index object) const;
    [[nodiscard]] char* putObject(char* at, Index object, int referenceSize) const;

    BinaryBytes m_bytes; // of scalars all, of containers the marker and the count
    QVarLengthArray<Object, 32> m_objects;
    QVarLengthArray<Index, 32> m_references;
    QVarLengthArray<Index, 64> m_slots; // scalars by the hash of their bytes, each in the first free one from there on
    qsizetype m_scalars = 0;
};

} // namespace havrel
