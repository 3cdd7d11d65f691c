// SPDX-License-Identifier: MIT
//
// The actions and fields of a deck: what they are called, which count, where they belong.
#include "host/deck/deck_parts.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/deck/deck_adapter.h"

namespace vs_wml {
namespace {

// The actions of a card and those of the template that it does not replace.
std::vector<PartIndex> InForce(const DeckParts &parts, const DeckCard &card) {
  const auto own = parts.ActionsOf(card);
  std::vector<PartIndex> actions(own.begin(), own.end());
  for (const PartIndex index : parts.templateActions) {
    if (std::none_of(own.begin(), own.end(), [&](PartIndex action) {
          return DetailsOf(parts.actions[action]).shadows == index;
        })) {
      actions.push_back(index);
    }
  }
  return actions;
}

// The actions of each card, "label>target" (or the kind of task), cards ended by '/'.
std::string Actions(const AdaptedDeck &deck) {
  constexpr const char *kTasks[] = {"(unset)", "", "(prev)", "(refresh)", "(noop)"};
  std::string log;
  for (const DeckCard &card : deck.parts.cards) {
    for (const PartIndex index : InForce(deck.parts, card)) {
      const Action &action = deck.parts.actions[index];
      log += ActionLabel(action, card.timer.get()) + '>' +
             kTasks[static_cast<std::size_t>(action.task.kind)] +
             std::string(action.task.target.shown) + ' ';
    }
    log += '/';
  }
  return log;
}

TEST(Parts, ActionsBelongToCardsAndShadowThoseOfTheTemplate) {
  const struct {
    const char *content;
    const char *actions;
  } cases[] = {
      {"<card/><card/>", "//"},
      {"<card><do type='accept'><go href='x'/></do></card><card/>", "OK>x //"},
      {"<template><do type='prev'><prev/></do></template><card/><card/>",
       "Back>(prev) /Back>(prev) /"},
      // By its name, else by its type.
      {"<template><do type='prev'><prev/></do></template><card><do type='prev'><noop/></do></card>",
       "Back>(noop) /"},
      {"<template><do type='prev'><prev/></do></template><card><do type='help'><noop/></do></card>",
       "Help>(noop) Back>(prev) /"},
      {"<template><do type='a' name='n'><prev/></do></template><card><do type='b' name='n'><noop/>"
       "</do></card>",
       "b>(noop) /"},
      {"<template><do type='a' name='n'><prev/></do></template><card><do type='n'><noop/></do>"
       "</card>",
       "n>(noop) /"},
      {"<template><do type='a' name='n'><prev/></do></template><card><do type='a'><noop/></do>"
       "</card>",
       "a>(noop) a>(prev) /"},
      // Events by their type, and never a `do` of that name.
      {"<template onenterforward='t'/><card onenterforward='c'/><card/>",
       "On entry>c /On entry>t /"},
      {"<template><onevent type='onenterbackward'><go href='t'/></onevent></template>"
       "<card onenterbackward='c'/>",
       "On return>c /"},
      {"<template onenterforward='t'/><card><do type='onenterforward'><noop/></do></card>",
       "onenterforward>(noop) On entry>t /"},
      {"<template onenterforward='f' onenterbackward='b' ontimer='t'/><card/>",
       "On entry>f On return>b On timer>t /"},
      {"<card ontimer='t'><timer value='25'/></card><card ontimer='u'/>",
       "After 2.5 s>t /On timer>u /"},
      {"<card><onevent type='ontimer'><refresh/></onevent><timer value='30'/></card>",
       "After 3 s>(refresh) /"},
      // The first task counts, and tasks outside of actions do not.
      {"<card><do type='x'><go href='1'/><go href='2'/><prev/></do></card>", "x>1 /"},
      {"<card><do type='x'/><go href='1'/></card>", "x>(unset) /"},
      {"<card><go href='1'/><do type='x'></do></card>", "x>(unset) /"},
      {"<card><do type='x'></card><card><go href='1'/></card>", "x>(unset) //"},
      {"<card><do type=' Accept '><go href=' x '/></do></card>", "OK>x /"},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(Actions(AdaptDeck("<wml>" + std::string(item.content) + "</wml>")), item.actions)
        << item.content;
  }
}

TEST(Parts, TasksHoldTheirFieldsAndVariables) {
  const AdaptedDeck deck = AdaptDeck(
      "<wml><card><postfield name='lost' value='1'/><setvar name='set' value='1'/>"
      "<do type='a'><go href='x' method='POST' enctype='multipart/form-data'>"
      "<postfield name='p' value='1'/><setvar name='v' value='2'/></go>"
      "<go href='y'><postfield name='second' value='1'/></go></do>"
      "<postfield name='behind' value='1'/></card></wml>");
  ASSERT_EQ(deck.parts.actions.size(), 1U);
  const Task &task = deck.parts.actions[0].task;
  EXPECT_TRUE(task.Posts());
  EXPECT_TRUE(task.IsMultipart());
  ASSERT_EQ(task.PostFields().size(), 1U);
  EXPECT_EQ(task.PostFields()[0].name.shown, "p");
  ASSERT_EQ(task.Variables().size(), 1U);
  EXPECT_EQ(task.Variables()[0].name.shown, "v");
  EXPECT_EQ(deck.warnings.size(), 1U) << "more than one task";
}

// What WML 1.0 calls things by another name.
TEST(Parts, OldNamesAreUnderstood) {
  const AdaptedDeck deck = AdaptDeck(
      "<WML><CARD NAME='c'><DO TYPE='ACCEPT'><GO URL='u' POSTDATA='p=$k'><VAR NAME='v' VALUE='w'/>"
      "</GO></DO><INPUT KEY='k' DEFAULT='d'/><SELECT KEY='s' DEFAULT='b' IKEY='i' IDEFAULT='1'>"
      "<OPTION VALUE='a' ONCLICK='#x'>A</SELECT><TIMER KEY='t' DEFAULT='9'/></CARD></WML>");
  const DeckParts &parts = deck.parts;
  const DeckCard &card = parts.cards[0];
  EXPECT_EQ(card.id, "c");
  ASSERT_TRUE(card.timer);
  EXPECT_EQ(card.timer->name, "t");
  EXPECT_EQ(card.timer->value.shown, "9");
  const Task &task = parts.actions[0].task;
  EXPECT_EQ(task.target.shown, "u");
  EXPECT_EQ(task.details->postData.written, "p=$k");
  EXPECT_TRUE(task.Posts());
  ASSERT_EQ(task.Variables().size(), 1U);
  EXPECT_EQ(task.Variables()[0].value.shown, "w");
  EXPECT_EQ(parts.fields[0].name, "k");
  EXPECT_EQ(parts.fields[0].value.shown, "d");
  EXPECT_EQ(parts.fields[1].name, "s");
  EXPECT_EQ(parts.fields[1].details->indexName, "i");
  EXPECT_EQ(parts.fields[1].details->indexValue.shown, "1");
  EXPECT_EQ(parts.actions[parts.options[0].action].task.target.shown, "#x");
  EXPECT_EQ(parts.remainders.size(), 0U);
}

TEST(Parts, ActionsAreCalledByWhatTheyHave) {
  const auto label = [](ActionKind kind, const char *text, const char *title, const char *type,
                        const char *name, const char *target) {
    Action action;
    action.kind = kind;
    action.details = std::make_unique<ActionDetails>();
    action.details->type = type;
    action.details->name = name;
    action.details->label = Value(text);
    action.details->title = Value(title);
    action.task.target = Value(target);
    return ActionLabel(action, nullptr);
  };
  constexpr ActionKind kDo = ActionKind::kDo;
  EXPECT_EQ(label(kDo, "label", "title", "help", "name", "target"), "label");
  EXPECT_EQ(label(kDo, "", "title", "help", "name", "target"), "title");
  EXPECT_EQ(label(kDo, "", "", "help", "name", "target"), "Help");
  EXPECT_EQ(label(kDo, "", "", "x-own", "name", "target"), "x-own");
  EXPECT_EQ(label(kDo, "", "", "unknown", "name", "target"), "name");
  EXPECT_EQ(label(kDo, "", "", "", "", "target"), "target");
  EXPECT_EQ(label(kDo, "", "", "", "", ""), "OK");
  EXPECT_EQ(ActionLabel({}, nullptr), "OK") << "no names at all";
  EXPECT_EQ(label(ActionKind::kEvent, "", "title", "own", "name", "target"), "own");
  for (const char *type : {"accept", "prev", "help", "reset", "options", "delete"}) {
    EXPECT_FALSE(UsualActionName(type).empty()) << type;
  }
}

// What a card shows of its first field.
std::string FieldOf(const std::string &content) {
  const AdaptedDeck deck = AdaptDeck("<wml><card>" + content + "</card></wml>");
  return deck.parts.fields.empty() ? "(none)" : FieldText(deck.parts, deck.parts.fields[0]);
}

TEST(Parts, SelectsHaveTheirDefault) {
  const std::string options =
      "<option value='a'>A</option><option value='b'>B</option><option value='c'>C</option>";
  const struct {
    const char *attributes;
    const char *text;
  } cases[] = {
      {"", "[s: (*) A ( ) B ( ) C]"},
      {"value='b'", "[s: ( ) A (*) B ( ) C]"},
      {"value=' c ; b '", "[s: ( ) A (*) B ( ) C]"},
      {"value='x'", "[s: (*) A ( ) B ( ) C]"},
      {"value=''", "[s: (*) A ( ) B ( ) C]"},
      {"ivalue='3'", "[s: ( ) A ( ) B (*) C]"},
      {"ivalue='3' value='b'", "[s: ( ) A ( ) B (*) C]"},
      {"ivalue='4' value='b'", "[s: ( ) A (*) B ( ) C]"},
      {"ivalue='0' value='b'", "[s: ( ) A (*) B ( ) C]"},
      {"ivalue='3;2'", "[s: ( ) A (*) B ( ) C]"},
      {"multiple='true'", "[s: [ ] A [ ] B [ ] C]"},
      {"multiple='true' value='c;a'", "[s: [x] A [ ] B [x] C]"},
      {"multiple='true' ivalue='2; 3;9;x'", "[s: [ ] A [x] B [x] C]"},
      {"multiple='TRUE' ivalue='1' value='b'", "[s: [x] A [ ] B [ ] C]"},
      {"multiple='no'", "[s: (*) A ( ) B ( ) C]"},
      {"title='T'", "[T: (*) A ( ) B ( ) C]"},
  };
  for (const auto &item : cases) {
    EXPECT_EQ(
        FieldOf(std::string("<select name='s' ") + item.attributes + ">" + options + "</select>"),
        item.text)
        << item.attributes;
  }
}

TEST(Parts, FieldsAreShown) {
  const struct {
    const char *content;
    const char *text;
  } cases[] = {
      {"<select iname='i'><option>A</select>", "[i: (*) A]"},
      {"<select name='s' iname='i'></select>", "[s:]"},
      {"<select name='s'><option> A\n B </option></select>", "[s: (*) A B]"},
      {"<select name='s'><option title='T' value='v'> </option><option value='v'/></select>",
       "[s: (*) T ( ) v]"},
      {"<select name='s'><option value=''/><option/></select>", "[s: (*)  ( ) ]"},
      {"<select name='s'><optgroup title='G'><option>A<option>B<optgroup title='H'><option>C"
       "</optgroup><option>D</optgroup><option>E</select>",
       "[s: G: (*) A ( ) B H: ( ) C G: ( ) D ( ) E]"},
      {"<select name='s'><optgroup title='G'><option>A</optgroup>x<option>B</select>",
       "[s: G: (*) A ( ) B]"},
      {"<input name='n'/>", "[n: ____]"},
      {"<input name='n' title='T' value='v'/>", "[T: v]"},
      {"<input value='v'/>", "[v]"},
      {"<input/>", "[: ____]"},
      {"<input name='n' type='Password' value='v'/>", "[n: ****]"},
      {"<input type='password' value='v'/>", "[****]"},
      {"<input type='password'/>", "[: ____]"},
      {"<option>A</option>", "(none)"},
  };
  for (const auto &item : cases) EXPECT_EQ(FieldOf(item.content), item.text) << item.content;
}

TEST(Parts, InputsSayWhatTheyTake) {
  const auto emptyAllowed = [](const std::string &attributes) {
    return AdaptDeck("<wml><card><input " + attributes + "/></card></wml>")
        .parts.fields[0]
        .emptyAllowed;
  };
  EXPECT_TRUE(emptyAllowed(""));
  EXPECT_FALSE(emptyAllowed("format='N'"));
  EXPECT_TRUE(emptyAllowed("format='N' emptyok='true'"));
  EXPECT_FALSE(emptyAllowed("emptyok='false'"));
  const AdaptedDeck deck = AdaptDeck(
      "<wml><card><fieldset title='F'><input name='a'/><fieldset title='G'><input name='b'/>"
      "</fieldset><input name='c'/></fieldset><input name='d'/><fieldset title='H'></card>"
      "<card><input name='e'/></card></wml>");
  const DeckParts &parts = deck.parts;
  ASSERT_EQ(parts.fields.size(), 5U);
  std::string titles;
  for (const Field &input : parts.fields) {
    titles += input.name;
    titles += input.fieldset == kNoIndex ? "-" : parts.fieldsets[input.fieldset].title.shown;
  }
  EXPECT_EQ(titles, "aFbGcFd-e-");
  EXPECT_EQ(parts.cards[0].fieldCount, 4U);
  EXPECT_EQ(parts.cards[1].firstField, 4U);
  EXPECT_EQ(parts.fieldsets[1].outer, 0U);
}

}  // namespace
}  // namespace vs_wml
