// SPDX-License-Identifier: MIT
#include "app/display_loss_watch.h"

#include "foundation/dispatch.h"

#include <QCoreApplication>
#include <QThread>

#include <cstdlib>
#include <utility>

namespace havrel {
namespace {

/// What is to be done when the display goes; empty when nobody watches, or when it has been done.
std::function<void()>& watching()
{
    static std::function<void()> act;
    return act;
}

QtMessageHandler& handlerBefore()
{
    static QtMessageHandler handler = nullptr;
    return handler;
}

void displayHasGone()
{
    if (const auto act = std::exchange(watching(), nullptr))
        runAtWall(act);
}

/// The main thread's exit while its event loop still runs is the toolkit's.
void atExit()
{
    if (QCoreApplication::instance() != nullptr && QThread::currentThread() == QCoreApplication::instance()->thread())
        displayHasGone();
}

/// \source the texts of the toolkit's Wayland client, QWaylandDisplay::checkWaylandError
bool tellsOfALostCompositor(const QString& message)
{
    return message.startsWith(QLatin1StringView("The Wayland connection broke")) ||
           message.startsWith(QLatin1StringView("The Wayland connection experienced a fatal error"));
}

void hearMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (handlerBefore() != nullptr)
        handlerBefore()(type, context, message);
    if (tellsOfALostCompositor(message))
        atExit();
}

} // namespace

DisplayLossWatch::DisplayLossWatch(std::function<void()> act)
{
    watching() = std::move(act);
    handlerBefore() = qInstallMessageHandler(hearMessage);
    static const bool registered = std::atexit(atExit) == 0;
    static_cast<void>(registered); // without it only a write in time is lost
}

DisplayLossWatch::~DisplayLossWatch()
{
    watching() = nullptr;
    qInstallMessageHandler(handlerBefore());
}

} // namespace havrel
