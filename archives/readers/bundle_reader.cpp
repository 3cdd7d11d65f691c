// SPDX-License-Identifier: MIT
#include "archives/readers/bundle_reader.h"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <ctime>
#include <exception>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "archives/readers/entry_reader.h"
#include "host/text/utf8.h"

namespace vs_wml {
namespace {

constexpr std::size_t kPiece = 65536;

struct FreeArchive {
  void operator()(archive *handle) const { archive_read_free(handle); }
};
using Handle = std::unique_ptr<archive, FreeArchive>;

// What the library reads from. What it throws must not pass through the library.
struct Input {
  ByteSource &source;
  std::vector<char> buffer = std::vector<char>(kPiece);
  std::uint64_t position = 0;
};

la_ssize_t ReadInput(archive *handle, void *data, const void **bytes) {
  auto &input = *static_cast<Input *>(data);
  try {
    const std::size_t count = input.source.Read(input.buffer.data(), input.buffer.size());
    input.position += count;
    *bytes = input.buffer.data();
    return static_cast<la_ssize_t>(count);
  } catch (const std::exception &failure) {
    archive_set_error(handle, ARCHIVE_FATAL, "%s", failure.what());
    return ARCHIVE_FATAL;
  }
}

la_int64_t SeekInput(archive *handle, void *data, la_int64_t offset, int whence) {
  auto &input = *static_cast<Input *>(data);
  const auto size = static_cast<la_int64_t>(input.source.Size());
  const la_int64_t from = whence == SEEK_CUR   ? static_cast<la_int64_t>(input.position)
                          : whence == SEEK_END ? size
                                               : 0;
  try {
    const la_int64_t wanted = std::min(std::max<la_int64_t>(from + offset, 0), size);
    input.source.Seek(static_cast<std::uint64_t>(wanted));
    input.position = static_cast<std::uint64_t>(wanted);
    return wanted;
  } catch (const std::exception &failure) {
    archive_set_error(handle, ARCHIVE_FATAL, "%s", failure.what());
    return ARCHIVE_FATAL;
  }
}

Handle Open(Input &input, bool raw) {
  Handle handle(archive_read_new());
  if (handle == nullptr) throw std::bad_alloc();
  archive_read_support_filter_gzip(handle.get());
  archive_read_support_filter_bzip2(handle.get());
  archive_read_support_filter_xz(handle.get());
  archive_read_support_filter_zstd(handle.get());
  archive_read_support_format_zip(handle.get());
  archive_read_support_format_7zip(handle.get());
  archive_read_support_format_tar(handle.get());
  if (raw) archive_read_support_format_raw(handle.get());
  archive_read_set_read_callback(handle.get(), ReadInput);
  archive_read_set_seek_callback(handle.get(), SeekInput);
  archive_read_set_callback_data(handle.get(), &input);
  return handle;
}

std::string Why(archive *handle) {
  const char *text = archive_error_string(handle);
  return text != nullptr ? text : "cannot be read";
}

std::string NameOf(archive_entry *entry) {
  if (const char *name = archive_entry_pathname_utf8(entry)) return RepairUtf8(name);
  if (const char *name = archive_entry_pathname(entry)) return RepairUtf8(name);
  std::string text;
  if (const wchar_t *name = archive_entry_pathname_w(entry)) {
    for (; *name != L'\0'; ++name) AppendUtf8(text, static_cast<char32_t>(*name));
  }
  return text;
}

std::string DateOf(archive_entry *entry) {
  if (archive_entry_mtime_is_set(entry) == 0) return {};
  const std::time_t time = archive_entry_mtime(entry);
  std::tm parts{};
  std::array<char, 32> text{};
  if (time <= 0 || gmtime_r(&time, &parts) == nullptr) return {};
  std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return text.data();
}

// Reads the data of the entry at hand. False: nothing behind it can be read either.
bool ReadEntry(archive *handle, EntryReader &reader) {
  std::vector<char> piece(kPiece);
  while (true) {
    const la_ssize_t count = archive_read_data(handle, piece.data(), piece.size());
    if (count == 0) break;
    if (count < 0) {
      if (count == ARCHIVE_RETRY) continue;
      reader.Abandon(Why(handle));
      return count != ARCHIVE_FATAL;
    }
    reader.Feed({piece.data(), static_cast<std::size_t>(count)});
  }
  reader.Finish();
  return true;
}

// The name of what is compressed alone: "a.wml" of "dir/a.wml.xz".
std::string StemOf(std::string_view archive) {
  const std::string_view name = archive.substr(archive.find_last_of("/!") + 1);
  return std::string(name.substr(0, name.rfind('.')));
}

// Whether a ZIP file has its table of contents: the record at its end that says where it is.
bool HasZipEnd(ByteSource &source) {
  constexpr std::size_t kEnd = 22;
  constexpr std::uint64_t kLongestEnd = kEnd + 65535;  // with its comment
  const std::uint64_t size = source.Size();
  source.Seek(size - std::min(size, kLongestEnd));
  std::string end(static_cast<std::size_t>(std::min(size, kLongestEnd)), '\0');
  std::size_t used = 0;
  while (const std::size_t count = source.Read(end.data() + used, end.size() - used)) used += count;
  const std::size_t mark = end.rfind("PK\5\6");
  return mark != std::string::npos && mark + kEnd <= end.size();
}

class BundleReader {
 public:
  BundleReader(ByteSource &source, ReadContext &context, const ArchivePlace &place)
      : input_{source}, context_(context), place_(place) {}

  void Read() {
    std::array<char, 2> mark{};
    const std::size_t known = input_.source.Read(mark.data(), mark.size());
    const std::string_view begins(mark.data(), known);
    const bool isCut = begins == "PK" && !HasZipEnd(input_.source);
    input_.source.Seek(0);
    // A single file in xz or bzip2 has no format of its own.
    handle_ = Open(input_, begins == "BZ" || begins ==
                                                 "\xFD"
                                                 "7");
    if (archive_read_open1(handle_.get()) < ARCHIVE_WARN) {
      context_.Damage(place_, std::nullopt, {}, Why(handle_.get()));
      return;
    }
    bool goesOn = true;
    while (goesOn) goesOn = ReadNext();
    if (isCut && !context_.Summary().lost) {
      context_.Lose(place_, input_.source.Size(), "is cut: its table of contents is not there");
    }
  }

 private:
  bool ReadNext() {
    archive_entry *entry = nullptr;
    const int result = archive_read_next_header(handle_.get(), &entry);
    if (result == ARCHIVE_EOF) return false;
    if (result == ARCHIVE_RETRY) return true;
    if (result < ARCHIVE_WARN) {
      const auto offset = static_cast<std::uint64_t>(
          std::max<la_int64_t>(archive_filter_bytes(handle_.get(), -1), 0));
      context_.Damage(place_, offset, {}, Why(handle_.get()));
      return false;
    }
    if (archive_entry_filetype(entry) != AE_IFREG) return true;
    return ReadFile(entry);
  }

  bool ReadFile(archive_entry *entry) {
    const bool isRaw = archive_format(handle_.get()) == ARCHIVE_FORMAT_RAW;
    const std::string name = isRaw ? StemOf(place_.archive) : NameOf(entry);
    if (place_.depth == 0) context_.RenewNested();
    ArchivedDocument about;
    about.archive = place_.archive;
    about.uri = place_.archive + '!' + name;
    about.date = DateOf(entry);
    EntryReader reader(context_, {about.uri, place_.depth + 1}, about);
    if (archive_entry_is_encrypted(entry) != 0) {
      reader.Abandon("is encrypted");
      return true;
    }
    return ReadEntry(handle_.get(), reader);
  }

  Input input_;
  Handle handle_;
  ReadContext &context_;
  const ArchivePlace &place_;
};

}  // namespace

void ReadBundle(ByteSource &source, ReadContext &context, const ArchivePlace &place) {
  source.Seek(0);
  BundleReader(source, context, place).Read();
}

}  // namespace vs_wml
