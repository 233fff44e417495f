// SPDX-License-Identifier: MIT
#include "foundation/pasteboard.h"

namespace havrel {

QVariantMap dictionaryOf(const Pasteboard& pasteboard)
{
    QVariantMap dictionary;
    for (auto each = pasteboard.constKeyValueBegin(); each != pasteboard.constKeyValueEnd(); ++each)
        dictionary.insert(each->first, each->second);
    return dictionary;
}

Pasteboard pasteboardOf(const QVariantMap& dictionary)
{
    Pasteboard pasteboard;
    for (auto each = dictionary.constKeyValueBegin(); each != dictionary.constKeyValueEnd(); ++each)
        pasteboard.insert(each->first, each->second.toByteArray());
    return pasteboard;
}

} // namespace havrel
