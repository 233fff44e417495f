// SPDX-License-Identifier: MIT
#pragma once

#include <QToolButton>

namespace havrel {

/// A tool button whose arrow says that a menu will open, while who is told of the click opens it.
///
/// Threads: the main thread only.
class MenuToolButton : public QToolButton
{
    Q_OBJECT

public:
    using QToolButton::QToolButton;

protected:
    void initStyleOption(QStyleOptionToolButton* option) const override;
};

} // namespace havrel
