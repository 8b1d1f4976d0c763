// SPDX-License-Identifier: Apache-2.0
#include "engine/backend/ObjectStreamGuard.h"

#include <array>
#include <qpdf/Pipeline.hh>
#include <qpdf/QPDFXRefEntry.hh>
#include <set>

#include "engine/base/EngineError.h"
#include "engine/syntax/PdfLexer.h"

namespace engine {

namespace {

// What the parser takes at most: for a number, an array or a dictionary entry, and for each byte of a long string.
constexpr std::uint64_t kTokenCost = 360;
constexpr std::uint64_t kByteCost = 5;
// What every file may ask for, and more for each of its bytes.
constexpr std::uint64_t kFreeCost = std::uint64_t{256} << 20;
constexpr std::uint64_t kCostPerFileByte = 512;
// In large files shorter streams are not looked into: they cannot hold much, and there may be many.
constexpr std::uint64_t kLargeFile = 16 << 20;
constexpr int kShortStream = 64 * 1024;
// A row of predicted data; the parser keeps two of them.
constexpr long long kMostColumns = 1 << 16;

// The parser takes a standard exception out of a pipeline for a broken stream and goes on; it lets this one pass.
struct LimitReached {};

enum class Role : unsigned char { kSpace, kOpening, kRegular };

std::array<Role, 256> MakeRoles() {
  std::array<Role, 256> roles;
  for (std::size_t i = 0; i < roles.size(); ++i) {
    roles[i] = PdfLexer::IsDelimiter(static_cast<char>(i)) ? Role::kSpace : Role::kRegular;
  }
  for (const unsigned char opening : {'[', '<', '(', '/'}) roles[opening] = Role::kOpening;
  return roles;
}

// Estimates what the objects in the decoded bytes will cost.
class CostPipeline : public Pipeline {
 public:
  explicit CostPipeline(std::uint64_t limit) : Pipeline("cost", nullptr), limit_(limit) {}

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
    cost_ += kTokenCost * tokens + kByteCost * length;
    if (cost_ > limit_) throw LimitReached();
  }
  void finish() override { last_ = Role::kSpace; }

 private:
  const std::uint64_t limit_;
  std::uint64_t cost_ = 0;
  Role last_ = Role::kSpace;
};

std::set<int> ObjectStreams(QPDF& document) {
  constexpr int kInStream = 2;
  std::set<int> numbers;
  for (const auto& [id, entry] : document.getXRefTable()) {
    if (entry.getType() == kInStream) numbers.insert(entry.getObjStreamNumber());
  }
  return numbers;
}

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

[[noreturn]] void Refuse() {
  throw EngineError(kErrorDamaged, "an object stream inflates to far more than the file can hold");
}

}  // namespace

void GuardObjectStreams(QPDF& document, std::uint64_t fileSize) {
  CostPipeline cost(kFreeCost + kCostPerFileByte * fileSize);
  for (const int number : ObjectStreams(document)) {
    QPDFObjectHandle stream = document.getObjectByID(number, 0);
    if (!stream.isStream()) continue;
    QPDFObjectHandle dictionary = stream.getDict();
    if (HasHugeRows(dictionary.getKey("/DecodeParms"))) Refuse();
    if (fileSize > kLargeFile && IsShort(dictionary)) continue;
    try {
      stream.pipeStreamData(&cost, 0, qpdf_dl_specialized, true);
    } catch (const LimitReached&) {
      Refuse();
    }
  }
}

}  // namespace engine
