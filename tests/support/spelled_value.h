// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/property_list.h"

#include <QDateTime>
#include <QStringList>
#include <QVariant>

#include <ostream>
#include <string>

namespace havrel {

/// A value with the type of everything in it, so that tests tell 1 from true and from 1.0, and see what differs.
inline std::string spelled(const QVariant& value)
{
    std::string text = value.isValid() ? value.metaType().name() : "nil";
    switch (value.typeId()) {
    case QMetaType::QString: {
        text += '(';
        const QString string = value.toString();
        for (const QChar unit : string)
            text += unit.unicode() < 0x7F && unit.unicode() >= 0x20 ? std::string(1, unit.toLatin1())
                                                                    : "\\u" + std::to_string(unit.unicode());
        return text + ')';
    }
    case QMetaType::QByteArray:
        return text + '(' + value.toByteArray().toHex().toStdString() + ')';
    case QMetaType::QDateTime:
        return text + '(' + value.toDateTime().toUTC().toString(Qt::ISODateWithMs).toStdString() + ')';
    case QMetaType::Double:
        return text + '(' + QByteArray::number(value.toDouble(), 'g', 17).toStdString() + ')';
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        for (const QVariant& each : list)
            text += ' ' + spelled(each);
        return '[' + text + ']';
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        for (auto it = map.begin(); it != map.end(); ++it)
            text += ' ' + spelled(it.key()) + '=' + spelled(it.value());
        return '{' + text + '}';
    }
    default:
        if (value.typeId() == qMetaTypeId<PropertyListUID>())
            return "UID(" + std::to_string(value.value<PropertyListUID>().number) + ')';
        return text + '(' + value.toString().toStdString() + ')';
    }
}

} // namespace havrel
