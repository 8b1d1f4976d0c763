// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/syntax/ObjectId.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

// Finds PDF tokens and objects in a text (ISO 32000-1, 7.2 and 7.3): their kind, begin and end. Strict: syntax that
// readers are known to treat differently throws PdfSyntaxError. Not recursive, so nesting takes no stack.
class PdfLexer {
 public:
  enum class Kind {
    kInteger,
    kReal,
    kName,
    kString,
    kHexString,
    kArray,
    kDictionary,
    kReference,
    kTrue,
    kFalse,
    kNull
  };
  struct Value {
    Kind kind = Kind::kNull;
    std::size_t begin = 0;
    std::size_t end = 0;
  };

  explicit PdfLexer(std::string_view text, std::size_t position = 0) : text_(text), position_(position) {}

  std::size_t Position() const { return position_; }
  std::string_view Text(const Value& value) const { return text_.substr(value.begin, value.end - value.begin); }

  // White space and comments.
  void SkipSpace();
  // Whether `word` is next, followed by a delimiter; moves after it if so.
  bool Accept(std::string_view word);
  void Expect(std::string_view word);
  // The next object, whole.
  Value ReadValue();
  // Whether the keys of all dictionaries that were read were names, each with a value. Readers differ about others.
  bool KeysAreNames() const { return keysAreNames_; }
  // A dictionary: calls visit(key, value) for each entry.
  template <typename Visit>
  void ReadEntries(Visit visit) {
    if (!AcceptBrackets("<<")) throw PdfSyntaxError();
    for (SkipSpace(); !AcceptBrackets(">>"); SkipSpace()) {
      const Value key = ReadValue();
      if (key.kind != Kind::kName) throw PdfSyntaxError();
      visit(key, ReadValue());
    }
  }
  // A number without sign.
  std::uint64_t ReadUnsigned();
  // "N G obj".
  ObjectId ReadObjectHeader();
  // The object whose header is at the start of the text or after white space there; no value without one.
  static std::optional<ObjectId> FindObjectHeader(std::string_view text);
  // "N G R" and nothing else.
  static ObjectId ToReference(std::string_view text);
  // The same; no value for anything else.
  static std::optional<ObjectId> FindReference(std::string_view text);
  // Digits and nothing else.
  static std::uint64_t ToUnsigned(std::string_view text);
  // "[ 1 2 3 ]"
  static std::vector<std::uint64_t> ToUnsignedArray(std::string_view text);
  // The bytes of a literal or hexadecimal string object.
  static std::string ToBytes(std::string_view text);

  static bool IsDigit(char c) { return c >= '0' && c <= '9'; }
  static bool IsSpace(char c) { return ClassOf(c) == Class::kSpace; }
  static bool IsDelimiter(char c) { return ClassOf(c) != Class::kRegular; }

 private:
  // ISO 32000-1, 7.2.2.
  enum class Class : unsigned char { kRegular, kSpace, kDelimiter };
  static constexpr std::array<Class, 256> MakeClasses() {
    std::array<Class, 256> classes = {};
    for (const char c : {' ', '\n', '\r', '\t', '\f', '\0'}) classes[static_cast<unsigned char>(c)] = Class::kSpace;
    for (const char c : {'(', ')', '<', '>', '[', ']', '{', '}', '/', '%'}) {
      classes[static_cast<unsigned char>(c)] = Class::kDelimiter;
    }
    return classes;
  }
  static Class ClassOf(char c) {
    static constexpr std::array<Class, 256> kClasses = MakeClasses();
    return kClasses[static_cast<unsigned char>(c)];
  }

  char Peek() const;
  bool AcceptBrackets(std::string_view brackets);
  bool AtEnd() const { return position_ >= text_.size(); }
  Value ReadSimple();
  void SkipLiteralString();
  void SkipHexString();
  void SkipContainer();
  std::string_view ReadRegular();
  bool AcceptReferenceTail();

  std::string_view text_;
  std::size_t position_;
  bool keysAreNames_ = true;
};

}  // namespace engine
