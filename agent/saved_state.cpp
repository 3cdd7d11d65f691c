// SPDX-License-Identifier: MIT
#include "agent/saved_state.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <utility>
#include <vector>

#include <rapidjson/document.h>

#include "host/deck/variables.h"
#include "host/text/output.h"
#include "host/writers/json_text.h"

namespace vs_wml {
namespace {

constexpr std::uint32_t kVersion = 1;
constexpr std::string_view kEntryNames[] = {"open", "forward", "backward"};

class StateWriter {
 public:
  std::string Write(const SavedState &saved) {
    json_.BeginObject();
    Number("version", kVersion);
    CollectDecks(saved.state);
    if (saved.before) CollectDecks(*saved.before);
    WriteDecks();
    json_.Key("state");
    WriteState(saved.state);
    if (saved.before) {
      json_.Key("before");
      WriteState(*saved.before);
    }
    if (saved.pending) WritePending(*saved.pending);
    Number("requests", saved.requestCount);
    if (saved.lastRequest) WriteRequest("lastRequest", *saved.lastRequest);
    json_.EndObject();
    out_.Flush();
    return std::move(text_);
  }

 private:
  void Text(std::string_view key, std::string_view text) {
    json_.Key(key);
    json_.String(text);
  }
  void Optional(std::string_view key, std::string_view text) {
    if (!text.empty()) Text(key, text);
  }
  void Number(std::string_view key, std::uint64_t number) {
    json_.Key(key);
    json_.Number(number);
  }

  void CollectDecks(const BrowserState &state) {
    for (const HistoryEntry &entry : state.history) {
      const LoadedDeck *deck = entry.deck.get();
      if (deck != nullptr && std::find(decks_.begin(), decks_.end(), deck) == decks_.end()) {
        decks_.push_back(deck);
      }
    }
  }

  void WriteDecks() {
    json_.Key("decks");
    json_.BeginArray();
    for (const LoadedDeck *deck : decks_) {
      json_.BeginObject();
      Text("url", deck->Url());
      Text("text", deck->Text());
      json_.EndObject();
    }
    json_.EndArray();
  }

  void WriteState(const BrowserState &state) {
    json_.BeginObject();
    json_.Key("variables");
    json_.BeginObject();
    for (const auto &[name, value] : state.variables) Text(name, value);
    json_.EndObject();
    json_.Key("history");
    json_.BeginArray();
    for (const HistoryEntry &entry : state.history) WriteEntry(entry);
    json_.EndArray();
    json_.Key("choices");
    json_.BeginArray();
    for (const Choices &choices : state.choices) {
      json_.BeginArray();
      for (const std::uint32_t choice : choices) json_.Number(choice);
      json_.EndArray();
    }
    json_.EndArray();
    if (state.timer) Number("timer", state.timer->left);
    json_.Key("started");
    json_.Bool(state.started);
    json_.EndObject();
  }

  void WriteEntry(const HistoryEntry &entry) {
    json_.BeginObject();
    if (entry.deck) {
      const auto at = std::find(decks_.begin(), decks_.end(), entry.deck.get());
      Number("deck", static_cast<std::uint64_t>(at - decks_.begin()));
    }
    Number("card", entry.card);
    Optional("fragment", entry.fragment);
    WriteRequest("request", *entry.request);
    json_.EndObject();
  }

  void WriteRequest(std::string_view key, const Request &request) {
    json_.Key(key);
    json_.BeginObject();
    Text("method", request.method);
    Text("url", request.url);
    Optional("contentType", request.contentType);
    Optional("body", request.body);
    if (request.referer) Text("referer", *request.referer);
    Optional("accept", request.accept);
    if (request.fresh) {
      json_.Key("fresh");
      json_.Bool(true);
    }
    json_.EndObject();
  }

  void WritePending(const PendingEntry &pending) {
    json_.Key("pending");
    json_.BeginObject();
    Text("entry", kEntryNames[static_cast<std::size_t>(pending.entry)]);
    WriteRequest("request", pending.request);
    Optional("fragment", pending.fragment);
    json_.Key("assignments");
    json_.BeginArray();
    for (const auto &[name, value] : pending.assignments) {
      json_.BeginArray();
      json_.String(name);
      json_.String(value);
      json_.EndArray();
    }
    json_.EndArray();
    Optional("from", pending.from);
    Number("redirects", pending.redirects);
    Number("tasks", pending.tasks);
    Number("tenthsLeft", pending.tenthsLeft);
    json_.EndObject();
  }

  std::string text_;
  Output out_{[this](std::string_view piece) { text_ += piece; }};
  JsonText json_{out_};
  std::vector<const LoadedDeck *> decks_;
};

[[noreturn]] void Refuse(const char *reason) {
  throw std::runtime_error(reason);
}

using Json = rapidjson::Value;

class StateReader {
 public:
  SavedState Read(std::string_view text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(
        text.data(), text.size());
    if (document.HasParseError() || !document.IsObject()) Refuse("the saved state is no JSON");
    if (Number(document, "version") != kVersion) Refuse("the saved state is of another version");
    for (const Json &deck : Array(document, "decks").GetArray()) {
      decks_.push_back(std::make_shared<const LoadedDeck>(
          LoadedDeck::OfText(Text(Object(deck), "url"), Text(deck, "text"))));
    }
    SavedState saved;
    saved.state = ReadBrowserState(Object(Member(document, "state")));
    if (const Json *before = Find(document, "before")) {
      saved.before = ReadBrowserState(Object(*before));
    }
    if (const Json *pending = Find(document, "pending")) {
      saved.pending = ReadPending(Object(*pending));
    }
    if (saved.pending && saved.pending->entry == Entry::kBackward &&
        saved.state.history.size() < 2) {
      Refuse("there is no card to go back to");
    }
    saved.requestCount = Number(document, "requests");
    if (const Json *last = Find(document, "lastRequest")) {
      saved.lastRequest = ReadRequest(Object(*last));
    }
    return saved;
  }

 private:
  static const Json *Find(const Json &object, const char *name) {
    const auto found = object.FindMember(name);
    return found == object.MemberEnd() ? nullptr : &found->value;
  }
  static const Json &Member(const Json &object, const char *name) {
    const Json *member = Find(object, name);
    if (member == nullptr) Refuse("the saved state lacks a member");
    return *member;
  }
  static const Json &Object(const Json &value) {
    if (!value.IsObject()) Refuse("a member of the saved state is no object");
    return value;
  }
  static const Json &Array(const Json &object, const char *name) {
    const Json &value = Member(object, name);
    if (!value.IsArray()) Refuse("a member of the saved state is no array");
    return value;
  }
  static std::string Text(const Json &value) {
    if (!value.IsString()) Refuse("a member of the saved state is no text");
    return {value.GetString(), value.GetStringLength()};
  }
  static std::string Text(const Json &object, const char *name) {
    return Text(Member(object, name));
  }
  static std::string OptionalText(const Json &object, const char *name) {
    const Json *value = Find(object, name);
    return value == nullptr ? std::string() : Text(*value);
  }
  static std::uint64_t Number(const Json &object, const char *name) {
    const Json &value = Member(object, name);
    if (!value.IsUint64()) Refuse("a member of the saved state is no number");
    return value.GetUint64();
  }
  static std::uint32_t Small(const Json &value) {
    if (!value.IsUint()) Refuse("a member of the saved state is no number");
    return value.GetUint();
  }
  static bool Bool(const Json &value) {
    if (!value.IsBool()) Refuse("a member of the saved state is neither true nor false");
    return value.GetBool();
  }

  BrowserState ReadBrowserState(const Json &object) const {
    BrowserState state;
    const Json &variables = Object(Member(object, "variables"));
    for (const auto &member : variables.GetObject()) {
      std::string name = Text(member.name);
      std::string value = Text(member.value);
      if (!IsVariableName(name) || value.empty()) Refuse("no such variable");
      state.variables.insert_or_assign(std::move(name), std::move(value));
    }
    for (const Json &entry : Array(object, "history").GetArray()) {
      state.history.push_back(ReadEntry(Object(entry)));
    }
    if (!state.history.empty() && !state.history.back().deck) Refuse("the shown card has no deck");
    for (const Json &choices : Array(object, "choices").GetArray()) {
      if (!choices.IsArray()) Refuse("choices are no array");
      for (Choices &list = state.choices.emplace_back(); const Json &choice : choices.GetArray()) {
        list.push_back(Small(choice));
      }
    }
    CheckChoices(state);
    if (const Json *timer = Find(object, "timer")) state.timer = RunningTimer{Small(*timer)};
    state.started = Bool(Member(object, "started"));
    CheckTimer(state);
    return state;
  }

  static void CheckChoices(const BrowserState &state) {
    if (state.history.empty()) {
      if (!state.choices.empty()) Refuse("choices without a card");
      return;
    }
    const HistoryEntry &shown = state.history.back();
    const DeckFields fields = shown.deck->FieldsOf(shown.card);
    if (!state.choices.empty() && state.choices.size() != fields.size()) {
      Refuse("the choices are not those of the card");
    }
    for (std::size_t index = 0; index < state.choices.size(); ++index) {
      std::uint32_t last = 0;
      for (const std::uint32_t choice : state.choices[index]) {
        if (choice <= last || choice > fields[index].optionCount) Refuse("no such option");
        last = choice;
      }
    }
  }

  static void CheckTimer(const BrowserState &state) {
    if (!state.timer) return;
    if (state.timer->left == 0 || state.history.empty()) Refuse("no such timer");
    const HistoryEntry &shown = state.history.back();
    if (shown.deck->Card(shown.card).timer == nullptr) Refuse("no such timer");
  }

  HistoryEntry ReadEntry(const Json &object) const {
    HistoryEntry entry;
    entry.request = std::make_shared<const Request>(ReadRequest(Object(Member(object, "request"))));
    entry.fragment = OptionalText(object, "fragment");
    entry.card = Number(object, "card");
    if (const Json *deck = Find(object, "deck")) {
      const std::uint32_t index = Small(*deck);
      if (index >= decks_.size()) Refuse("no such deck");
      entry.deck = decks_[index];
      if (entry.card >= entry.deck->CardCount()) Refuse("no such card");
    }
    return entry;
  }

  static Request ReadRequest(const Json &object) {
    Request request;
    request.method = Text(object, "method");
    request.url = Text(object, "url");
    request.contentType = OptionalText(object, "contentType");
    request.body = OptionalText(object, "body");
    if (const Json *referer = Find(object, "referer")) request.referer = Text(*referer);
    request.accept = OptionalText(object, "accept");
    if (const Json *fresh = Find(object, "fresh")) request.fresh = Bool(*fresh);
    return request;
  }

  static PendingEntry ReadPending(const Json &object) {
    PendingEntry pending;
    const std::string entry = Text(object, "entry");
    const auto named = std::find(std::begin(kEntryNames), std::end(kEntryNames), entry);
    if (named == std::end(kEntryNames)) Refuse("no such way to enter a card");
    pending.entry = static_cast<Entry>(named - std::begin(kEntryNames));
    pending.request = ReadRequest(Object(Member(object, "request")));
    pending.fragment = OptionalText(object, "fragment");
    for (const Json &pair : Array(object, "assignments").GetArray()) {
      if (!pair.IsArray() || pair.Size() != 2) Refuse("an assignment is no pair");
      pending.assignments.emplace_back(Text(pair[0]), Text(pair[1]));
    }
    pending.from = OptionalText(object, "from");
    pending.redirects = Small(Member(object, "redirects"));
    pending.tasks = Small(Member(object, "tasks"));
    pending.tenthsLeft = Small(Member(object, "tenthsLeft"));
    return pending;
  }

  std::vector<std::shared_ptr<const LoadedDeck>> decks_;
};

}  // namespace

std::string WriteState(const SavedState &saved) {
  return StateWriter().Write(saved);
}

SavedState ReadState(std::string_view json) {
  return StateReader().Read(json);
}

}  // namespace vs_wml
