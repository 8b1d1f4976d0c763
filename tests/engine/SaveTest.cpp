// SPDX-License-Identifier: Apache-2.0
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <ostream>

#include "tests/engine/EngineFixture.h"
#include "tests/engine/quick/FullParser.h"
#include "tests/engine/SampleFile.h"

namespace {

constexpr wchar_t kUrl[] = L"https://example.org/(base)/";
constexpr char kUrlInFile[] = "/Base(https://example.org/\\(base\\)/)";

using SaveTest = EngineFixture;

// A file with strings in the catalog, information, and two signature fields, one of them signed.
PlainPdf Rich() {
  return {
      "/Lang (en\\)\\000x) /ViewerPreferences << /K (nested) >> /AcroForm << /Fields [ 4 0 R 6 0 R ] >> "
      "/Perms << /DocMDP 5 0 R >>",
      "/Annots [ 4 0 R ]",
      "/Info 7 0 R",
      {"<< /FT /Sig /T (one) /V 5 0 R /Subtype /Widget /Rect [ 0 0 0 0 ] >>",
       "<< /Type /Sig /Filter /A /ByteRange [ 0 1 2 3 ] /Contents <3031> /Reference [ << /TransformMethod /DocMDP "
       "/TransformParams << /P 1 >> >> ] >>",
       "<< /FT /Sig /T (two) /Kids [ 6 0 R ] >>", "<< /Title (Plain \\(title\\)) /Own (mine) >>"}};
}

// A way to store the rich file, by qpdf's options for it.
struct Form {
  const char* name;
  const char* options;
  const wchar_t* password;

  friend std::ostream& operator<<(std::ostream& out, const Form& form) { return out << form.name; }
};

class SaveFormTest : public EngineFixture, public testing::WithParamInterface<Form> {
 protected:
  void SetUp() override {
    WriteFile("plain.pdf", Rich().Bytes());
    const ToolResult made =
        RunTool("qpdf --allow-weak-crypto " + std::string(GetParam().options) + " plain.pdf source.pdf");
    ASSERT_EQ(made.status, 0) << made.output;
    ASSERT_EQ(library_.LoadFromFile(L"source.pdf", GetParam().password), 1) << library_.LastErrorCode();
  }
  std::string QpdfPassword() const { return "--password=" + Narrow(GetParam().password); }
  std::string MutoolPassword() const {
    return GetParam().password[0] != 0 ? "-p " + Narrow(GetParam().password) : std::string();
  }
  std::string PopplerPassword() const {
    if (GetParam().password[0] == 0) return {};
    return (GetParam().password[0] == L'o' ? "-opw " : "-upw ") + Narrow(GetParam().password);
  }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    Forms, SaveFormTest,
    testing::Values(
        Form{"Table", "", L""}, Form{"Streams", "--object-streams=generate", L""},
        Form{"Linearized", "--linearize", L""}, Form{"LinearizedStreams", "--linearize --object-streams=generate", L""},
        Form{"Rc4Key40", "--encrypt '' o 40 --", L""}, Form{"Rc4Key128", "--encrypt '' o 128 --use-aes=n --", L""},
        Form{"Rc4CryptFilter", "--encrypt '' o 128 --force-V4 --", L""},
        Form{"Rc4ClearMetadata", "--encrypt '' o 128 --cleartext-metadata --", L""},
        Form{"Aes128", "--encrypt u o 128 --use-aes=y --", L"u"},
        Form{"Aes128ByOwner", "--encrypt u o 128 --use-aes=y --", L"o"},
        Form{"Aes128Streams", "--object-streams=generate --encrypt '' o 128 --use-aes=y --", L""},
        Form{"Aes256R5", "--encrypt u o 256 --force-R5 --", L"u"}, Form{"Aes256", "--encrypt u o 256 --", L"u"},
        Form{"Aes256ClearMetadata", "--encrypt '' o 256 --cleartext-metadata --", L""},
        Form{"Aes256Streams", "--linearize --object-streams=generate --encrypt u o 256 --", L"o"}),
    [](const auto& form) { return form.param.name; });

TEST_P(SaveFormTest, AppendsWhatWasSetAndKeepsEverythingElse) {
  EXPECT_EQ(library_.GetInformation(2), L"Plain (title)");
  EXPECT_EQ(library_.GetCustomInformation(L"Own"), L"mine");
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(library_.SetInformation(1, L"\x20AC \x1F600"), 1);
  ASSERT_EQ(library_.SetCustomInformation(L"Own", L""), 1);
  EXPECT_EQ(library_.GetInformation(1000), L"incremental");
  EXPECT_EQ(library_.GetInformation(1001), L"");
  EXPECT_EQ(library_.GetInformation(1002), L"1");
  EXPECT_EQ(library_.GetInformation(1003), L"1");
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();

  EXPECT_TRUE(StartsWith(ReadText("out.pdf"), ReadText("source.pdf")));
  EXPECT_TRUE(Sound("out.pdf", QpdfPassword()));
  const std::string catalog = Show("out.pdf", "trailer/Root", MutoolPassword());
  EXPECT_NE(catalog.find(kUrlInFile), std::string::npos) << catalog;
  EXPECT_NE(catalog.find("(nested)"), std::string::npos) << catalog;
  EXPECT_EQ(Show("out.pdf", "trailer/Encrypt", MutoolPassword()),
            Show("source.pdf", "trailer/Encrypt", MutoolPassword()));
  const std::string shown = RunTool("pdfinfo " + PopplerPassword() + " out.pdf").output;
  EXPECT_NE(shown.find("Author:          \xE2\x82\xAC \xF0\x9F\x98\x80"), std::string::npos) << shown;
  // To another parser the decrypted files differ by what was set only.
  const std::string decrypt = "qpdf --decrypt --qdf --static-id --no-original-object-ids " + QpdfPassword();
  ASSERT_EQ(RunTool(decrypt + " source.pdf before.pdf && " + decrypt + " out.pdf after.pdf").status, 0);
  ASSERT_EQ(library_.LoadFromFile(L"after.pdf", L""), 1);
  EXPECT_EQ(library_.GetBaseURL(), kUrl);
  EXPECT_EQ(library_.GetInformation(1), L"\x20AC \x1F600");
  EXPECT_EQ(library_.GetInformation(2), L"Plain (title)");
  EXPECT_EQ(library_.GetCustomInformation(L"Own"), L"");
  for (const char* const kept : {"trailer/Root/Lang", "trailer/Root/AcroForm/Fields/0/V"}) {
    EXPECT_EQ(Show("after.pdf", kept), Show("before.pdf", kept));
  }
}

TEST_F(SaveTest, InformationIsAddedWhereThereWasNone) {
  ASSERT_TRUE(Load("plain.pdf", PlainPdf().Bytes()));
  EXPECT_EQ(library_.GetInformation(2), L"");
  EXPECT_EQ(library_.SetInformation(9, L"x"), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorBadArgument);
  EXPECT_EQ(library_.SetCustomInformation(L"", L"x"), 0);
  ASSERT_EQ(library_.SetInformation(2, L"new"), 1);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1);
  EXPECT_TRUE(Sound("out.pdf"));
  EXPECT_NE(RunTool("pdfinfo out.pdf").output.find("Title:           new"), std::string::npos);
}

// A signed file with its strings in the clear, but with the encryption dictionary of an encrypted one in which `text`
// is replaced by `replacement`.
std::string WithCryptFilters(const std::string& text, const std::string& replacement) {
  WriteFile("plain.pdf", Rich().Bytes());
  EXPECT_EQ(RunTool("qpdf --encrypt '' o 128 --use-aes=y -- plain.pdf aes.pdf").status, 0);
  const std::string aes = ReadText("aes.pdf");
  const auto cut = [&](const std::string& from, const std::string& to) {
    const std::size_t begin = aes.find(from);
    const std::size_t end = aes.find(to, begin);
    return aes.substr(begin, end + to.size() - begin);
  };
  std::string dictionary = cut("<< /CF ", "/V 4 >>");
  const std::size_t at = dictionary.find(text);
  EXPECT_NE(at, std::string::npos) << dictionary;
  dictionary.replace(at, text.size(), replacement);
  PlainPdf file = Rich();
  file.trailerEntries += " " + cut("/ID [", "]") + " /Encrypt " + dictionary;
  return file.Bytes();
}

TEST_F(SaveTest, StringsInTheClearInEncryptedFiles) {
  const struct {
    const char* name;
    const char* text;
    const char* replacement;
    bool otherParser;  // whether qpdf by itself takes the strings for clear
  } rows[] = {
      {"strf-identity", "/StrF /StdCF", "/StrF /Identity", true},
      {"strf-missing", "/StrF /StdCF", "", true},
      {"cfm-missing", "/CFM /AESV2", "", true},
      {"cfm-none", "/CFM /AESV2", "/CFM /None", false},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string source = WithCryptFilters(row.text, row.replacement);
    ASSERT_TRUE(Load(std::string(row.name) + ".pdf", source)) << library_.LastErrorCode();
    EXPECT_EQ(library_.GetInformation(2), L"Plain (title)");
    ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
    EXPECT_EQ(library_.GetInformation(1000), L"incremental");
    EXPECT_EQ(library_.GetInformation(1004), L"");
    ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();
    EXPECT_EQ(library_.GetInformation(1004), L"incremental");
    const std::string saved = ReadText("out.pdf");
    EXPECT_TRUE(StartsWith(saved, source));
    EXPECT_NE(saved.find("(https://example.org/\\(base\\)/)", source.size()), std::string::npos);
    const std::string catalog = Show("out.pdf", "trailer/Root");
    EXPECT_NE(catalog.find(kUrlInFile), std::string::npos) << catalog;
    EXPECT_NE(catalog.find("(nested)"), std::string::npos) << catalog;
    const std::string other = RunTool("qpdf --show-object=1 out.pdf").output;
    EXPECT_EQ(other.find("(https://example.org/") != std::string::npos, row.otherParser) << other;
    ASSERT_EQ(library_.LoadFromFile(L"out.pdf", L""), 1);
    EXPECT_EQ(library_.GetBaseURL(), kUrl);

    // Damaged as well.
    ASSERT_TRUE(Load("damaged.pdf", WithBrokenXref(source)));
    ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
    ASSERT_EQ(library_.SaveToFile(L"repaired.pdf"), 1) << library_.LastErrorCode();
    EXPECT_EQ(library_.GetInformation(1004), L"incremental");
    EXPECT_NE(Show("repaired.pdf", "trailer/Root").find("(nested)"), std::string::npos);
    EXPECT_NE(Show("repaired.pdf", "trailer/Info/Title").find("Plain"), std::string::npos);
  }
}

TEST_F(SaveTest, UnknownEncryptionOfStringsIsRefused) {
  const struct {
    const char* name;
    const char* text;
    const char* replacement;
  } rows[] = {
      {"strf-undefined", "/StrF /StdCF", "/StrF /Other"},
      {"stmf-undefined", "/StmF /StdCF", "/StmF /Other"},
      {"cf-missing", "/CF ", "/FC "},
      {"cfm-unknown", "/CFM /AESV2", "/CFM /ROT13"},
      {"cfm-none-with-an-odd-length", "/CFM /AESV2 /Length 16 >> >> /Filter /Standard /Length 128",
       "/CFM /None /Length 16 >> >> /Filter /Standard /Length 29"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_FALSE(Load(std::string(row.name) + ".pdf", WithCryptFilters(row.text, row.replacement)));
    EXPECT_EQ(library_.LastErrorCode(), kErrorUnsupportedSecurity);
  }
}

// The parser finds the key also where entries are missing.
TEST_F(SaveTest, DamagedEncryptedFilesStayEncryptedAndReadable) {
  const struct {
    const char* options;
    const char* missing;
  } rows[] = {
      {"40", ""},      {"128 --use-aes=n", ""},        {"128 --force-V4", ""}, {"128 --use-aes=y", ""},
      {"256", ""},     {"128 --force-V4", "/Length "}, {"256", "/Length "},    {"128 --use-aes=y", "/Length "},
      {"256", "/ID "},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.options) + " without " + row.missing);
    WriteFile("plain.pdf", Rich().Bytes());
    const std::string encrypt = "qpdf --allow-weak-crypto --encrypt '' o " + std::string(row.options);
    ASSERT_EQ(RunTool(encrypt + " -- plain.pdf sound.pdf").status, 0);
    std::string bytes = ReadText("sound.pdf");
    if (row.missing[0] != 0) {
      const std::size_t entry = bytes.find(row.missing, bytes.find("/Standard"));
      ASSERT_NE(entry, std::string::npos);
      bytes[entry + 1] = 'X';
    }
    ASSERT_TRUE(Load("damaged.pdf", WithBrokenXref(bytes))) << library_.LastErrorCode();
    ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
    EXPECT_EQ(library_.GetInformation(1000), L"incremental");
    ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();
    EXPECT_TRUE(std::string(row.missing) == "/ID " || Sound("out.pdf"));
    EXPECT_NE(Show("out.pdf", "trailer/Encrypt").find("/Standard"), std::string::npos);
    const std::string catalog = Show("out.pdf", "trailer/Root");
    EXPECT_NE(catalog.find(kUrlInFile), std::string::npos) << catalog;
    EXPECT_NE(catalog.find("(nested)"), std::string::npos) << catalog;
  }
}

// The quick reader does not see the damage and reads the catalog that the cross-reference names; the repair takes the
// last one of the file.
TEST_F(SaveTest, ARepairThatFindsAnotherCatalogDoesNotChangeTheUrl) {
  const std::string old = "1 0 obj\n<< /Type /Catalog /Pages 2 0 R /URI << /Base (http://old/) >> >>\nendobj\n";
  PlainPdf pdf;
  pdf.more = {"<< /Length " + std::to_string(old.size()) + " >>\nstream\n" + old + "endstream"};
  std::string bytes = pdf.Bytes();
  const std::size_t pageEntry = bytes.rfind("xref\n0 5\n", bytes.rfind("trailer")) + 9 + 3 * 20;
  bytes[pageEntry + 17] = '?';
  for (const wchar_t* const url : {L"", kUrl}) {
    ASSERT_TRUE(Load("damaged.pdf", bytes));
    EXPECT_EQ(library_.GetBaseURL(), L"");
    ASSERT_EQ(library_.SetBaseURL(url), 1);
    ASSERT_EQ(library_.SetInformation(2, L"title"), 1);
    ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();
    EXPECT_EQ(library_.GetInformation(1004), L"incremental");
    EXPECT_TRUE(Sound("out.pdf"));
    ASSERT_EQ(library_.LoadFromFile(L"out.pdf", L""), 1);
    EXPECT_EQ(library_.GetBaseURL(), url);
  }
}

// Every layout and defect that files are made for: what the full parser can open is saved, and sound if it was.
class SampleTest : public EngineFixture, public testing::WithParamInterface<SampleFile> {
 protected:
  void ExpectRefusedInLittleMemory() {
    constexpr long kMostKilobytes = 512 * 1024;
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) _exit(library_.LoadFromFile(Wide(GetParam().Path()), L"") == 0 ? library_.LastErrorCode() : 0);
    int status = -1;
    rusage usage = {};
    ASSERT_EQ(wait4(child, &status, 0, &usage), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), kErrorDamaged);
    EXPECT_LT(usage.ru_maxrss, kMostKilobytes);
  }
};
INSTANTIATE_TEST_SUITE_P(Files, SampleTest, testing::ValuesIn(SampleFile::All(QUICK_SAMPLES)),
                         [](const auto& file) { return file.param.CaseName(); });

TEST_P(SampleTest, IsSavedWhenItCanBeOpened) {
  if (StartsWith(GetParam().name, "bomb-")) return ExpectRefusedInLittleMemory();
  const std::string source = ReadText(GetParam().Path());
  const auto reference = FullParser::Read(source);
  const bool loaded = library_.LoadFromFile(Wide(GetParam().Path()), L"") == 1;
  EXPECT_TRUE(loaded || !reference) << library_.LastErrorCode();
  if (!loaded || !reference) return;
  EXPECT_TRUE(reference->pageCount == 0 || Narrow(library_.GetBaseURL()) == reference->baseUrl);
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(library_.SaveToFile(L"out.pdf"), 1) << library_.LastErrorCode();
  const std::string bytes = ReadText("out.pdf");
  const auto saved = FullParser::Read(bytes);
  ASSERT_TRUE(saved);
  EXPECT_EQ(saved->baseUrl, Narrow(kUrl));
  EXPECT_GE(saved->pageCount, reference->pageCount);
  EXPECT_TRUE(saved->Sound() || !reference->Sound());
  EXPECT_LT(bytes.size(), 2 * source.size() + 10000);
  if (reference->Sound()) {
    EXPECT_TRUE(StartsWith(bytes, source) || GetParam().name == "root-is-dictionary");
  }
  if (GetParam().kind == "answered") {
    EXPECT_NE(Show("out.pdf", "trailer/Root").find(kUrlInFile), std::string::npos);
    EXPECT_EQ(bytes.find("/XRefStm", source.size()), std::string::npos);  // it would show the old catalog
    // Other readers object to nothing that the quick reader answers.
    EXPECT_TRUE(Sound("out.pdf") || !Sound(GetParam().Path()));
  }
}

TEST_F(SaveTest, HugeFilesWithHolesAreNotSearched) {
  constexpr off_t kSize = off_t{3} << 30;
  WriteFile("zeros.pdf", "");
  WriteFile("front.pdf", PlainPdf().Bytes());
  if (truncate("zeros.pdf", kSize) != 0 || truncate("front.pdf", kSize) != 0) GTEST_SKIP() << "no room for such files";
  EXPECT_EQ(library_.LoadFromFile(L"zeros.pdf", L""), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorNotPdf);
  EXPECT_EQ(library_.LoadFromFile(L"front.pdf", L""), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorDamaged);
}

// A host may limit the memory of a process. Every call of the engine then ends in one clear error, whichever part of it
// asked for the memory, and the process goes on.
TEST_F(SaveTest, LackOfMemoryIsAnError) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer's own memory cannot be limited";
#endif
  PlainPdf large;
  large.catalogEntries = "/Large [ ";
  for (int i = 0; i < 1000000; ++i) large.catalogEntries += "1 ";
  large.catalogEntries += "]";
  const std::string bytes = large.Bytes();
  WriteFile("damaged.pdf", WithBrokenXref(bytes));
  WriteFile("small.pdf", PlainPdf().Bytes());
  WriteFile("plain.pdf", bytes);
  ASSERT_EQ(RunTool("qpdf --encrypt '' o 256 -- plain.pdf encrypted.pdf").status, 0);
  ASSERT_EQ(library_.LoadFromFile(L"small.pdf", L""), 1);
  EXPECT_EQ(library_.PageCount(), 1);  // the backend is there
  for (const wchar_t* const file : {L"damaged.pdf", L"encrypted.pdf"}) {
    SCOPED_TRACE(Narrow(file));
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      const rlimit limit = {rlim_t{200} << 20, rlim_t{200} << 20};
      setrlimit(RLIMIT_AS, &limit);
      if (library_.LoadFromFile(file, L"") != 0) _exit(101);
      const int error = library_.LastErrorCode();
      if (library_.LoadFromFile(L"small.pdf", L"") != 1 || library_.SetBaseURL(kUrl) != 1) _exit(102);
      _exit(library_.SaveToFile(L"out.pdf") == 1 ? error : 103);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), kErrorOutOfMemory);
  }
}

TEST_F(SaveTest, FailuresLoseNothing) {
  const std::string plain = PlainPdf().Bytes();
  ASSERT_TRUE(Load("plain.pdf", plain));
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(mkdir("folder.pdf", 0755), 0);
  for (const wchar_t* target : {L"missing/out.pdf", L"folder.pdf", L"", L"plain.pdf/out.pdf"}) {
    EXPECT_EQ(library_.SaveToFile(target), 0);
    EXPECT_EQ(library_.LastErrorCode(), kErrorCannotWrite) << Narrow(target);
  }
  // The source is replaced, shrinks, vanishes.
  WriteFile("other.pdf", plain + "%");
  ASSERT_EQ(rename("other.pdf", "plain.pdf"), 0);
  EXPECT_EQ(library_.SaveToFile(L"out.pdf"), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorSourceChanged);
  ASSERT_EQ(library_.LoadFromFile(L"plain.pdf", L""), 1);
  ASSERT_EQ(library_.SetBaseURL(kUrl), 1);
  ASSERT_EQ(truncate("plain.pdf", 100), 0);
  EXPECT_EQ(library_.SaveToFile(L"plain.pdf"), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorSourceChanged);
  EXPECT_EQ(ReadText("plain.pdf"), plain.substr(0, 100));
  ASSERT_EQ(unlink("plain.pdf"), 0);
  EXPECT_EQ(library_.SaveToFile(L"out.pdf"), 0);
  EXPECT_EQ(library_.LastErrorCode(), kErrorSourceChanged);
  EXPECT_NE(access("out.pdf", F_OK), 0);
}
