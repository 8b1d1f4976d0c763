// SPDX-License-Identifier: Apache-2.0
#include "engine/save/AppendUpdate.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <unordered_set>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/quick/QuickReader.h"
#include "engine/save/FileIdentifier.h"

namespace engine {

namespace {

// The offset field of a cross-reference table has ten digits.
constexpr std::uint64_t kLastTableOffset = 9999999999;
constexpr std::size_t kUsualSize = 512;

// An entry of a cross-reference section; the type and its fields as in a stream (ISO 32000-1, table 18).
struct XrefEntry {
  enum Type : char { kFree = 0, kOffset = 1, kInStream = 2 };

  std::uint32_t number;
  Type type;
  std::uint64_t place;   // the offset, or the object stream
  std::uint32_t detail;  // the generation, or the index in the object stream
};

std::string Header(ObjectId id) {
  return std::to_string(id.number) + ' ' + std::to_string(id.generation) + " obj\n";
}

// The number with zeros before it.
void AppendDigits(std::string& text, std::uint64_t number, std::size_t width) {
  const std::string digits = std::to_string(number);
  text.append(width - std::min(width, digits.size()), '0').append(digits);
}

// How many bytes the value takes, at least `least`.
int WidthOf(std::uint64_t value, int least) {
  int width = least;
  while (width < 8 && (value >> (8 * width)) != 0) ++width;
  return width;
}

// Calls visit(first, end) for each run of entries with consecutive numbers.
template <typename Visit>
void ForEachRun(const std::vector<XrefEntry>& entries, Visit visit) {
  for (auto first = entries.begin(); first != entries.end();) {
    auto end = first + 1;
    while (end != entries.end() && end->number == (end - 1)->number + 1) ++end;
    visit(first, end);
    first = end;
  }
}

class Update {
 public:
  Update(const InputFile& source, const FileTail& tail)
      : tail_(tail),
        base_(source.Size() - tail.headerOffset),
        usesObjectStream_(!tail.OnlyTables() && !QuickReader::StartsWithHeader(source)) {
    char last = '\0';
    text_.reserve(kUsualSize);
    if (source.Size() > 0) source.ReadAt(source.Size() - 1, &last, 1);
    if (!tail.repaired.empty()) {
      text_ = tail.repaired;
    } else if (last != '\n' && last != '\r') {
      text_ = '\n';
    }
  }

  void AddObjects(const std::vector<ChangedObject>& changes) {
    std::vector<const ChangedObject*> members;
    for (const ChangedObject& change : changes) {
      if (usesObjectStream_ && change.id.generation == 0) {
        members.push_back(&change);
        continue;
      }
      entries_.push_back({change.id.number, XrefEntry::kOffset, Position(), change.id.generation});
      text_.append(Header(change.id)).append(change.body).append("\nendobj\n");
    }
    if (!members.empty()) AddObjectStream(members);
    if (tail_.kept) AddKept(*tail_.kept);
    Sort();
    if (tail_.kept) AddFree();
    size_ = entries_.empty() ? tail_.size : std::max(tail_.size, entries_.back().number + 1);
    identifier_ = UpdatedIdentifier(tail_.Value("/ID"), changes);
  }

  void AddXref() {
    const std::uint64_t xref = Position();
    if (NeedsStream() || xref > kLastTableOffset) {
      AddStream();
    } else {
      AddTable();
    }
    text_ += "startxref\n" + std::to_string(xref) + "\n%%EOF\n";
  }

  const std::string& Text() const { return text_; }

 private:
  std::uint64_t Position() const { return base_ + text_.size(); }

  // ISO 32000-1, 7.5.7.
  void AddObjectStream(const std::vector<const ChangedObject*>& members) {
    std::uint32_t number = tail_.size;
    for (const ChangedObject* member : members) number = std::max(number, member->id.number + 1);
    std::string directory;
    std::string data;
    std::uint32_t index = 0;
    for (const ChangedObject* member : members) {
      directory += std::to_string(member->id.number) + ' ' + std::to_string(data.size()) + ' ';
      data += member->body + '\n';
      entries_.push_back({member->id.number, XrefEntry::kInStream, number, index++});
    }
    entries_.push_back({number, XrefEntry::kOffset, Position(), 0});
    text_ += Header({number, 0}) + "<< /Type /ObjStm /N " + std::to_string(members.size()) + " /First " +
             std::to_string(directory.size()) + " /Length " + std::to_string(directory.size() + data.size()) +
             " >>\nstream\n" + directory + data + "\nendstream\nendobj\n";
  }

  // The objects of a complete section that were not changed, and the free entry that such a section begins with.
  void AddKept(const std::vector<FileTail::KeptObject>& kept) {
    std::unordered_set<std::uint32_t> changed;
    for (const XrefEntry& entry : entries_) changed.insert(entry.number);
    entries_.push_back({0, XrefEntry::kFree, 0, 65535});
    for (const FileTail::KeptObject& object : kept) {
      if (changed.count(object.id.number) != 0) continue;
      if (object.stream != 0) {
        entries_.push_back({object.id.number, XrefEntry::kInStream, object.stream, object.index});
      } else {
        entries_.push_back({object.id.number, XrefEntry::kOffset, object.offset, object.id.generation});
      }
    }
  }

  // Entries for the numbers that no object has: without one, some readers take a reference to it for damage and rebuild
  // the section. Not where numbers are far apart.
  void AddFree() {
    const std::size_t known = entries_.size();
    if (entries_.back().number > 16 * known + 1024) return;
    for (std::size_t i = 1; i < known; ++i) {
      for (std::uint32_t number = entries_[i - 1].number + 1; number < entries_[i].number; ++number) {
        entries_.push_back({number, XrefEntry::kFree, 0, 65535});
      }
    }
    Sort();
  }

  bool NeedsStream() const {
    if (!tail_.kept && tail_.kind == FileTail::Kind::kStream) return true;
    return std::any_of(entries_.begin(), entries_.end(),
                       [](const XrefEntry& entry) { return entry.type == XrefEntry::kInStream; });
  }

  void Sort() {
    std::sort(entries_.begin(), entries_.end(),
              [](const XrefEntry& a, const XrefEntry& b) { return a.number < b.number; });
  }

  void AddTable() {
    text_ += "xref\n";
    ForEachRun(entries_, [this](auto first, auto end) {
      text_ += std::to_string(first->number) + ' ' + std::to_string(end - first) + '\n';
      for (auto entry = first; entry != end; ++entry) {
        AppendDigits(text_, entry->place, 10);
        text_ += ' ';
        AppendDigits(text_, entry->detail, 5);
        text_ += entry->type == XrefEntry::kFree ? " f \n" : " n \n";
      }
    });
    text_ += "trailer\n<<";
    AddTrailerEntries();
    text_ += " >>\n";
  }

  void AddStream() {
    const ObjectId self{size_++, 0};
    entries_.push_back({self.number, XrefEntry::kOffset, Position(), 0});
    std::uint32_t largestDetail = 0;
    for (const XrefEntry& entry : entries_) largestDetail = std::max(largestDetail, entry.detail);
    const int placeWidth = std::max(WidthOf(Position(), 1), WidthOf(size_, 1));
    const int detailWidth = WidthOf(largestDetail, 2);

    std::string index;
    std::string rows;
    ForEachRun(entries_, [&](auto first, auto end) {
      index += ' ' + std::to_string(first->number) + ' ' + std::to_string(end - first);
      for (auto entry = first; entry != end; ++entry) {
        rows += entry->type;
        AppendBigEndian(rows, entry->place, placeWidth);
        AppendBigEndian(rows, entry->detail, detailWidth);
      }
    });
    text_ += Header(self) + "<< /Type /XRef /W [ 1 " + std::to_string(placeWidth) + ' ' + std::to_string(detailWidth) +
             " ] /Index [" + index + " ]";
    AddTrailerEntries();
    text_ += " /Length " + std::to_string(rows.size()) + " >>\nstream\n" + rows + "\nendstream\nendobj\n";
  }

  static void AppendBigEndian(std::string& bytes, std::uint64_t value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) bytes += static_cast<char>((value >> shift) & 0xFF);
  }

  void AddTrailerEntries() {
    text_ += " /Size " + std::to_string(size_) + " /Root " + tail_.root.Reference();
    for (const FileTail::Entry& entry : tail_.entries) {
      text_.append(" ").append(entry.key).append(" ").append(entry.key == "/ID" ? identifier_ : entry.value);
    }
    if (!tail_.kept) text_ += " /Prev " + std::to_string(tail_.startXref);
  }

  const FileTail& tail_;
  const std::uint64_t base_;
  // Some readers rebuild the cross-references of every file that does not start with a header, and then take an object
  // of an object stream for newer than any other. A changed object has to be in an object stream to take its place.
  const bool usesObjectStream_;
  std::string text_;
  std::vector<XrefEntry> entries_;
  std::uint32_t size_ = 0;
  std::string identifier_;
};

}  // namespace

void AppendUpdate(const InputFile& source, const FileTail& tail, const std::vector<ChangedObject>& changes,
                  OutputFile& output) {
  Update update(source, tail);
  update.AddObjects(changes);
  update.AddXref();
  output.CopyFrom(source);
  output.Write(update.Text());
}

}  // namespace engine
