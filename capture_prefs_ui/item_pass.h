// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <functional>

class QWidget;

namespace havrel {

class Timers;

/// Work on many items, one after the other.
struct ItemPass
{
    QString text;                                 ///< what is being done, for people
    qsizetype count;                              ///< of items
    std::function<bool(qsizetype index)> perform; ///< the work on one item; no: the pass ends here
};

enum class PassEnd { Finished, Stopped, Cancelled };

/// Does the work now. A pass that takes long shows how far it has come, handles events between items so that windows
/// stay alive, and can be cancelled; the dialog alone takes input then.
///
/// \param window what it is about; may be hidden.
///
/// Threads: the main thread only.
PassEnd runPass(const ItemPass& pass, QWidget& window, Timers& timers);

} // namespace havrel
