// SPDX-License-Identifier: MIT
#include "agent/loaded_deck.h"

#include <algorithm>
#include <span>
#include <utility>

#include "agent/address.h"
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

DeckOptions LiveOptions() {
  DeckOptions options;
  options.live = true;
  return options;
}

bool IsKey(const Action &action) {
  const TaskKind kind = action.task.kind;
  return action.kind == ActionKind::kDo && kind != TaskKind::kNothing && kind != TaskKind::kUnset;
}

// "wml.example.com" lies in "example.com", "notexample.com" does not.
bool IsWithinDomain(std::string_view host, std::string_view domain) {
  if (host.size() < domain.size()) return false;
  if (!EqualIgnoringCase(host.substr(host.size() - domain.size()), domain)) return false;
  return host.size() == domain.size() || host[host.size() - domain.size() - 1] == '.';
}

// "/news/today" lies in "/news", "/newspaper" does not.
bool IsWithinPath(std::string_view path, std::string_view prefix) {
  while (prefix.ends_with('/')) prefix.remove_suffix(1);
  if (!path.starts_with(prefix)) return false;
  return path.size() == prefix.size() || path[prefix.size()] == '/';
}

}  // namespace

LoadedDeck::LoadedDeck(std::string url, std::string bytes, const std::string &contentType)
    : LoadedDeck(std::move(url), [&] {
        DeckOptions options;
        options.contentType = contentType;
        return DecodeDeck("deck", std::move(bytes), options);
      }()) {}

LoadedDeck::LoadedDeck(std::string url, DeckText text)
    : url_(std::move(url)), text_(std::move(text.text)) {
  deck_ = AdaptText(text_, std::move(text.info), LiveOptions());
  deck_.bytes = {};  // cards are served one by one
  if (CardCount() == 0) throw NotWml("a deck without cards");
}

LoadedDeck LoadedDeck::OfText(std::string url, std::string text) {
  return LoadedDeck(std::move(url), DeckText{std::move(text), {}});
}

std::size_t LoadedDeck::FindCard(std::string_view fragment) const {
  for (std::size_t card = 0; !fragment.empty() && card < CardCount(); ++card) {
    if (Card(card).id == fragment) return card;
  }
  return 0;
}

DeckFields LoadedDeck::FieldsOf(std::size_t card) const {
  return {Parts(), Card(card)};
}

std::vector<const Action *> LoadedDeck::KeysOf(std::size_t card) const {
  std::vector<const Action *> keys;
  std::vector<PartIndex> shadowed;
  for (const PartIndex index : Parts().ActionsOf(Card(card))) {
    const Action &action = Parts().actions[index];
    shadowed.push_back(DetailsOf(action).shadows);
    if (IsKey(action)) keys.push_back(&action);
  }
  for (const PartIndex index : Parts().templateActions) {
    const Action &action = Parts().actions[index];
    const bool isShadowed = std::find(shadowed.begin(), shadowed.end(), index) != shadowed.end();
    if (IsKey(action) && !isShadowed) keys.push_back(&action);
  }
  return keys;
}

const Action *LoadedDeck::FindEvent(std::size_t card, std::string_view type) const {
  const auto find = [&](std::span<const PartIndex> actions) -> const Action * {
    for (const PartIndex index : actions) {
      const Action &action = Parts().actions[index];
      if (action.kind == ActionKind::kEvent && DetailsOf(action).type == type) return &action;
    }
    return nullptr;
  };
  const Action *event = find(Parts().ActionsOf(Card(card)));
  if (event == nullptr) event = find(Parts().templateActions);
  const bool acts = event != nullptr && event->task.kind != TaskKind::kNothing &&
                    event->task.kind != TaskKind::kUnset;
  return acts ? event : nullptr;
}

bool LoadedDeck::Admits(const std::string &url) const {
  if (Parts().accesses.empty()) return true;
  const Access &access = Parts().accesses.front();
  const HostAndPath from = HostAndPathOf(url);
  std::string_view domain = Trim(access.domain);
  while (domain.starts_with('.')) domain.remove_prefix(1);
  if (domain.empty()) domain = HostAndPathOf(url_).host;
  if (!IsWithinDomain(from.host, domain)) return false;
  if (Trim(access.path).empty()) return true;
  const std::string path = ResolveAddress(url_, Trim(access.path));
  return IsWithinPath(from.path, HostAndPathOf(path).path);
}

Deck LoadedDeck::Show(std::size_t card, const ContextVariables &variables) const {
  const std::size_t begin = Card(card).offset;
  const std::size_t end = card + 1 < CardCount() ? Card(card + 1).offset : text_.size();
  DeckOptions options = LiveOptions();
  options.variables.insert(variables.begin(), variables.end());
  return AdaptText(std::string_view(text_).substr(begin, end - begin), {}, options);
}

}  // namespace vs_wml
