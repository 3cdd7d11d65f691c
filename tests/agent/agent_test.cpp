// SPDX-License-Identifier: MIT
#include "agent/agent.h"

#include <cstdint>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "agent/input_mask.h"

namespace vs_wml {
namespace {

const std::string kUrl = "http://a.example/d.wml";

// An agent that shows a deck.
Agent Showing(const std::string &deck) {
  Agent agent;
  agent.Step(OpenEvent{kUrl});
  ResponseEvent response;
  response.body = deck;
  agent.Step(response);
  return agent;
}

TEST(Agent, TellsAHostWhatToDo) {
  Agent agent;
  EXPECT_FALSE(agent.HasCard());
  EXPECT_THROW(agent.View(), EventError);
  Effects effects = agent.Step(OpenEvent{kUrl + "#b"});
  ASSERT_TRUE(effects.fetch);
  EXPECT_EQ(effects.fetch->url, kUrl);
  EXPECT_FALSE(effects.show);
  EXPECT_TRUE(agent.IsWaiting());

  ResponseEvent response;
  response.body =
      "<wml><card id='a'><p>a</p></card><card id='b' ontimer='#a'><timer value='30'/>"
      "<p>Call <a href='wtai://wp/mc;1'>1</a></p></card></wml>";
  effects = agent.Step(response);
  EXPECT_TRUE(effects.show);
  EXPECT_EQ(effects.timer, 30U);
  EXPECT_EQ(agent.View().id, "b");

  effects = agent.Step(FollowEvent{0});
  EXPECT_EQ(effects.external, "wtai://wp/mc;1");
  EXPECT_FALSE(effects.fetch || effects.show || effects.failure);
  EXPECT_EQ(agent.Step(WaitEvent{10}).timer, 20U);
}

TEST(Agent, RefusesEventsThatCannotBe) {
  Agent agent = Showing(
      "<wml><card><p><a href='#a'>1</a><input name='i'/>"
      "<select name='s'><option>1</option></select></p></card></wml>");
  const std::string before = agent.Save();
  const Event kEvents[] = {FollowEvent{1},      PressEvent{0},       EnterEvent{1, ""},
                           EnterEvent{2, ""},   ChooseEvent{0, {1}}, ChooseEvent{1, {2}},
                           ChooseEvent{1, {0}}, ResponseEvent{}};
  for (const Event &event : kEvents) {
    EXPECT_THROW(agent.Step(event), EventError) << event.index();
    EXPECT_EQ(agent.Save(), before) << event.index();
  }
}

TEST(Agent, WhatAPersonDoesTakesThePlaceOfWhatIsWaitedFor) {
  Agent agent = Showing(
      "<wml><card id='a'><p><a href='x.wml'>Far</a><a href='#b'>Near</a></p>"
      "</card><card id='b'><p>b</p></card></wml>");
  agent.Step(FollowEvent{0});
  EXPECT_TRUE(agent.IsWaiting());
  agent.Step(FollowEvent{1});
  EXPECT_FALSE(agent.IsWaiting());
  EXPECT_EQ(agent.View().id, "b");
  agent.Step(BackEvent{});
  agent.Step(FollowEvent{0});
  agent.Step(CancelEvent{});
  EXPECT_FALSE(agent.IsWaiting());
  EXPECT_EQ(agent.View().id, "a");
}

TEST(Agent, BoundsItsHistory) {
  Agent agent = Showing("<wml><card id='a'><p><a href='#a'>On</a></p></card></wml>");
  for (int step = 0; step < 1000; ++step) agent.Step(FollowEvent{0});
  EXPECT_EQ(agent.History().size(), 100U);
}

TEST(Agent, AsksAgainForDecksThatAreFarBack) {
  Agent agent;
  const auto answer = [&](int n) {
    ResponseEvent response;
    response.body = "<wml><card id='c" + std::to_string(n) + "'><p><a href='" +
                    std::to_string(n + 1) + "'>On</a></p></card></wml>";
    agent.Step(response);
  };
  agent.Step(OpenEvent{"http://a.example/0"});
  answer(0);
  for (int n = 1; n < 12; ++n) {
    agent.Step(FollowEvent{0});
    answer(n);
  }
  int back = 0;
  while (!agent.Step(BackEvent{}).fetch) ++back;
  EXPECT_EQ(back, 7);
  EXPECT_EQ(agent.LastRequest()->url, "http://a.example/3");
  answer(3);
  EXPECT_EQ(agent.View().id, "c3");
  EXPECT_EQ(agent.History().size(), 4U);
}

TEST(Agent, PassesHoursOfTimers) {
  Agent agent = Showing(
      "<wml><card id='a' ontimer='#b'><timer value='1'/></card>"
      "<card id='b' ontimer='#a'><timer value='1'/></card></wml>");
  agent.Step(WaitEvent{8 * 60 * 60 * 10});
  EXPECT_EQ(agent.View().id, "a");
  // There is an end to what one event may do.
  EXPECT_TRUE(agent.Step(WaitEvent{0xFFFFFFFF}).failure);
}

TEST(SavedState, IsRefusedWhenItIsNone) {
  Agent agent = Showing(
      "<wml><card id='a'><timer value='5'/><p><select><option>1</option>"
      "</select></p></card></wml>");
  const std::string saved = agent.Save();
  EXPECT_EQ(Agent::Restore(saved).Save(), saved);
  struct {
    const char *from;
    const char *to;
  } const kChanges[] = {
      {"\"version\":1", "\"version\":2"},
      {"\"card\":0", "\"card\":1"},
      {"\"deck\":0", "\"deck\":1"},
      {"\"deck\":0,", ""},
      {"[[1]]", "[[2]]"},
      {"[[1]]", "[[1],[1]]"},
      {"[[1]]", "[[1,1]]"},
      {"\"timer\":5", "\"timer\":0"},
      {"\"timer\":5", "\"timer\":-5"},
      {"\"variables\":{}", "\"variables\":{\"a b\":\"1\"}"},
      {"\"started\":true", "\"started\":1"},
      {"\"state\"", "\"stat\""},
      {"\"requests\":1", "\"requests\":\"1\""},
      {"<card", "<crad"},
  };
  for (const auto &change : kChanges) {
    std::string changed = saved;
    const std::size_t at = changed.find(change.from);
    ASSERT_NE(at, std::string::npos) << change.from;
    changed.replace(at, std::string(change.from).size(), change.to);
    EXPECT_THROW(Agent::Restore(changed), StateError) << change.to;
  }
  for (std::size_t length = 0; length < saved.size(); length += 7) {
    EXPECT_THROW(Agent::Restore(saved.substr(0, length)), StateError);
  }
}

// Random events, among them ones that cannot be, over a deck with something of everything:
// a state that was saved and restored goes on as the one that was not.
TEST(SavedState, GoesOnAsIfNothingHadBeen) {
  const std::string kDeck =
      "<wml><head><access domain='a.example'/></head><template><do type='prev'><prev/></do>"
      "<onevent type='onenterbackward'><refresh><setvar name='n' value='$(n)b'/></refresh>"
      "</onevent></template><card id='a' ontimer='#b'><timer name='t' value='3'/><p><a href='#b'>"
      "1</a><a href='?$(n)'>2</a><anchor>3<refresh><setvar name='n' value='$(n)$(i)'/></refresh>"
      "</anchor><input name='i' format='*N'/><select name='s' multiple='true'><option value='x'>"
      "</option><option value='y' onpick='#c'></option></select></p></card><card id='b' "
      "onenterforward='#c'/><card id='c' newcontext='true'><do type='accept'><go href='s' "
      "method='post'><postfield name='k' value='$(s)'/></go></do><p><a href='#a'>4</a></p></card>"
      "</wml>";
  std::mt19937 random(1);
  const auto below = [&](std::uint32_t limit) {
    return static_cast<std::uint32_t>(random() % limit);
  };
  Agent agent;
  Agent other;
  for (int step = 0; step < 3000; ++step) {
    ResponseEvent response;
    response.body = below(4) == 0 ? "no deck" : kDeck;
    response.status = below(6) == 0 ? 302 : 200;
    response.location = "other";
    const Event kEvents[] = {OpenEvent{kUrl},
                             FollowEvent{below(4)},
                             PressEvent{below(2)},
                             EnterEvent{0, std::to_string(below(99))},
                             ChooseEvent{1, {1 + below(2)}},
                             BackEvent{},
                             WaitEvent{below(4)},
                             response,
                             response,
                             response,
                             CancelEvent{}};
    const Event &event = kEvents[below(std::size(kEvents))];
    std::optional<Effects> effects;
    try {
      effects = agent.Step(event);
    } catch (const EventError &) {
      EXPECT_THROW(other.Step(event), EventError);
    }
    if (effects) {
      EXPECT_EQ(other.Step(event).show, effects->show);
    }
    const std::string saved = agent.Save();
    ASSERT_EQ(other.Save(), saved) << "step " << step;
    other = Agent::Restore(saved);
    if (agent.HasCard()) {
      ASSERT_EQ(other.View().text, agent.View().text);
    }
  }
}

TEST(InputMask, TakesWhatFits) {
  struct {
    const char *format;
    const char *text;
    const char *fitted;  // null: refused
  } const kCases[] = {
      {"NN", "12", "12"},
      {"NN", "1", nullptr},
      {"NN", "123", nullptr},
      {"*N", "", ""},
      {"*N", "0123", "0123"},
      {"*N", "0 1", nullptr},
      {"A*a", "Ada", "Ada"},
      {"A*a", "ada", nullptr},
      {"A*a", "A1", nullptr},
      {"X", "a", nullptr},
      {"X", "1", "1"},
      {"x", "A", nullptr},
      {"M*m", "x Y", "x Y"},
      {"3N", "12", "12"},
      {"3N", "1234", nullptr},
      {"NN\\-N", "12-3", "12-3"},
      {"NN\\-N", "123", "12-3"},
      {"\\+*N", "49", "+49"},
      {"A", "\xC3\xA4", nullptr},
      {"a", "\xC3\xA4", "\xC3\xA4"},
      {"", "", ""},
      {"", "x", nullptr},
      // What is no format refuses nothing.
      {"QQ", "any", "any"},
      {"*NN", "any", "any"},
      {"N\\", "any", "any"},
  };
  for (const auto &item : kCases) {
    const auto fitted = FitMask(item.format, item.text);
    EXPECT_EQ(fitted.has_value(), item.fitted != nullptr) << item.format << ' ' << item.text;
    if (fitted && item.fitted != nullptr) {
      EXPECT_EQ(*fitted, item.fitted);
    }
  }
}

}  // namespace
}  // namespace vs_wml
