// SPDX-License-Identifier: MIT
#pragma once

#include <QCoreApplication>

namespace havrel {

/// Logs the exception that is being handled at its own classification, unless the main queue did when it threw it on.
/// For the wall below, inside its catch.
///
/// Threads: any thread.
void endAtMainQueueWall();

/// An application whose event loop is a wall: an exception that leaves an event handler or a block of the main queue
/// is logged once and ends there, where the toolkit's own would end the process. The event counts as not handled.
///
/// \code
/// WithMainQueueWall<QApplication> application(argc, argv);
/// \endcode
///
/// Threads: the main thread only.
template<class Application>
class WithMainQueueWall : public Application
{
public:
    using Application::Application;

    bool notify(QObject* receiver, QEvent* event) override
    {
        try {
            return Application::notify(receiver, event);
        } catch (...) {
            endAtMainQueueWall();
            return false;
        }
    }
};

/// For programs without windows.
using CoreApplication = WithMainQueueWall<QCoreApplication>;

} // namespace havrel
