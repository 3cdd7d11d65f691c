// SPDX-License-Identifier: MIT
#include "archives/readers/mail_reader.h"

#include <gmime/gmime.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "archives/http/fields.h"
#include "archives/http/message.h"
#include "archives/readers/entry_reader.h"
#include "host/text/ascii.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

constexpr std::size_t kPiece = 65536;

struct Unref {
  template <typename Object>
  void operator()(Object *object) const {
    g_object_unref(object);
  }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

struct FreeText {
  void operator()(char *text) const { g_free(text); }
};

void InitializeOnce() {
  static std::once_flag once;
  std::call_once(once, g_mime_init);
}

// Reads as far as the first lines go, and stands at the start again.
std::string ReadBeginning(ByteSource &source) {
  std::string text(kPiece, '\0');
  source.Seek(0);
  std::size_t used = 0;
  while (used < text.size()) {
    const std::size_t count = source.Read(text.data() + used, text.size() - used);
    if (count == 0) break;
    used += count;
  }
  text.resize(used);
  source.Seek(0);
  return text;
}

// The fields that parts without a header in front of them lack. A boundary may end in "--".
std::string MissingHeader(std::string_view beginning) {
  const std::string_view line = Trim(beginning.substr(0, beginning.find('\n')));
  return "Content-Type: multipart/mixed; boundary=\"" + std::string(line.substr(2)) + "\"\r\n\r\n";
}

// What the library parses from: it wants to seek.
Owned<GMimeStream> Copy(ByteSource &source) {
  const std::string beginning = ReadBeginning(source);
  std::string front;
  std::size_t from = 0;
  if (LooksLikeHttp(beginning)) {
    from = std::min(beginning.find('\n'), beginning.size() - 1) + 1;
  } else {
    from = SkipWhiteSpace(beginning, 0);
    if (beginning.compare(from, 2, "--") == 0) {
      front = MissingHeader(std::string_view(beginning).substr(from));
    }
  }
  constexpr std::uint64_t kMostInMemory = std::uint64_t{4} << 20U;
  Owned<GMimeStream> stream;
  if (source.Size() <= kMostInMemory) {
    stream.reset(g_mime_stream_mem_new());
  } else {
    std::FILE *const file = std::tmpfile();
    if (file == nullptr) throw std::runtime_error("temporary file: cannot be made");
    stream.reset(g_mime_stream_file_new(file));
  }
  const auto write = [&](std::string_view bytes) {
    if (g_mime_stream_write(stream.get(), bytes.data(), bytes.size()) !=
        static_cast<ssize_t>(bytes.size())) {
      throw std::runtime_error("temporary file: cannot be written");
    }
  };
  write(front);
  source.Seek(from);
  std::vector<char> piece(kPiece);
  while (const std::size_t count = source.Read(piece.data(), piece.size())) {
    write({piece.data(), count});
  }
  g_mime_stream_seek(stream.get(), 0, GMIME_STREAM_SEEK_SET);
  return stream;
}

std::string Text(const char *text) {
  return text == nullptr ? std::string() : RepairUtf8(text);
}

std::string DateOf(GMimeObject *message) {
  const char *value = g_mime_object_get_header(message, "Date");
  if (value == nullptr) return {};
  GDateTime *const date = g_mime_utils_header_decode_date(value);
  if (date == nullptr) return {};
  GDateTime *const utc = g_date_time_to_utc(date);
  const std::unique_ptr<char, FreeText> text(
      utc == nullptr ? nullptr : g_date_time_format(utc, "%Y-%m-%dT%H:%M:%SZ"));
  if (utc != nullptr) g_date_time_unref(utc);
  g_date_time_unref(date);
  return Text(text.get());
}

class MailReader {
 public:
  MailReader(ReadContext &context, const ArchivePlace &place) : context_(context), place_(place) {}

  void Read(GMimeStream *stream) {
    std::array<char, 5> mark{};
    const ssize_t known = g_mime_stream_read(stream, mark.data(), mark.size());
    g_mime_stream_seek(stream, 0, GMIME_STREAM_SEEK_SET);
    const Owned<GMimeParser> parser(g_mime_parser_new_with_stream(stream));
    const bool isMbox = known == 5 && std::string_view(mark.data(), mark.size()) == "From ";
    if (isMbox) g_mime_parser_set_format(parser.get(), GMIME_FORMAT_MBOX);
    if (isMbox) {
      ReadMessages(parser.get());
    } else {
      const Owned<GMimeObject> part(g_mime_parser_construct_part(parser.get(), nullptr));
      ReadMessage(part.get(), {});
    }
  }

 private:
  void ReadMessages(GMimeParser *parser) {
    gint64 before = -1;
    // A message that takes nothing of the file is no message.
    for (int number = 1; g_mime_parser_eos(parser) == FALSE && g_mime_parser_tell(parser) > before;
         ++number) {
      before = g_mime_parser_tell(parser);
      const Owned<GMimeMessage> message(g_mime_parser_construct_message(parser, nullptr));
      if (message == nullptr && number > 1) break;
      date_ = message == nullptr ? std::string()
                                 : DateOf(reinterpret_cast<GMimeObject *>(message.get()));
      GMimeObject *const part =
          message == nullptr ? nullptr : g_mime_message_get_mime_part(message.get());
      Walk(part, std::to_string(number), 0);
    }
  }

  void ReadMessage(GMimeObject *part, const std::string &number) {
    if (part != nullptr) date_ = DateOf(part);
    Walk(part, number, 0);
  }

  void Walk(GMimeObject *object, const std::string &number, std::size_t depth) {
    constexpr std::size_t kDeepest = 32;
    if (object == nullptr) {
      context_.Damage(place_, std::nullopt, number, "is no mail that can be read");
      return;
    }
    if (depth > kDeepest) {
      context_.Damage(place_, std::nullopt, number, "its parts nest too deep");
      return;
    }
    if (GMIME_IS_MULTIPART(object)) {
      WalkParts(reinterpret_cast<GMimeMultipart *>(object), number, depth);
    } else if (GMIME_IS_MESSAGE_PART(object)) {
      WalkMessage(reinterpret_cast<GMimeMessagePart *>(object), number, depth);
    } else if (GMIME_IS_PART(object)) {
      ReadPart(reinterpret_cast<GMimePart *>(object), number.empty() ? "1" : number);
    } else {
      context_.Skip();
    }
  }

  static std::string NumberOf(const std::string &whole, int part) {
    return (whole.empty() ? whole : whole + '.') + std::to_string(part);
  }

  void WalkParts(GMimeMultipart *parts, const std::string &number, std::size_t depth) {
    const int count = g_mime_multipart_get_count(parts);
    for (int i = 0; i < count; ++i) {
      Walk(g_mime_multipart_get_part(parts, i), NumberOf(number, i + 1), depth + 1);
    }
    if (count == 0) context_.Damage(place_, std::nullopt, number, "has no parts");
  }

  void WalkMessage(GMimeMessagePart *object, const std::string &number, std::size_t depth) {
    GMimeMessage *const message = g_mime_message_part_get_message(object);
    GMimeObject *const part = message == nullptr ? nullptr : g_mime_message_get_mime_part(message);
    if (part == nullptr) {
      context_.Skip();
    } else {
      Walk(part, NumberOf(number, 1), depth + 1);
    }
  }

  std::string NameOf(GMimePart *part, const std::string &number) const {
    const std::string file = Text(g_mime_part_get_filename(part));
    return place_.archive + '!' + (file.empty() ? number : file);
  }

  void ReadPart(GMimePart *part, const std::string &number) {
    if (place_.depth == 0) context_.RenewNested();
    ArchivedDocument about;
    about.archive = place_.archive;
    about.date = date_;
    const std::string location = Text(g_mime_part_get_content_location(part));
    const std::string name = NameOf(part, number);
    about.uri = location.empty() ? name : location;
    if (const char *type =
            g_mime_object_get_header(reinterpret_cast<GMimeObject *>(part), "Content-Type")) {
      const MediaType media = ParseMediaType(type);
      about.contentType = media.name;
      about.charset = media.charset;
    }
    EntryReader reader(context_, {name, place_.depth + 1}, std::move(about));
    GMimeDataWrapper *const content = g_mime_part_get_content(part);
    GMimeStream *const stream =
        content == nullptr ? nullptr : g_mime_data_wrapper_get_stream(content);
    if (stream != nullptr) Decode(stream, g_mime_data_wrapper_get_encoding(content), reader);
    reader.Finish();
  }

  static void Decode(GMimeStream *stream, GMimeContentEncoding encoding, EntryReader &reader) {
    GMimeEncoding decoder;
    g_mime_encoding_init_decode(&decoder, encoding);
    std::vector<char> encoded(kPiece);
    std::vector<char> decoded;
    g_mime_stream_reset(stream);
    while (true) {
      const ssize_t count = g_mime_stream_read(stream, encoded.data(), encoded.size());
      if (count <= 0) break;
      decoded.resize(g_mime_encoding_outlen(&decoder, static_cast<std::size_t>(count)));
      const std::size_t length = g_mime_encoding_step(
          &decoder, encoded.data(), static_cast<std::size_t>(count), decoded.data());
      reader.Feed({decoded.data(), length});
    }
    decoded.resize(g_mime_encoding_outlen(&decoder, 0) + kPiece);
    reader.Feed(
        {decoded.data(), g_mime_encoding_flush(&decoder, encoded.data(), 0, decoded.data())});
  }

  ReadContext &context_;
  const ArchivePlace &place_;
  std::string date_;
};

}  // namespace

void ReadMail(ByteSource &source, ReadContext &context, const ArchivePlace &place) {
  InitializeOnce();
  const Owned<GMimeStream> stream = Copy(source);
  MailReader(context, place).Read(stream.get());
}

}  // namespace vs_wml
