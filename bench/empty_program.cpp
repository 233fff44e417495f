// SPDX-License-Identifier: MIT
// The least that a program of this toolkit does: the peer of the tool's start.
#include <QCoreApplication>

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return 0;
}
