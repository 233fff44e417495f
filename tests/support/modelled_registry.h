// SPDX-License-Identifier: MIT
#pragma once

#include "platform/device_registry.h"

#include <QString>
#include <QVariant>

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace havrel::tests {

struct ModelledProperty
{
    ModelledProperty(const char* propertyName, const char* text)
        : ModelledProperty(propertyName, QVariant(QString::fromLatin1(text)))
    {
    }
    ModelledProperty(const char* propertyName, QVariant propertyValue)
        : name(QString::fromLatin1(propertyName))
        , value(std::move(propertyValue))
    {
    }

    QString name;
    QVariant value;
};
using ModelledProperties = std::vector<ModelledProperty>;

/// A registry of devices as a test describes it: entries with a class, properties and one parent.
class ModelledRegistry final : public platform::DeviceRegistry
{
public:
    /// Adds an entry below \p parent, as its last child; below nothing when that is "".
    void
    add(const std::string& key, const char* className, const std::string& parent, const ModelledProperties& properties)
    {
        auto entry = std::make_shared<Entry>();
        entry->className = QString::fromLatin1(className);
        for (const auto& [name, value] : properties)
            entry->properties[name] = value;
        entry->registry = this;
        entry->parent = parent;
        m_entries[key] = std::move(entry);
        m_order.push_back(key);
    }

    void set(const std::string& key, const char* property, const QVariant& value)
    {
        m_entries.at(key)->properties[QString::fromLatin1(property)] = value;
    }

    [[nodiscard]] platform::RegistryEntryPtr entryOfDevice(const QByteArray& name) const override
    {
        ++m_questions;
        for (const std::string& key : m_order)
            if (const auto& entry = m_entries.at(key);
                entry->property(QStringLiteral("BSD Name")) == QVariant(QString::fromUtf8(name)))
                return entry;
        return nullptr;
    }

    /// How often an entry was looked for.
    [[nodiscard]] int questions() const { return m_questions; }
    [[nodiscard]] bool nobodyHoldsAnEntry() const
    {
        return std::all_of(
            m_entries.begin(), m_entries.end(), [](const auto& each) { return each.second.use_count() == 1; });
    }

private:
    class Entry final : public platform::RegistryEntry
    {
    public:
        QString className;
        std::map<QString, QVariant> properties;
        const ModelledRegistry* registry = nullptr;
        std::string parent;

        [[nodiscard]] bool conformsTo(const QString& name) const override { return name == className; }
        [[nodiscard]] QVariant property(const QString& name) const override
        {
            const auto found = properties.find(name);
            return found == properties.end() ? QVariant() : found->second;
        }
        [[nodiscard]] std::vector<platform::RegistryEntryPtr> parents() const override
        {
            const auto found = registry->m_entries.find(parent);
            if (found == registry->m_entries.end())
                return {};
            return {found->second};
        }
        [[nodiscard]] std::vector<platform::RegistryEntryPtr> children() const override
        {
            std::vector<platform::RegistryEntryPtr> found;
            for (const std::string& key : registry->m_order)
                if (const auto& each = registry->m_entries.at(key);
                    registry->m_entries.find(each->parent) != registry->m_entries.end() &&
                    registry->m_entries.at(each->parent).get() == this)
                    found.push_back(each);
            return found;
        }
    };

    std::map<std::string, std::shared_ptr<Entry>> m_entries;
    std::vector<std::string> m_order;
    mutable int m_questions = 0;
};

/// Puts a registry in the kernel's place until the object goes.
class ReplacedDeviceRegistry
{
public:
    explicit ReplacedDeviceRegistry(const platform::DeviceRegistry& registry)
    {
        platform::replaceDeviceRegistry(&registry);
    }
    ~ReplacedDeviceRegistry() { platform::replaceDeviceRegistry(nullptr); }
    Q_DISABLE_COPY_MOVE(ReplacedDeviceRegistry)
};

} // namespace havrel::tests
