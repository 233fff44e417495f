// SPDX-License-Identifier: MIT
#include "platform/argument_vector.h"

namespace havrel::platform {

ArgumentVector::ArgumentVector(const QByteArray& program, const QByteArrayList& arguments)
    : m_words{program}
{
    m_words += arguments;
    for (QByteArray& word : m_words)
        m_pointers.push_back(word.data());
    m_pointers.push_back(nullptr);
}

} // namespace havrel::platform
