// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

namespace havrel {

/// Keeps the wheel from changing the controls that it is installed on while they have not the focus: somebody who
/// scrolls past a menu does not mean to change the preferences of ten thousand items.
///
/// Threads: the main thread only.
class CalmWheel : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    [[nodiscard]] bool eventFilter(QObject* object, QEvent* event) override;
};

} // namespace havrel
