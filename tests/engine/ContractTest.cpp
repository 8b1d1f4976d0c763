// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <algorithm>
#include <climits>

#include "tests/engine/EngineFixture.h"

namespace {

using ContractTest = EngineFixture;

}  // namespace

TEST_F(ContractTest, DocumentsAreSelectedAndRemovedById) {
  EXPECT_EQ(library_.SelectedDocument(), 0);
  ASSERT_TRUE(Load("a.pdf", PlainPdf{"/URI << /Base (a) >>", "", "", {}}.Bytes()));
  const int first = library_.SelectedDocument();
  ASSERT_EQ(library_.NewDocument(), 1);
  const int second = library_.SelectedDocument();
  EXPECT_GT(first, 0);
  EXPECT_NE(first, second);
  EXPECT_EQ(library_.DocumentCount(), 2);
  EXPECT_EQ(library_.GetDocumentID(1), first);
  EXPECT_EQ(library_.GetDocumentID(2), second);

  EXPECT_EQ(library_.SelectDocument(first), 1);
  EXPECT_EQ(library_.GetBaseURL(), L"a");
  EXPECT_EQ(library_.GetDocumentFileName(), L"a.pdf");
  EXPECT_EQ(library_.GetDocumentFileSize(), static_cast<int>(ReadText("a.pdf").size()));
  EXPECT_EQ(library_.SelectDocument(second + 7), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorNoDocument);
  EXPECT_EQ(library_.RemoveDocument(first), 1);
  EXPECT_EQ(library_.LastErrorCode(), kErrorNone);
  EXPECT_EQ(library_.SelectedDocument(), second);
  EXPECT_EQ(library_.RemoveDocument(first), 0);
  EXPECT_EQ(library_.RemoveDocument(second), 1);
  EXPECT_EQ(library_.GetBaseURL(), L"");
  EXPECT_EQ(library_.LastErrorCode(), kErrorNoDocument);
}

TEST_F(ContractTest, BuffersAreCheckedOnEveryUse) {
  void* const handle = dlopen(HALVEXENGINE_FILE, RTLD_LAZY | RTLD_LOCAL);
  const auto create = reinterpret_cast<void* (*)(int, int)>(dlsym(handle, "HPLCreateBuffer"));
  const auto add = reinterpret_cast<int (*)(int, void*, const void*, int)>(dlsym(handle, "HPLAddToBuffer"));
  const auto release = reinterpret_cast<int (*)(int, void*)>(dlsym(handle, "HPLReleaseBuffer"));
  const auto setUrl = reinterpret_cast<int (*)(int, void*)>(dlsym(handle, "HPLSetBaseURL"));
  const auto error = reinterpret_cast<int (*)(int)>(dlsym(handle, "HPLLastErrorCode"));
  const auto newDocument = reinterpret_cast<int (*)(int)>(dlsym(handle, "HPLNewDocument"));
  const int instance = reinterpret_cast<int (*)()>(dlsym(handle, "HPLCreateLibrary"))();
  ASSERT_EQ(newDocument(instance), 1);

  void* buffer = create(instance, 8);
  EXPECT_EQ(add(instance, buffer, L"a", 4), 1);
  EXPECT_EQ(setUrl(instance, buffer), 0) << "half full";
  EXPECT_EQ(error(instance), kErrorBadBuffer);
  EXPECT_EQ(add(instance, buffer, L"b", 4), 0) << "consumed by the failed call";

  buffer = create(instance, 4);
  EXPECT_EQ(add(instance, buffer, L"ab", 8), 0) << "too much";
  EXPECT_EQ(add(instance, buffer, nullptr, 4), 0);
  EXPECT_EQ(add(instance, buffer, L"a", -1), 0);
  EXPECT_EQ(error(instance), kErrorBadArgument);
  EXPECT_EQ(add(instance, buffer, L"a", 4), 1);
  EXPECT_EQ(setUrl(instance, buffer), 1);
  EXPECT_EQ(error(instance), kErrorNone);
  EXPECT_EQ(setUrl(instance, buffer), 0) << "consumed";
  EXPECT_EQ(release(instance, buffer), 0);
  EXPECT_EQ(error(instance), kErrorBadBuffer);

  buffer = create(instance, 3);
  EXPECT_EQ(add(instance, buffer, "abc", 3), 1);
  EXPECT_EQ(setUrl(instance, buffer), 0) << "no whole unit";

  int local = 0;
  // NOLINTNEXTLINE(performance-no-int-to-ptr): handles that were never returned
  for (void* const wild : {static_cast<void*>(&local), reinterpret_cast<void*>(1), reinterpret_cast<void*>(-1L)}) {
    EXPECT_EQ(setUrl(instance, wild), 0);
    EXPECT_EQ(error(instance), kErrorBadBuffer);
    EXPECT_EQ(release(instance, wild), 0);
  }
  // A failed creation must not pass for the empty text that null is.
  void* const failed = create(instance, -1);
  EXPECT_EQ(error(instance), kErrorBadArgument);
  EXPECT_NE(failed, nullptr);
  EXPECT_EQ(setUrl(instance, failed), 0);
  EXPECT_EQ(error(instance), kErrorBadArgument);
  EXPECT_EQ(reinterpret_cast<int (*)(int)>(dlsym(handle, "HPLReleaseLibrary"))(instance), 1);
  EXPECT_EQ(create(instance, 4), nullptr);
  EXPECT_EQ(error(instance), kErrorUnknownInstance);
  dlclose(handle);
}

TEST_F(ContractTest, LoadErrorsAreReported) {
  const std::string plain = PlainPdf().Bytes();
  WriteFile("text.pdf", "no document at all");
  WriteFile("empty.pdf", "");
  WriteFile("stub.pdf", "%PDF-1.4\n1 0 obj\n<< /Type /Catalog");
  WriteFile("plain.pdf", plain);
  ASSERT_EQ(RunTool("qpdf --encrypt user owner 256 -- plain.pdf locked.pdf").status, 0);
  const struct {
    const wchar_t* file;
    const wchar_t* password;
    int error;
  } cases[] = {
      {L"missing.pdf", L"", kErrorFileNotFound},  {L"", L"", kErrorFileNotFound},
      {L"plain.pdf/x", L"", kErrorFileNotFound},  {L".", L"", kErrorFileUnreadable},
      {L"text.pdf", L"", kErrorNotPdf},           {L"empty.pdf", L"", kErrorNotPdf},
      {L"stub.pdf", L"", kErrorDamaged},          {L"locked.pdf", L"", kErrorPasswordNeeded},
      {L"locked.pdf", L"x", kErrorPasswordWrong}, {L"locked.pdf", L"user", kErrorNone},
      {L"locked.pdf", L"owner", kErrorNone},      {L"plain.pdf", L"ignored", kErrorNone},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(library_.LoadFromFile(each.file, each.password), each.error == kErrorNone ? 1 : 0) << each.file;
    EXPECT_EQ(library_.LastErrorCode(), each.error) << Narrow(each.file);
  }
  EXPECT_EQ(library_.DocumentCount(), 3);
  EXPECT_EQ(library_.LoadFromString(plain, L""), 1);
  EXPECT_EQ(library_.LastErrorCode(), kErrorNone);
  EXPECT_EQ(library_.LoadFromString("", L""), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorNotPdf) << "the release of the byte buffer left it alone";
}

TEST_F(ContractTest, PagesAndEncryptionAreReported) {
  ASSERT_TRUE(Load("plain.pdf", PlainPdf{"", "/Rotate -90", "", {}}.Bytes()));
  EXPECT_EQ(library_.PageCount(), 1);
  EXPECT_EQ(library_.PageWidth(), 200);
  EXPECT_EQ(library_.PageHeight(), 300);
  EXPECT_EQ(library_.PageRotation(), 270);
  EXPECT_EQ(library_.SelectPage(1), 1);
  for (const int page : {0, 2, -1, INT_MAX}) {
    EXPECT_EQ(library_.SelectPage(page), 0);
    EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
  }
  EXPECT_EQ(library_.SelectedPage(), 1);
  EXPECT_EQ(library_.EncryptionStatus(), 0);
  EXPECT_EQ(library_.IsLinearized(), 0);
  EXPECT_EQ(library_.GetDocumentRepaired(), 0);

  ASSERT_EQ(RunTool("qpdf --encrypt user owner 256 -- plain.pdf locked.pdf").status, 0);
  ASSERT_EQ(library_.LoadFromFile(L"locked.pdf", L"owner"), 1);
  EXPECT_EQ(library_.EncryptionStatus(), 2);
  EXPECT_EQ(library_.CheckPassword(L"user"), 1);
  EXPECT_EQ(library_.CheckPassword(L"owner"), 2);
  EXPECT_EQ(library_.CheckPassword(L"neither"), 0);

  ASSERT_EQ(RunTool("qpdf --linearize plain.pdf linear.pdf").status, 0);
  ASSERT_EQ(library_.LoadFromFile(L"linear.pdf", L""), 1);
  EXPECT_EQ(library_.IsLinearized(), 1);
  ASSERT_EQ(library_.NewDocument(), 1);
  EXPECT_EQ(library_.PageCount(), 1);
  EXPECT_EQ(library_.EncryptionStatus(), 0);
}

TEST_F(ContractTest, FontsAreListedLineByLine) {
  const std::string every = Narrow(library_.GetInstalledFontsByCharset(2, 1));
  EXPECT_EQ(library_.LastErrorCode(), kErrorNone);
  EXPECT_EQ(every, Narrow(library_.GetInstalledFontsByCodePage(0, 0)));
  std::string previous;
  for (std::size_t start = 0; start < every.size();) {
    const std::size_t end = std::min(every.find("\r\n", start), every.size());
    const std::string family = every.substr(start, end - start);
    EXPECT_LT(previous, family);
    EXPECT_NE(RunTool("fc-list : family").output.find(family.substr(0, family.find('?'))), std::string::npos);
    previous = family;
    start = end + 2;
  }
  EXPECT_EQ(library_.GetInstalledFontsByCharset(99, 1), L"");
  EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
}
