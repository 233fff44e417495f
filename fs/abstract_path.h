// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QString>
#include <QUrl>

namespace havrel {

/// The place of an item in any tree of items, on the disk or kept elsewhere.
///
/// Threads: as the class that adopts it.
class JNAbstractPath
{
public:
    virtual ~JNAbstractPath() = default;
    JNAbstractPath(const JNAbstractPath&) = delete;
    JNAbstractPath& operator=(const JNAbstractPath&) = delete;
    JNAbstractPath(JNAbstractPath&&) = delete;
    JNAbstractPath& operator=(JNAbstractPath&&) = delete;

    [[nodiscard]] virtual const QByteArray& cName() const noexcept = 0; ///< \selector cName
    [[nodiscard]] virtual QString name() const = 0;                     ///< \selector name
    [[nodiscard]] virtual QString displayName() const = 0;              ///< \selector displayName
    [[nodiscard]] virtual QByteArray cPath() const = 0;                 ///< \selector cPath
    [[nodiscard]] virtual QString path() const = 0;                     ///< \selector path
    [[nodiscard]] virtual QUrl url() const = 0;                         ///< \selector url
    [[nodiscard]] virtual QString extension() const = 0;                ///< \selector extension

protected:
    JNAbstractPath() = default;
};

} // namespace havrel
