// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/PdfLexer.h"

#include <limits>

namespace engine {

namespace {

// Deeper objects exist in hostile files only; full parsers stop at a few hundred.
constexpr std::size_t kDeepest = 100;

int HexDigit(char c) {
  if (PdfLexer::IsDigit(c)) return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

PdfLexer::Kind NumberKind(std::string_view word) {
  std::size_t digits = 0;
  std::size_t points = 0;
  for (std::size_t i = (word[0] == '+' || word[0] == '-') ? 1 : 0; i < word.size(); ++i) {
    if (PdfLexer::IsDigit(word[i])) {
      ++digits;
    } else if (word[i] == '.') {
      ++points;
    } else {
      throw PdfSyntaxError();
    }
  }
  if (digits == 0 || points > 1) throw PdfSyntaxError();
  return points == 0 ? PdfLexer::Kind::kInteger : PdfLexer::Kind::kReal;
}

std::string HexStringBytes(std::string_view text) {
  std::string bytes;
  int high = -1;
  for (const char c : text) {
    const int digit = HexDigit(c);
    if (digit < 0) continue;
    if (high < 0) {
      high = digit;
    } else {
      bytes += static_cast<char>(high << 4 | digit);
      high = -1;
    }
  }
  if (high >= 0) bytes += static_cast<char>(high << 4);
  return bytes;
}

// ISO 32000-1, table 3; `i` is the position after the backslash and is moved after the escape.
void AppendEscape(std::string_view text, std::size_t& i, std::string& bytes) {
  const char c = text[i++];
  switch (c) {
    case 'n':
      bytes += '\n';
      return;
    case 'r':
      bytes += '\r';
      return;
    case 't':
      bytes += '\t';
      return;
    case 'b':
      bytes += '\b';
      return;
    case 'f':
      bytes += '\f';
      return;
    case '\n':
      return;
    case '\r':
      if (i < text.size() && text[i] == '\n') ++i;
      return;
    default:
      break;
  }
  if (c < '0' || c > '7') {
    bytes += c;
    return;
  }
  int code = c - '0';
  for (int more = 0; more < 2 && i < text.size() && text[i] >= '0' && text[i] <= '7'; ++more) {
    code = code * 8 + (text[i++] - '0');
  }
  bytes += static_cast<char>(code & 0xFF);
}

std::string LiteralStringBytes(std::string_view text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size();) {
    const char c = text[i++];
    if (c == '\\' && i < text.size()) {
      AppendEscape(text, i, bytes);
    } else if (c == '\r') {
      bytes += '\n';
      if (i < text.size() && text[i] == '\n') ++i;
    } else {
      bytes += c;
    }
  }
  return bytes;
}

ObjectId MakeId(std::uint64_t number, std::uint64_t generation) {
  if (number == 0 || number >= static_cast<std::uint64_t>(std::numeric_limits<std::int32_t>::max()) ||
      generation >= 65535) {
    throw PdfSyntaxError();
  }
  return {static_cast<std::uint32_t>(number), static_cast<std::uint32_t>(generation)};
}

}  // namespace

char PdfLexer::Peek() const {
  if (AtEnd()) throw PdfSyntaxError(true);
  return text_[position_];
}

void PdfLexer::SkipSpace() {
  while (!AtEnd()) {
    if (text_[position_] == '%') {
      while (!AtEnd() && text_[position_] != '\n' && text_[position_] != '\r') ++position_;
    } else if (IsSpace(text_[position_])) {
      ++position_;
    } else {
      return;
    }
  }
}

bool PdfLexer::Accept(std::string_view word) {
  if (text_.size() - position_ <= word.size()) throw PdfSyntaxError(true);
  if (text_.compare(position_, word.size(), word) != 0 || !IsDelimiter(text_[position_ + word.size()])) return false;
  position_ += word.size();
  return true;
}

// "<<" or ">>".
bool PdfLexer::AcceptBrackets(std::string_view brackets) {
  if (text_.size() - position_ < brackets.size()) throw PdfSyntaxError(true);
  if (text_.compare(position_, brackets.size(), brackets) != 0) return false;
  position_ += brackets.size();
  return true;
}

void PdfLexer::Expect(std::string_view word) {
  if (!Accept(word)) throw PdfSyntaxError();
}

// Regular characters up to a delimiter.
std::string_view PdfLexer::ReadRegular() {
  const std::size_t begin = position_;
  while (!IsDelimiter(Peek())) {
    if (text_[position_] == '\v') throw PdfSyntaxError();  // white space to some readers
    ++position_;
  }
  return text_.substr(begin, position_ - begin);
}

std::uint64_t PdfLexer::ToUnsigned(std::string_view text) {
  // Eighteen digits cannot overflow, and no number of a sound file is longer.
  if (text.empty() || text.size() > 18) throw PdfSyntaxError();
  std::uint64_t number = 0;
  for (const char c : text) {
    if (!IsDigit(c)) throw PdfSyntaxError();
    number = number * 10 + static_cast<std::uint64_t>(c - '0');
  }
  return number;
}

std::uint64_t PdfLexer::ReadUnsigned() {
  return ToUnsigned(ReadRegular());
}

ObjectId PdfLexer::ReadObjectHeader() {
  const std::uint64_t number = ReadUnsigned();
  SkipSpace();
  const std::uint64_t generation = ReadUnsigned();
  SkipSpace();
  Expect("obj");
  return MakeId(number, generation);
}

ObjectId PdfLexer::ToReference(std::string_view text) {
  PdfLexer lexer(text);
  const std::uint64_t number = lexer.ReadUnsigned();
  lexer.SkipSpace();
  const std::uint64_t generation = lexer.ReadUnsigned();
  lexer.SkipSpace();
  if (text.substr(lexer.Position()) != "R") throw PdfSyntaxError();
  return MakeId(number, generation);
}

std::optional<ObjectId> PdfLexer::FindObjectHeader(std::string_view text) {
  try {
    PdfLexer lexer(text);
    lexer.SkipSpace();
    return lexer.ReadObjectHeader();
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

std::optional<ObjectId> PdfLexer::FindReference(std::string_view text) {
  // Most values are none, and an exception costs time.
  if (text.empty() || text.back() != 'R') return std::nullopt;
  try {
    return ToReference(text);
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

std::vector<std::uint64_t> PdfLexer::ToUnsignedArray(std::string_view text) {
  std::vector<std::uint64_t> numbers;
  if (text.empty() || text.front() != '[') throw PdfSyntaxError();
  PdfLexer lexer(text, 1);
  for (;;) {
    lexer.SkipSpace();
    if (lexer.Peek() == ']') return numbers;
    numbers.push_back(lexer.ReadUnsigned());
  }
}

std::string PdfLexer::ToBytes(std::string_view text) {
  const std::string_view inner = text.substr(1, text.size() - 2);
  return text.front() == '<' ? HexStringBytes(inner) : LiteralStringBytes(inner);
}

void PdfLexer::SkipLiteralString() {
  std::size_t depth = 0;
  do {
    const char c = Peek();
    ++position_;
    if (c == '\\') {
      Peek();
      ++position_;
    } else if (c == '(') {
      ++depth;
    } else if (c == ')') {
      --depth;
    }
  } while (depth > 0);
}

void PdfLexer::SkipHexString() {
  ++position_;
  for (; Peek() != '>'; ++position_) {
    if (HexDigit(text_[position_]) < 0 && !IsSpace(text_[position_])) throw PdfSyntaxError();
  }
  ++position_;
}

// An array or dictionary with all that is in it.
void PdfLexer::SkipContainer() {
  constexpr char kInArray = ']';
  constexpr char kBeforeKey = 'k';
  constexpr char kBeforeValue = 'v';
  std::string open;
  const auto begin = [&](char c) {
    if (open.empty() || open.back() == kInArray) return;
    keysAreNames_ = keysAreNames_ && (open.back() == kBeforeValue || c == '/');
    open.back() = open.back() == kBeforeKey ? kBeforeValue : kBeforeKey;
  };
  do {
    SkipSpace();
    const char c = Peek();
    if (c == ']' || c == '>') {
      if ((c == ']') != (open.back() == kInArray)) throw PdfSyntaxError();
      keysAreNames_ = keysAreNames_ && open.back() != kBeforeValue;
      ++position_;
      if (c == '>') {
        if (Peek() != '>') throw PdfSyntaxError();
        ++position_;
      }
      open.pop_back();
    } else if (c == '[') {
      begin(c);
      open += kInArray;
      ++position_;
    } else if (text_.compare(position_, 2, "<<") == 0) {
      begin(c);
      open += kBeforeKey;
      position_ += 2;
    } else {
      begin(c);
      ReadSimple();
    }
    if (open.size() > kDeepest) throw PdfSyntaxError();
  } while (!open.empty());
}

// After an unsigned integer: whether it begins a reference; moves after that if so.
bool PdfLexer::AcceptReferenceTail() {
  const std::size_t begin = position_;
  SkipSpace();
  if (position_ > begin && IsDigit(Peek())) {
    const std::string_view word = ReadRegular();
    bool digits = true;
    for (const char c : word) digits = digits && IsDigit(c);
    const std::size_t gap = position_;
    SkipSpace();
    if (digits && position_ > gap && Accept("R")) return true;
  }
  position_ = begin;
  return false;
}

PdfLexer::Value PdfLexer::ReadSimple() {
  Value value;
  value.begin = position_;
  const char c = Peek();
  if (c == '(') {
    SkipLiteralString();
    value.kind = Kind::kString;
  } else if (c == '<') {
    SkipHexString();
    value.kind = Kind::kHexString;
  } else if (c == '/') {
    ++position_;
    ReadRegular();
    value.kind = Kind::kName;
  } else {
    const std::string_view word = ReadRegular();
    if (word.empty()) throw PdfSyntaxError();  // a stray delimiter
    if (word == "true") {
      value.kind = Kind::kTrue;
    } else if (word == "false") {
      value.kind = Kind::kFalse;
    } else if (word == "null") {
      value.kind = Kind::kNull;
    } else {
      value.kind = NumberKind(word);
      if (value.kind == Kind::kInteger && IsDigit(word[0]) && AcceptReferenceTail()) value.kind = Kind::kReference;
    }
  }
  value.end = position_;
  return value;
}

PdfLexer::Value PdfLexer::ReadValue() {
  SkipSpace();
  const char c = Peek();
  if (c == '<' && position_ + 1 >= text_.size()) throw PdfSyntaxError(true);
  const bool dictionary = text_.compare(position_, 2, "<<") == 0;
  if (c != '[' && !dictionary) return ReadSimple();
  Value value;
  value.kind = dictionary ? Kind::kDictionary : Kind::kArray;
  value.begin = position_;
  SkipContainer();
  value.end = position_;
  return value;
}

}  // namespace engine
