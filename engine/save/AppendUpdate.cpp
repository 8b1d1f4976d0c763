// SPDX-License-Identifier: Apache-2.0
#include "engine/save/AppendUpdate.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>

#include "engine/base/InputFile.h"
#include "engine/base/OutputFile.h"
#include "engine/save/FileIdentifier.h"

namespace engine {

namespace {

// The offset field of a cross-reference table has ten digits.
constexpr std::uint64_t kLastTableOffset = 9999999999;

struct XrefEntry {
  ObjectId id;
  std::uint64_t offset;
};

std::string Header(ObjectId id) {
  return std::to_string(id.number) + ' ' + std::to_string(id.generation) + " obj\n";
}

std::string Reference(ObjectId id) {
  return std::to_string(id.number) + ' ' + std::to_string(id.generation) + " R";
}

// Calls visit(first, end) for each run of entries with consecutive numbers.
template <typename Visit>
void ForEachRun(const std::vector<XrefEntry>& entries, Visit visit) {
  for (auto first = entries.begin(); first != entries.end();) {
    auto end = first + 1;
    while (end != entries.end() && end->id.number == (end - 1)->id.number + 1) ++end;
    visit(first, end);
    first = end;
  }
}

class Update {
 public:
  Update(const InputFile& source, const FileTail& tail) : tail_(tail), base_(source.Size() - tail.headerOffset) {
    const std::string last = source.Size() > 0 ? source.ReadAt(source.Size() - 1, 1) : std::string();
    if (last != "\n" && last != "\r") text_ += '\n';
  }

  void AddObjects(const std::vector<ChangedObject>& changes) {
    size_ = tail_.size;
    for (const ChangedObject& change : changes) {
      size_ = std::max(size_, change.id.number + 1);
      entries_.push_back({change.id, Position()});
      text_ += Header(change.id) + change.body + "\nendobj\n";
    }
    identifier_ = UpdatedIdentifier(tail_.Value("/ID"), changes);
  }

  void AddXref() {
    const std::uint64_t xref = Position();
    if (tail_.kind == FileTail::Kind::kStream || xref > kLastTableOffset) {
      AddStream();
    } else {
      AddTable();
    }
    text_ += "startxref\n" + std::to_string(xref) + "\n%%EOF\n";
  }

  const std::string& Text() const { return text_; }

 private:
  std::uint64_t Position() const { return base_ + text_.size(); }

  void Sort() {
    std::sort(entries_.begin(), entries_.end(),
              [](const XrefEntry& a, const XrefEntry& b) { return a.id.number < b.id.number; });
  }

  void AddTable() {
    Sort();
    text_ += "xref\n";
    ForEachRun(entries_, [this](auto first, auto end) {
      text_ += std::to_string(first->id.number) + ' ' + std::to_string(end - first) + '\n';
      for (auto entry = first; entry != end; ++entry) {
        char line[32];
        std::snprintf(line, sizeof line, "%010llu %05u n \n", static_cast<unsigned long long>(entry->offset),
                      entry->id.generation);
        text_ += line;
      }
    });
    text_ += "trailer\n<<";
    AddTrailerEntries();
    text_ += " >>\n";
  }

  void AddStream() {
    const ObjectId self{size_++, 0};
    entries_.push_back({self, Position()});
    Sort();
    int width = 1;
    while (width < 8 && (Position() >> (8 * width)) != 0) ++width;

    std::string index;
    std::string rows;
    ForEachRun(entries_, [&](auto first, auto end) {
      index += ' ' + std::to_string(first->id.number) + ' ' + std::to_string(end - first);
      for (auto entry = first; entry != end; ++entry) {
        rows += '\1';
        AppendBigEndian(rows, entry->offset, width);
        AppendBigEndian(rows, entry->id.generation, 2);
      }
    });
    text_ += Header(self) + "<< /Type /XRef /W [ 1 " + std::to_string(width) + " 2 ] /Index [" + index + " ]";
    AddTrailerEntries();
    text_ += " /Length " + std::to_string(rows.size()) + " >>\nstream\n" + rows + "\nendstream\nendobj\n";
  }

  static void AppendBigEndian(std::string& bytes, std::uint64_t value, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) bytes += static_cast<char>((value >> shift) & 0xFF);
  }

  void AddTrailerEntries() {
    text_ += " /Size " + std::to_string(size_) + " /Root " + Reference(tail_.root);
    for (const FileTail::Entry& entry : tail_.entries) {
      text_ += ' ' + entry.key + ' ' + (entry.key == "/ID" ? identifier_ : entry.value);
    }
    text_ += " /Prev " + std::to_string(tail_.startXref);
  }

  const FileTail& tail_;
  const std::uint64_t base_;
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
