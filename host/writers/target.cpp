// SPDX-License-Identifier: MIT
#include "host/writers/target.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include "host/text/ascii.h"

namespace vs_wml {
namespace {

constexpr std::size_t kLongTarget = 1024;
constexpr std::string_view kLinkSchemes[] = {"http", "https", "ftp", "mailto", "tel",
                                             "sms",  "smsto", "mms", "wtai",   "rtsp"};
constexpr std::string_view kImageSchemes[] = {"http", "https"};

bool IsSchemeCharacter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '-' || c == '.';
}

// The scheme in lower case; nothing for a relative target. A browser passes over blanks
// and control characters before and in a scheme, so they count for nothing here.
std::optional<std::string> SchemeOf(std::string_view target) {
  std::string scheme;
  for (char c : target) {
    if (static_cast<unsigned char>(c) <= 0x20) continue;
    if (c == ':') return scheme;
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    if (c == '/' || c == '?' || c == '#' || c == '\\') return std::nullopt;
    scheme += IsSchemeCharacter(c) ? c : '?';
  }
  return std::nullopt;
}

bool HasSchemeOf(std::string_view target, std::span<const std::string_view> allowed) {
  const auto scheme = SchemeOf(target);
  return !scheme || std::find(allowed.begin(), allowed.end(), *scheme) != allowed.end();
}

// Words separated by commas.
struct List {
  std::string text;
  void Add(std::string_view word) {
    if (!text.empty()) text += ", ";
    text += word;
  }
};

// Why a link cannot be followed, in front of its target.
std::string Reason(LinkOutcome outcome) {
  switch (outcome) {
    case LinkOutcome::kBack:
      return "goes back";
    case LinkOutcome::kRefresh:
      return "shows the card anew";
    case LinkOutcome::kNothing:
      return "does nothing";
    case LinkOutcome::kUnresolved:
      return "needs a value: ";
    case LinkOutcome::kNoCard:
      return "no such card: ";
    case LinkOutcome::kEmpty:
      return "leads nowhere";
    default:
      return "not followed from here: ";
  }
}

bool IsPost(const Link &link) {
  return link.action != nullptr && link.action->task.Posts();
}

// What is done, but for a target that can be seen.
void AddOutcome(List &list, const Link &link, bool targetShown) {
  const TaskKind kind = link.action == nullptr ? TaskKind::kGo : link.action->task.kind;
  switch (kind) {
    case TaskKind::kGo:
      if (IsPost(link)) list.Add("POST");
      if (!targetShown && !link.target.empty()) list.Add(link.target);
      break;
    case TaskKind::kPrevious:
      list.Add("back");
      break;
    case TaskKind::kRefresh:
      list.Add("refresh");
      break;
    default:
      list.Add("nothing");
  }
}

// What is sent and assigned.
void AddValues(List &list, const Link &link) {
  if (link.action == nullptr) return;
  for (const NameValue &field : link.action->task.PostFields()) {
    list.Add(std::string(field.name.shown).append("=").append(field.value.shown));
  }
  for (const NameValue &variable : link.action->task.Variables()) {
    list.Add(std::string(variable.name.shown).append(":=").append(variable.value.shown));
  }
}

}  // namespace

bool IsSafeTarget(std::string_view target) {
  return HasSchemeOf(target, kLinkSchemes);
}

bool IsSafeSource(std::string_view source) {
  return HasSchemeOf(source, kImageSchemes);
}

std::string EncodeTarget(std::string_view target) {
  std::string encoded;
  for (const char c : target) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte <= 0x20 || byte >= 0x7F ||
        std::string_view("\"<>\\^`{|}").find(c) != std::string_view::npos) {
      AppendPercentEncoded(encoded, c);
    } else {
      encoded += c;
    }
  }
  return encoded;
}

bool HasScheme(std::string_view target) {
  return SchemeOf(target).has_value();
}

bool IsRemote(std::string_view source) {
  const auto scheme = SchemeOf(source);
  return scheme ? HasSchemeOf(source, kImageSchemes) : source.starts_with("//");
}

LinkReader::LinkReader(const DeckInfo &deck) : adapted_(deck.adapted) {
  for (const DeckCard &card : deck.parts.cards) cards_.insert(card.id);
}

LinkOutcome LinkReader::OutcomeOf(const Link &link) const {
  if (link.field != nullptr) return LinkOutcome::kField;
  switch (link.action == nullptr ? TaskKind::kGo : link.action->task.kind) {
    case TaskKind::kGo:
      break;
    case TaskKind::kPrevious:
      return LinkOutcome::kBack;
    case TaskKind::kRefresh:
      return LinkOutcome::kRefresh;
    default:
      return LinkOutcome::kNothing;
  }
  if (link.target.empty()) return LinkOutcome::kEmpty;
  if (link.actionIndex == kNoIndex || link.target.size() < kLongTarget) {
    return OutcomeOfTarget(link);
  }
  const auto [entry, isNew] = outcomes_.try_emplace(link.actionIndex);
  if (isNew) entry->second = OutcomeOfTarget(link);
  return entry->second;
}

LinkOutcome LinkReader::OutcomeOfTarget(const Link &link) const {
  const std::string_view target = link.target;
  if (link.action != nullptr && !link.action->task.target.resolved) return LinkOutcome::kUnresolved;
  if (!IsSafeTarget(target)) return LinkOutcome::kUnsafe;
  const bool inDeck = adapted_ && target.starts_with('#');
  return inDeck && cards_.count(target.substr(1)) == 0 ? LinkOutcome::kNoCard
                                                       : LinkOutcome::kFollowed;
}

std::string LinkReader::Details(const Link &link) const {
  const LinkOutcome outcome = OutcomeOf(link);
  if (outcome == LinkOutcome::kField) return {};
  List list;
  AddOutcome(list, link, outcome == LinkOutcome::kFollowed);
  AddValues(list, link);
  return list.text.empty() ? list.text : " (" + list.text + ')';
}

std::string LinkReader::Explanation(const Link &link, bool works) const {
  List list;
  if (!works) list.Add(Reason(OutcomeOf(link)) + std::string(link.target));
  if (link.action == nullptr) return list.text;
  const Task &task = link.action->task;
  for (const NameValue &field : task.PostFields()) {
    if (works) break;
    list.Add(std::string("sends ").append(field.name.shown).append("=").append(field.value.shown));
  }
  for (const NameValue &variable : task.Variables()) {
    list.Add(std::string("sets ")
                 .append(variable.name.shown)
                 .append(" to ")
                 .append(variable.value.shown));
  }
  return list.text;
}

std::string LinkTargetText(const Link &link) {
  const TaskKind kind = link.action == nullptr ? TaskKind::kGo : link.action->task.kind;
  List list;
  if (kind != TaskKind::kGo) {
    AddOutcome(list, link, false);
    AddValues(list, link);
    return '(' + list.text + ')';
  }
  AddValues(list, link);
  std::string text = IsPost(link) ? "POST " : "";
  text += link.target;
  if (!list.text.empty()) text += (text.empty() ? "(" : " (") + list.text + ')';
  return text;
}

std::string_view BaseName(std::string_view target) {
  target = target.substr(0, target.find_first_of("?#"));
  while (target.ends_with('/')) target.remove_suffix(1);
  const std::size_t slash = target.rfind('/');
  return slash == std::string_view::npos ? target : target.substr(slash + 1);
}

std::string_view ImageLabel(const Image &image) {
  return image.alternative.empty() ? BaseName(image.source) : image.alternative;
}

}  // namespace vs_wml
