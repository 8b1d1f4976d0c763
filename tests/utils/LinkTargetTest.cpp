// SPDX-License-Identifier: Apache-2.0
#include "utils/LinkTarget.h"

#include <gtest/gtest.h>

namespace {

struct Row {
  const char* base;
  const char* uri;
  const char* target;  // null for nothing
};

constexpr char kStandard[] = "http://a/b/c/d;p?q";

// The examples of RFC 3986, 5.4, and cases that it leaves open.
constexpr Row kRows[] = {
    {kStandard, "g:h", "g:h"},
    {kStandard, "g", "http://a/b/c/g"},
    {kStandard, "./g", "http://a/b/c/g"},
    {kStandard, "g/", "http://a/b/c/g/"},
    {kStandard, "/g", "http://a/g"},
    {kStandard, "//g", "http://g"},
    {kStandard, "?y", "http://a/b/c/d;p?y"},
    {kStandard, "g?y", "http://a/b/c/g?y"},
    {kStandard, "#s", "http://a/b/c/d;p?q#s"},
    {kStandard, "g#s", "http://a/b/c/g#s"},
    {kStandard, "g?y#s", "http://a/b/c/g?y#s"},
    {kStandard, ";x", "http://a/b/c/;x"},
    {kStandard, "", "http://a/b/c/d;p?q"},
    {kStandard, ".", "http://a/b/c/"},
    {kStandard, "..", "http://a/b/"},
    {kStandard, "../g", "http://a/b/g"},
    {kStandard, "../..", "http://a/"},
    {kStandard, "../../g", "http://a/g"},
    {kStandard, "../../../g", "http://a/g"},
    {kStandard, "/./g", "http://a/g"},
    {kStandard, "/../g", "http://a/g"},
    {kStandard, "g..", "http://a/b/c/g.."},
    {kStandard, "./../g", "http://a/b/g"},
    {kStandard, "g/./h", "http://a/b/c/g/h"},
    {kStandard, "g;x=1/../y", "http://a/b/c/y"},
    {kStandard, "g?y/../x", "http://a/b/c/g?y/../x"},
    {kStandard, "g#s/../x", "http://a/b/c/g#s/../x"},
    {kStandard, "http:g", "http:g"},
    {"https://example.org", "x.html", "https://example.org/x.html"},
    {"https://example.org/a", "x.html", "https://example.org/x.html"},
    {"https://example.org/a/?q#f", "x.html", "https://example.org/a/x.html"},
    {"file:///c/d.pdf", "e.pdf", "file:///c/e.pdf"},
    {"  https://example.org/  ", "\tx.html\n", "https://example.org/x.html"},
    // What a URI cannot hold.
    {"https://example.org/", "sp ace.html", "https://example.org/sp%20ace.html"},
    {"https://example.org/", "dir\\file.html", "https://example.org/dir%5Cfile.html"},
    {"https://example.org/", "\xC3\xA9%41%4", "https://example.org/%C3%A9%41%254"},
    {"", "mailto:a@b.example", "mailto:a@b.example"},
    {"", "https://example.org/a/../b", "https://example.org/b"},
    // Without an absolute base a relative link leads nowhere.
    {"", "x.html", nullptr},
    {"manuals/", "x.html", nullptr},
    {"", "1a:b", nullptr},
};

TEST(LinkTarget, FollowsTheStandard) {
  for (const Row& row : kRows) {
    const std::optional<QString> target = ResolvedLink(QString::fromUtf8(row.base), QString::fromUtf8(row.uri));
    EXPECT_EQ(target.value_or("-").toStdString(), row.target != nullptr ? row.target : "-")
        << row.base << ' ' << row.uri;
  }
}

TEST(LinkTarget, IsRelativeWithoutAScheme) {
  for (const char* const uri : {"", "x", "/x", "//host/x", "../a:b", "1a:b", "?a:b", ":x"}) {
    EXPECT_TRUE(IsRelativeLink(uri)) << uri;
  }
  for (const char* const uri : {"https://x", " mailto:x", "X-1.a+b:", "C:\\x", "www.example.org:80/x"}) {
    EXPECT_FALSE(IsRelativeLink(uri)) << uri;
  }
}

TEST(LinkTarget, NormalizedLinksAreTheSameWhenTheyAreEquivalent) {
  const struct {
    const char* uri;
    const char* normalized;
  } rows[] = {{"HTTP://User@Example.ORG:80", "http://User@example.org/"},
              {"https://e.org:/A/../%7Eb%2f%c3%a4?X=%41#%42", "https://e.org/~b%2F%C3%A4?X=A#B"},
              {"https://e.org:8443/x", "https://e.org:8443/x"},
              {"http://[::1]:80/", "http://[::1]/"},
              {"http://E%2DORG%c3/", "http://e-org%C3/"},
              {"https://e.org/a b\\", "https://e.org/a%20b%5C"},
              {"MAILTO:A@b.c", "mailto:A@b.c"},
              {"../A/%2E", "../A/."}};
  for (const auto& row : rows) {
    EXPECT_EQ(NormalizedLink(row.uri).toStdString(), row.normalized);
    EXPECT_EQ(NormalizedLink(row.normalized).toStdString(), row.normalized);
  }
}

}  // namespace
