// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "host/links/ViewerRules.h"

namespace {

// The most important cases of those that tests/viewers/measure compares with the engines themselves.
TEST(ViewerRules, LeadWhereTheEnginesDo) {
  constexpr const char* kNone = nullptr;
  constexpr const char* kBase = "https://e.org/m/a/";
  constexpr const char* kNoSlash = "https://e.org/m/a";
  const struct {
    const char* base;
    const char* uri;
    const char* pdfJs;
    const char* pdfium;
    const char* muPdf;
    const char* poppler;
  } rows[] = {
      {kBase, "../x", "https://e.org/m/x", "https://e.org/m/a/../x", "https://e.org/m/a/../x",
       "https://e.org/m/a/../x"},
      {kBase, "/r.html", "https://e.org/r.html", "https://e.org/m/a//r.html", "https://e.org/m/a//r.html",
       "https://e.org/m/a/r.html"},
      {kBase, "//h/p", "https://h/p", "https://e.org/m/a///h/p", "https://e.org/m/a///h/p", "https://e.org/m/a//h/p"},
      {kBase, "www.e.com/x", "http://www.e.com/x", "https://e.org/m/a/www.e.com/x", "https://e.org/m/a/www.e.com/x",
       "http://www.e.com/x"},
      {kBase, "", kNone, "https://e.org/m/a/", "https://e.org/m/a/", "https://e.org/m/a/"},
      {kBase, "a:b/c", kNone, "a:b/c", "https://e.org/m/a/a:b/c", "a:b/c"},
      {kBase, ":x", "https://e.org/m/a/:x", "https://e.org/m/a/:x", "https://e.org/m/a/:x", ":x"},
      {kBase, "C:\\x", kNone, "C:\\x", "https://e.org/m/a/C:\\x", "C:\\x"},
      {kNoSlash, "c.html", "https://e.org/m/c.html", "https://e.org/m/ac.html", "https://e.org/m/ac.html",
       "https://e.org/m/a/c.html"},
      {kNoSlash, "?q", "https://e.org/m/a?q", "https://e.org/m/a?q", "https://e.org/m/a?q", "https://e.org/m/a/?q"},
      {"https://e.org", "c.html", "https://e.org/c.html", "https://e.orgc.html", "https://e.orgc.html",
       "https://e.org/c.html"},
      {"https://e.org/x?q=1", "c", "https://e.org/c", "https://e.org/x?q=1c", "https://e.org/x?q=1c",
       "https://e.org/x?q=1/c"},
      {"", "c", kNone, "c", "c", "c"},
      {"https://\xC3\xA4.org/\xC3\xB6/", "c", "https://xn--4ca.org/%C3%B6/c", "https://\xC3\xA4.org/\xC3\xB6/c",
       "https://\xC3\xA4.org/\xC3\xB6/c", "https://\xC3\xA4.org/\xC3\xB6/c"},
      {kNone, "c.html", kNone, "c.html", "file://c.html", "c.html"},
      {kNone, "www.e.com", "http://www.e.com/", "www.e.com", "file://www.e.com", "http://www.e.com"},
      {kNone, "http://A.b:80/%7e?x y", "http://a.b/%7e?x%20y", "http://A.b:80/%7e?x y", "http://A.b:80/%7e?x y",
       "http://A.b:80/%7e?x y"},
      {kNone, "http://0x7f.1/", "http://127.0.0.1/", "http://0x7f.1/", "http://0x7f.1/", "http://0x7f.1/"},
      {kNone, "http://256.1.1.1/", kNone, "http://256.1.1.1/", "http://256.1.1.1/", "http://256.1.1.1/"},
      {kBase, "\xE4", "https://e.org/m/a/%C3%A4", "https://e.org/m/a/\xE4", "https://e.org/m/a/\xC3\xA4",
       "https://e.org/m/a/\xE4"},
  };
  const auto optional = [](const char* text) { return text ? ViewerRules::Target(text) : std::nullopt; };
  for (const auto& row : rows) {
    const ViewerRules::Target base = optional(row.base);
    SCOPED_TRACE(testing::Message() << (row.base ? row.base : "no base") << " and " << row.uri);
    EXPECT_EQ(ViewerRules::PdfJs(row.uri, base), optional(row.pdfJs));
    EXPECT_EQ(ViewerRules::Pdfium(row.uri, base), optional(row.pdfium));
    EXPECT_EQ(ViewerRules::MuPdf(row.uri, base), optional(row.muPdf));
    EXPECT_EQ(ViewerRules::Poppler(row.uri, base), optional(row.poppler));
  }
}

}  // namespace
