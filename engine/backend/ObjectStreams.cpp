// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/ObjectStreams.h"

#include <algorithm>
#include <array>
#include <map>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFXRefEntry.hh>
#include <string>
#include <utility>

#include "engine/backend/XrefEntry.h"
#include "engine/base/EngineError.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

// What the parser takes: for a number, an array or a dictionary entry, and for each byte of a long string.
constexpr std::uint64_t kTokenCost = 250;
constexpr std::uint64_t kByteCost = 5;
// What every file may ask for, and more for each of its bytes.
constexpr std::uint64_t kFreeCost = std::uint64_t{512} << 20;
constexpr std::uint64_t kCostPerFileByte = 512;
// In large files shorter streams are not looked into: they cannot hold much, and there may be many.
constexpr std::uint64_t kLargeFile = 16 << 20;
constexpr int kShortStream = 64 * 1024;
// A row of predicted data; the parser keeps two of them.
constexpr long long kMostColumns = 1 << 16;
constexpr std::uint64_t kLongestDirectory = 16 << 20;
constexpr std::uint64_t kMostObjects = std::uint64_t{1} << 31;

// The parser takes a standard exception out of a pipeline for a broken stream and goes on; it lets this one pass.
struct LimitReached {};

enum class Role : unsigned char { kSpace, kOpening, kRegular };

std::array<Role, 256> MakeRoles() {
  std::array<Role, 256> roles;
  for (std::size_t i = 0; i < roles.size(); ++i) {
    roles[i] = PdfLexer::IsDelimiter(static_cast<char>(i)) ? Role::kSpace : Role::kRegular;
  }
  for (const char opening : {'[', '<', '(', '/'}) roles[static_cast<unsigned char>(opening)] = Role::kOpening;
  return roles;
}

// Estimates what the objects in the decoded bytes will cost, and keeps the first bytes.
class CostPipeline : public Pipeline {
 public:
  CostPipeline(std::uint64_t& cost, std::uint64_t limit, std::size_t keep)
      : Pipeline("cost", nullptr), cost_(cost), limit_(limit), keep_(keep) {}

  void write(unsigned char const* data, std::size_t length) override {
    static const std::array<Role, 256> roles = MakeRoles();
    std::uint64_t tokens = 0;
    Role last = last_;
    for (std::size_t i = 0; i < length; ++i) {
      const Role role = roles[data[i]];
      // A name's slash and its letters are one token.
      tokens += role == Role::kOpening || (role == Role::kRegular && last == Role::kSpace);
      last = role;
    }
    last_ = last;
    size_ += length;
    start_.append(reinterpret_cast<const char*>(data), std::min(length, keep_ - start_.size()));
    cost_ += kTokenCost * tokens + kByteCost * length;
    if (cost_ > limit_) throw LimitReached();
  }
  void finish() override { last_ = Role::kSpace; }

  const std::string& Start() const { return start_; }
  std::uint64_t Size() const { return size_; }

 private:
  std::uint64_t& cost_;
  const std::uint64_t limit_;
  const std::size_t keep_;
  std::string start_;
  std::uint64_t size_ = 0;
  Role last_ = Role::kSpace;
};

bool IsShort(QPDFObjectHandle dictionary) {
  QPDFObjectHandle length = dictionary.getKey("/Length");
  return length.isInteger() && length.getIntValueAsInt() < kShortStream;
}

bool HasHugeRows(QPDFObjectHandle parameters) {
  if (parameters.isArray()) {
    for (QPDFObjectHandle& item : parameters.getArrayAsVector()) {
      if (HasHugeRows(item)) return true;
    }
    return false;
  }
  if (!parameters.isDictionary()) return false;
  for (const char* const key : {"/Columns", "/Colors"}) {
    QPDFObjectHandle value = parameters.getKey(key);
    if (value.isInteger() && value.getIntValue() > kMostColumns) return true;
  }
  return false;
}

// A number that is not negative; 0 for anything else.
std::uint64_t UnsignedEntry(QPDFObjectHandle dictionary, const char* key) {
  QPDFObjectHandle value = dictionary.getKey(key);
  return value.isInteger() && value.getIntValue() > 0 ? static_cast<std::uint64_t>(value.getIntValue()) : 0;
}

// The numbers in the pairs at the start of an object stream (ISO 32000-1, 7.5.7), as far as they can be read.
std::vector<std::uint32_t> ReadDirectory(const std::string& directory, std::uint64_t count, std::uint64_t dataSize) {
  std::vector<std::uint32_t> numbers;
  const std::string text = directory + ' ';
  PdfLexer lexer(text);
  try {
    while (numbers.size() < count) {
      lexer.SkipSpace();
      const std::uint64_t number = lexer.ReadUnsigned();
      lexer.SkipSpace();
      const bool there = lexer.ReadUnsigned() < dataSize && number < kMostObjects;
      numbers.push_back(there ? static_cast<std::uint32_t>(number) : 0);
    }
  } catch (const PdfSyntaxError&) {
  }
  return numbers;
}

[[noreturn]] void Refuse() {
  throw EngineError(kErrorDamaged, "an object stream inflates to far more than the file can hold");
}

}  // namespace

ObjectStreams::ObjectStreams(std::uint64_t fileSize)
    : fileSize_(fileSize), limit_(kFreeCost + kCostPerFileByte * fileSize) {}

std::vector<std::uint32_t> ObjectStreams::Members(QPDFObjectHandle stream) {
  if (!stream.isStream()) return {};
  QPDFObjectHandle dictionary = stream.getDict();
  if (HasHugeRows(dictionary.getKey("/DecodeParms"))) Refuse();
  const std::uint64_t first = std::min(UnsignedEntry(dictionary, "/First"), kLongestDirectory);
  CostPipeline cost(cost_, limit_, static_cast<std::size_t>(first));
  try {
    decoded_ = stream.pipeStreamData(&cost, nullptr, 0, qpdf_dl_specialized, true) && decoded_;
  } catch (const LimitReached&) {
    Refuse();
  }
  return ReadDirectory(cost.Start(), UnsignedEntry(dictionary, "/N"), cost.Size() - cost.Start().size());
}

bool ObjectStreams::Check(QPDF& document) {
  std::map<int, std::vector<std::uint32_t>> streams;
  for (const auto& [id, entry] : document.getXRefTable()) {
    if (entry.getType() != kInStream) continue;
    streams[entry.getObjStreamNumber()].push_back(static_cast<std::uint32_t>(id.getObj()));
  }
  bool sound = true;
  for (auto& [number, expected] : streams) {
    QPDFObjectHandle stream = document.getObjectByID(number, 0);
    if (fileSize_ > kLargeFile && stream.isStream() && IsShort(stream.getDict())) continue;
    std::vector<std::uint32_t> members = Members(stream);
    std::sort(members.begin(), members.end());
    sound = sound && std::includes(members.begin(), members.end(), expected.begin(), expected.end());
  }
  return sound;
}

}  // namespace engine
