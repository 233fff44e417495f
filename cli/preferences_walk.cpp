// SPDX-License-Identifier: MIT
#include "cli/preferences_walk.h"

#include "cli/attribute_failure.h"
#include "cli/items.h"
#include "cli/report.h"
#include "filters/capture_preferences_attribute.h"

#include <algorithm>
#include <cerrno>

namespace havrel::cli {

namespace attribute = capture_preferences_attribute;

PreferencesWalk::PreferencesWalk(platform::CrossFileSystems cross, qsizetype limit, Report& report, Found found)
    : m_walk(*this, cross)
    , m_limit(limit)
    , m_report(report)
    , m_found(std::move(found))
{
}

void PreferencesWalk::walk(const QByteArray& root)
{
    const int error = m_walk.walk(root);
    if (error == ENOTDIR) {
        look(root, root);
        tell();
    } else if (error != 0) {
        m_report.failure(root, attributeFailureText(error, root, AttributeAccess::Walk));
    }
    m_bar.hide();
}

void PreferencesWalk::visit(const platform::WalkedFolder& folder)
{
    look(folder.reach(), folder.path());
    for (const platform::WalkedItem& item : folder.items())
        if (item.kind == platform::WalkedKind::File) // nothing else but folders can carry attributes of users
            look(folder.reachOf(item), folder.pathOf(item));
    m_count += static_cast<qint64>(folder.items().size()) + 1;
    tell();
    m_bar.update(m_walk.progress(), m_count);
}

void PreferencesWalk::look(const QByteArray& reach, const QByteArray& path)
{
    platform::AttributeValue value = platform::readAttribute(reach, attribute::kNameOnDisk, m_limit);
    const bool nothing = attribute::stateOf(value.error) == attribute::State::Missing || value.error == ENOENT;
    if (!nothing)
        m_waiting.push_back({path, std::move(value)});
}

void PreferencesWalk::tell()
{
    if (m_waiting.empty())
        return;
    m_bar.hide();
    std::sort(
        m_waiting.begin(), m_waiting.end(), [](const auto& left, const auto& right) { return left.path < right.path; });
    for (const WalkedPreferences& each : m_waiting)
        m_found(each);
    m_waiting.clear();
}

void PreferencesWalk::failed(const QByteArray& path, int error)
{
    if (error == ENOENT)
        return;
    m_bar.hide();
    m_report.failure(path, attributeFailureText(error, path, AttributeAccess::Walk));
}

void walkEach(const Items& roots, PreferencesWalk& walk, Report& report)
{
    roots.forEach(report, [&](const QByteArray& root) { walk.walk(root); });
}

} // namespace havrel::cli
