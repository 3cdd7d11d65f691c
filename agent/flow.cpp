// SPDX-License-Identifier: MIT
#include "agent/flow.h"

#include <algorithm>
#include <array>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include <rapidjson/document.h>
#include <rapidjson/error/en.h>

#include "agent/address.h"
#include "agent/agent.h"
#include "agent/flow_json.h"
#include "host/text/ascii.h"
#include "host/text/output.h"
#include "host/writers/json_text.h"

namespace vs_wml {
namespace {

using Json = rapidjson::Value;

constexpr std::string_view kFlowMembers[] = {"name", "documents", "start", "steps"};
constexpr std::string_view kDocumentMembers[] = {"body", "base64", "type", "status", "location"};
constexpr std::string_view kFollowMembers[] = {"label", "nth"};
constexpr std::string_view kPressMembers[] = {"type", "name", "label"};
constexpr std::string_view kEnterMembers[] = {"field", "text"};
constexpr std::string_view kChooseMembers[] = {"field", "nth", "options"};
constexpr std::string_view kRequestMembers[] = {"method", "url", "body", "type", "referer"};

std::string Quoted(std::string_view text) {
  std::string quoted;
  Output out([&](std::string_view piece) { quoted += piece; });
  JsonText(out).String(text);
  out.Flush();
  return quoted;
}

std::string Listed(std::span<const std::string> texts) {
  std::string list;
  for (const std::string &text : texts) list += (list.empty() ? "" : ", ") + Quoted(text);
  return '[' + list + ']';
}

std::string Listed(const Choices &choices) {
  std::string list;
  for (const std::uint32_t choice : choices) {
    list += (list.empty() ? "" : ", ") + std::to_string(choice);
  }
  return '[' + list + ']';
}

// What does not hold.
struct Mismatch {
  std::string what;
};

[[noreturn]] void Differ(std::string_view member, const std::string &expected,
                         const std::string &found) {
  throw Mismatch{std::string(member) + ": expected " + expected + ", there was " + found};
}

std::string OrNull(const std::optional<std::string> &text) {
  return text ? Quoted(*text) : "null";
}

}  // namespace

struct Flow::Parsed {
  std::string text;
  rapidjson::Document document;
  std::string name;
  std::map<std::string, ResponseEvent> pages;  // by "URL" or "POST URL"
  std::vector<std::size_t> lines;              // of the steps

  const Json &Steps() const { return document["steps"]; }
};

namespace {

// Checks a file member by member, so that playing it meets no surprise.
class FlowChecker {
 public:
  explicit FlowChecker(const Json &flow) : flow_(flow) {}

  void Check() {
    where_ = "the flow";
    CheckMembers(flow_, kFlowMembers);
    RequireText(flow_, "name");
    RequireText(flow_, "start");
    const Json &documents = Require(flow_, "documents");
    if (!documents.IsObject()) Refuse("\"documents\" is no object");
    for (const auto &page : documents.GetObject()) {
      where_ = "document " + Quoted(TextOf(page.name));
      CheckDocument(page.value);
    }
    const Json &steps = Require(flow_, "steps");
    if (!steps.IsArray()) Refuse("\"steps\" is no array");
    for (rapidjson::SizeType step = 0; step < steps.Size(); ++step) {
      where_ = "step " + std::to_string(step + 1);
      CheckStep(steps[step]);
    }
  }

 private:
  [[noreturn]] void Refuse(const std::string &reason) const {
    throw FlowError(where_ + ": " + reason);
  }

  template <std::size_t kCount>
  void CheckMembers(const Json &object, const std::string_view (&known)[kCount]) const {
    CheckMembers(object, std::span<const std::string_view>(known));
  }
  void CheckMembers(const Json &object, std::span<const std::string_view> known) const {
    if (!object.IsObject()) Refuse("is no object");
    for (const auto &member : object.GetObject()) {
      const std::string name = TextOf(member.name);
      if (std::find(known.begin(), known.end(), name) != known.end()) continue;
      const std::string_view near = NearestName(name, known);
      Refuse("unknown member " + Quoted(name) +
             (near.empty() ? "" : "; is " + Quoted(near) + " meant?"));
    }
  }

  const Json &Require(const Json &object, const char *name) const {
    const Json *member = FindMember(object, name);
    if (member == nullptr) Refuse(std::string("lacks \"") + name + '"');
    return *member;
  }
  void RequireText(const Json &object, const char *name) const {
    if (!Require(object, name).IsString()) Refuse(std::string("\"") + name + "\" is no text");
  }
  void OptionalText(const Json &object, const char *name, bool orNull = false) const {
    const Json *member = FindMember(object, name);
    if (member == nullptr || member->IsString() || (orNull && member->IsNull())) return;
    Refuse(std::string("\"") + name + "\" is no text" + (orNull ? " and not null" : ""));
  }
  void OptionalCount(const Json &object, const char *name, bool orNull = false) const {
    const Json *member = FindMember(object, name);
    if (member == nullptr || member->IsUint() || (orNull && member->IsNull())) return;
    Refuse(std::string("\"") + name + "\" is no number from 0 on" +
           (orNull ? " and not null" : ""));
  }
  void OptionalTexts(const Json &object, const char *name) const {
    const Json *member = FindMember(object, name);
    if (member == nullptr) return;
    const auto isText = [](const Json &value) { return value.IsString(); };
    if (member->IsArray() && std::all_of(member->Begin(), member->End(), isText)) return;
    Refuse(std::string("\"") + name + "\" is no list of texts");
  }
  void RequirePositions(const Json &value, const char *name) const {
    const auto isPosition = [](const Json &item) { return item.IsUint() && item.GetUint() != 0; };
    if (value.IsArray() && std::all_of(value.Begin(), value.End(), isPosition)) return;
    Refuse(std::string("\"") + name + "\" is no list of positions from 1 on");
  }
  void RequirePosition(const Json &object, const char *name) const {
    const Json &value = Require(object, name);
    if (!value.IsUint() || value.GetUint() == 0) {
      Refuse(std::string("\"") + name + "\" is no position from 1 on");
    }
  }

  void CheckDocument(const Json &page) const {
    CheckMembers(page, kDocumentMembers);
    for (const char *name : {"body", "base64", "type", "location"}) OptionalText(page, name);
    OptionalCount(page, "status");
    const Json *coded = FindMember(page, "base64");
    if (coded != nullptr && FindMember(page, "body") != nullptr) {
      Refuse("has \"body\" and \"base64\"");
    }
    if (coded != nullptr && !DecodeBase64(TextOf(*coded))) Refuse("\"base64\" is none");
  }

  void CheckStep(const Json &step) const {
    if (!step.IsObject() || step.MemberCount() != 1) Refuse("is no object with one member");
    CheckMembers(step, kStepNames);
    const std::string kind = TextOf(step.MemberBegin()->name);
    const Json &value = step.MemberBegin()->value;
    if (kind == "open") {
      RequireText(step, "open");
    } else if (kind == "follow") {
      if (!value.IsString()) CheckFollow(value);
    } else if (kind == "press") {
      CheckMembers(value, kPressMembers);
      if (value.MemberCount() == 0) Refuse("\"press\" says no key");
      for (const char *name : {"type", "name", "label"}) OptionalText(value, name);
    } else if (kind == "enter") {
      CheckMembers(value, kEnterMembers);
      RequireText(value, "field");
      RequireText(value, "text");
    } else if (kind == "choose") {
      CheckChoose(value);
    } else if (kind == "back") {
      if (!value.IsBool() || !value.GetBool()) Refuse("\"back\" is not true");
    } else if (kind == "wait") {
      if (!value.IsUint()) Refuse("\"wait\" is no number of tenths");
    } else {
      CheckExpect(value);
    }
  }

  void CheckFollow(const Json &value) const {
    CheckMembers(value, kFollowMembers);
    RequireText(value, "label");
    if (FindMember(value, "nth") != nullptr) RequirePosition(value, "nth");
  }

  void CheckChoose(const Json &value) const {
    CheckMembers(value, kChooseMembers);
    const bool named = FindMember(value, "field") != nullptr;
    if (named == (FindMember(value, "nth") != nullptr)) {
      Refuse("\"choose\" says neither or both of \"field\" and \"nth\"");
    }
    named ? RequireText(value, "field") : RequirePosition(value, "nth");
    RequirePositions(Require(value, "options"), "options");
  }

  void CheckExpect(const Json &value) const {
    CheckMembers(value, kExpectedNames);
    for (const char *name : {"url", "card", "title"}) OptionalText(value, name);
    for (const char *name : {"text", "lacks", "links", "actions"}) OptionalTexts(value, name);
    for (const char *name : {"history", "requests"}) OptionalCount(value, name);
    OptionalCount(value, "timer", true);
    OptionalText(value, "error", true);
    if (const Json *error = FindMember(value, "error"); error != nullptr && error->IsString()) {
      CheckError(TextOf(*error));
    }
    CheckTexts(value, "fields", false);
    CheckTexts(value, "variables", true);
    if (const Json *selected = FindMember(value, "selected")) {
      if (!selected->IsObject()) Refuse("\"selected\" is no object");
      for (const auto &member : selected->GetObject()) {
        RequirePositions(member.value, "selected");
      }
    }
    if (const Json *request = FindMember(value, "request")) {
      CheckMembers(*request, kRequestMembers);
      for (const char *name : {"method", "url"}) OptionalText(*request, name);
      for (const char *name : {"body", "type", "referer"}) OptionalText(*request, name, true);
    }
  }

  void CheckError(const std::string &error) const {
    for (const FailureKind kind : kFailureKinds) {
      if (NameOf(kind) == error) return;
    }
    Refuse("unknown error " + Quoted(error));
  }

  void CheckTexts(const Json &value, const char *name, bool orNull) const {
    const Json *texts = FindMember(value, name);
    if (texts == nullptr) return;
    const auto isText = [&](const auto &member) {
      return member.value.IsString() || (orNull && member.value.IsNull());
    };
    if (texts->IsObject() && std::all_of(texts->MemberBegin(), texts->MemberEnd(), isText)) return;
    Refuse(std::string("\"") + name + "\" has a value that is no text" +
           (orNull ? " and not null" : ""));
  }

  static constexpr FailureKind kFailureKinds[] = {FailureKind::kNotFound, FailureKind::kNotWml,
                                                  FailureKind::kAccess, FailureKind::kRedirects,
                                                  FailureKind::kLoop};
  const Json &flow_;
  std::string where_;
};

class Player {
 public:
  Player(const std::map<std::string, ResponseEvent> &pages, bool restoring)
      : pages_(pages), restoring_(restoring) {}

  const Agent &Played() const { return agent_; }

  void Start(const std::string &url) { Do(OpenEvent{url}); }

  void Step(const Json &step) {
    const std::string kind = TextOf(step.MemberBegin()->name);
    const Json &value = step.MemberBegin()->value;
    if (kind == "expect") return Expect(value);
    if (kind == "open") return Do(OpenEvent{TextOf(value)});
    if (kind == "wait") return Do(WaitEvent{value.GetUint()});
    if (!agent_.HasCard()) throw Mismatch{kind + ": no card is shown"};
    if (kind == "back") return Do(BackEvent{});
    if (kind == "follow") return Follow(value);
    if (kind == "press") return Press(value);
    if (kind == "enter") return EnterText(value);
    ChooseOptions(value);
  }

 private:
  void Do(const Event &event) {
    failure_.reset();
    try {
      Effects effects = Take(event);
      while (effects.fetch) effects = Take(Answer(*effects.fetch));
    } catch (const EventError &impossible) {
      throw Mismatch{impossible.what()};
    }
  }

  Effects Take(const Event &event) {
    Effects effects = agent_.Step(event);
    if (effects.failure) failure_ = effects.failure;
    if (restoring_) SaveAndRestore();
    return effects;
  }

  void SaveAndRestore() {
    const std::string saved = agent_.Save();
    agent_ = Agent::Restore(saved);
    if (agent_.Save() != saved) throw Mismatch{"the saved state changed when it was restored"};
  }

  ResponseEvent Answer(const Request &request) const {
    auto found = pages_.end();
    if (request.method == "POST") found = pages_.find("POST " + request.url);
    if (found == pages_.end()) found = pages_.find(request.url);
    if (found != pages_.end()) return found->second;
    ResponseEvent missing;
    missing.status = 404;
    return missing;
  }

  void Follow(const Json &value) {
    const std::string label = Collapsed(TextOf(value.IsString() ? value : value["label"]));
    const Json *nth = value.IsObject() ? FindMember(value, "nth") : nullptr;
    std::size_t skipped = nth != nullptr ? nth->GetUint() - 1 : 0;
    const std::vector<CardLink> &links = agent_.View().links;
    for (std::size_t link = 0; link < links.size(); ++link) {
      if (links[link].label == label && skipped-- == 0) return Do(FollowEvent{link});
    }
    Differ("follow", "a link " + Quoted(label), Listed(LinkLabels()));
  }

  void Press(const Json &value) {
    const std::vector<CardKey> &keys = agent_.View().keys;
    const auto matches = [&](const char *name, const std::string &text) {
      const Json *wanted = FindMember(value, name);
      return wanted == nullptr || Collapsed(TextOf(*wanted)) == text;
    };
    for (std::size_t key = 0; key < keys.size(); ++key) {
      if (matches("type", keys[key].type) && matches("name", keys[key].name) &&
          matches("label", keys[key].label)) {
        return Do(PressEvent{key});
      }
    }
    Differ("press", "such a key", Listed(KeyLabels()));
  }

  void EnterText(const Json &value) {
    const std::string variable = TextOf(value["field"]);
    const std::vector<CardField> &fields = agent_.View().fields;
    for (std::size_t field = 0; field < fields.size(); ++field) {
      if (fields[field].field->kind == FieldKind::kInput && fields[field].variable == variable) {
        return Do(EnterEvent{field, TextOf(value["text"])});
      }
    }
    Differ("enter", "an input " + Quoted(variable), "none");
  }

  void ChooseOptions(const Json &value) {
    ChooseEvent event;
    for (const Json &option : value["options"].GetArray()) {
      event.options.push_back(option.GetUint());
    }
    const Json *name = FindMember(value, "field");
    std::size_t place = 0;
    const std::vector<CardField> &fields = agent_.View().fields;
    for (event.field = 0; event.field < fields.size(); ++event.field) {
      const CardField &field = fields[event.field];
      if (field.field->kind != FieldKind::kSelect) continue;
      ++place;
      const bool found =
          name != nullptr ? IsCalled(field, TextOf(*name)) : place == value["nth"].GetUint();
      if (found) return Do(event);
    }
    Differ("choose", "such a select", std::to_string(place) + " others");
  }

  static bool IsCalled(const CardField &field, const std::string &name) {
    return field.variable == name ||
           (field.field->details && field.field->details->indexName == name);
  }

  std::vector<std::string> LinkLabels() const {
    std::vector<std::string> labels;
    for (const CardLink &link : agent_.View().links) labels.push_back(link.label);
    return labels;
  }
  std::vector<std::string> KeyLabels() const {
    std::vector<std::string> labels;
    for (const CardKey &key : agent_.View().keys) labels.push_back(key.label);
    return labels;
  }

  // ---------------------------------------------------------------- expectations

  void Expect(const Json &expected) {
    for (const auto &member : expected.GetObject()) {
      ExpectMember(TextOf(member.name), member.value);
    }
  }

  void ExpectMember(const std::string &name, const Json &value) {
    if (name == "error") {
      Equal(name, value,
            failure_ ? std::optional(std::string(NameOf(failure_->kind))) : std::nullopt);
    } else if (name == "requests") {
      Equal(name, value, agent_.RequestCount());
    } else if (name == "request") {
      ExpectRequest(value);
    } else if (name == "variables") {
      ExpectVariables(value);
    } else if (name == "history") {
      Equal(name, value, agent_.History().size());
    } else if (name == "timer") {
      ExpectTimer(value);
    } else if (!agent_.HasCard()) {
      Differ(name, "a card", "none");
    } else {
      ExpectShown(name, value);
    }
  }

  void ExpectShown(const std::string &name, const Json &value) {
    const CardView &view = agent_.View();
    if (name == "url") {
      Equal(name, value, std::optional(view.url));
    } else if (name == "card") {
      Equal(name, value, std::optional(view.id));
    } else if (name == "title") {
      Equal(name, value, std::optional(view.title));
    } else if (name == "text" || name == "lacks") {
      ExpectText(name, value);
    } else if (name == "links") {
      EqualTexts(name, value, LinkLabels());
    } else if (name == "actions") {
      EqualTexts(name, value, KeyLabels());
    } else if (name == "fields") {
      ExpectFields(value);
    } else {
      ExpectSelected(value);
    }
  }

  static void Equal(const std::string &name, const Json &expected,
                    const std::optional<std::string> &found) {
    const auto wanted = expected.IsNull() ? std::nullopt : std::optional(TextOf(expected));
    if (wanted != found) Differ(name, OrNull(wanted), OrNull(found));
  }
  static void Equal(const std::string &name, const Json &expected, std::uint64_t found) {
    if (expected.GetUint() == found) return;
    Differ(name, std::to_string(expected.GetUint()), std::to_string(found));
  }
  static void EqualTexts(const std::string &name, const Json &expected,
                         const std::vector<std::string> &found) {
    std::vector<std::string> wanted;
    for (const Json &text : expected.GetArray()) wanted.push_back(Collapsed(TextOf(text)));
    if (wanted != found) Differ(name, Listed(wanted), Listed(found));
  }

  void ExpectTimer(const Json &value) const {
    const auto &timer = agent_.Timer();
    const std::string found = timer ? std::to_string(timer->left) : "null";
    const std::string wanted = value.IsNull() ? "null" : std::to_string(value.GetUint());
    if (found != wanted) Differ("timer", wanted, found);
  }

  void ExpectText(const std::string &name, const Json &value) const {
    const std::string &text = agent_.View().text;
    for (const Json &part : value.GetArray()) {
      const std::string wanted = Collapsed(TextOf(part));
      const bool occurs = text.find(wanted) != std::string::npos;
      if (occurs != (name == "text")) Differ(name, Quoted(wanted), Quoted(text));
    }
  }

  void ExpectFields(const Json &value) const {
    for (const auto &member : value.GetObject()) {
      const std::string variable = TextOf(member.name);
      const auto &fields = agent_.View().fields;
      const auto field = std::find_if(fields.begin(), fields.end(), [&](const CardField &shown) {
        return shown.field->kind == FieldKind::kInput && shown.variable == variable;
      });
      if (field == fields.end()) Differ("fields", "an input " + Quoted(variable), "none");
      Equal("fields: " + variable, member.value, std::optional(field->value));
    }
  }

  void ExpectSelected(const Json &value) const {
    std::map<std::string, Choices> found;
    std::size_t place = 0;
    for (const CardField &field : agent_.View().fields) {
      if (field.field->kind != FieldKind::kSelect) continue;
      ++place;
      const std::string name = field.variable.empty() ? std::to_string(place) : field.variable;
      found.try_emplace(name, field.choices);
    }
    for (const auto &member : value.GetObject()) {
      const std::string name = TextOf(member.name);
      if (!found.contains(name)) Differ("selected", "a select " + Quoted(name), "none");
      Choices wanted;
      for (const Json &position : member.value.GetArray()) wanted.push_back(position.GetUint());
      if (found[name] != wanted) Differ("selected: " + name, Listed(wanted), Listed(found[name]));
    }
  }

  void ExpectVariables(const Json &value) const {
    const ContextVariables &variables = agent_.Variables();
    for (const auto &member : value.GetObject()) {
      const std::string name = TextOf(member.name);
      const auto found = variables.find(name);
      Equal("variables: " + name, member.value,
            found == variables.end() ? std::nullopt : std::optional(found->second));
    }
  }

  void ExpectRequest(const Json &value) const {
    const auto &request = agent_.LastRequest();
    if (!request) Differ("request", "one", "none");
    const bool posts = request->method == "POST";
    for (const auto &member : value.GetObject()) {
      const std::string name = TextOf(member.name);
      std::optional<std::string> found;
      if (name == "method") found = request->method;
      if (name == "url") found = request->url;
      if (name == "body" && posts) found = request->body;
      if (name == "type" && posts) found = request->contentType;
      if (name == "referer") {
        ExpectReferer(member.value, *request);
      } else {
        Equal("request: " + name, member.value, found);
      }
    }
  }

  static void ExpectReferer(const Json &value, const Request &request) {
    if (value.IsNull() || !request.referer) {
      return Equal("request: referer", value, request.referer);
    }
    const std::string wanted = ResolveAddress(request.url, TextOf(value));
    if (wanted != *request.referer) {
      Differ("request: referer", Quoted(wanted), OrNull(request.referer));
    }
  }

  const std::map<std::string, ResponseEvent> &pages_;
  bool restoring_;
  Agent agent_;
  std::optional<Failure> failure_;  // of the last step
};

ResponseEvent PageOf(const Json &page) {
  ResponseEvent response;
  response.contentType = "text/vnd.wap.wml";
  if (const Json *body = FindMember(page, "body")) response.body = TextOf(*body);
  if (const Json *coded = FindMember(page, "base64")) {
    response.body = *DecodeBase64(TextOf(*coded));
  } else {
    response.contentType += "; charset=utf-8";
  }
  if (const Json *type = FindMember(page, "type")) response.contentType = TextOf(*type);
  if (const Json *status = FindMember(page, "status")) {
    response.status = static_cast<int>(std::min(status->GetUint(), 999U));
  }
  if (const Json *location = FindMember(page, "location")) response.location = TextOf(*location);
  return response;
}

// The key of a document as requests name it.
std::string PageKey(const std::string &key) {
  constexpr std::string_view kPost = "POST ";
  const bool posts = key.starts_with(kPost);
  const std::string url = posts ? key.substr(kPost.size()) : key;
  return (posts ? std::string(kPost) : std::string()) + ResolveAddress(url, url);
}

}  // namespace

Flow::Flow(std::string_view json) : parsed_(std::make_unique<Parsed>()) {
  Parsed &parsed = *parsed_;
  parsed.document.Parse<rapidjson::kParseIterativeFlag | rapidjson::kParseValidateEncodingFlag>(
      json.data(), json.size());
  if (parsed.document.HasParseError()) {
    throw FlowError("line " + std::to_string(LineAt(json, parsed.document.GetErrorOffset())) +
                    ": " + rapidjson::GetParseError_En(parsed.document.GetParseError()));
  }
  FlowChecker(parsed.document).Check();
  parsed.name = TextOf(parsed.document["name"]);
  for (const auto &page : std::as_const(parsed.document)["documents"].GetObject()) {
    parsed.pages.insert_or_assign(PageKey(TextOf(page.name)), PageOf(page.value));
  }
  parsed.lines = StepLines(json);
}

Flow::~Flow() = default;
Flow::Flow(Flow &&) noexcept = default;

const std::string &Flow::Name() const {
  return parsed_->name;
}

std::optional<FlowFailure> Flow::Play(bool restoring) const {
  const Json &steps = parsed_->Steps();
  Player player(parsed_->pages, restoring);
  std::size_t step = 0;
  try {
    player.Start(TextOf(parsed_->document["start"]));
    for (step = 1; step <= steps.Size(); ++step) {
      player.Step(steps[static_cast<rapidjson::SizeType>(step - 1)]);
    }
    return std::nullopt;
  } catch (const Mismatch &mismatch) {
    FlowFailure failure;
    failure.step = step;
    failure.what = mismatch.what;
    if (step != 0 && step <= parsed_->lines.size()) failure.line = parsed_->lines[step - 1];
    const Agent &agent = player.Played();
    if (agent.HasCard()) failure.card = agent.View().url;
    if (const auto &request = agent.LastRequest()) {
      failure.request = request->method + ' ' + request->url;
    }
    return failure;
  }
}

}  // namespace vs_wml
