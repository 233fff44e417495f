// SPDX-License-Identifier: MIT
#include "diagnostics/exception.h"
#include "diagnostics/logr.h"
#include "foundation/error.h"
#include "fs/path.h"
#include "fs/volume_info.h"
#include "platform/items.h"
#include "platform/random.h"

namespace havrel {
namespace {

/// Bytes of a temporary name: those that a buffer of 255 holds beside its NUL.
constexpr qsizetype kLongestSiblingName = 254;

} // namespace

void JNPath::swapWith(const JNPath& other) const
{
    if (swapAtOnce(other))
        return;
    if (const int error = renameThreeTimes(cPath(), other.cPath()); error != 0) {
        HVException::ioErrno(error, QStringLiteral("cannot exchange files"))
            .setAPI(QStringLiteral("rename"))
            .setPathObject(*this)
            .setDetail(other.path(), QStringLiteral("with"))
            .raise();
    }
}

/// Whether the volume could do it in one step. The second exchange call that some systems have (hasExchangeData) does
/// not exist on this one.
bool JNPath::swapAtOnce(const JNPath& other) const
{
    if (!volumeInfo()->hasSwapping())
        return false;
    const int error = platform::exchangeItems(cPath(), other.cPath());
    if (error != 0) {
        Logr::log(LogClassification::Debug,
                  QStringLiteral("-[JNPath swapWith:] renamex_np('%1','%2') failed; errno=%3 (%4)")
                      .arg(path(), other.path(), QString::number(error), systemErrorText(error)));
    }
    return error == 0;
}

/// A name beside this item that no other has. A long name is cut.
QByteArray JNPath::exchangeSibling() const
{
    for (;;) {
        const QByteArray number = QByteArray::number(platform::random32(), 16).rightJustified(8, '0');
        QByteArray name = "_xchng_" + number + '_' + cName();
        name.truncate(kLongestSiblingName);
        QByteArray sibling = withCName(std::move(name), *parent())->cPath();
        if (platform::findName(sibling) != 0)
            return sibling;
    }
}

/// \return 0, or the errno value of the rename that failed.
int JNPath::renameThreeTimes(const QByteArray& mine, const QByteArray& others) const
{
    const QByteArray sibling = exchangeSibling();
    if (const int error = platform::renameItem(others, sibling); error != 0)
        return error;
    if (const int error = platform::renameItem(mine, others); error != 0) {
        (void)platform::renameItem(sibling, others);
        return error;
    }
    return platform::renameItem(sibling, mine);
}

} // namespace havrel
