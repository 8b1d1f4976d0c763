// SPDX-License-Identifier: Apache-2.0
#include "engine/syntax/MapStrings.h"

#include <vector>

#include "engine/syntax/DictionaryText.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

using Kind = PdfLexer::Kind;

bool IsSignature(std::string_view dictionary) {
  const DictionaryText signature{std::string(dictionary)};
  return signature.Find("/Type") == "/Sig" && signature.Find("/ByteRange");
}

class StringMapper {
 public:
  StringMapper(std::string_view text, const std::function<std::string(const std::string&)>& map)
      : text_(text), map_(map), mayBeSignature_(text.find("/ByteRange") != std::string_view::npos) {}

  std::string Run() {
    // The last token, too, is to end at a delimiter.
    const std::string padded = std::string(text_) + ' ';
    Map(padded, 0, padded.size() - 1, false);
    return std::move(result_);
  }

 private:
  // The objects between two positions. The strings of a signature's /Contents stay.
  void Map(std::string_view text, std::size_t begin, std::size_t end, bool signature) {
    PdfLexer lexer(text, begin);
    std::string_view last;
    std::size_t copied = begin;
    const auto copyTo = [&](std::size_t position) {
      result_.append(text, copied, position - copied);
      copied = position;
    };
    for (lexer.SkipSpace(); lexer.Position() < end; lexer.SkipSpace()) {
      const PdfLexer::Value value = lexer.ReadValue();
      const std::string_view token = lexer.Text(value);
      if (value.kind == Kind::kArray || value.kind == Kind::kDictionary) {
        const std::size_t bracket = value.kind == Kind::kArray ? 1 : 2;
        copyTo(value.begin + bracket);
        Map(text, value.begin + bracket, value.end - bracket,
            value.kind == Kind::kDictionary && mayBeSignature_ && IsSignature(token));
        copied = value.end - bracket;
      } else if ((value.kind == Kind::kString || value.kind == Kind::kHexString) &&
                 !(signature && last == "/Contents")) {
        copyTo(value.begin);
        result_ += map_(PdfLexer::ToBytes(token));
        copied = value.end;
      }
      last = token;
    }
    copyTo(end);
  }

  const std::string_view text_;
  const std::function<std::string(const std::string&)>& map_;
  const bool mayBeSignature_;
  std::string result_;
};

}  // namespace

std::string MapStrings(std::string_view text, const std::function<std::string(const std::string& bytes)>& map) {
  return StringMapper(text, map).Run();
}

}  // namespace engine
