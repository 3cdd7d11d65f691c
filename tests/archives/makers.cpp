// SPDX-License-Identifier: MIT
#include "makers.h"

#include <archive.h>
#include <archive_entry.h>
#include <brotli/encode.h>
#include <zlib.h>
#include <zstd.h>

#include <algorithm>
#include <cstdio>
#include <stdexcept>

namespace vs_wml::test {
namespace {

constexpr int kGzipBits = 31;
constexpr int kZlibBits = 15;

std::string Compress(std::string_view bytes, int bits) {
  z_stream stream{};
  deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, bits, 8, Z_DEFAULT_STRATEGY);
  std::string out(deflateBound(&stream, bytes.size()) + 32, '\0');
  stream.next_in = const_cast<Bytef *>(reinterpret_cast<const Bytef *>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  stream.next_out = reinterpret_cast<Bytef *>(out.data());
  stream.avail_out = static_cast<uInt>(out.size());
  deflate(&stream, Z_FINISH);
  out.resize(stream.total_out);
  deflateEnd(&stream);
  return out;
}

}  // namespace

std::string Gzip(std::string_view bytes) {
  return Compress(bytes, kGzipBits);
}

std::string Deflate(std::string_view bytes, bool withHeader) {
  return Compress(bytes, withHeader ? kZlibBits : -kZlibBits);
}

std::string Zstd(std::string_view bytes, std::string_view dictionary) {
  ZSTD_CCtx *context = ZSTD_createCCtx();
  ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
  ZSTD_CCtx_loadDictionary(context, dictionary.data(), dictionary.size());
  std::string out(ZSTD_compressBound(bytes.size()), '\0');
  out.resize(ZSTD_compress2(context, out.data(), out.size(), bytes.data(), bytes.size()));
  ZSTD_freeCCtx(context);
  return out;
}

std::string Brotli(std::string_view bytes) {
  std::size_t size = BrotliEncoderMaxCompressedSize(bytes.size()) + 16;
  std::string out(size, '\0');
  BrotliEncoderCompress(5, BROTLI_DEFAULT_WINDOW, BROTLI_MODE_TEXT, bytes.size(),
                        reinterpret_cast<const std::uint8_t *>(bytes.data()), &size,
                        reinterpret_cast<std::uint8_t *>(out.data()));
  out.resize(size);
  return out;
}

std::string Chunked(std::string_view bytes, std::size_t size, int digits) {
  std::string out;
  char number[32];
  for (std::size_t at = 0; at < bytes.size(); at += size) {
    const std::string_view chunk = bytes.substr(at, size);
    std::snprintf(number, sizeof number, "%0*zX\r\n", digits, chunk.size());
    out.append(number).append(chunk).append("\r\n");
  }
  return out + "0\r\n\r\n";
}

std::string Http(std::string_view fields, std::string_view body) {
  return "HTTP/1.1 200 OK\r\n" + std::string(fields) + "\r\n" + std::string(body);
}

std::string Warc(const WarcRecord &record) {
  const long length = static_cast<long>(record.block.size()) + record.lengthError;
  return record.version + "\r\nWARC-Type: " + record.type + "\r\nWARC-Target-URI: " + record.uri +
         "\r\nWARC-Date: 2002-03-04T05:06:07Z\r\nWARC-Record-ID: <urn:uuid:1>\r\n" + record.fields +
         "Content-Length: " + std::to_string(length) + "\r\n\r\n" + record.block + record.end;
}

std::string ArcRecord(std::string_view uri, std::string_view type, std::string_view block) {
  return std::string(uri) + " 192.0.2.1 20020304050607 " + std::string(type) + ' ' +
         std::to_string(block.size()) + '\n' + std::string(block) + '\n';
}

std::string ArcHead() {
  return ArcRecord("filedesc://a.arc", "text/plain",
                   "1 0 Writer\nURL IP-address Archive-date Content-type Archive-length\n");
}

std::string Bundle(const std::string &format, const std::string &filter,
                   const std::vector<std::pair<std::string, std::string>> &files) {
  std::string out(1U << 20U, '\0');
  std::size_t used = 0;
  archive *handle = archive_write_new();
  if (format == "zip") archive_write_set_format_zip(handle);
  if (format == "tar") archive_write_set_format_ustar(handle);
  if (format == "7z") archive_write_set_format_7zip(handle);
  if (!filter.empty()) archive_write_add_filter_by_name(handle, filter.c_str());
  archive_write_set_bytes_in_last_block(handle, 1);
  archive_write_open_memory(handle, out.data(), out.size(), &used);
  for (const auto &[name, bytes] : files) {
    archive_entry *entry = archive_entry_new();
    archive_entry_set_pathname(entry, name.c_str());
    archive_entry_set_size(entry, static_cast<la_int64_t>(bytes.size()));
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_mtime(entry, 1015218367, 0);
    archive_write_header(handle, entry);
    archive_write_data(handle, bytes.data(), bytes.size());
    archive_entry_free(entry);
  }
  const bool closed = archive_write_close(handle) == ARCHIVE_OK;
  archive_write_free(handle);
  if (!closed) throw std::runtime_error("no " + format);
  out.resize(used);
  return out;
}

std::string Found::Said() const {
  std::string text;
  for (const ArchivedDocument &document : documents) {
    for (const std::string &warning : document.warnings) text += warning + '\n';
  }
  for (const ArchiveNotice &notice : notices) text += notice.Line() + '\n';
  return text;
}

Found Read(const std::string &bytes, const std::string &name, ArchiveOptions options) {
  Found found;
  options.name = name;
  std::istringstream stream(bytes);
  found.summary = ForEachDocument(stream, options, found);
  return found;
}

Found Push(const std::string &bytes, const std::string &name, std::size_t piece,
           ArchiveOptions options) {
  Found found;
  options.name = name;
  ArchiveParser parser(options, found);
  for (std::size_t at = 0; at < bytes.size(); at += piece) {
    parser.Feed(std::string_view(bytes).substr(at, piece));
  }
  found.summary = parser.Finish();
  return found;
}

}  // namespace vs_wml::test
