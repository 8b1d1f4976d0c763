// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Mutation.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMaxSize = std::size_t{4} << 20;

// What readers find their way by.
constexpr std::array kLandmarks = {
    "startxref",  "xref",     "trailer",  "%%EOF",    "%PDF-",    "endstream", "stream",  "endobj",
    " obj",       "/Length",  "/Prev",    "/First",   "/N ",      "/W",        "/Index",  "/Size",
    "/Root",      "/Type",    "/Kids",    "/Count",   "/Pages",   "/Page",     "/ObjStm", "/XRef",
    "/Info",      "/XRefStm", "/ID",      "/Encrypt", "/Extends", "/Contents", "/Filter", "/DecodeParms",
    "/Predictor", " 0 R",     " 00000 n", " 65535 f", "<<",       ">>"};

// Distributions of the standard library differ between implementations; these numbers do not.
class Random {
 public:
  Random(std::uint64_t seed, std::uint64_t number)
      : engine_(seed * 0x9E3779B97F4A7C15U ^ (number + 1) * 0xD1B54A32D192ED03U) {
    engine_.discard(4);
  }
  // From 0 to `limit` - 1; 0 for a limit of 0.
  std::size_t Below(std::size_t limit) { return limit == 0 ? 0 : static_cast<std::size_t>(engine_() % limit); }
  bool OneIn(std::size_t count) { return Below(count) == 0; }
  // Small ones more often than large ones.
  std::size_t Size(std::size_t limit) { return 1 + Below(std::max<std::size_t>(1, limit >> Below(10))); }
  char Byte() { return static_cast<char>(Below(256)); }

 private:
  std::mt19937_64 engine_;
};

class Mutator {
 public:
  Mutator(const std::vector<fs::path>& files, std::uint64_t seed, std::uint64_t number)
      : files_(files), random_(seed, number) {}

  Mutation Run() {
    const fs::path& file = SomeFile();
    bytes_ = ReadFile(file);
    history_ = file.filename();
    for (std::size_t left = random_.Size(3); left > 0; --left) {
      Step();
      if (bytes_.size() > kMaxSize) bytes_.resize(kMaxSize);
    }
    return {file, std::move(bytes_), std::move(history_)};
  }

 private:
  void Step() {
    switch (random_.Below(16)) {
      case 0:
        return Append();
      case 1:
        return Truncate();
      case 2:
        return Flip();
      case 3:
        return Delete();
      case 4:
        return Duplicate();
      case 5:
        return Swap();
      case 6:
        return Insert();
      case 7:
        return Prepend();
      case 8:
        return Join();
      case 9:
        return ConvertLineEnds();
      case 10:
        return Blank();
      case 11:
        return DropObject();
      default:
        return DamageLandmark();
    }
  }

  const fs::path& SomeFile() { return files_[random_.Below(files_.size())]; }
  void Note(const std::string& what) { history_ += ", " + what; }
  static std::string At(std::size_t offset) { return " at " + std::to_string(offset); }
  std::size_t Position() { return random_.Below(bytes_.size() + 1); }
  std::size_t BlockAt(std::size_t position) { return std::min(random_.Size(8192), bytes_.size() - position); }

  std::string Junk() {
    const std::size_t size = random_.Size(4096);
    const std::size_t kind = random_.Below(4);
    if (kind == 0) return std::string(size, '\0');
    std::string junk;
    if (kind == 1) {
      while (junk.size() < size) junk += "<p>HTTP/1.1 200 OK</p>\r\n";
    } else if (kind == 2) {
      const std::string other = ReadFile(SomeFile());
      junk = other.substr(random_.Below(other.size()), size);
    } else {
      while (junk.size() < size) junk.push_back(random_.Byte());
    }
    return junk;
  }

  void Append() {
    const std::string junk = Junk();
    bytes_ += junk;
    Note(std::to_string(junk.size()) + " bytes appended");
  }
  void Prepend() {
    const std::string junk = Junk();
    bytes_.insert(0, junk);
    Note(std::to_string(junk.size()) + " bytes before the header");
  }
  void Insert() {
    const std::size_t position = Position();
    const std::string junk = Junk();
    bytes_.insert(position, junk);
    Note(std::to_string(junk.size()) + " bytes inserted" + At(position));
  }
  void Truncate() {
    const std::size_t cut = random_.OneIn(3) ? bytes_.size() / 100 : BlockAt(0);
    bytes_.resize(bytes_.size() - cut);
    Note("cut off by " + std::to_string(cut));
  }
  void Flip() {
    if (bytes_.empty()) return;
    for (std::size_t left = random_.Size(8); left > 0; --left) {
      const std::size_t position = random_.Below(bytes_.size());
      bytes_[position] =
          random_.OneIn(2) ? random_.Byte() : static_cast<char>(bytes_[position] ^ (1 << random_.Below(8)));
      Note("byte changed" + At(position));
    }
  }
  void Delete() {
    const std::size_t position = Position();
    const std::size_t size = BlockAt(position);
    bytes_.erase(position, size);
    Note(std::to_string(size) + " bytes deleted" + At(position));
  }
  void Duplicate() {
    const std::size_t from = Position();
    const std::string block = bytes_.substr(from, BlockAt(from));
    const std::size_t to = random_.OneIn(2) ? from : Position();
    bytes_.insert(to, block);
    Note(std::to_string(block.size()) + " bytes copied" + At(from) + " to " + std::to_string(to));
  }
  void Swap() {
    const std::size_t first = Position();
    const std::size_t firstSize = BlockAt(first);
    const std::size_t second = first + firstSize + random_.Below(bytes_.size() - first - firstSize + 1);
    const std::size_t secondSize = BlockAt(second);
    const std::string changed = bytes_.substr(second, secondSize) +
                                bytes_.substr(first + firstSize, second - first - firstSize) +
                                bytes_.substr(first, firstSize);
    bytes_.replace(first, changed.size(), changed);
    Note("blocks" + At(first) + " and" + At(second) + " swapped");
  }
  void Join() {
    const fs::path& file = SomeFile();
    const std::string other = ReadFile(file);
    bytes_ = random_.OneIn(2) ? bytes_ + other : other + bytes_;
    Note("joined with " + file.filename().string());
  }
  void ConvertLineEnds() {
    const bool grow = random_.OneIn(2);
    std::string converted;
    for (const char c : bytes_) {
      if (c == '\n' && grow) converted.push_back('\r');
      if (c != '\r' || grow) converted.push_back(c);
    }
    bytes_ = std::move(converted);
    Note(grow ? "LF made CR LF" : "CR removed");
  }
  void Blank() {
    const std::size_t position = Position() / 512 * 512;
    const std::size_t size = BlockAt(position);
    std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(position), size, '\0');
    Note(std::to_string(size) + " bytes zeroed" + At(position));
  }
  void DropObject() {
    const std::size_t start = bytes_.find(" obj", Position());
    const std::size_t end = bytes_.find("endobj", start == std::string::npos ? start : start + 4);
    if (end == std::string::npos) return;
    bytes_.erase(start, end - start);
    Note("object" + At(start) + " emptied");
  }

  // One of the places where a landmark stands; npos when there is none.
  std::size_t FindLandmark(std::string& landmark) {
    landmark = kLandmarks[random_.Below(kLandmarks.size())];
    const std::size_t start = Position();
    const std::size_t found = bytes_.find(landmark, start);
    return found != std::string::npos ? found : bytes_.rfind(landmark, start);
  }
  void DamageLandmark() {
    std::string landmark;
    std::size_t position = std::string::npos;
    for (int tries = 0; tries < 20 && position == std::string::npos; ++tries) position = FindLandmark(landmark);
    if (position == std::string::npos) return;
    const std::size_t end = position + landmark.size();
    const std::string where = landmark + At(position);
    switch (random_.Below(7)) {
      case 0:
        bytes_.erase(position, landmark.size());
        return Note(where + " removed");
      case 1:
        std::fill_n(bytes_.begin() + static_cast<std::ptrdiff_t>(position), landmark.size(), ' ');
        return Note(where + " blanked");
      case 2:
        bytes_[position + random_.Below(landmark.size())] = random_.Byte();
        return Note(where + " misspelt");
      case 3:
        bytes_.insert(end, landmark);
        return Note(where + " doubled");
      default:
        return ChangeNumber(end, where);
    }
  }
  void ChangeNumber(std::size_t from, const std::string& where) {
    const auto digit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    const auto first = std::find_if(bytes_.begin() + static_cast<std::ptrdiff_t>(from), bytes_.end(), digit);
    const auto last = std::find_if_not(first, bytes_.end(), digit);
    const std::string old(first, last);
    if (old.empty() || old.size() > 15) return;
    static const std::array<const char*, 6> kOdd = {"0", "", "-1", "1", "4294967296", "99999999"};
    const std::uint64_t value = std::stoull(old);
    std::string changed = random_.OneIn(2)
                              ? kOdd[random_.Below(kOdd.size())]
                              : std::to_string(value + random_.Size(200) - std::min<std::uint64_t>(value, 100));
    if (random_.OneIn(2) && changed.size() < old.size()) changed.insert(0, old.size() - changed.size(), '0');
    bytes_.replace(first, last, changed);
    Note(where + ": " + old + " became " + changed);
  }

  const std::vector<fs::path>& files_;
  Random random_;
  std::string bytes_;
  std::string history_;
};

}  // namespace

Mutation Mutate(const std::vector<fs::path>& files, std::uint64_t seed, std::uint64_t number) {
  return Mutator(files, seed, number).Run();
}

std::string ReadFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path.string());
  std::ostringstream bytes;
  bytes << file.rdbuf();
  return bytes.str();
}
