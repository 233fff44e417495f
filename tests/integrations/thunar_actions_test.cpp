// SPDX-License-Identifier: MIT
#include "integrations/thunar_actions.h"

#include <QHash>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <array>

namespace havrel::integrations {
namespace {

const QByteArray kForeign =
    "<action>\n\t<icon>a &amp; b</icon>\n\t<name xml:lang=\"de\">\xC3\x84</name>\n\t<unique-id>17-1</unique-id>\n"
    "\t<command>x &lt; %f</command>\n\t<patterns>*</patterns><directories/>\n</action>";

QByteArray ours()
{
    QByteArray all;
    for (const ThunarAction& each : thunarActions())
        all += each.xml + '\n';
    return all;
}

const std::array kFiles = {
    QByteArray("<actions></actions>"),
    QByteArray("<actions>\n</actions>\n"),
    QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<actions>\n" + kForeign + "\n</actions>\n"),
    QByteArray("<actions>" + kForeign + kForeign + "</actions>"),
    QByteArray("<!DOCTYPE actions [\n  <!ELEMENT actions (action)+>\n]>\r\n<actions>\r\n" + kForeign +
               "\r\n</actions>\r\n<!-- end -->"),
    QByteArray("<!-- <actions> --><actions a='/'><!-- </actions> --><![CDATA[</actions>]]>" + kForeign +
               "<other><action><unique-id>com.havrel.Service.capture</unique-id></action></other></actions >"),
    QByteArray("<actions>\xF0\x9F\x98\x80" + kForeign + "\xF0\x9F\x98\x80</actions>"),
    QByteArray("\xEF\xBB\xBF<actions>" + kForeign + "</actions>"),
    QByteArray("<actions><action/><action></action><action><unique-id/></action></actions>"),
};

TEST(ThunarActions, ComeLastAndLeaveTheRestAsItIs)
{
    for (const QByteArray& file : kFiles) {
        const ThunarActionsText with = withHavrelActions(file);
        ASSERT_TRUE(with.fault.isNull()) << file.constData() << with.fault.toStdString();
        QByteArray expected = file;
        const qsizetype end =
            file.startsWith("<!--") ? file.lastIndexOf("</actions >") : file.lastIndexOf("</actions>");
        EXPECT_EQ(with.bytes, expected.insert(end, ours())) << file.constData();
        EXPECT_EQ(countOfHavrelActions(with.bytes), 3);
    }
}

TEST(ThunarActions, AreRemovedAgainToTheVeryByte)
{
    for (const QByteArray& file : kFiles) {
        EXPECT_EQ(withoutHavrelActions(withHavrelActions(file).bytes).bytes, file);
        EXPECT_EQ(withoutHavrelActions(file).bytes, file);
    }
}

TEST(ThunarActions, AreThereOnlyOnceHoweverOftenTheyAreAdded)
{
    for (const QByteArray& file : kFiles) {
        const QByteArray once = withHavrelActions(file).bytes;
        EXPECT_EQ(withHavrelActions(once).bytes, once);
    }
}

TEST(ThunarActions, FillAnElementWithoutContents)
{
    for (const char* root : {"<actions/>", "<actions />", "<actions a='b'/>"}) {
        const QByteArray with = withHavrelActions(root).bytes;
        EXPECT_EQ(with, QByteArray(root).chopped(2) + '>' + ours() + "</actions>");
        EXPECT_EQ(withoutHavrelActions(with).bytes, QByteArray(root).chopped(2) + "></actions>");
        EXPECT_EQ(withoutHavrelActions(root).bytes, root);
    }
}

TEST(ThunarActions, ReplaceThoseThatWereThereWhereTheyStood)
{
    const QList<ThunarAction>& actions = thunarActions();
    const QByteArray old = "<action><name>old</name><unique-id>" + actions[1].id + "</unique-id></action>";
    const QByteArray with = withHavrelActions("<actions>" + old + kForeign + old + "\n</actions>").bytes;
    EXPECT_EQ(with, "<actions>" + actions[1].xml + kForeign + actions[0].xml + '\n' + actions[2].xml + "\n</actions>");
}

TEST(ThunarActions, AreKnownByTheLastIdentifierAsThunarReadsIt)
{
    const QByteArray id = thunarActions()[0].id;
    struct Row
    {
        QByteArray action;
        bool isOurs;
    };
    const std::array rows = {
        Row{"<action><unique-id>" + id + "</unique-id></action>", true},
        Row{"<action><unique-id>1</unique-id><unique-id>" + id + "</unique-id></action>", true},
        Row{"<action><unique-id>" + id + "</unique-id><unique-id>1</unique-id></action>", false},
        Row{"<action><unique-id><![CDATA[" + id + "]]></unique-id></action>", true},
        Row{"<action><unique-id>com.havrel<!-- -->.Service.capture</unique-id></action>", true},
        Row{"<action><unique-id>com.havrel&#46;Service.capture</unique-id></action>", true},
        Row{"<action><unique-id> " + id + "</unique-id></action>", false},
        Row{"<action><name>" + id + "</name></action>", false},
        Row{"<action id='" + id + "'/>", false},
        Row{"<action><x><unique-id>" + id + "</unique-id></x></action>", false},
    };
    for (const Row& row : rows)
        EXPECT_EQ(countOfHavrelActions("<actions>" + row.action + "</actions>"), row.isOurs ? 1 : 0)
            << row.action.constData();
}

TEST(ThunarActions, RefuseToTouchADamagedFile)
{
    struct Row
    {
        QByteArray file;
        const char* fault;
    };
    const std::array rows = {
        Row{"", "line 1: "},
        Row{"<actions>", "line 1: "},
        Row{"<actions>\n<action></actions>", "line 2: "},
        Row{"<actions></actions><actions></actions>", "line 1: "},
        Row{"<actions></actions>x", "line 1: "},
        Row{"<actions>&nothing;</actions>", "line 1: "},
        Row{"<other></other>", "its root is not \"actions\""},
        Row{"<actions>\xFF</actions>", "it is not in UTF-8"},
        Row{"\xEF\xBB\xBF\xEF\xBB\xBF<actions/>", "it begins with two byte order marks"},
        Row{QByteArray("<actions>\0</actions>", 20), "line 1: "},
    };
    for (const Row& row : rows)
        for (const auto& changed : {withHavrelActions(row.file), withoutHavrelActions(row.file)}) {
            EXPECT_TRUE(changed.fault.startsWith(QString::fromLatin1(row.fault)))
                << row.file.constData() << ": " << changed.fault.toStdString();
            EXPECT_TRUE(changed.bytes.isEmpty());
            EXPECT_EQ(countOfHavrelActions(row.file), 0);
        }
}

TEST(ThunarActions, AreWhatThunarReads)
{
    for (const ThunarAction& each : thunarActions()) {
        QXmlStreamReader xml(each.xml);
        QHash<QString, QString> texts;
        ASSERT_TRUE(xml.readNextStartElement());
        EXPECT_EQ(xml.name(), QLatin1String("action"));
        while (xml.readNextStartElement()) {
            const QString language =
                xml.attributes()
                    .value(QLatin1String("http://www.w3.org/XML/1998/namespace"), QLatin1String("lang"))
                    .toString();
            const QString name = xml.name().toString() + language;
            texts[name] = xml.readElementText();
        }
        EXPECT_FALSE(xml.hasError());
        EXPECT_TRUE(texts[QStringLiteral("command")].startsWith(QStringLiteral("havrel ")));
        EXPECT_TRUE(texts[QStringLiteral("command")].endsWith(QStringLiteral(" -- %F"))); // several items at once
        EXPECT_EQ(texts[QStringLiteral("submenu")], QStringLiteral("Havrel"));
        EXPECT_EQ(texts[QStringLiteral("patterns")], QStringLiteral("*"));
        EXPECT_NE(texts[QStringLiteral("name")], texts[QStringLiteral("namede")]);
        for (const char* kind :
             {"directories", "audio-files", "image-files", "other-files", "text-files", "video-files"})
            EXPECT_TRUE(texts.contains(QString::fromLatin1(kind))) << kind;
    }
}

} // namespace
} // namespace havrel::integrations
