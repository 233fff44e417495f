// SPDX-License-Identifier: MIT
#include "foundation/key_path.h"

#include "foundation/thread_annotations.h"

#include <memory>
#include <string>
#include <unordered_set>

namespace havrel {

KeyPath KeyPath::kept(std::string_view chars)
{
    using Table = std::unordered_set<std::string>;
    static Mutex s_lock;
    // Never destroyed: key paths may still be used while the process ends.
    static Table* const s_table HAVREL_PT_GUARDED_BY(s_lock) = std::make_unique<Table>().release();
    const MutexLock guard(s_lock);
    return KeyPath(std::string_view(*s_table->emplace(chars).first));
}

KeyPath KeyPath::fromText(QStringView text)
{
    const QByteArray bytes = text.toUtf8();
    return kept({bytes.constData(), static_cast<std::size_t>(bytes.size())});
}

std::vector<KeyPath> KeyPath::names() const
{
    if (!m_severalNames)
        return {*this};
    std::vector<KeyPath> result;
    std::string_view rest = chars();
    while (true) {
        const auto dot = rest.find('.');
        result.push_back(kept(rest.substr(0, dot)));
        if (dot == std::string_view::npos)
            return result;
        rest.remove_prefix(dot + 1);
    }
}

QString KeyPath::text() const
{
    return QString::fromUtf8(m_chars, static_cast<qsizetype>(m_size));
}

} // namespace havrel
