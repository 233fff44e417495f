// SPDX-License-Identifier: MIT
#include "filters/pattern_filter_def.h"
#include "tests/support/key_table_coder.h"

#include <gtest/gtest.h>

namespace havrel {
namespace {

QVariantMap encoded(const PatternFilterDef& definition)
{
    KeyTableEncoder encoder;
    definition.encodeWithCoder(encoder);
    return encoder.table;
}

PatternFilterDefPtr decoded(const QVariantMap& table)
{
    KeyTableDecoder decoder(table);
    return std::make_shared<PatternFilterDef>(decoder);
}

const QVariant kNil;

TEST(PatternFilterDefCoding, WritesOfACompleteFormTheLineOnly)
{
    const auto definition = std::make_shared<PatternFilterDef>(u"//a/3:re"_qs);
    ASSERT_TRUE(definition->valid());

    EXPECT_EQ(encoded(*definition), (QVariantMap{{u"root"_qs, false}, {u"complete"_qs, u"//a/3:re"_qs}}));
}

TEST(PatternFilterDefCoding, WritesOfASimpleFormItsParts)
{
    const auto definition = std::make_shared<PatternFilterDef>(PatternType::RegularExpression);
    definition->setRooted(true);
    definition->setSinglePattern(u"x"_qs);
    definition->setPropagateIndefinitely(true);

    EXPECT_EQ(encoded(*definition),
              (QVariantMap{{u"root"_qs, true},
                           {u"anchor"_qs, kNil},
                           {u"single"_qs, u"x"_qs},
                           {u"type"_qs, qint64{1}},
                           {u"depth"_qs, qint64{-1}}})); // all ones
}

TEST(PatternFilterDefCoding, ReadsBackEitherForm)
{
    const auto complete = std::make_shared<PatternFilterDef>(u"//a/3:re"_qs);
    const auto simple = std::make_shared<PatternFilterDef>(u"a//b/+"_qs);
    ASSERT_TRUE(simple->simplify());

    for (const auto& definition : {complete, simple}) {
        const PatternFilterDefPtr back = decoded(encoded(*definition));
        EXPECT_TRUE(back->isEqual(*definition));
        EXPECT_FALSE(back->compiled());
        EXPECT_EQ(back->canonicalPattern(), definition->canonicalPattern());
    }
}

TEST(PatternFilterDefCoding, TellsEmptyTextsFromNone)
{
    const auto definition = std::make_shared<PatternFilterDef>();
    definition->setAnchorPath(u""_qs);

    const PatternFilterDefPtr back = decoded(encoded(*definition));

    EXPECT_FALSE(back->anchorPath().isNull());
    EXPECT_TRUE(back->singlePattern().isNull());
    EXPECT_FALSE(decoded(encoded(*std::make_shared<PatternFilterDef>(u""_qs)))->simple());
}

TEST(PatternFilterDefCoding, ReadsMissingFieldsAsNothing)
{
    const PatternFilterDefPtr back = decoded({});

    EXPECT_TRUE(back->isEqual(*std::make_shared<PatternFilterDef>()));
    EXPECT_FALSE(back->rooted());
}

TEST(PatternFilterDefCoding, ReadsAllFieldsWhateverTheForm)
{
    const PatternFilterDefPtr back = decoded({{u"root"_qs, true},
                                              {u"complete"_qs, u"//a"_qs},
                                              {u"anchor"_qs, u"b"_qs},
                                              {u"single"_qs, u"c"_qs},
                                              {u"type"_qs, 7},
                                              {u"depth"_qs, 3}});

    EXPECT_TRUE(back->rooted());
    EXPECT_EQ(back->completePattern(), u"//a");
    EXPECT_EQ(back->anchorPath(), u"b");
    EXPECT_EQ(back->singlePattern(), u"c");
    EXPECT_EQ(back->type(), static_cast<PatternType>(7));
    EXPECT_EQ(back->depth(), 3U);
}

TEST(PatternFilterDefCoding, LosesADepthThatTheSimpleFormDoesNotKnowOnceCompiled)
{
    const PatternFilterDefPtr back = decoded({{u"single"_qs, u"c"_qs}, {u"depth"_qs, 3}});
    EXPECT_EQ(back->depth(), 3U);

    EXPECT_EQ(back->canonicalPattern(), u"//c");

    EXPECT_EQ(back->depth(), 0U);
}

TEST(PatternFilterDefCoding, CannotCompileASimplifiedAbsolutePatternOnceItCameBack)
{
    const auto definition = std::make_shared<PatternFilterDef>(u"///x"_qs);
    definition->setRooted(true);
    ASSERT_TRUE(definition->simplify());

    const PatternFilterDefPtr back = decoded(encoded(*definition));

    EXPECT_FALSE(back->valid());
    EXPECT_EQ(back->compileFailureDescription(), u"Too many leading /");
}

TEST(PatternFilterDefCoding, RefusesOtherObjectsThanTexts)
{
    EXPECT_THROW((void)decoded({{u"complete"_qs, QVariantList{}}}), HVException);
}

} // namespace
} // namespace havrel
