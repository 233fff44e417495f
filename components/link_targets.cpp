// SPDX-License-Identifier: MIT
#include "components/link_targets.h"

#include "platform/directory_walk.h"
#include "platform/links.h"

namespace havrel {
namespace {

class LinkCollector : public platform::WalkVisitor
{
public:
    explicit LinkCollector(bool (*isWanted)(const QByteArray& target))
        : m_isWanted(isWanted)
    {
    }

    void visit(const platform::WalkedFolder& folder) override
    {
        for (const platform::WalkedItem& each : folder.items())
            if (each.kind == platform::WalkedKind::Other)
                look(folder.pathOf(each), folder.reachOf(each));
    }
    void failed(const QByteArray& /*path*/, int /*error*/) override {} // the capture tells of it

    void look(const QByteArray& path, const QByteArray& reach)
    {
        if (const std::optional<QByteArray> target = platform::targetOfLink(reach); target && m_isWanted(*target))
            m_links.insert(path, *target);
    }

    [[nodiscard]] const QHash<QByteArray, QByteArray>& links() const { return m_links; }

private:
    bool (*m_isWanted)(const QByteArray& target);
    QHash<QByteArray, QByteArray> m_links;
};

} // namespace

QHash<QByteArray, QByteArray> linksAtOrBelow(const QByteArrayList& items, bool (*isWanted)(const QByteArray& target))
{
    LinkCollector collector(isWanted);
    platform::DirectoryWalk walk(collector, platform::CrossFileSystems::Yes);
    for (const QByteArray& each : items)
        if (walk.walk(each) != 0) // it is no folder
            collector.look(each, each);
    return collector.links();
}

} // namespace havrel
