// SPDX-License-Identifier: MIT
#include "filters/pattern_filter_def.h"
#include "filters/placeholder_pattern_filter_def.h"
#include "foundation/observing.h"

#include <gtest/gtest.h>

#include <functional>

namespace havrel {
namespace {

class SubclassOfPattern : public PatternFilterDef
{
};

PatternFilterDefPtr complete(const QString& line)
{
    return std::make_shared<PatternFilterDef>(line);
}

PatternFilterDefPtr simple(const QString& anchor, const QString& pattern, PatternType type = PatternType::Glob)
{
    auto definition = std::make_shared<PatternFilterDef>(type);
    definition->setAnchorPath(anchor);
    definition->setSinglePattern(pattern);
    return definition;
}

TEST(PatternFilterDefFields, AreEmptyAtFirst)
{
    const auto definition = std::make_shared<PatternFilterDef>();

    EXPECT_TRUE(definition->completePattern().isNull());
    EXPECT_TRUE(definition->anchorPath().isNull());
    EXPECT_TRUE(definition->singlePattern().isNull());
    EXPECT_TRUE(definition->simple());
    EXPECT_FALSE(definition->rooted());
    EXPECT_FALSE(definition->absolute());
    EXPECT_FALSE(definition->compiled());
    EXPECT_EQ(definition->type(), PatternType::Glob);
    EXPECT_EQ(definition->depth(), 0U);
    EXPECT_EQ(definition->effectiveDepth(), 0U);
    EXPECT_TRUE(definition->description().isEmpty());
    EXPECT_TRUE(PatternFilterDef::supportsSecureCoding());
}

TEST(PatternFilterDefFields, TellAnEmptyLineFromNone)
{
    EXPECT_FALSE(complete(u""_qs)->simple());
    EXPECT_TRUE(complete({})->simple());

    const PatternFilterDefPtr definition = complete(u"a"_qs);
    definition->setCompletePattern({});
    EXPECT_TRUE(definition->simple());
}

TEST(PatternFilterDefFields, HaveASuffixForTheType)
{
    EXPECT_EQ(std::make_shared<PatternFilterDef>(PatternType::Glob)->typeSuffix(), u"glob");
    EXPECT_EQ(std::make_shared<PatternFilterDef>(PatternType::RegularExpression)->typeSuffix(), u"re");
    EXPECT_EQ(std::make_shared<PatternFilterDef>(static_cast<PatternType>(7))->typeSuffix(), u"glob");
}

TEST(PatternFilterDefFields, TurnTheSwitchForIndefiniteDepthIntoADepth)
{
    const auto definition = std::make_shared<PatternFilterDef>();

    definition->setPropagateIndefinitely(true);
    EXPECT_EQ(definition->depth(), kIndefiniteDepth);
    EXPECT_TRUE(definition->propagateIndefinitely());

    definition->setPropagateIndefinitely(false);
    EXPECT_EQ(definition->depth(), 0U);
    EXPECT_FALSE(definition->propagateIndefinitely());
}

using Setter = std::function<void(PatternFilterDef&)>;

struct SetterRow
{
    const char* label;
    Setter set;
    bool uncompiles;
};

const std::array kSetters = {
    SetterRow{"another line", [](auto& each) { each.setCompletePattern(u"//b"_qs); }, true},
    SetterRow{"the same line", [](auto& each) { each.setCompletePattern(u"//a"_qs); }, false},
    SetterRow{"no line", [](auto& each) { each.setCompletePattern({}); }, true},
    SetterRow{"an anchor", [](auto& each) { each.setAnchorPath(u"b"_qs); }, true},
    SetterRow{"an empty anchor in place of none", [](auto& each) { each.setAnchorPath(u""_qs); }, true},
    SetterRow{"no anchor as before", [](auto& each) { each.setAnchorPath({}); }, false},
    SetterRow{"a pattern", [](auto& each) { each.setSinglePattern(u"b"_qs); }, true},
    SetterRow{"no pattern as before", [](auto& each) { each.setSinglePattern({}); }, false},
    SetterRow{"indefinite depth", [](auto& each) { each.setPropagateIndefinitely(true); }, true},
    SetterRow{"definite depth as before", [](auto& each) { each.setPropagateIndefinitely(false); }, false},
    SetterRow{"another type", [](auto& each) { each.setType(PatternType::RegularExpression); }, false},
    SetterRow{"absolute paths", [](auto& each) { each.setRooted(true); }, false},
};

TEST(PatternFilterDefFields, UncompileWhenWhatIsCompiledFromThemDiffers)
{
    for (const SetterRow& row : kSetters) {
        SCOPED_TRACE(row.label);
        const PatternFilterDefPtr definition = complete(u"//a"_qs);
        ASSERT_TRUE(definition->valid());

        row.set(*definition);

        EXPECT_EQ(definition->compiled(), !row.uncompiles);
    }
}

TEST(PatternFilterDefFields, ForgetTheFailureWhenTheyChange)
{
    const PatternFilterDefPtr definition = complete(u"a/"_qs);
    ASSERT_FALSE(definition->valid());

    definition->setCompletePattern(u"b/"_qs);

    EXPECT_FALSE(definition->compilationError());
}

TEST(PatternFilterDefFields, TellTheirObservers)
{
    const PatternFilterDefPtr definition = complete(u"//a"_qs);
    QStringList changed;
    for (const KeyPath name : KeyPaths{"rooted", "type", "completePattern", "anchorPath", "propagateIndefinitely"})
        observeProperty(*definition,
                        name,
                        ObservationOptions::NoInitialCall,
                        [&changed, name](QObject*, QObject*, const QVariant&, const QVariant& now) {
                            changed << name.text() + u'=' + now.toString();
                        });

    definition->setRooted(true);
    definition->setType(PatternType::RegularExpression);
    definition->setType(PatternType::RegularExpression);
    definition->setCompletePattern(u"b"_qs);
    definition->setAnchorPath(u"c"_qs);
    definition->setPropagateIndefinitely(true);
    definition->setPropagateIndefinitely(true);

    EXPECT_EQ(changed,
              (QStringList{u"rooted=true"_qs,
                           u"type=1"_qs,
                           u"completePattern=b"_qs,
                           u"anchorPath=c"_qs,
                           u"propagateIndefinitely=true"_qs}));
}

TEST(PatternFilterDefValidation, OfALineAnswersItsErrorAndChangesNothing)
{
    const PatternFilterDefPtr definition = complete(u"//a"_qs);
    ASSERT_TRUE(definition->valid());

    EXPECT_TRUE(definition->validateCompletePattern(u"b//c"_qs));
    const Validity refused = definition->validateCompletePattern(u"b/"_qs);

    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error->localizedDescription(), u"Trailing / with no options");
    EXPECT_EQ(refused.error->localizedFailureReason(), u"Invalid pattern");
    EXPECT_EQ(definition->completePattern(), u"//a");
    EXPECT_TRUE(definition->compiled());
}

TEST(PatternFilterDefValidation, OfALineHeedsWhetherAbsolutePathsArePermitted)
{
    const PatternFilterDefPtr definition = complete(u"//a"_qs);
    EXPECT_FALSE(definition->validateCompletePattern(u"/b"_qs));

    definition->setRooted(true);

    EXPECT_TRUE(definition->validateCompletePattern(u"/b"_qs));
}

TEST(PatternFilterDefValidation, OfNoLineJudgesTheSimpleForm)
{
    EXPECT_FALSE(complete(u"//a"_qs)->validateCompletePattern({}));
}

TEST(PatternFilterDefValidation, OfAnAnchorForgivesTheFaultsOfThePattern)
{
    const PatternFilterDefPtr definition = simple(u"a"_qs, u"b/c"_qs);

    EXPECT_TRUE(definition->validateAnchorPath(u"x/y"_qs));
    EXPECT_TRUE(definition->validateAnchorPath({}));
    const Validity refused = definition->validateAnchorPath(u"x/"_qs);

    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error->localizedDescription(), u"Trailing / is not allowed here");
    EXPECT_EQ(definition->anchorPath(), u"a");
}

TEST(PatternFilterDefValidation, OfAnAbsoluteAnchorFindsTheFaultsOfThePatternFirst)
{
    EXPECT_FALSE(simple(u"a"_qs, u"b"_qs)->validateAnchorPath(u"/x"_qs));
    EXPECT_TRUE(simple(u"a"_qs, u"b/c"_qs)->validateAnchorPath(u"/x"_qs));
}

TEST(PatternFilterDefValidation, OfAPatternForgivesTheFaultsOfTheAnchor)
{
    const PatternFilterDefPtr definition = simple(u"a/"_qs, u"b"_qs);

    EXPECT_TRUE(definition->validateSinglePattern(u"c"_qs));
    EXPECT_TRUE(definition->validateSinglePattern(u"c/d"_qs)); // the anchor's fault is found first

    const PatternFilterDefPtr anchored = simple(u"a"_qs, u"b"_qs);
    const Validity refused = anchored->validateSinglePattern(u"c/d"_qs);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error->localizedDescription(), u"Pattern cannot contain /");
    EXPECT_FALSE(anchored->validateSinglePattern(u""_qs));
    EXPECT_FALSE(anchored->validateSinglePattern({}));
    EXPECT_EQ(anchored->singlePattern(), u"b");
}

TEST(PatternFilterDefValidation, OfARegularExpressionNamesIt)
{
    const Validity refused = simple({}, u"a"_qs, PatternType::RegularExpression)->validateSinglePattern(u"a("_qs);

    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error->localizedDescription(), u"/a(/ is not a valid regular expression");
}

TEST(PatternFilterDefValidation, AcceptsTheUnchangedPatternOfACompiledDefinitionWhateverItsTypeIsNow)
{
    const PatternFilterDefPtr definition = simple({}, u"*.tmp"_qs); // no regular expression
    ASSERT_TRUE(definition->valid());
    definition->setType(PatternType::RegularExpression);

    EXPECT_TRUE(definition->validateSinglePattern(u"*.tmp"_qs));
    EXPECT_FALSE(definition->validateSinglePattern(u"*.tm"_qs));
}

TEST(PatternFilterDefCopy, SharesWhatIsCompiledButIsNoLongerAbsolute)
{
    const PatternFilterDefPtr definition = complete(u"/a//b/3:re"_qs);
    definition->setRooted(true);
    ASSERT_TRUE(definition->valid());

    const PatternFilterDefPtr copy = definition->copyWithZone();

    EXPECT_NE(copy, definition);
    EXPECT_TRUE(copy->compiled());
    EXPECT_EQ(copy->components(), definition->components());
    EXPECT_EQ(copy->patternComponents(), definition->patternComponents());
    EXPECT_EQ(copy->completePattern(), u"/a//b/3:re");
    EXPECT_TRUE(copy->rooted());
    EXPECT_EQ(copy->type(), PatternType::RegularExpression);
    EXPECT_EQ(copy->depth(), 3U);
    EXPECT_FALSE(copy->absolute());
    EXPECT_EQ(copy->effectiveDepth(), 0U);
    EXPECT_EQ(copy->canonicalPattern(), u"a//b/3:re");
}

TEST(PatternFilterDefCopy, IsAbsoluteAgainOnceASetterHasItCompiledAnew)
{
    const PatternFilterDefPtr definition = complete(u"/a//b"_qs);
    definition->setRooted(true);
    ASSERT_TRUE(definition->valid());
    const PatternFilterDefPtr copy = definition->copyWithZone();

    copy->setCompletePattern(u"/a//c"_qs);

    EXPECT_EQ(copy->canonicalPattern(), u"/a//c");
    EXPECT_TRUE(copy->absolute());
    EXPECT_EQ(definition->canonicalPattern(), u"/a//b");
}

TEST(PatternFilterDefCopy, HasNoFailure)
{
    const PatternFilterDefPtr definition = complete(u"//(/:re"_qs);
    ASSERT_FALSE(definition->valid());

    const PatternFilterDefPtr copy = definition->copyWithZone();

    EXPECT_FALSE(copy->compilationError());
    EXPECT_FALSE(copy->errorInPattern());
}

TEST(PatternFilterDefCopy, KeepsTheSimpleForm)
{
    const PatternFilterDefPtr copy = simple(u""_qs, u"x"_qs)->copyWithZone();

    EXPECT_TRUE(copy->simple());
    EXPECT_FALSE(copy->anchorPath().isNull());
    EXPECT_EQ(copy->singlePattern(), u"x");
}

TEST(PatternFilterDefEquality, OfCompleteFormsIsThatOfTheirTexts)
{
    EXPECT_TRUE(complete(u"//a"_qs)->isEqual(*complete(u"//a"_qs)));
    EXPECT_FALSE(complete(u"//a"_qs)->isEqual(*complete(u"//a/0"_qs))); // though it means the same
    EXPECT_FALSE(complete(u""_qs)->isEqual(*complete({})));

    const PatternFilterDefPtr rooted = complete(u"//a"_qs);
    rooted->setRooted(true);
    EXPECT_TRUE(rooted->isEqual(*complete(u"//a"_qs)));
}

TEST(PatternFilterDefEquality, OfSimpleFormsIsThatOfTypeDepthAnchorAndPattern)
{
    const PatternFilterDefPtr definition = simple(u"a"_qs, u"b"_qs);
    EXPECT_TRUE(definition->isEqual(*simple(u"a"_qs, u"b"_qs)));
    EXPECT_FALSE(definition->isEqual(*simple(u"x"_qs, u"b"_qs)));
    EXPECT_FALSE(definition->isEqual(*simple(u"a"_qs, u"x"_qs)));
    EXPECT_FALSE(definition->isEqual(*simple(u"a"_qs, u"b"_qs, PatternType::RegularExpression)));

    const PatternFilterDefPtr deep = simple(u"a"_qs, u"b"_qs);
    deep->setPropagateIndefinitely(true);
    EXPECT_FALSE(definition->isEqual(*deep));
}

TEST(PatternFilterDefEquality, TellsAnEmptyTextFromNone)
{
    EXPECT_TRUE(simple({}, {})->isEqual(*std::make_shared<PatternFilterDef>()));
    EXPECT_FALSE(simple(u""_qs, {})->isEqual(*simple({}, {})));
    EXPECT_FALSE(simple({}, {})->isEqual(*simple({}, u""_qs)));
}

TEST(PatternFilterDefEquality, NeverHoldsBetweenForms)
{
    const PatternFilterDefPtr definition = complete(u"a//b"_qs);
    ASSERT_TRUE(definition->simplify());

    EXPECT_FALSE(definition->isEqual(*complete(u"a//b"_qs)));
    EXPECT_FALSE(complete(u"a//b"_qs)->isEqual(*definition));
    EXPECT_TRUE(definition->isEqual(*simple(u"a"_qs, u"b"_qs)));
}

TEST(PatternFilterDefEquality, HoldsWithObjectsOfExactlyThisClass)
{
    EXPECT_FALSE(complete({})->isEqual(SubclassOfPattern{}));
    EXPECT_FALSE(complete({})->isEqual(*std::make_shared<PlaceholderPatternFilterDef>()));
    EXPECT_FALSE(complete({})->isEqual(*std::make_shared<FilterDefinition>()));
}

TEST(PatternFilterDefHash, IsThatOfTheCompiledState)
{
    const PatternFilterDefPtr definition = complete(u"a//b"_qs);
    const PatternFilterDefPtr other = complete(u"a//b/0"_qs);
    EXPECT_EQ(definition->hash(), 0U);
    ASSERT_TRUE(definition->valid());
    ASSERT_TRUE(other->valid());

    EXPECT_NE(definition->hash(), 0U);
    EXPECT_EQ(definition->hash(), other->hash());
    EXPECT_NE(definition->hash(), complete(u"a//b"_qs)->hash()); // equal, but not compiled
}

TEST(PatternFilterDefHash, MixesInTypeAndDepth)
{
    const PatternFilterDefPtr definition = simple({}, u"a"_qs, PatternType::RegularExpression);
    EXPECT_EQ(definition->hash(), 0x100U);

    definition->setPropagateIndefinitely(true);

    EXPECT_EQ(definition->hash(), ~std::size_t{0x100});
}

} // namespace
} // namespace havrel
