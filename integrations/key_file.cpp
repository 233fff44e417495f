// SPDX-License-Identifier: MIT
#include "integrations/key_file.h"

#include "integrations/catalogue.h"

namespace havrel::integrations {
namespace {

QByteArray escaped(QByteArray value)
{
    value.replace('\\', "\\\\").replace('\n', "\\n").replace('\t', "\\t").replace('\r', "\\r");
    if (value.startsWith(' '))
        value.replace(0, 1, "\\s"); // else readers take it for the space around "="
    return value;
}

} // namespace

KeyFile::KeyFile()
    : m_text("# SPDX-License-Identifier: MIT\n")
{
}

KeyFile& KeyFile::group(const QByteArray& name)
{
    m_text += "\n[" + name + "]\n";
    return *this;
}

KeyFile& KeyFile::set(const QByteArray& key, const QByteArray& value)
{
    m_text += key + '=' + escaped(value) + '\n';
    return *this;
}

KeyFile& KeyFile::set(const QByteArray& key, const Text& text)
{
    return set(key, QByteArray(text.english)).set(key + "[de]", QByteArray(text.german));
}

} // namespace havrel::integrations
