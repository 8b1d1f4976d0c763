// SPDX-License-Identifier: Apache-2.0
#include <map>
#include <random>

#include "tests/engine/EngineFixture.h"

namespace {

// What can be set in a document.
struct Values {
  std::wstring url;
  std::wstring title;
  std::wstring own;

  bool operator==(const Values& other) const { return url == other.url && title == other.title && own == other.own; }
};

// What a document should be: the values of its file and those that were set since.
struct Model {
  int id = 0;
  std::wstring path;  // empty for a new document
  std::wstring password;
  Values inFile;
  Values now;
  std::wstring lastSaved;
  bool damaged = false;

  std::wstring Mode() const {
    if (path.empty()) return L"rewrite";
    return now == inFile ? L"unchanged" : L"incremental";
  }
};

// Random calls on five documents of one instance, compared with the models.
class SequenceTest : public EngineFixture, public testing::WithParamInterface<unsigned> {
 protected:
  void SetUp() override {
    PlainPdf plain{
        "/URI << /Base (http://old/) >>", "", "/Info 4 0 R", {"<< /Title <FEFF20AC> /Own 5 0 R >>", "(mine)"}};
    const Values values{L"http://old/", L"\x20AC", L"mine"};
    WriteFile("plain.pdf", plain.Bytes());
    ASSERT_EQ(RunTool("qpdf --object-streams=generate plain.pdf streams.pdf").status, 0);
    ASSERT_EQ(RunTool("qpdf --encrypt u o 256 -- plain.pdf encrypted.pdf").status, 0);
    WriteFile("damaged.pdf", WithBrokenXref(plain.Bytes()));
    for (const wchar_t* const path : {L"plain.pdf", L"streams.pdf", L"encrypted.pdf", L"damaged.pdf"}) {
      models_.push_back({0, path, path[0] == L'e' ? L"u" : L"", values, values, L"", path[0] == L'd'});
      Load();
      ++current_;
    }
    ASSERT_EQ(library_.NewDocument(), 1);
    models_.push_back({library_.SelectedDocument(), L"", L"", {}, {}, L"", false});
  }

  Model& Current() { return models_[current_]; }
  std::size_t Random(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(random_); }

  // Loads the current model's file, in place of the document that it may have.
  void Load() {
    Model& model = Current();
    if (model.id != 0) library_.RemoveDocument(model.id);
    ASSERT_EQ(library_.LoadFromFile(model.path, model.password), 1);
    model.id = library_.SelectedDocument();
    model.now = model.inFile;
    model.lastSaved.clear();
  }

  void Set() {
    const std::wstring values[] = {L"", L"http://old/", L"b(\\)", L"\x20AC", L"mine", L"c"};
    const std::wstring value = values[Random(std::size(values))];
    Model& model = Current();
    switch (Random(3)) {
      case 0:
        ASSERT_EQ(library_.SetBaseURL(value), 1);
        model.now.url = value == L"\x20AC" ? L"%E2%82%AC" : value;
        break;
      case 1:
        ASSERT_EQ(library_.SetInformation(2, value), 1);
        model.now.title = value;
        break;
      default:
        ASSERT_EQ(library_.SetCustomInformation(L"Own", value), 1);
        model.now.own = value;
    }
  }

  void Ask() {
    const Model& model = Current();
    switch (Random(7)) {
      case 0:
        EXPECT_EQ(library_.GetInformation(1000), model.Mode());
        break;
      case 1:
        EXPECT_EQ(library_.GetInformation(1004), model.lastSaved);
        break;
      case 2:
        EXPECT_EQ(library_.GetDocumentFileSize(), static_cast<int>(ReadText(Narrow(model.path)).size()));
        break;
      case 3:
        EXPECT_EQ(library_.GetBaseURL(), model.now.url);
        break;
      case 4:
        EXPECT_EQ(library_.GetInformation(2), model.now.title);
        break;
      case 5:
        EXPECT_EQ(library_.GetCustomInformation(L"Own"), model.now.own);
        break;
      default:
        EXPECT_EQ(library_.PageCount(), 1);
        EXPECT_EQ(library_.EncryptionStatus(), model.password.empty() ? 0 : 1);
        EXPECT_EQ(library_.GetDocumentRepaired(), model.damaged ? 1 : 0);
        EXPECT_EQ(library_.GetInformation(1002), L"0");
    }
  }

  void ExpectSaved(const std::string& bytes) {
    Model& model = Current();
    model.lastSaved = model.Mode();
    EXPECT_TRUE(model.lastSaved != L"unchanged" || bytes == ReadText(Narrow(model.path)));
    EXPECT_EQ(library_.GetInformation(1004), model.lastSaved);
    HalvexPDFLibraryCPDylibCPP1311 other(Wide(HALVEXENGINE_FILE));
    ASSERT_EQ(other.LoadFromString(bytes, model.password), 1);
    const Values saved{other.GetBaseURL(), other.GetInformation(2), other.GetCustomInformation(L"Own")};
    EXPECT_TRUE(saved == model.now);
    EXPECT_EQ(other.SaveToString(), bytes);
  }

  void SaveInPlace() {
    Model& model = Current();
    const std::string before = ReadText(Narrow(model.path));
    ASSERT_EQ(library_.SaveToFile(model.path), 1) << library_.LastErrorCode();
    const std::string after = ReadText(Narrow(model.path));
    EXPECT_EQ(after.substr(0, before.size()), before);
    ExpectSaved(after);
    model.damaged = model.damaged && model.now == model.inFile;
    model.inFile = model.now;
  }

  void SaveElsewhere() {
    ASSERT_EQ(library_.SaveToFile(L"elsewhere.pdf"), 1) << library_.LastErrorCode();
    ExpectSaved(ReadText("elsewhere.pdf"));
  }

  void Step() {
    const std::size_t choice = Random(20);
    const bool hasFile = !Current().path.empty();
    if (choice < 7) {
      Set();
    } else if (choice < 14) {
      Ask();
    } else if (choice < 16 && hasFile) {
      SaveInPlace();
    } else if (choice == 16) {
      SaveElsewhere();
    } else if (choice == 17) {
      ExpectSaved(library_.SaveToString());
    } else if (choice == 18 && hasFile) {
      Load();
    } else {
      current_ = Random(models_.size());
      ASSERT_EQ(library_.SelectDocument(Current().id), 1);
    }
  }

  std::mt19937 random_{GetParam()};
  std::vector<Model> models_;
  std::size_t current_ = 0;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Seeds, SequenceTest, testing::Range(1u, 5u));

TEST_P(SequenceTest, DocumentsAreAsAModelSays) {
  for (int step = 0; step < 1000 && !HasFailure(); ++step) {
    SCOPED_TRACE("step " + std::to_string(step) + ", document " + std::to_string(current_));
    Step();
  }
  for (const char* const path : {"plain.pdf", "streams.pdf", "damaged.pdf"}) EXPECT_TRUE(Sound(path));
  EXPECT_TRUE(Sound("encrypted.pdf", "--password=u"));
}
