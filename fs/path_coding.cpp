// SPDX-License-Identifier: MIT
#include "foundation/coder.h"
#include "fs/path.h"

namespace havrel {
namespace {

const QString kPathKey = QStringLiteral("path");

} // namespace

void JNPath::encodeWithCoder(Encoder& encoder) const
{
    const QByteArray bytes = cPath() + '\0';
    if (encoder.allowsKeyedCoding())
        encoder.encodeBytes(bytes, kPathKey);
    else
        encoder.encodeBytes(bytes);
}

QByteArray JNPath::decodedCPath(Decoder& decoder)
{
    QByteArray bytes = decoder.allowsKeyedCoding() ? decoder.decodeBytes(kPathKey) : decoder.decodeBytes();
    if (bytes.isEmpty())
        return {};
    if (bytes.endsWith('\0'))
        bytes.chop(1);
    return bytes.isNull() ? QByteArray("") : bytes;
}

JNPathPtr JNPath::withCoder(Decoder& decoder)
{
    const QByteArray path = decodedCPath(decoder);
    return path.isNull() ? nullptr : withCPath(path);
}

} // namespace havrel
