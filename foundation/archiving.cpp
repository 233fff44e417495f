// SPDX-License-Identifier: MIT
#include "foundation/archiving.h"

#include "foundation/keyed_archive.h"
#include "foundation/keyed_archiver.h"
#include "foundation/keyed_unarchiver.h"

namespace havrel {

QByteArray dataForRootObject(const QVariant& object)
{
    return dataForRootObject(object, SecureCoding::No);
}

QByteArray dataForRootObject(const QVariant& object, SecureCoding requiring)
{
    return KeyedArchiver(requiring).archive(object);
}

QVariant archivedObject(const QByteArray& data)
{
    return KeyedUnarchiver(data, SecureCoding::No).root({keyed_archive::kAnyClass});
}

QVariant archivedObjectOfClass(const QByteArray& data, const QString& className)
{
    return archivedObjectOfClasses(data, {className});
}

QVariant archivedObjectOfClasses(const QByteArray& data, const QStringList& classNames)
{
    return KeyedUnarchiver(data, SecureCoding::Yes).root(classNames);
}

} // namespace havrel
