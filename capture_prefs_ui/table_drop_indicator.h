// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

namespace havrel {

/// The line in a table, over its rows, that shows where a drop would go.
///
/// Threads: the main thread only.
class TableDropIndicator final : public QWidget
{
    Q_OBJECT

public:
    explicit TableDropIndicator(QWidget& viewport); ///< hidden; owned by the viewport
};

} // namespace havrel
