// SPDX-License-Identifier: Apache-2.0
// Nothing is lost by a save: damaged files go through the engine, and what libqpdf, mupdf and poppler read before, each
// must read after. See usage() and fuzz/loss.
#include <getopt.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <optional>
#include <regex>
#include <stdexcept>

#include "fuzz/Mutation.h"
#include "fuzz/OwnProcess.h"
#include "fuzz/Readers.h"
#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryInformationKeys.h"

namespace fs = std::filesystem;

namespace {

constexpr char kUsage[] =
    "usage: LossFuzz --engine LIBRARY [--seconds N | --cases N | --check] [--seed S] [--first CASE] [--findings "
    "FOLDER] "
    "FILE|FOLDER...\n"
    "Damages the files (--check: takes them as they are), sets a base URL with the engine, and compares what three\n"
    "readers read before and after. The files or folders take turns. Writes each file with a loss to the findings "
    "folder.\n"
    "The same seed and case number give the same file. Ends with status 1 when something was lost.\n";
constexpr char kUrl[] = "http://example.net/(\\)";
constexpr int kSecondsForEach = 10;
constexpr std::uintmax_t kMaxSeedSize = 300'000;

struct Options {
  std::string engine;
  std::optional<std::uint64_t> seconds;
  std::optional<std::uint64_t> cases;
  bool check = false;
  std::uint64_t seed = 1;
  std::uint64_t first = 0;
  fs::path findings = "findings";
  std::vector<fs::path> files;
};

void WriteFile(const fs::path& path, const std::string& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  if (!(file << bytes).flush()) throw std::runtime_error("cannot write " + path.string());
}

std::wstring Wide(const std::string& ascii) {
  return {ascii.begin(), ascii.end()};
}

std::string Narrow(const std::wstring& ascii) {
  return {ascii.begin(), ascii.end()};
}

using Reader = Reading (*)(const std::string& file);
struct NamedReader {
  const char* name;
  Reader read;
};
constexpr std::array<NamedReader, 3> kReaders = {
    {{"qpdf", ReadWithQpdf}, {"mupdf", ReadWithMupdf}, {"poppler", ReadWithPoppler}}};

// What a reader read, or how it failed.
struct Attempt {
  Reading reading;
  std::string failure;
};

Attempt Read(const NamedReader& reader, const fs::path& file) {
  const Outcome outcome = RunInOwnProcess([&] { return reader.read(file).ToBytes(); }, kSecondsForEach);
  if (!outcome.result) return {{}, outcome.end};
  return {Reading::FromBytes(*outcome.result), {}};
}

bool Same(const Attempt& a, const Attempt& b) {
  return a.failure == b.failure && a.reading == b.reading;
}

// How the engine saves `in` with a base URL as `out`: "incremental", "rewrite", "not saved, error N" ... After a line
// end follows the base URL that it read before.
Outcome Save(const std::string& library, const fs::path& in, const fs::path& out) {
  const auto work = [&]() -> std::string {
    HalvexPDFLibraryCPDylibCPP1311 engine(Wide(library));
    const auto refused = [&](const char* what) { return what + std::to_string(engine.LastErrorCode()); };
    if (engine.LoadFromFile(in.wstring(), L"") != 1) return refused("not loaded, error ");
    const std::string old = Narrow(engine.GetBaseURL());
    if (engine.SetBaseURL(Wide(kUrl)) != 1) return refused("not set, error ");
    if (engine.SaveToFile(out.wstring()) != 1) return refused("not saved, error ");
    return Narrow(engine.GetInformation(kInformationLastSaveMode)) + '\n' + old;
  };
  return RunInOwnProcess(work, kSecondsForEach);
}

struct Counts {
  std::uint64_t cases = 0;
  std::uint64_t violations = 0;
  std::map<std::string, std::uint64_t> engine;
  std::array<std::map<std::string, std::uint64_t>, kReaders.size()> readers;
};

class Fuzzer {
 public:
  explicit Fuzzer(const Options& options) : options_(options) {
    std::string name = (fs::temp_directory_path() / "loss-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    folder_ = name;
    in_ = folder_ / "in.pdf";
    out_ = folder_ / "out.pdf";
  }
  ~Fuzzer() { fs::remove_all(folder_); }
  Fuzzer(const Fuzzer&) = delete;
  Fuzzer& operator=(const Fuzzer&) = delete;

  // Loads fonts and settings here, so that the processes of the readers need not.
  void WarmUp(const std::string& sound) {
    WriteFile(in_, sound);
    for (const NamedReader& reader : kReaders) {
      if (Read(reader, in_).failure.empty()) reader.read(in_);
    }
  }

  // `undamaged`: the file that the bytes were made of; may be empty.
  void Check(const std::string& bytes, const std::string& name, const std::string& history,
             const fs::path& undamaged = {}) {
    ++counts_.cases;
    current_ = {bytes, name, history, undamaged};
    WriteFile(in_, bytes);
    fs::remove(out_);
    const Outcome saved = Save(options_.engine, in_, out_);
    if (!saved.result) {
      ++counts_.engine["engine " + saved.end];
      return Violated("the engine " + saved.end);
    }
    mode_ = saved.result->substr(0, saved.result->find('\n'));
    oldUrl_ = saved.result->substr(std::min(mode_.size() + 1, saved.result->size()));
    for (std::size_t i = 0; i < kReaders.size(); ++i) before_[i] = Read(kReaders[i], in_);
    if (!fs::exists(out_)) return CountRefused();
    ++counts_.engine[mode_];
    const std::string result = ReadFile(out_);
    if (mode_ != "rewrite" && result.compare(0, bytes.size(), bytes) != 0) Violated("the source is a prefix");
    for (std::size_t i = 0; i < kReaders.size(); ++i) Compare(i);
  }

  std::uint64_t Report() const {
    std::cout << counts_.cases << " cases, " << counts_.violations << " violations\n";
    for (const auto& [what, count] : counts_.engine) std::cout << "  engine: " << count << ' ' << what << '\n';
    for (std::size_t i = 0; i < kReaders.size(); ++i) {
      for (const auto& [what, count] : counts_.readers[i]) {
        std::cout << "  " << kReaders[i].name << ": " << count << ' ' << what << '\n';
      }
    }
    return counts_.violations;
  }

 private:
  void Violated(const std::string& what) {
    ++counts_.violations;
    const fs::path reproducer = Keep(options_.findings);
    std::cout << "violated: " << what << "\n  " << current_.history << "\n  reproducer: " << reproducer.string()
              << std::endl;
  }

  fs::path Keep(const fs::path& folder) const {
    fs::create_directories(folder);
    fs::path file = folder / (current_.name + ".pdf");
    WriteFile(file, current_.bytes);
    return file;
  }

  static bool ReadsPages(const Attempt& attempt) { return attempt.reading.HasPages(); }

  void CountRefused() {
    const auto readable = std::count_if(before_.begin(), before_.end(), ReadsPages);
    ++counts_.engine[mode_ + ", though " + std::to_string(readable) + " readers read pages"];
    if (readable == 0) return;
    std::cout << "refused: " << mode_ << ", though " << readable << " readers read pages\n  " << current_.history
              << "\n  file: " << Keep(options_.findings / "refused").string() << std::endl;
  }

  void Compare(std::size_t i) {
    auto& counts = counts_.readers[i];
    const Attempt& before = before_[i];
    if (!before.failure.empty()) return Allowed(i, "the reader itself failed before", before.failure);
    if (!before.reading.HasPages()) {
      ++counts["not read before"];
      return;
    }
    bool more = false;
    const Attempt after = Read(kReaders[i], out_);
    const auto losses = after.failure.empty() ? Losses(before.reading, after.reading, more)
                                              : std::vector<std::string>{"the reader " + after.failure};
    if (losses.empty()) {
      ++counts[more ? "read as before and more" : "read as before"];
      return CheckBaseUrl(i, after.reading);
    }
    if (!Same(before, Read(kReaders[i], in_)) || !Same(after, Read(kReaders[i], out_))) {
      return Allowed(i, "the reader reads another time otherwise", losses.front());
    }
    if (kReaders[i].read != ReadWithQpdf && KeepsLetters(before.reading, after.reading)) {
      return Allowed(i, "reads the same letters with other spaces, at other places or with more letters between them",
                     losses.front());
    }
    if (NeedsLinearization(i, after.reading)) {
      return Allowed(i, "reads no less than with one comment appended to the linearized file", losses.front());
    }
    if (LosesByAnyUpdate(i, after.reading)) {
      return Allowed(i, "reads no less than with an empty update appended", losses.front());
    }
    if (MisreadBefore(i, after.reading)) {
      return Allowed(i, "what it reads no more is not in the undamaged file", losses.front());
    }
    if (HasDamagedFonts(i, after.reading)) {
      return Allowed(i, "reads the same content with damaged fonts", losses.front());
    }
    if (NeverOpensUndamaged(i, after.reading)) {
      return Allowed(i, "does not open the undamaged file either", losses.front());
    }
    if (ReadEarlierVersionBefore(i, after.reading)) {
      return Allowed(i, "read an earlier version of the linearized file before", losses.front());
    }
    if (KeptWrongNumberBefore(i)) {
      return Allowed(i, "kept an object under a wrong number before", losses.front());
    }
    if (kReaders[i].read == ReadWithQpdf && ReadsNoLessThanInAnotherOrder(after.reading)) {
      return Allowed(i, "reads no less than in another order", losses.front());
    }
    if (after.reading.notFound < before.reading.notFound && SamePages(before.reading, after.reading)) {
      return Allowed(i, "now finds objects that it reported as missing before", losses.front());
    }
    if (const char* other = ReadLikeThisBefore(i, after.reading)) {
      return Allowed(i, std::string("reads now as did before: ") + other, losses.front());
    }
    for (const std::string& loss : losses) Lost(i, loss);
  }

  // One reader alone may see another catalog of a damaged file, or decrypt strings in another way. It did so before.
  void CheckBaseUrl(std::size_t i, const Reading& after) {
    if (kReaders[i].read == ReadWithPoppler || after.baseUrl == kUrl) return;
    if (after.doubtfulStrings) return Allowed(i, "reports that it may decrypt strings in a wrong way", after.baseUrl);
    const NamedReader& other = kReaders[kReaders[i].read == ReadWithQpdf ? 1 : 0];
    if (before_[i].reading.baseUrl != oldUrl_ && Read(other, out_).reading.baseUrl == kUrl) {
      return Allowed(
          i, std::string("read another base URL than the engine before; now the new one is read by ") + other.name,
          after.baseUrl);
    }
    Lost(i, "base URL not read: \"" + after.baseUrl + "\"");
  }

  // Whether the reader found pages only by the hints for a linearized file, which any byte appended makes void
  // (ISO 32000-1, F.4.2).
  bool NeedsLinearization(std::size_t i, const Reading& after) const {
    if (mode_ == "rewrite" || current_.bytes.substr(0, 1024).find("/Linearized") == std::string::npos) return false;
    return ReadsNoLessThanIn(current_.bytes + "\n%\n", i, after);
  }

  // Whether the reader loses something in this other file, too, and no less than in the result.
  bool ReadsNoLessThanIn(const std::string& bytes, std::size_t i, const Reading& after) const {
    const fs::path file = folder_ / "other.pdf";
    WriteFile(file, bytes);
    const Reading other = Read(kReaders[i], file).reading;
    bool more = false;
    return !Losses(before_[i].reading, other, more).empty() && Losses(other, after, more).empty();
  }

  // Whether the reader loses as much by any update that continues the cross-references. Poppler, where it rebuilds
  // them, keeps the entries of the newest section only.
  bool LosesByAnyUpdate(std::size_t i, const Reading& after) const {
    const std::string result = ReadFile(out_);
    if (mode_ == "rewrite" || result.size() < current_.bytes.size()) return false;
    const std::string appended = result.substr(current_.bytes.size());
    const std::size_t trailer = appended.rfind("trailer");
    if (trailer == std::string::npos || appended.find("/Prev ", trailer) == std::string::npos) return false;
    const std::string section = "\nxref\n0 1\n0000000000 65535 f \n" +
                                appended.substr(trailer, appended.rfind("startxref") - trailer) + "startxref\n";
    return ReadsNoLessThanIn(current_.bytes + section + std::to_string(current_.bytes.size() + 1) + "\n%%EOF\n", i,
                             after);
  }

  // Whether it was the damaged file that the reader misread: what it does not read now is not in the undamaged one.
  bool MisreadBefore(std::size_t i, const Reading& after) const {
    // Of joined files each reader may have read another one.
    if (current_.undamaged.empty() || current_.history.find("joined") != std::string::npos) return false;
    const Reading undamaged = Read(kReaders[i], current_.undamaged).reading;
    return undamaged.HasText() && undamaged.pages.size() == after.pages.size() &&
           LosesOnlyMisread(before_[i].reading, after, undamaged);
  }

  bool HasDamagedFonts(std::size_t i, const Reading& after) const {
    if (kReaders[i].read == ReadWithQpdf || current_.undamaged.empty()) return false;
    return DiffersByDamagedFonts(before_[i].reading, after, Read(kReaders[i], current_.undamaged).reading);
  }

  // As a damaged trailer may hide from a reader that it has no password.
  bool NeverOpensUndamaged(std::size_t i, const Reading& after) const {
    if (after.opened || current_.undamaged.empty() || current_.history.find("joined") != std::string::npos)
      return false;
    return !Read(kReaders[i], current_.undamaged).reading.opened;
  }

  // Poppler, where it finds no trailer, takes the section at the start of a linearized file, which leads to the file
  // as it was before all updates.
  bool ReadEarlierVersionBefore(std::size_t i, const Reading& after) const {
    if (mode_ == "rewrite" || kReaders[i].read != ReadWithPoppler) return false;
    const std::string start = current_.bytes.substr(0, 1024);
    const std::size_t key = start.find("/L ", std::min(start.find("/Linearized"), start.size()));
    if (key == std::string::npos) return false;
    const std::size_t length = std::strtoull(start.c_str() + key + 3, nullptr, 10);
    if (current_.bytes.find(" obj", length) == std::string::npos) return false;
    const fs::path file = folder_ / "earlier.pdf";
    WriteFile(file, current_.bytes.substr(0, length));
    const bool asMany = std::any_of(before_.begin(), before_.end(), [&](const Attempt& other) {
      return &other != &before_[i] && other.reading.HasPages() && other.reading.pageCount == after.pageCount;
    });
    return asMany && Read(kReaders[i], file).reading == before_[i].reading;
  }

  // Whether libqpdf read what it lost only because of the order in which it was asked.
  bool ReadsNoLessThanInAnotherOrder(const Reading& after) const {
    const Reading before = Read({"qpdf", ReadWithQpdfPlainFirst}, in_).reading;
    bool more = false;
    return before.HasPages() && Losses(before, after, more).empty();
  }

  // libqpdf, where "startxref" leads into the number of an object, keeps that object under the number read there, also
  // after it has rebuilt the cross-references.
  bool KeptWrongNumberBefore(std::size_t i) const {
    if (mode_ == "rewrite" || kReaders[i].read != ReadWithQpdf) return false;
    const std::string& bytes = current_.bytes;
    const std::size_t key = bytes.rfind("startxref");
    if (key == std::string::npos) return false;
    const std::size_t offset = std::strtoull(bytes.c_str() + key + 9, nullptr, 10);
    if (offset == 0 || offset >= bytes.size()) return false;
    static const std::regex tail("^[0-9]+ 0 obj");
    return std::isdigit(static_cast<unsigned char>(bytes[offset - 1])) != 0 &&
           std::regex_search(bytes.substr(offset, 32), tail);
  }

  // The other reader that read before what this one reads now: the readers did not agree about the damaged file, and a
  // result cannot show both.
  const char* ReadLikeThisBefore(std::size_t i, const Reading& after) const {
    // Pages of the same contents may use objects of which the readers make different things.
    const bool same = SamePages(before_[i].reading, after);
    for (std::size_t other = 0; other < kReaders.size(); ++other) {
      const Reading& theirs = before_[other].reading;
      if (other == i || !theirs.HasPages() || !theirs.HasText()) continue;
      if (same ? SameLetters(after, theirs) : HoldsPages(after, theirs)) return kReaders[other].name;
    }
    return nullptr;
  }

  void Lost(std::size_t i, const std::string& loss) {
    ++counts_.readers[i]["LOSS, " + mode_ + ": " + loss.substr(0, loss.find(':'))];
    Violated(std::string(kReaders[i].name) + ", " + mode_ + ": " + loss);
  }
  void Allowed(std::size_t i, const std::string& why, const std::string& what) {
    ++counts_.readers[i]["allowed, " + why];
    std::cout << "allowed: " << kReaders[i].name << ", " << mode_ << ": " << why << " (" << what << ")\n  "
              << current_.history << "\n  file: " << Keep(options_.findings / "allowed").string() << std::endl;
  }

  struct Case {
    std::string bytes;
    std::string name;
    std::string history;
    fs::path undamaged;
  };

  const Options& options_;
  fs::path folder_, in_, out_;
  Case current_;
  std::string mode_;
  std::string oldUrl_;
  std::array<Attempt, kReaders.size()> before_;
  Counts counts_;
};

[[noreturn]] void Usage() {
  std::cerr << kUsage;
  std::exit(2);
}

Options ReadOptions(int count, char** arguments) {
  static const option kLong[] = {{"engine", 1, nullptr, 'e'},   {"seconds", 1, nullptr, 't'},
                                 {"cases", 1, nullptr, 'n'},    {"check", 0, nullptr, 'c'},
                                 {"seed", 1, nullptr, 's'},     {"first", 1, nullptr, 'f'},
                                 {"findings", 1, nullptr, 'o'}, {nullptr, 0, nullptr, 0}};
  Options options;
  for (int c = 0; (c = getopt_long(count, arguments, "", kLong, nullptr)) != -1;) {
    switch (c) {
      case 'e':
        options.engine = optarg;
        break;
      case 't':
        options.seconds = std::stoull(optarg);
        break;
      case 'n':
        options.cases = std::stoull(optarg);
        break;
      case 'c':
        options.check = true;
        break;
      case 's':
        options.seed = std::stoull(optarg);
        break;
      case 'f':
        options.first = std::stoull(optarg);
        break;
      case 'o':
        options.findings = optarg;
        break;
      default:
        Usage();
    }
  }
  for (int i = optind; i < count; ++i) options.files.emplace_back(arguments[i]);
  if (options.engine.empty() || options.files.empty()) Usage();
  return options;
}

std::vector<fs::path> FilesIn(const fs::path& name) {
  if (!fs::is_directory(name)) return {name};
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(name)) {
    if (entry.is_regular_file() && entry.path().extension() == ".pdf") files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Large files would take the time of many small ones, and their damage is of the same kinds.
bool IsSeed(const fs::path& file) {
  const std::uintmax_t size = fs::file_size(file);
  return size > 0 && size <= kMaxSeedSize;
}

std::vector<fs::path> SeedsIn(const fs::path& name) {
  std::vector<fs::path> files = FilesIn(name);
  files.erase(std::remove_if(files.begin(), files.end(), [](const fs::path& file) { return !IsSeed(file); }),
              files.end());
  if (files.empty()) throw std::runtime_error("no files to start from in " + name.string());
  return files;
}

void CheckAsTheyAre(Fuzzer& fuzzer, const Options& options) {
  for (const fs::path& name : options.files) {
    for (const fs::path& file : FilesIn(name)) fuzzer.Check(ReadFile(file), file.stem().string(), file.string());
  }
}

void Damage(Fuzzer& fuzzer, const Options& options) {
  std::vector<std::vector<fs::path>> seeds;
  for (const fs::path& name : options.files) seeds.push_back(SeedsIn(name));
  fuzzer.WarmUp(ReadFile(seeds.front().front()));
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(options.seconds.value_or(60));
  for (std::uint64_t number = options.first;; ++number) {
    if (options.cases ? number >= options.first + *options.cases : std::chrono::steady_clock::now() >= end) return;
    const Mutation mutation = Mutate(seeds[number % seeds.size()], options.seed, number);
    const std::string name = std::to_string(options.seed) + "-" + std::to_string(number);
    fuzzer.Check(mutation.bytes, name, mutation.history, mutation.source);
  }
}

}  // namespace

int main(int count, char** arguments) try {
  const Options options = ReadOptions(count, arguments);
  Fuzzer fuzzer(options);
  if (options.check) {
    CheckAsTheyAre(fuzzer, options);
  } else {
    Damage(fuzzer, options);
  }
  return fuzzer.Report() == 0 ? 0 : 1;
} catch (const std::exception& error) {
  std::cerr << "LossFuzz: " << error.what() << '\n';
  return 2;
}
