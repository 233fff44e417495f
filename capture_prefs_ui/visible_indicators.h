// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace havrel {

/// The toolkit's own style with boxes and round buttons that can be seen on dark windows: it draws their edges darker
/// than the window, whatever its palette, so that one which is not checked is all but invisible there.
///
/// Threads: the main thread only.
class VisibleIndicators : public QProxyStyle
{
    Q_OBJECT

public:
    VisibleIndicators();

    /// Takes the place of the application's style when that is the one which needs it; those of desktops do not.
    static void install();

    void drawPrimitive(PrimitiveElement element,
                       const QStyleOption* option,
                       QPainter* painter,
                       const QWidget* widget) const override;
};

} // namespace havrel
