// SPDX-License-Identifier: Apache-2.0
#include "engine/repair/FileScan.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>

#include "engine/repair/FileWindow.h"
#include "engine/syntax/BackwardText.h"
#include "engine/syntax/PdfLexer.h"
#include "engine/syntax/PdfSyntaxError.h"

namespace engine {

namespace {

using Kind = FileScan::Kind;

constexpr std::uint64_t kHighestNumber = 8388607;  // ISO 32000-1, table C.1
constexpr std::uint64_t kHighestGeneration = 65534;
constexpr std::size_t kFirstWindow = 1024;
constexpr std::size_t kLargestObject = 64 * 1024 * 1024;
// How much of a damaged object is looked at.
constexpr std::size_t kDamagedObject = 16 * 1024;
constexpr std::size_t kMostTrailers = 256;
constexpr std::size_t kLongestTrailer = 64 * 1024;
constexpr std::size_t kMostLengths = 16;
constexpr std::string_view kStreamEnd = "endstream";

bool StartsWith(std::string_view text, std::string_view word) {
  return text.compare(0, word.size(), word) == 0;
}

std::size_t SpacesAt(std::string_view text, std::size_t position) {
  std::size_t end = position;
  while (end < text.size() && PdfLexer::IsSpace(text[end])) ++end;
  return end - position;
}

std::optional<std::uint64_t> ToNumber(std::string_view text) {
  try {
    return PdfLexer::ToUnsigned(text);
  } catch (const PdfSyntaxError&) {
    return std::nullopt;
  }
}

bool FollowsAt(FileWindow& window, std::uint64_t offset, std::string_view word) {
  const std::string_view text = window.At(offset, 64);
  return StartsWith(text.substr(SpacesAt(text, 0)), word);
}

// Whether nothing but spaces is on the line before the end of the text.
bool EndsAtLineStart(std::string_view text) {
  while (!text.empty() && (text.back() == ' ' || text.back() == '\t')) text.remove_suffix(1);
  return text.empty() || text.back() == '\n' || text.back() == '\r';
}

// The object whose header ends with the "obj" at `word`.
std::optional<FileScan::Object> HeaderAt(FileWindow& window, std::uint64_t word) {
  constexpr std::uint64_t kLongestHeader = 4000;  // with any number of spaces in it
  const std::uint64_t begin = word - std::min(word, kLongestHeader);
  const auto length = static_cast<std::size_t>(word - begin);
  const std::string_view text = window.At(begin, length + 4);
  if (text.size() < length + 3) return std::nullopt;
  if (text.size() > length + 3 && !PdfLexer::IsDelimiter(text[length + 3])) return std::nullopt;
  std::string_view head = text.substr(0, length);
  if (!TakeSpaces(head)) return std::nullopt;
  const auto generation = ToNumber(TakeDigits(head));
  if (!generation || !TakeSpaces(head)) return std::nullopt;
  const auto number = ToNumber(TakeDigits(head));
  if (!number || *number == 0 || *number > kHighestNumber || *generation > kHighestGeneration) return std::nullopt;
  // In "endobj1 0 obj" a transfer removed a line end; that is no junk.
  constexpr std::string_view kEndOfOther = "endobj";
  const bool other = head.size() >= kEndOfOther.size() && head.substr(head.size() - kEndOfOther.size()) == kEndOfOther;
  FileScan::Object object;
  object.afterJunk = !head.empty() && !PdfLexer::IsDelimiter(head.back()) && !other;
  object.inside = !EndsAtLineStart(head);
  object.id = {static_cast<std::uint32_t>(*number), static_cast<std::uint32_t>(*generation)};
  object.offset = begin + head.size();
  return object;
}

// Throws PdfSyntaxError.
std::string StrictEntry(std::string_view dictionary, std::string_view key) {
  if (!StartsWith(dictionary, "<<")) throw PdfSyntaxError();
  PdfLexer lexer(dictionary, 2);
  std::string found;
  for (;;) {
    lexer.SkipSpace();
    if (StartsWith(dictionary.substr(lexer.Position()), ">>")) return found;
    const PdfLexer::Value name = lexer.ReadValue();
    if (name.kind != PdfLexer::Kind::kName) throw PdfSyntaxError();
    const PdfLexer::Value value = lexer.ReadValue();
    if (lexer.Text(name) == key) found = lexer.Text(value);
  }
}

// Where the brackets of a damaged value close; 0 where they do not. Some readers take keywords before that for
// elements.
std::size_t ClosingOf(std::string_view text) {
  std::size_t depth = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::string_view rest = text.substr(i);
    if (rest.front() == '(' || rest.front() == '%') {
      PdfLexer lexer(rest);
      try {
        i += rest.front() == '%' ? (lexer.SkipSpace(), lexer.Position()) : lexer.ReadValue().end;
      } catch (const PdfSyntaxError&) {
        return 0;
      }
      --i;
    } else if (rest.front() == '[' || StartsWith(rest, "<<")) {
      ++depth;
      i += rest.front() == '<' ? 1 : 0;
    } else if (rest.front() == ']' || StartsWith(rest, ">>")) {
      i += rest.front() == '>' ? 1 : 0;
      if (depth <= 1) return depth == 0 ? 0 : i + 1;
      --depth;
    }
  }
  return 0;
}

class Scanner {
 public:
  using Lengths = std::map<std::uint32_t, std::vector<std::uint64_t>>;

  // `lengths`: numbers that objects consist of, from a scan before this one.
  Scanner(const InputFile& file, const Lengths& lengths)
      : window_(file),
        objects_(file, "obj"),
        trailers_(file, "trailer"),
        headers_(file, "%PDF-"),
        streams_(file, "stream"),
        streamEnds_(file, kStreamEnd),
        objectEnds_(file, "endobj"),
        startXrefs_(file, "startxref"),
        lengths_(lengths) {
    lexingLeft_ = 4 * file.Size() + (1 << 20);
  }

  void Run(std::uint64_t position) {
    while (position < window_.Size()) {
      const std::uint64_t object = objects_.From(position);
      const std::uint64_t outside = std::max(position, dataEnd_);
      const std::uint64_t trailer = trailers_.From(outside);
      const std::uint64_t next = std::min(object, trailer);
      NoteHeader(position, next);
      if (next == window_.Size()) return;
      position = trailer < object ? ReadTrailer(trailer + 7) : ReadObject(object);
    }
  }

  FileScan result;
  Lengths numbers;  // the objects that are one number each
  // Whether a stream had its length in another object and that was not known.
  bool lengthsMissing = false;

 private:
  struct Extent {
    std::uint64_t end = 0;
    bool whole = false;
    bool cutOff = false;  // the file ends inside it
    bool badKeys = false;
  };

  // Reads the value at `offset`; the text of damaged ones is cut short at a fixed length.
  std::string_view ReadValue(std::uint64_t offset, Extent& extent) {
    for (std::size_t size = kFirstWindow;; size *= 8) {
      const std::string_view text = window_.At(offset, size).substr(0, size);
      try {
        PdfLexer lexer(text);
        const PdfLexer::Value value = lexer.ReadValue();
        extent = {offset + value.end, true, false, !lexer.KeysAreNames()};
        return lexer.Text(value);
      } catch (const PdfSyntaxError& error) {
        extent.cutOff = error.truncated() && text.size() < size;
        if (error.truncated() && text.size() == size && size < kLargestObject && size <= lexingLeft_) {
          lexingLeft_ -= size;
          continue;
        }
      }
      result.damage = offset;
      extent.end = offset;
      extent.whole = false;
      return window_.At(offset, kDamagedObject).substr(0, kDamagedObject);
    }
  }

  // The first header between two objects.
  void NoteHeader(std::uint64_t begin, std::uint64_t end) {
    const std::uint64_t header = headers_.From(begin);
    if (header < end && result.headers.size() < kMostTrailers) result.headers.push_back(header);
  }

  std::uint64_t ReadTrailer(std::uint64_t offset) {
    Extent extent;
    std::string_view text = ReadValue(offset, extent);
    if (extent.whole && !StartsWith(text, "<<")) return offset;
    if (!extent.whole) {
      text = text.substr(0, std::min(text.find("obj"), text.find("startxref")));
      insideUntil_ = std::max(insideUntil_, startXrefs_.From(offset));
    }
    AddTrailer(offset, text);
    return extent.end;
  }

  void AddTrailer(std::uint64_t offset, std::string_view text) {
    if (text.find("/Root") == std::string_view::npos && text.find("/Encrypt") == std::string_view::npos) return;
    std::vector<FileScan::Trailer>& trailers = result.trailers;
    // Of very many the newest and some of the oldest are enough.
    if (trailers.size() == kMostTrailers) trailers.erase(trailers.begin() + kMostTrailers / 8);
    trailers.push_back({offset, std::string(text.substr(0, kLongestTrailer))});
  }

  // Returns where to go on.
  std::uint64_t ReadObject(std::uint64_t word) {
    const std::uint64_t body = word + 3;
    std::optional<FileScan::Object> object = HeaderAt(window_, word);
    if (!object) return body;
    Extent extent;
    const std::optional<std::uint64_t> damage = result.damage;
    std::string text(ReadValue(body, extent));
    if (object->afterJunk && !extent.whole) {
      result.damage = damage;
      return body;
    }
    std::uint64_t end = extent.end;
    object->damaged = !extent.whole;
    object->badKeys = extent.badKeys;
    std::uint64_t closing = 0;
    std::optional<std::uint64_t> data;
    if (extent.whole) {
      if (StartsWith(text, "<<")) data = StreamDataAfter(end);
      NoteNumber(object->id.number, text);
    } else {
      closing = body + ClosingOf(text);
      const std::uint64_t next = std::min(objects_.From(body), objectEnds_.From(body));
      text.resize(static_cast<std::size_t>(std::min<std::uint64_t>(text.size(), next - body)));
      const std::uint64_t stream = streams_.From(body);
      if (stream < next && stream != streamEnds_.From(body) + 3) {
        text.resize(static_cast<std::size_t>(std::min<std::uint64_t>(text.size(), stream - body)));
        data = StreamDataAfter(stream);
      }
      object->cutOff = extent.cutOff && next == window_.Size() && !data;
    }
    object->kind = KindOf(text, data.has_value());
    if (object->kind == Kind::kXrefStream || IsLikeTrailer(text)) AddTrailer(object->offset, text);
    if (IsEncryption(text)) result.encryption = object->id;
    if (data) {
      end = AddStream(*object, *data, text);
    }
    object->inside =
        object->inside || object->offset < insideUntil_ || (!result.objects.empty() && result.objects.back().damaged);
    insideUntil_ = std::max(insideUntil_, closing);
    if (data && (object->damaged || end < object->dataEnd)) {
      insideUntil_ = std::max(insideUntil_, streamEnds_.From(end));
    }
    result.objects.push_back(*object);
    return std::max(end, body);
  }

  void NoteNumber(std::uint32_t object, std::string_view text) {
    if (text.empty() || !PdfLexer::IsDigit(text.front())) return;
    const auto number = ToNumber(text);
    std::vector<std::uint64_t>& values = numbers[object];
    if (number && values.size() < kMostLengths) values.push_back(*number);
  }

  static Kind KindOf(const std::string& text, bool stream) {
    if (text.find("/Type") == std::string::npos) return stream ? Kind::kStream : Kind::kPlain;
    const std::string type = LenientEntry(text, "/Type");
    if (!stream) return type == "/Catalog" ? Kind::kCatalog : Kind::kPlain;
    if (type == "/ObjStm") return Kind::kObjectStream;
    // With two types it is another object, too, the end of which is missing.
    return type == "/XRef" && text.find("/Type") == text.rfind("/Type") ? Kind::kXrefStream : Kind::kStream;
  }

  // A cross-reference stream's dictionary, however damaged.
  static bool IsLikeTrailer(const std::string& text) {
    return text.find("/Root") != std::string::npos &&
           (text.find("/W") != std::string::npos || text.find("/Encrypt") != std::string::npos);
  }

  // A password security handler's dictionary (ISO 32000-1, table 21).
  static bool IsEncryption(const std::string& text) {
    return text.find("/Standard") != std::string::npos && text.find("/O") != std::string::npos &&
           text.find("/U") != std::string::npos && LenientEntry(text, "/Filter") == "/Standard";
  }

  // Where a stream's data begin if its keyword is what follows `offset` after space (ISO 32000-1, 7.3.8.1).
  std::optional<std::uint64_t> StreamDataAfter(std::uint64_t offset) {
    const std::string_view text = window_.At(offset, kFirstWindow);
    PdfLexer lexer(text);
    lexer.SkipSpace();
    std::size_t end = lexer.Position();
    if (!StartsWith(text.substr(end), "stream")) return std::nullopt;
    end += 6;
    if (end < text.size() && !PdfLexer::IsDelimiter(text[end])) return std::nullopt;
    while (end < text.size() && text[end] == ' ') ++end;
    if (StartsWith(text.substr(end), "\r\n")) return offset + end + 2;
    if (end < text.size() && (text[end] == '\n' || text[end] == '\r')) return offset + end + 1;
    return offset + end;
  }

  // Returns where to go on: at the start of the data when /Length does not lead to their end, as some readers find
  // objects in them then.
  std::uint64_t AddStream(FileScan::Object& object, std::uint64_t data, const std::string& dictionary) {
    const std::optional<std::uint64_t> end = EndByLength(data, dictionary);
    object.data = data;
    object.wrongLength = !end;
    object.dataEnd = dataEnd_ = end ? *end : EndByKeyword(data);
    object.cutOff = object.dataEnd == window_.Size();
    object.damaged = object.damaged || !StreamEndFollows(window_, object.dataEnd) ||
                     (!end && objectEnds_.From(data) < object.dataEnd);
    if (object.damaged) result.damage = data;
    return end.value_or(data);
  }

  std::optional<std::uint64_t> EndByLength(std::uint64_t data, const std::string& dictionary) {
    const std::string length = LenientEntry(dictionary, "/Length");
    const auto fits = [&](std::uint64_t bytes) {
      if (bytes > window_.Size() - data) return false;
      const std::uint64_t end = data + bytes;
      if (StreamEndFollows(window_, end)) return true;
      // Readers do not trust a length that leads to "endobj" only, and look for the first keyword.
      return FollowsAt(window_, end, "endobj") && streamEnds_.From(data) >= end;
    };
    if (const auto count = ToNumber(length)) {
      if (fits(*count)) return data + *count;
    } else if (const auto reference = PdfLexer::FindReference(length)) {
      const auto known = lengths_.find(reference->number);
      lengthsMissing = lengthsMissing || known == lengths_.end();
      if (known != lengths_.end()) {
        for (const std::uint64_t size : known->second) {
          if (fits(size)) return data + size;
        }
      }
    }
    return std::nullopt;
  }

  // Most readers look for the stream's keyword only, so that the data may be those of several objects.
  std::uint64_t EndByKeyword(std::uint64_t data) {
    const std::uint64_t end = streamEnds_.From(data);
    return end < window_.Size() ? end : objectEnds_.From(data);
  }

  FileWindow window_;
  WordSearch objects_;
  WordSearch trailers_;
  WordSearch headers_;
  WordSearch streams_;
  WordSearch streamEnds_;
  WordSearch objectEnds_;
  WordSearch startXrefs_;
  const Lengths& lengths_;
  std::uint64_t insideUntil_ = 0;  // the end of a stream or trailer that is open
  std::uint64_t dataEnd_ = 0;      // the end of the last stream's data
  std::uint64_t lexingLeft_;       // bytes that values longer than the first window may still cost
};

std::vector<std::uint64_t> FindEnds(const InputFile& file) {
  constexpr std::size_t kMostEnds = 8;
  constexpr std::string_view kWord = "startxref";
  std::vector<std::uint64_t> ends;
  FileWindow window(file, kFirstWindow);
  WordSearch search(file, kWord);
  for (std::uint64_t at = search.From(0); at < file.Size(); at = search.From(at + 1)) {
    const std::string_view text = window.At(at, kFirstWindow);
    const std::size_t digits = kWord.size() + SpacesAt(text, kWord.size());
    const std::size_t end = text.find_first_not_of("0123456789", digits);
    if (end == digits || end == std::string_view::npos) continue;
    if (ends.size() == kMostEnds) ends.erase(ends.begin());
    ends.push_back(at + end);
  }
  return ends;
}

}  // namespace

FileScan FileScan::Of(const InputFile& file, std::uint64_t start) {
  const Scanner::Lengths none;
  Scanner first(file, none);
  first.Run(start);
  if (first.lengthsMissing) {
    Scanner second(file, first.numbers);
    second.Run(start);
    first.result = std::move(second.result);
  }
  first.result.ends = FindEnds(file);
  return std::move(first.result);
}

std::string LenientEntry(const std::string& dictionary, const std::string& key) {
  try {
    return StrictEntry(dictionary, key);
  } catch (const PdfSyntaxError&) {
  }
  for (std::size_t at = dictionary.find(key); at != std::string::npos; at = dictionary.find(key, at + 1)) {
    const std::size_t end = at + key.size();
    if (end < dictionary.size() && !PdfLexer::IsDelimiter(dictionary[end])) continue;
    try {
      PdfLexer lexer(dictionary, end);
      return std::string(lexer.Text(lexer.ReadValue()));
    } catch (const PdfSyntaxError&) {
    }
  }
  return {};
}

bool StreamEndFollows(FileWindow& window, std::uint64_t offset) {
  return FollowsAt(window, offset, kStreamEnd);
}

std::vector<FileScan::Object> NewestObjects(const std::vector<FileScan::Object>& objects) {
  std::vector<FileScan::Object> sorted = objects;
  std::stable_sort(sorted.begin(), sorted.end(), [](const FileScan::Object& a, const FileScan::Object& b) {
    if (a.id.number != b.id.number) return a.id.number < b.id.number;
    if (a.afterJunk != b.afterJunk) return a.afterJunk;
    return a.cutOff != b.cutOff ? a.cutOff : a.id.generation < b.id.generation;
  });
  std::vector<FileScan::Object> newest;
  for (const FileScan::Object& object : sorted) {
    if (!newest.empty() && newest.back().id.number == object.id.number) newest.pop_back();
    newest.push_back(object);
  }
  return newest;
}

}  // namespace engine
