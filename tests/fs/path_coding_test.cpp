// SPDX-License-Identifier: MIT
#include "foundation/archiving.h"
#include "foundation/coder.h"
#include "fs/path.h"
#include "fs/sub_path.h"

#include <gtest/gtest.h>

#include <map>
#include <optional>

namespace havrel {
namespace {

/// Byte blocks on their way, by key; the unkeyed one has none.
using Blocks = std::map<std::optional<QString>, QByteArray>;

class BlockEncoder final : public Encoder
{
public:
    explicit BlockEncoder(bool keyed)
        : m_keyed(keyed)
    {
    }
    Blocks blocks;

    [[nodiscard]] bool allowsKeyedCoding() const override { return m_keyed; }
    void encodeObject(const QVariant&, const QString&) override { FAIL(); }
    void encodeBool(bool, const QString&) override { FAIL(); }
    void encodeInteger(qint64, const QString&) override { FAIL(); }
    void encodeBytes(const QByteArray& bytes, const QString& key) override { blocks[key] = bytes; }
    void encodeObject(const QVariant&) override { FAIL(); }
    void encodeUnsigned32(quint32) override { FAIL(); }
    void encodeBytes(const QByteArray& bytes) override { blocks[std::nullopt] = bytes; }

private:
    bool m_keyed;
};

class BlockDecoder final : public Decoder
{
public:
    BlockDecoder(Blocks blocks, bool keyed)
        : m_blocks(std::move(blocks))
        , m_keyed(keyed)
    {
    }

    [[nodiscard]] bool allowsKeyedCoding() const override { return m_keyed; }
    [[nodiscard]] bool containsValueForKey(const QString& key) const override { return m_blocks.contains(key); }
    [[nodiscard]] QVariant decodeObject(const QStringList&, const QString&) override { return {}; }
    [[nodiscard]] bool decodeBool(const QString&) override { return false; }
    [[nodiscard]] qint64 decodeInteger(const QString&) override { return 0; }
    [[nodiscard]] QByteArray decodeBytes(const QString& key) override { return m_blocks[key]; }
    [[nodiscard]] QVariant decodeObject() override { return {}; }
    [[nodiscard]] quint32 decodeUnsigned32() override { return 0; }
    [[nodiscard]] QByteArray decodeBytes() override { return m_blocks[std::nullopt]; }

private:
    Blocks m_blocks;
    bool m_keyed;
};

const QString kKey = QStringLiteral("path");

TEST(PathCoding, KeepsTheBytesAndTheirNulUnderAKey)
{
    BlockEncoder encoder(true);
    JNPath::withCPath("/a/\xFF")->encodeWithCoder(encoder);
    EXPECT_EQ(encoder.blocks, (Blocks{{kKey, QByteArray("/a/\xFF\0", 5)}}));
}

TEST(PathCoding, KeepsTheBytesAndTheirNulWithoutAKeyToo)
{
    BlockEncoder encoder(false);
    JNPath::withCPath("/a")->encodeWithCoder(encoder);
    ASSERT_EQ(encoder.blocks.size(), 1U);
    EXPECT_EQ(encoder.blocks.begin()->first, std::nullopt);
    EXPECT_EQ(encoder.blocks.begin()->second, QByteArray("/a\0", 3));
}

TEST(PathCoding, BringsEveryPathBack)
{
    for (const bool keyed : {true, false}) {
        for (const QByteArray& bytes : {QByteArray("/a//b/"), QByteArray(""), QByteArray("\xFF\n")}) {
            BlockEncoder encoder(keyed);
            JNPath::withCPath(bytes)->encodeWithCoder(encoder);
            BlockDecoder decoder(encoder.blocks, keyed);
            EXPECT_EQ(JNPath::withCoder(decoder)->cPath(), bytes);
        }
    }
}

TEST(PathCoding, MakesNoPathOfNoBytes)
{
    BlockDecoder decoder({}, true);
    EXPECT_EQ(JNPath::withCoder(decoder), nullptr);
    EXPECT_EQ(JNSubPath::withCoder(decoder), nullptr);
}

TEST(PathCoding, TakesBytesThatLostTheirNul)
{
    BlockDecoder decoder({{kKey, QByteArray("/a")}}, true);
    EXPECT_EQ(JNPath::withCoder(decoder)->cPath(), QByteArray("/a"));
}

TEST(PathCoding, EndsAtTheFirstNul)
{
    for (const QByteArray& bytes : {QByteArray("a\0b", 3), QByteArray("a\0b\0", 4), QByteArray("a\0\0", 3)}) {
        BlockDecoder decoder({{kKey, bytes}}, true);
        EXPECT_EQ(JNPath::withCoder(decoder)->cPath(), QByteArray("a"));
    }
    BlockDecoder decoder({{kKey, QByteArray("\0b", 2)}}, true);
    EXPECT_EQ(JNPath::withCoder(decoder)->cPath(), QByteArray(""));
}

TEST(PathCoding, BringsSubPathsBackWithAParent)
{
    BlockEncoder encoder(true);
    JNSubPath::withCName("b", JNPath::withCPath("/a"))->encodeWithCoder(encoder);
    BlockDecoder decoder(encoder.blocks, true);
    const auto path = JNSubPath::withCoder(decoder);
    EXPECT_EQ(path->className(), QStringLiteral("JNSubPath"));
    EXPECT_EQ(path->cPath(), QByteArray("/a/b"));
    EXPECT_EQ(path->cName(), QByteArray("b"));
    ASSERT_NE(path->parent(), nullptr);
    EXPECT_EQ(path->parent()->cPath(), QByteArray("/a"));
}

TEST(PathCoding, ArchivesPathsAmongOtherValues)
{
    const auto path = JNPath::withCPath("/a/\xFF");
    const auto subPath = JNSubPath::withCName("b", path);
    const QVariantList objects{
        QVariant::fromValue(path), QVariant::fromValue(subPath), QVariant::fromValue(path), QStringLiteral("text")};
    const QVariantList back = archivedObject(dataForRootObject(objects, SecureCoding::Yes)).toList();
    ASSERT_EQ(back.size(), 4);
    const auto first = back[0].value<JNPathPtr>();
    const auto second = back[1].value<JNPathPtr>();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(first->cPath(), QByteArray("/a/\xFF"));
    EXPECT_EQ(first->className(), QStringLiteral("JNPath"));
    EXPECT_EQ(second->cPath(), QByteArray("/a/\xFF/b"));
    EXPECT_EQ(second->className(), QStringLiteral("JNSubPath"));
    EXPECT_EQ(back[2].value<JNPathPtr>(), first) << "one object, written once";
}

TEST(PathCoding, ReadsSubPathsWherePathsAreAskedFor)
{
    const auto subPath = JNSubPath::withCName("b", JNPath::withCPath("/a"));
    const QByteArray archive = dataForRootObject(QVariant::fromValue(subPath));
    const QVariant back = archivedObjectOfClass(archive, QStringLiteral("JNPath"));
    EXPECT_TRUE(back.value<JNPathPtr>()->isEqual(*subPath));
}

} // namespace
} // namespace havrel
