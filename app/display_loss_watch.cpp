// SPDX-License-Identifier: MIT
#include "app/display_loss_watch.h"

#include "foundation/dispatch.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QThread>

#include <algorithm>
#include <array>
#include <utility>

namespace havrel {
namespace {

/// What is to be done when the display goes; empty when nobody watches, or when it has been done. For the main thread.
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

constexpr std::array kTold{
    QLatin1StringView("The X11 connection broke"),
    QLatin1StringView("The Wayland connection broke"),
    QLatin1StringView("The Wayland connection experienced a fatal error"),
};

bool isOnMainThread()
{
    return QCoreApplication::instance() != nullptr &&
           QThread::currentThread() == QCoreApplication::instance()->thread();
}

void hearMessage(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (handlerBefore() != nullptr)
        handlerBefore()(type, context, message);
    const auto begins = [&message](QLatin1StringView each) { return message.startsWith(each); };
    if (isOnMainThread() && watching() && std::ranges::any_of(kTold, begins))
        runAtWall(std::exchange(watching(), nullptr));
}

} // namespace

DisplayLossWatch::DisplayLossWatch(std::function<void()> act)
{
    watching() = std::move(act);
    QLoggingCategory::defaultCategory()->setEnabled(QtWarningMsg, true); // whatever the logging rules say
    handlerBefore() = qInstallMessageHandler(hearMessage);
}

DisplayLossWatch::~DisplayLossWatch()
{
    watching() = nullptr;
    qInstallMessageHandler(handlerBefore());
}

} // namespace havrel
