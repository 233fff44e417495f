// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

namespace havrel {

/// A transparent container for what a row only shows: no border, no margins, no background. Clicks on it and on what
/// is in it go to what lies behind, so that they select the row.
///
/// Threads: the main thread only.
class TableCellBoxView : public QFrame
{
    Q_OBJECT

public:
    explicit TableCellBoxView(QWidget* parent = nullptr);
};

} // namespace havrel
