#include "ui/Description.hpp"
#include "ui/Interaction.hpp"
#include "ui/Node.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace sentrel::ui {
namespace {

using testing::ElementsAre;

/// A little panel: its state, the view of it, and the person at it, who sees each new state.
class PanelTest : public testing::Test {
protected:
    template <class T> Binding<T> bind(T& state)
    {
        return {state, [&state](T value) { state = std::move(value); }};
    }

    View panel()
    {
        View sensitivity = view(Slider{"Sensitivity", bind(sensitivity_), 0.1, 1.0, std::nullopt, ""});
        View limit = view(Slider{"Wrong attempts", bind(limit_), 1.0, 10.0, 1.0, std::to_string(int(limit_))});
        View name = view(TextField{"Name", bind(name_), [this] { ++submitted_; }}).id("name");
        View secret = view(SecureField{"Passcode", bind(secret_), {}}).focused({true, {}});
        Button remove{"Remove", [this] { isAsking_ = true; }, Button::Role::destructive, Key::deleteKey, {}};
        Button confirm{"Delete", [this] { ++deleted_; }, Button::Role::destructive, {}, {}};
        Dialog question{Dialog::Kind::confirmation, "Delete?", "It is gone then.", [this] { isAsking_ = false; }};
        return view(Form{}, {section("Triggers", {toggle("On motion", bind(motion_)),
                                                  std::move(sensitivity).disabled(!motion_), std::move(limit)}),
                             section("Owner", {std::move(name), std::move(secret),
                                               text("Say \"who\"\nyou are", Text::Style::caption).hidden(!hint_)})
                                 .id("owner"),
                             view(std::move(remove))})
            .onKey(Key::escape, [this] { ++escaped_; })
            .attach(view(std::move(question), {view(std::move(confirm)), button("Cancel", {}, Button::Role::cancel)})
                        .hidden(!isAsking_));
    }

    bool motion_ = true;
    bool hint_ = true;
    bool isAsking_ = false;
    double sensitivity_ = 0.35;
    double limit_ = 3.0;
    std::string name_ = "Ada";
    SecretText secret_{"pa\xC3\x9F"};
    int submitted_ = 0;
    int deleted_ = 0;
    int escaped_ = 0;
};

TEST_F(PanelTest, ReadsAsTextWithTheIdentityOfWhatCanBeUsedAndNoSecrets)
{
    EXPECT_EQ(describe(panel()), R"(form, on escape
  section "Triggers"
    checkbox "On motion" on [0/0]
    slider "Sensitivity" 0.35 of 0.1 to 1 [0/1]
    slider "Wrong attempts" 3 of 1 to 10 by 1, shown as "3" [0/2]
  section "Owner"
    field "Name" = "Ada" [owner/name]
    secure field "Passcode" = "•••" [owner/1] focused
    text "Say \"who\"\nyou are", caption
  button "Remove", destructive, key delete [2]
)");
    EXPECT_THAT(visibleTexts(panel()), ElementsAre("Triggers", "On motion", "Sensitivity", "Wrong attempts", "3",
                                                   "Owner", "Say \"who\"\nyou are", "Remove"));
}

TEST_F(PanelTest, ANodeKeepsItsIdentityWhenASiblingHides)
{
    hint_ = false;
    EXPECT_EQ(find(panel(), "Passcode")->identity, "owner/1");
    EXPECT_EQ(find(panel(), "Remove")->identity, "2");
    EXPECT_FALSE(find(panel(), "owner/2"));
}

TEST_F(PanelTest, AViewIsMeantByItsIdentityTheEndOfItOrWhatOneReads)
{
    const View shown = panel();
    for (const auto* const wanted : {"owner/name", "name", "Name"}) {
        ASSERT_TRUE(find(shown, wanted)) << wanted;
        EXPECT_EQ(find(shown, wanted)->identity, "owner/name") << wanted;
    }
    for (const auto* const wanted : {"ame", "owner/nam", "Nobody", "/name"}) {
        EXPECT_FALSE(find(shown, wanted)) << wanted;
    }
}

TEST_F(PanelTest, WhatAPersonDoesReachesTheStateWithinTheControlsBounds)
{
    EXPECT_EQ(slideTo(panel(), "Sensitivity", 7.0), Interaction::done);
    EXPECT_EQ(sensitivity_, 1.0);
    EXPECT_EQ(slideTo(panel(), "Wrong attempts", 4.4), Interaction::done);
    EXPECT_EQ(limit_, 4.0);
    EXPECT_EQ(typeText(panel(), "name", " L."), Interaction::done);
    EXPECT_EQ(name_, "Ada L.");
    EXPECT_EQ(typeText(panel(), "Passcode", "1"), Interaction::done);
    EXPECT_EQ(secret_, SecretText{"pa\xC3\x9F"
                                  "1"});
    EXPECT_EQ(clearText(panel(), "Passcode"), Interaction::done);
    EXPECT_TRUE(secret_.empty());
    EXPECT_EQ(switchTo(panel(), "On motion", true), Interaction::done);
    EXPECT_EQ(press(panel(), "On motion"), Interaction::done);
    EXPECT_FALSE(motion_);
}

TEST_F(PanelTest, WhatIsDisabledHiddenOrOfAnotherKindIsLeftAlone)
{
    motion_ = false;
    EXPECT_EQ(slideTo(panel(), "Sensitivity", 0.5), Interaction::unreachable);
    EXPECT_EQ(sensitivity_, 0.35);
    EXPECT_EQ(press(panel(), "Name"), Interaction::unsuitable);
    EXPECT_EQ(typeText(panel(), "Remove", "x"), Interaction::unsuitable);
    EXPECT_EQ(slideTo(panel(), "Wrong attempts", std::numeric_limits<double>::quiet_NaN()), Interaction::unsuitable);
    EXPECT_EQ(press(panel(), "Delete"), Interaction::notFound);
}

TEST_F(PanelTest, ADialogBlocksWhatLiesBehindItAndEveryAnswerClosesIt)
{
    EXPECT_EQ(press(panel(), "Remove"), Interaction::done);
    EXPECT_EQ(press(panel(), "On motion"), Interaction::unreachable);
    EXPECT_EQ(press(panel(), "Cancel"), Interaction::done);
    EXPECT_FALSE(isAsking_);
    EXPECT_EQ(press(panel(), "Remove"), Interaction::done);
    EXPECT_EQ(pressKey(panel(), Key::returnKey, ""), Interaction::notFound) << "what can't be undone isn't done by it";
    EXPECT_EQ(pressKey(panel(), Key::escape, ""), Interaction::done);
    EXPECT_FALSE(isAsking_);
    EXPECT_EQ(deleted_ + escaped_, 0);

    EXPECT_EQ(press(panel(), "Remove"), Interaction::done);
    EXPECT_EQ(press(panel(), "dialog/0"), Interaction::done);
    EXPECT_EQ(deleted_, 1);
    EXPECT_FALSE(isAsking_);
}

TEST_F(PanelTest, AFieldBeingEditedTakesReturnAndDeleteBeforeTheWindowDoes)
{
    EXPECT_EQ(pressKey(panel(), Key::returnKey, "owner/name"), Interaction::done);
    EXPECT_EQ(submitted_, 1);
    EXPECT_EQ(pressKey(panel(), Key::returnKey, "owner/1"), Interaction::notFound);
    EXPECT_EQ(pressKey(panel(), Key::deleteKey, "owner/1"), Interaction::done);
    EXPECT_EQ(secret_, SecretText{"pa"}) << "a character of two bytes goes as a whole";
    EXPECT_FALSE(isAsking_);
    EXPECT_EQ(pressKey(panel(), Key::deleteKey, ""), Interaction::done);
    EXPECT_TRUE(isAsking_);
    isAsking_ = false;
    EXPECT_EQ(pressKey(panel(), Key::escape, "owner/name"), Interaction::done);
    EXPECT_EQ(escaped_, 1);
}

TEST(ViewTree, AListSelectsOnlyRowsThatItHasAndAsManyAsItMay)
{
    using Rows = std::set<std::string>;
    struct Case {
        List::Selection mode;
        Rows rows;
        Interaction outcome;
    };
    const std::array cases{
        Case{List::Selection::multiple, {"a", "b"}, Interaction::done},
        Case{List::Selection::multiple, {}, Interaction::done},
        Case{List::Selection::multiple, {"a", "hidden"}, Interaction::unsuitable},
        Case{List::Selection::single, {"b"}, Interaction::done},
        Case{List::Selection::single, {"a", "b"}, Interaction::unsuitable},
        Case{List::Selection::none, {"a"}, Interaction::unsuitable},
    };
    for (const Case& given : cases) {
        Rows selected{"before"};
        const View list = view(List{given.mode, {selected, [&](Rows rows) { selected = std::move(rows); }}},
                               {section("Today", {text("Motion").id("a"), text("Lid").id("hidden").hidden(true)}),
                                section("", {text("Power").id("b")})});
        EXPECT_EQ(selectRows(list, "", given.rows), given.outcome);
        EXPECT_EQ(selected, given.outcome == Interaction::done ? given.rows : Rows{"before"});
    }
}

} // namespace
} // namespace sentrel::ui
