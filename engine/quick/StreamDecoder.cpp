// SPDX-License-Identifier: Apache-2.0
#include "engine/quick/StreamDecoder.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "engine/base/InputFile.h"
#include "engine/syntax/PdfSyntaxError.h"
#include "engine/syntax/RawDictionary.h"

namespace engine {

namespace {

constexpr std::size_t kInputBlock = 16 * 1024;
constexpr std::size_t kOutputBlock = 8 * 1024;  // on the stack, which may be small
// Enough for five million cross-reference entries; a deflate bomb stops there.
constexpr std::size_t kMostDecoded = 32 * 1024 * 1024;

int Paeth(int left, int up, int upLeft) {
  const int estimate = left + up - upLeft;
  const int byLeft = std::abs(estimate - left);
  const int byUp = std::abs(estimate - up);
  const int byUpLeft = std::abs(estimate - upLeft);
  if (byLeft <= byUp && byLeft <= byUpLeft) return left;
  return byUp <= byUpLeft ? up : upLeft;
}

// The one element of an array, or a value that is not an array; empty for an empty array.
std::string_view OnlyElement(std::string_view text) {
  if (text.front() != '[') return text;
  PdfLexer lexer(text, 1);
  lexer.SkipSpace();
  if (text.substr(lexer.Position()) == "]") return {};
  const PdfLexer::Value element = lexer.ReadValue();
  lexer.SkipSpace();
  if (text.substr(lexer.Position()) != "]") throw PdfSyntaxError();
  return lexer.Text(element);
}

std::uint64_t UnsignedOr(const RawDictionary& dictionary, std::string_view key, std::uint64_t standard) {
  return dictionary.Has(key) ? dictionary.Unsigned(key) : standard;
}

// Bytes in a row of the PNG predictor, 0 for no predictor (ISO 32000-1, table 8).
std::size_t ReadColumns(std::string_view text) {
  constexpr std::uint64_t kMostColumns = 1 << 16;
  const RawDictionary parameters(text);
  for (const RawDictionary::Entry& entry : parameters.Entries()) {
    if (entry.value.kind != PdfLexer::Kind::kInteger) throw PdfSyntaxError();
  }
  if (UnsignedOr(parameters, "/Predictor", 1) == 1) return 0;
  const std::uint64_t predictor = parameters.Unsigned("/Predictor");
  const std::uint64_t columns = UnsignedOr(parameters, "/Columns", 1);
  if (predictor < 10 || predictor > 15 || columns == 0 || columns > kMostColumns ||
      UnsignedOr(parameters, "/Colors", 1) != 1 || UnsignedOr(parameters, "/BitsPerComponent", 8) != 8) {
    throw PdfSyntaxError();
  }
  return static_cast<std::size_t>(columns);
}

}  // namespace

StreamDecoder::Coding StreamDecoder::ReadCoding(const RawDictionary& dictionary) {
  Coding coding;
  for (const char* elsewhere : {"/F", "/FFilter", "/FDecodeParms", "/DP"}) {
    if (dictionary.Has(elsewhere)) throw PdfSyntaxError();
  }
  const std::string_view filter = dictionary.Has("/Filter") ? OnlyElement(dictionary.Text("/Filter")) : "";
  if (!filter.empty() && filter != "/FlateDecode") throw PdfSyntaxError();
  coding.flate = !filter.empty();
  const std::string_view parameters =
      dictionary.Has("/DecodeParms") ? OnlyElement(dictionary.Text("/DecodeParms")) : "";
  if (!parameters.empty() && parameters != "null") {
    if (!coding.flate) throw PdfSyntaxError();
    coding.columns = ReadColumns(parameters);
  }
  return coding;
}

StreamDecoder::StreamDecoder(const InputFile& file, std::uint64_t offset, std::uint64_t length, Coding coding)
    : file_(file), offset_(offset), end_(offset + length), coding_(coding) {
  if (coding_.flate && inflateInit(&inflater_) != Z_OK) throw std::bad_alloc();
}

StreamDecoder::~StreamDecoder() {
  if (coding_.flate) inflateEnd(&inflater_);
}

std::string_view StreamDecoder::Decode(std::size_t count) {
  if (count > kMostDecoded) throw PdfSyntaxError();
  while (decoded_.size() < count && DecodeBlock()) {
  }
  return decoded_;
}

// Replaces input_ by the next bytes of the file.
std::size_t StreamDecoder::ReadBlock() {
  input_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kInputBlock, end_ - offset_)));
  input_.resize(file_.ReadAt(offset_, input_.data(), input_.size()));
  offset_ += input_.size();
  return input_.size();
}

// Returns whether there may be more.
bool StreamDecoder::DecodeBlock() {
  if (finished_) return false;
  if (!coding_.flate) {
    finished_ = ReadBlock() == 0;
    decoded_ += input_;
    return !finished_;
  }
  if (inflater_.avail_in == 0) {
    if (ReadBlock() == 0) throw PdfSyntaxError();
    inflater_.next_in = reinterpret_cast<Bytef*>(input_.data());
    inflater_.avail_in = static_cast<uInt>(input_.size());
  }
  unsigned char output[kOutputBlock];
  inflater_.next_out = output;
  inflater_.avail_out = sizeof output;
  const int result = inflate(&inflater_, Z_NO_FLUSH);
  if (result != Z_OK && result != Z_STREAM_END) throw PdfSyntaxError();
  finished_ = result == Z_STREAM_END;
  Append(output, sizeof output - inflater_.avail_out);
  return !finished_;
}

void StreamDecoder::Append(const unsigned char* bytes, std::size_t count) {
  if (coding_.columns == 0) {
    decoded_.append(reinterpret_cast<const char*>(bytes), count);
    return;
  }
  const std::size_t rowSize = coding_.columns + 1;
  filtered_.append(reinterpret_cast<const char*>(bytes), count);
  std::size_t row = 0;
  for (; row + rowSize <= filtered_.size(); row += rowSize) {
    AppendRow(reinterpret_cast<const unsigned char*>(filtered_.data()) + row);
  }
  filtered_.erase(0, row);
}

// ISO/IEC 15948, clause 9: a byte with the filter's number, then the differences.
void StreamDecoder::AppendRow(const unsigned char* row) {
  const std::size_t columns = coding_.columns;
  const bool first = decoded_.empty();
  decoded_.append(reinterpret_cast<const char*>(row) + 1, columns);
  auto* current = reinterpret_cast<unsigned char*>(decoded_.data()) + decoded_.size() - columns;
  const unsigned char* above = first ? nullptr : current - columns;
  const auto up = [above](std::size_t i) -> int { return above != nullptr ? above[i] : 0; };
  const auto left = [current](std::size_t i) -> int { return i > 0 ? current[i - 1] : 0; };
  const auto add = [current](std::size_t i, int value) { current[i] = static_cast<unsigned char>(current[i] + value); };
  switch (row[0]) {
    case 0:
      return;
    case 1:
      for (std::size_t i = 0; i < columns; ++i) add(i, left(i));
      return;
    case 2:
      for (std::size_t i = 0; i < columns; ++i) add(i, up(i));
      return;
    case 3:
      for (std::size_t i = 0; i < columns; ++i) add(i, (left(i) + up(i)) / 2);
      return;
    case 4:
      for (std::size_t i = 0; i < columns; ++i) add(i, Paeth(left(i), up(i), i > 0 ? up(i - 1) : 0));
      return;
    default:
      throw PdfSyntaxError();
  }
}

}  // namespace engine
