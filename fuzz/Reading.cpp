// SPDX-License-Identifier: Apache-2.0
#include "fuzz/Reading.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <sstream>
#include <stdexcept>

namespace {

template <typename Number>
void Put(std::string& bytes, Number number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

void PutText(std::string& bytes, const std::string& text) {
  Put(bytes, text.size());
  bytes += text;
}

class Parts {
 public:
  explicit Parts(const std::string& bytes) : bytes_(bytes) {}
  template <typename Number>
  Number Next() {
    Number number;
    std::memcpy(&number, Take(sizeof number), sizeof number);
    return number;
  }
  std::string NextText() {
    const auto size = Next<std::size_t>();
    return {Take(size), size};
  }

 private:
  const char* Take(std::size_t size) {
    if (size > bytes_.size() - position_) throw std::runtime_error("the reader stopped in between");
    const char* const start = bytes_.data() + position_;
    position_ += size;
    return start;
  }
  const std::string& bytes_;
  std::size_t position_ = 0;
};

std::vector<std::string> SortedWords(const std::string& text) {
  std::istringstream stream(text);
  std::vector<std::string> words;
  for (std::string word; stream >> word;) words.push_back(word);
  std::sort(words.begin(), words.end());
  return words;
}

bool StartsWith(const std::string& text, const std::string& start) {
  return text.compare(0, start.size(), start) == 0;
}

std::string Quoted(const std::string& text) {
  std::string quoted = "\"";
  for (const char c : text.substr(0, 60)) quoted += c < 0x20 || c > 0x7E ? '.' : c;
  return quoted + (text.size() > 60 ? "...\"" : "\"");
}

std::vector<std::string> WordsMissing(const std::string& before, const std::string& after) {
  const auto had = SortedWords(before);
  const auto has = SortedWords(after);
  std::vector<std::string> missing;
  std::set_difference(had.begin(), had.end(), has.begin(), has.end(), std::back_inserter(missing));
  // A word with U+FFFD was not read.
  const auto unread = [](const std::string& word) { return word.find("\xEF\xBF\xBD") != std::string::npos; };
  missing.erase(std::remove_if(missing.begin(), missing.end(), unread), missing.end());
  return missing;
}

std::string WordsOfBoth(const std::string& a, const std::string& b) {
  const auto one = SortedWords(a);
  const auto other = SortedWords(b);
  std::vector<std::string> both;
  std::set_intersection(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(both));
  std::string text;
  for (const std::string& word : both) text += word + ' ';
  return text;
}

// Whether `after` has all letters of `before` in the same order, whatever the spaces.
bool HasLettersOf(const std::string& before, const std::string& after) {
  std::size_t at = 0;
  return std::all_of(before.begin(), before.end(), [&](char letter) {
    if (letter == ' ') return true;
    at = after.find(letter, at);
    return at++ != std::string::npos;
  });
}

// The letters in the order of their codes. U+FFFD is none.
std::string SortedLetters(std::string text) {
  const std::string unread = "\xEF\xBF\xBD";
  for (std::size_t at = text.find(unread); at != std::string::npos; at = text.find(unread, at)) text.erase(at, 3);
  text.erase(std::remove(text.begin(), text.end(), ' '), text.end());
  std::sort(text.begin(), text.end());
  return text;
}

// Whether `after` has all letters of `before` in any order.
bool HasLettersInAnyOrder(const std::string& before, const std::string& after) {
  const std::string had = SortedLetters(before);
  const std::string has = SortedLetters(after);
  return std::includes(has.begin(), has.end(), had.begin(), had.end());
}

std::string LettersOfBoth(const std::string& a, const std::string& b) {
  const std::string one = SortedLetters(a);
  const std::string other = SortedLetters(b);
  std::string both;
  std::set_intersection(one.begin(), one.end(), other.begin(), other.end(), std::back_inserter(both));
  return both;
}

std::string LostText(std::size_t page, const std::string& before, const std::string& after) {
  std::string missing;
  for (const std::string& word : WordsMissing(before, after)) missing += missing.empty() ? word : ' ' + word;
  return "text lost: page " + std::to_string(page + 1) + " had " + Quoted(before) + " and has " + Quoted(after) +
         ", which misses " + Quoted(missing);
}

// Whether both show the same words on as many pages, and as many objects.
bool ReadsLike(const Reading& after, const Reading& undamaged) {
  return after.pageCount == undamaged.pageCount && after.objects >= undamaged.objects &&
         std::equal(after.pages.begin(), after.pages.end(), undamaged.pages.begin(), undamaged.pages.end(),
                    [](const PageReading& a, const PageReading& b) { return Words(a.text) == Words(b.text); });
}

}  // namespace

std::string Reading::ToBytes() const {
  std::string bytes;
  Put(bytes, opened);
  Put(bytes, objects);
  Put(bytes, pageCount);
  Put(bytes, notFound);
  Put(bytes, doubtfulStrings);
  PutText(bytes, baseUrl);
  Put(bytes, pages.size());
  for (const PageReading& page : pages) {
    PutText(bytes, page.text);
    PutText(bytes, page.content);
    Put(bytes, page.fonts);
  }
  return bytes;
}

Reading Reading::FromBytes(const std::string& bytes) {
  Parts parts(bytes);
  Reading reading;
  reading.opened = parts.Next<bool>();
  reading.objects = parts.Next<std::uint64_t>();
  reading.pageCount = parts.Next<std::uint64_t>();
  reading.notFound = parts.Next<std::uint64_t>();
  reading.doubtfulStrings = parts.Next<bool>();
  reading.baseUrl = parts.NextText();
  const auto count = parts.Next<std::size_t>();
  for (std::size_t page = 0; page < count; ++page) {
    std::string text = parts.NextText();
    std::string content = parts.NextText();
    reading.pages.push_back({std::move(text), std::move(content), parts.Next<std::size_t>()});
  }
  return reading;
}

bool Reading::HasText() const {
  return std::any_of(pages.begin(), pages.end(), [](const PageReading& page) { return !page.text.empty(); });
}

bool operator==(const Reading& a, const Reading& b) {
  return a.ToBytes() == b.ToBytes();
}

bool SamePages(const Reading& a, const Reading& b) {
  return a.pageCount == b.pageCount &&
         std::equal(a.pages.begin(), a.pages.end(), b.pages.begin(), b.pages.end(),
                    [](const PageReading& x, const PageReading& y) { return x.content == y.content; });
}

bool HoldsPages(const Reading& whole, const Reading& part) {
  return whole.pageCount == part.pageCount &&
         std::equal(whole.pages.begin(), whole.pages.end(), part.pages.begin(), part.pages.end(),
                    [](const PageReading& has, const PageReading& had) {
                      return has.content == had.content ||
                             (!had.content.empty() && StartsWith(has.content, had.content));
                    });
}

bool SameLetters(const Reading& a, const Reading& b) {
  return a.pageCount == b.pageCount && std::equal(a.pages.begin(), a.pages.end(), b.pages.begin(), b.pages.end(),
                                                  [](const PageReading& x, const PageReading& y) {
                                                    return SortedLetters(x.text) == SortedLetters(y.text);
                                                  });
}

std::vector<std::string> Losses(const Reading& before, const Reading& after, bool& more) {
  if (!before.HasPages()) return {};
  if (!after.opened) return {"does not open any more"};
  std::vector<std::string> losses;
  if (after.pageCount < before.pageCount) {
    losses.push_back("pages lost: " + std::to_string(before.pageCount) + " became " + std::to_string(after.pageCount));
  }
  const std::size_t count = before.pages.size();
  // Pages may have come in between, but the order stays.
  std::size_t next = 0;
  for (std::size_t page = 0; page < count && losses.empty(); ++page) {
    const std::string& text = before.pages[page].text;
    if (text.empty()) continue;
    const auto equal = [&](const PageReading& p) { return p.text == text; };
    // A content that was cut off in a word goes on. Of the same content a font that was found shows more letters, which
    // may join words.
    const auto holds = [&](const PageReading& p) {
      return WordsMissing(text, p.text).empty() || StartsWith(p.text, text) ||
             (p.content == before.pages[page].content && HasLettersOf(text, p.text));
    };
    const auto start = after.pages.begin() + static_cast<std::ptrdiff_t>(next);
    auto found = std::find_if(start, after.pages.end(), equal);
    if (found == after.pages.end()) {
      found = std::find_if(start, after.pages.end(), holds);
      more = more || found != after.pages.end();
    }
    if (found == after.pages.end()) {
      losses.push_back(LostText(page, text, page < after.pages.size() ? after.pages[page].text : std::string()));
    } else {
      next = static_cast<std::size_t>(found - after.pages.begin()) + (count > 1 ? 1 : 0);
    }
  }
  if (losses.empty() && after.objects < before.objects) {
    losses.push_back("objects lost: " + std::to_string(before.objects) + " became " + std::to_string(after.objects));
  }
  return losses;
}

bool LosesOnlyMisread(const Reading& before, const Reading& after, const Reading& undamaged) {
  const std::size_t count = before.pages.size();
  if (ReadsLike(after, undamaged)) return true;
  if (after.pageCount < before.pageCount || undamaged.pages.size() < count || after.pages.size() < count) return false;
  if (after.objects < before.objects) return false;
  for (std::size_t page = 0; page < count; ++page) {
    const PageReading& had = before.pages[page];
    const PageReading& has = after.pages[page];
    const std::string& undamagedText = undamaged.pages[page].text;
    if (Words(has.text) == Words(undamagedText)) continue;
    // Of the same content other fonts may join words or put them elsewhere.
    if (had.content == has.content && HasLettersInAnyOrder(LettersOfBoth(had.text, undamagedText), has.text)) continue;
    const std::string right = WordsOfBoth(had.text, undamagedText);
    if (!WordsMissing(right, has.text).empty()) return false;
  }
  return true;
}

bool KeepsLetters(const Reading& before, const Reading& after) {
  if (after.pageCount != before.pageCount || after.objects < before.objects) return false;
  return std::equal(before.pages.begin(), before.pages.end(), after.pages.begin(), after.pages.end(),
                    [](const PageReading& had, const PageReading& has) {
                      // Readers sort the text of a page by where the widths of the letters put it.
                      return HasLettersOf(had.text, has.text) ||
                             (had.content == has.content && HasLettersInAnyOrder(had.text, has.text));
                    });
}

bool DiffersByDamagedFonts(const Reading& before, const Reading& after, const Reading& undamaged) {
  const std::size_t count = before.pages.size();
  if (!SamePages(before, after) || undamaged.pages.size() < count || after.objects < before.objects) return false;
  for (std::size_t page = 0; page < count; ++page) {
    const std::size_t sound = undamaged.pages[page].fonts;
    const bool damaged = before.pages[page].fonts != sound && after.pages[page].fonts != sound;
    if (!damaged && before.pages[page].text != after.pages[page].text) return false;
  }
  return true;
}

std::string Words(const std::string& text) {
  std::istringstream stream(text);
  std::string words;
  for (std::string word; stream >> word;) words += words.empty() ? word : ' ' + word;
  return words;
}
