// SPDX-License-Identifier: Apache-2.0
#include <dlfcn.h>

#include <cstring>
#include <QPluginLoader>
#include <QPointer>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "plugin/CActionInterface.h"
#include "plugin/WorkProcInfoStruct.h"
#include "tests/pdflib/FakeLibrary.h"
#include "tests/support/Sandbox.h"

namespace {

constexpr char kIdentifier[] = "com.Halvex.Vorlane.ActionInterface_1.0";

class Action : public testing::Test {
 protected:
  void SetUp() override {
    loader_.setFileName(QStringLiteral(SETBASEURL_FILE));
    ASSERT_TRUE(loader_.load()) << loader_.errorString().toStdString();
    action_ = qobject_cast<CActionInterface*>(loader_.instance());
    ASSERT_NE(action_, nullptr);
  }

  QPluginLoader loader_;
  CActionInterface* action_ = nullptr;
};

// The recording library's wrapper, and the text that the last SetBaseURL handed to it.
class RecordedDocument {
 public:
  RecordedDocument() : wrapper_(std::wstring(kFile, kFile + std::strlen(kFile))) { library_.Take(); }
  HalvexPDFLibraryCPDylibCPP1311* Wrapper() { return &wrapper_; }

  std::wstring TakeUrl() {
    const auto calls = library_.Take();
    EXPECT_FALSE(calls.empty());
    if (calls.empty()) return {};
    EXPECT_EQ(calls.back().name, "HPLSetBaseURL");
    auto* const buffer = static_cast<FakeBuffer*>(std::get<void*>(calls.back().arguments.at(1)));
    if (buffer == nullptr) return {};
    std::wstring text(buffer->bytes.size() / sizeof(wchar_t), L'\0');
    std::memcpy(text.data(), buffer->bytes.data(), buffer->bytes.size());
    delete buffer;
    return text;
  }

 private:
  static constexpr const char* kFile = FAKELIBRARY_FILE;
  OpenFakeLibrary library_{kFile};
  HalvexPDFLibraryCPDylibCPP1311 wrapper_;
};

}  // namespace

TEST_F(Action, CastsByNameAndKeepsOneInstance) {
  QObject* const root = loader_.instance();
  void* const interface = root->qt_metacast("CActionInterface");
  EXPECT_EQ(interface, action_);
  EXPECT_EQ(root->qt_metacast(kIdentifier), interface);
  EXPECT_NE(interface, static_cast<void*>(root));
  EXPECT_EQ(root->qt_metacast("CSetBaseURL"), static_cast<void*>(root));
  EXPECT_EQ(root->qt_metacast(nullptr), nullptr);
  EXPECT_EQ(root->qt_metacast("CPrefsDialog"), nullptr);

  void* const library = dlopen(SETBASEURL_FILE, RTLD_NOW);
  const auto instance = reinterpret_cast<QObject* (*)()>(dlsym(library, "qt_plugin_instance"));
  EXPECT_EQ(instance(), root);
  const QPointer<QObject> guard(root);
  delete root;
  QObject* const fresh = instance();
  EXPECT_TRUE(guard.isNull());
  EXPECT_NE(qobject_cast<CActionInterface*>(fresh), nullptr);
  EXPECT_EQ(instance(), fresh);
  dlclose(library);
}

TEST_F(Action, WorkProcHandsTheUrlToTheLibrary) {
  RecordedDocument document;
  QMap<QString, QVariant> settings;
  WorkProcInfoStruct info = {};
  info.document = document.Wrapper();
  info.settings = &settings;

  EXPECT_EQ(action_->WorkProc(&info), 0);
  EXPECT_EQ(document.TakeUrl(), L"") << "missing";
  const std::pair<QVariant, std::wstring> rows[] = {
      {QString(), L""},
      {QStringLiteral("https://example.org/a b?c#d"), L"https://example.org/a b?c#d"},
      {QString::fromUcs4(U"\U0001F600/\U0010FFFD"), L"\U0001F600/\U0010FFFD"},
      {42, L"42"},
      {QVariantList{1, 2}, L""}};
  for (const auto& [value, expected] : rows) {
    settings["baseUrlString"] = value;
    EXPECT_EQ(action_->WorkProc(&info), 0);
    EXPECT_EQ(document.TakeUrl(), expected);
  }
}
