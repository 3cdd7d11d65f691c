// SPDX-License-Identifier: MIT
#include "host/platform/url.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace vs_wml {
namespace {

struct UrlCase {
  const char *target;
  const char *resolved;
};

constexpr UrlCase kCases[] = {
    {"g", "http://a/b/c/g"},
    {"./g/", "http://a/b/c/g/"},
    {"../../../g", "http://a/g"},
    {"/g", "http://a/g"},
    {"//h/i", "http://h/i"},
    {"?y={x} å", "http://a/b/c/d;p?y={x} å"},
    {"g?y/../x#s/../t", "http://a/b/c/g?y/../x#s/../t"},
    {"bilde å{v}.wbmp", "http://a/b/c/bilde%20%C3%A5%7Bv%7D.wbmp"},
    {"100%", "http://a/b/c/100%25"},
    {"a%2", "http://a/b/c/a%252"},
    {"a%zz%g0%0g%20", "http://a/b/c/a%25zz%25g0%250g%20"},
    {"#card", "#card"},
    {"", ""},
    {"mailto:x@y", "mailto:x@y"},
    {"http://other/x", "http://other/x"},
    {"http://[broken", "http://[broken"},
};

TEST(BaseUrl, Resolves) {
  const BaseUrl base("http://a/b/c/d;p?q#f");
  for (const UrlCase &entry : kCases) {
    EXPECT_EQ(base.Resolve(entry.target), entry.resolved) << entry.target;
  }
}

TEST(BaseUrl, IsAbsolute) {
  for (const char *url : {"", "a/b", "/a", "http://[", "#x"}) {
    EXPECT_THROW(BaseUrl{url}, std::invalid_argument) << url;
  }
}

}  // namespace
}  // namespace vs_wml
