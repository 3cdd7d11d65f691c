// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <png.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "host/images/picture_finder.h"
#include "host/images/picture_formats.h"
#include "host/images/wbmp.h"

namespace vs_wml {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
namespace fs = std::filesystem;

// Ten by three pixels: a black frame.
constexpr std::string_view kFrame = "\0\0\x0A\x03\x00\x3F\x7F\xBF\x00\x3F"sv;

TEST(Wbmp, IsDecoded) {
  const auto bitmap = DecodeWbmp(kFrame);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->width, 10U);
  EXPECT_EQ(bitmap->height, 3U);
  EXPECT_EQ(bitmap->rows, (std::vector<std::uint8_t>{0, 0, 0x7F, 0x80, 0, 0}));
  EXPECT_TRUE(bitmap->White(8, 1));
  EXPECT_FALSE(bitmap->White(9, 1));
}

TEST(Wbmp, ReadsLongNumbersAndExtensionHeaders) {
  const auto wide = DecodeWbmp(
      "\0\0\x81\x00\x01"
      "0123456789abcdef"sv);
  ASSERT_TRUE(wide);
  EXPECT_EQ(wide->width, 128U);
  EXPECT_TRUE(DecodeWbmp("\0\x80\x81\x01\x08\x01\xFF"sv));
  EXPECT_TRUE(DecodeWbmp("\0\x60\x08\x01\xFF"sv)) << "a type of headers without a header";
  EXPECT_TRUE(DecodeWbmp("\0\0\x80\x80\x08\x80\x01\xFF"sv));
  const std::string longest = "\0\0\xA0\0\x01"s + std::string(512, '\x7F');
  ASSERT_TRUE(DecodeWbmp(longest));
  EXPECT_EQ(DecodeWbmp(longest)->width, 4096U);
  EXPECT_TRUE(DecodeWbmp("\0\0\x01\xA0\0"s + std::string(4096, '\x7F')));
}

TEST(Wbmp, RefusesDamage) {
  const std::string_view kDamaged[] = {
      ""sv,
      "\0"sv,
      "\0\0"sv,
      "\0\0\x08"sv,
      "\x01\0\x08\x01\xFF"sv,                    // of another type
      "\0\0\0\x01\xFF"sv,                        // no width
      "\0\0\x08\0"sv,                            // no height
      "\0\0\xFF\xFF\xFF\xFF\xFF\xFF\x01\xFF"sv,  // a width without end
      "\0\0\xA0\x01\x01\xFF"sv,                  // 4097 pixels wide
      "\0\0\x08\xA0\x01\xFF"sv,                  // and high
      "\0\0\x80\x80\x80\x08\x01\xFF"sv,          // a width of four bytes
      "\0\x80\x80\x80\x80"sv,                    // extension headers without end
      "\0\xE0\x00\x08\x01\xFF"sv,                // extension headers with parameters
      "\x80\x80\x80\x80\0\x08\x01\xFF"sv,        // a type without end
      "\0\0\x08\x08\xFF\xFF\xFF"sv,              // three rows of eight
      "\0\0\xA0\x00\xA0\x00"sv};                 // 16 million pixels promised
  for (const std::string_view bytes : kDamaged) EXPECT_FALSE(DecodeWbmp(bytes));
}

TEST(Wbmp, FillsWhatIsMissing) {
  const auto bitmap = DecodeWbmp("\0\0\x08\x02\x00"sv);
  ASSERT_TRUE(bitmap);
  EXPECT_EQ(bitmap->rows, (std::vector<std::uint8_t>{0x00, 0xFF}));
  // Half of an odd number of bytes; and what is there beyond the last row.
  EXPECT_FALSE(DecodeWbmp("\0\0\x08\x03\x01"sv));
  EXPECT_EQ(DecodeWbmp("\0\0\x08\x03\x01\x02"sv)->rows, (std::vector<std::uint8_t>{1, 2, 0xFF}));
  EXPECT_EQ(DecodeWbmp("\0\0\x08\x01\x01\x02"sv)->rows, (std::vector<std::uint8_t>{1}));
  EXPECT_EQ(DecodeWbmp("\0\0\x09\x02\xFF\xFF"sv)->rows,
            (std::vector<std::uint8_t>{0xFF, 0x80, 0xFF, 0x80}));
}

TEST(Png, HoldsThePixels) {
  const auto bitmap = DecodeWbmp(kFrame);
  const std::string png = EncodePng(*bitmap);
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  ASSERT_NE(png_image_begin_read_from_memory(&image, png.data(), png.size()), 0);
  ASSERT_EQ(image.width, 10U);
  ASSERT_EQ(image.height, 3U);
  image.format = PNG_FORMAT_GRAY;
  std::vector<std::uint8_t> pixels(30);
  ASSERT_NE(png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr), 0);
  for (std::uint32_t i = 0; i < 30; ++i) {
    EXPECT_EQ(pixels[i], bitmap->White(i % 10, i / 10) ? 255 : 0) << i;
  }
}

TEST(DataUri, IsBase64) {
  EXPECT_EQ(DataUri("a/b", ""), "data:a/b;base64,");
  EXPECT_EQ(DataUri("a/b", "f"), "data:a/b;base64,Zg==");
  EXPECT_EQ(DataUri("a/b", "fo"), "data:a/b;base64,Zm8=");
  EXPECT_EQ(DataUri("a/b", "foo\xFF"), "data:a/b;base64,Zm9v/w==");
}

TEST(Blocks, AreDrawn) {
  EXPECT_EQ(DrawBlocks(*DecodeWbmp(kFrame)), (std::vector<std::string>{"▛▀▀▀▜", "▀▀▀▀▀"}));
}

class Finder : public testing::Test {
 protected:
  void SetUp() override {
    root_ = fs::temp_directory_path() /
            ("vs_wml_finder_" + std::to_string(reinterpret_cast<std::uintptr_t>(this)));
    for (const char *file :
         {"deck/a b.wbmp", "deck/sub/c.wbmp", "assets/host/x.wbmp", "assets/y.wbmp",
          "assets/a b.wbmp", "assets/host/sub/z.wbmp", "secret.wbmp"}) {
      fs::create_directories((root_ / file).parent_path());
      std::ofstream(root_ / file) << file;
    }
    fs::create_symlink(root_ / "secret.wbmp", root_ / "deck/link.wbmp");
  }
  void TearDown() override { fs::remove_all(root_); }

  // The file that is found, as a path below the root.
  std::string Find(std::string_view source) {
    return Find(source, {root_ / "deck", root_ / "assets"});
  }
  std::string Find(std::string_view source, const PictureFolders &folders) {
    const auto found = FindPicture(source, folders);
    return found ? found->lexically_relative(fs::canonical(root_)).string() : "";
  }

  fs::path root_;
};

TEST_F(Finder, LooksBesideTheDocumentAndInTheAssets) {
  EXPECT_EQ(Find("a b.wbmp"), "deck/a b.wbmp");
  EXPECT_EQ(Find("a%20b.wbmp?v=1#f"), "deck/a b.wbmp");
  EXPECT_EQ(Find("sub/../sub/c.wbmp"), "deck/sub/c.wbmp");
  EXPECT_EQ(Find("http://host/x.wbmp"), "assets/host/x.wbmp");
  EXPECT_EQ(Find("/some/where/y.wbmp"), "assets/y.wbmp");
  EXPECT_EQ(Find("http://other/some/y.wbmp"), "assets/y.wbmp");
  EXPECT_EQ(Find("http://other/host/sub/z.wbmp"), "assets/host/sub/z.wbmp");
  EXPECT_EQ(Find("//host/x.wbmp"), "assets/host/x.wbmp");
  EXPECT_EQ(Find("https://host/x.wbmp#sub/c.wbmp"), "assets/host/x.wbmp");
  EXPECT_EQ(Find("http://other/a%20b.wbmp"), "assets/a b.wbmp") << "not beside";
  EXPECT_EQ(Find("/a b.wbmp"), "assets/a b.wbmp");
  EXPECT_EQ(Find("http://y.wbmp"), "assets/y.wbmp");
  EXPECT_EQ(Find("http://sub/c.wbmp"), "");
  EXPECT_EQ(Find("none.wbmp"), "");
}

TEST_F(Finder, LooksNowhereElse) {
  const PictureFolders beside{root_ / "deck", {}};
  const PictureFolders assets{{}, root_ / "assets"};
  EXPECT_EQ(Find("sub/c.wbmp", beside), "deck/sub/c.wbmp");
  EXPECT_EQ(Find("y.wbmp", beside), "");
  EXPECT_EQ(Find("/sub/c.wbmp", beside), "");
  EXPECT_EQ(Find("sub/c.wbmp", assets), "");
  EXPECT_EQ(Find("host/x.wbmp", assets), "assets/host/x.wbmp");
  EXPECT_EQ(Find("y.wbmp", {root_ / "none", root_ / "none"}), "");
}

TEST_F(Finder, StaysInside) {
  const std::string absolute = (root_ / "secret.wbmp").string();
  for (const std::string_view source :
       {"../secret.wbmp"sv, "sub/../../secret.wbmp"sv, "%2e%2e/secret.wbmp"sv,
        std::string_view(absolute), "link.wbmp"sv, "file:///secret.wbmp"sv, "."sv, ".."sv, ""sv,
        "sub"sv, "a b.wbmp\0x"sv, "http://host/../../secret.wbmp"sv}) {
    EXPECT_EQ(Find(source), "") << source;
  }
}

}  // namespace
}  // namespace vs_wml
