// SPDX-License-Identifier: Apache-2.0
#include "tests/support/PdfFile.h"

#include <zlib.h>

#include <algorithm>
#include <cstdio>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kObjectsInStream = 100;

std::string Number(std::size_t number) {
  return std::to_string(number);
}

std::string Deflated(const std::string& bytes) {
  uLongf size = compressBound(bytes.size());
  std::string result(size, '\0');
  compress(reinterpret_cast<Bytef*>(result.data()), &size, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
  result.resize(size);
  return result;
}

struct Entry {
  unsigned char type = 1;
  std::size_t place = 0;
  std::size_t index = 0;
};

class Writer {
 public:
  // Object 0 is not written; `trailer` holds further entries of the trailer.
  Writer(XrefKind kind, std::vector<std::string> objects, std::size_t root, std::string trailer = {})
      : kind_(kind),
        objects_(std::move(objects)),
        root_(root),
        trailer_(std::move(trailer)),
        entries_(objects_.size()) {}

  std::string Write() {
    if (kind_ == XrefKind::kObjectStreams) {
      for (std::size_t first = 1; first < objects_.size(); first += kObjectsInStream) {
        PutStream(first, std::min(first + kObjectsInStream, objects_.size()));
      }
    } else {
      for (std::size_t number = 1; number < objects_.size(); ++number) Put(number, objects_[number]);
    }
    const std::size_t xref = out_.size();
    kind_ == XrefKind::kTable ? PutTable() : PutXrefStream();
    return out_ + "startxref\n" + Number(xref) + "\n%%EOF\n";
  }

 private:
  void Put(std::size_t number, const std::string& text) {
    entries_[number] = {1, out_.size(), 0};
    out_ += Number(number) + " 0 obj\n" + text + "\nendobj\n";
  }

  void PutStream(std::size_t first, std::size_t end) {
    const std::size_t number = entries_.size();
    entries_.emplace_back();
    std::string directory;
    std::string data;
    for (std::size_t inner = first; inner < end; ++inner) {
      entries_[inner] = {2, number, inner - first};
      directory += Number(inner) + ' ' + Number(data.size()) + ' ';
      data += objects_[inner] + ' ';
    }
    const std::string packed = Deflated(directory + data);
    Put(number, "<< /Type /ObjStm /N " + Number(end - first) + " /First " + Number(directory.size()) +
                    " /Filter /FlateDecode /Length " + Number(packed.size()) + " >>\nstream\n" + packed +
                    "\nendstream");
  }

  std::string TrailerKeys() const {
    return " /Size " + Number(entries_.size()) + " /Root " + Number(root_) + " 0 R " + trailer_;
  }

  void PutTable() {
    out_ += "xref\n0 " + Number(entries_.size()) + "\n0000000000 65535 f \n";
    for (std::size_t number = 1; number < entries_.size(); ++number) {
      char line[32];
      std::snprintf(line, sizeof line, "%010zu 00000 n \n", entries_[number].place);
      out_ += line;
    }
    out_ += "trailer\n<<" + TrailerKeys() + ">>\n";
  }

  void PutXrefStream() {
    const std::size_t number = entries_.size();
    entries_.push_back({1, out_.size(), 0});
    entries_[0].type = 0;
    std::string rows;
    for (const Entry& entry : entries_) {
      rows += static_cast<char>(entry.type);
      for (int shift = 24; shift >= 0; shift -= 8) rows += static_cast<char>(entry.place >> shift & 0xFF);
      rows += static_cast<char>(entry.index);
    }
    std::string filtered;
    for (std::size_t row = 0; row < rows.size(); row += 6) {
      filtered += '\2';
      for (std::size_t i = row; i < row + 6; ++i) filtered += static_cast<char>(rows[i] - (i < 6 ? 0 : rows[i - 6]));
    }
    const std::string packed = Deflated(filtered);
    Put(number, "<< /Type /XRef /W [ 1 4 1 ]" + TrailerKeys() +
                    "/Filter /FlateDecode /DecodeParms << /Predictor 12 /Columns 6 >> /Length " +
                    Number(packed.size()) + " >>\nstream\n" + packed + "\nendstream");
  }

  const XrefKind kind_;
  const std::vector<std::string> objects_;
  const std::size_t root_;
  const std::string trailer_;
  std::vector<Entry> entries_;
  std::string out_ = "%PDF-1.7\n";
};

}  // namespace

std::string PlainPdf::Bytes() const {
  std::vector<std::string> objects = {"", "<< /Type /Catalog /Pages 2 0 R " + catalogEntries + " >>",
                                      "<< /Type /Pages /Kids [ 3 0 R ] /Count 1 >>",
                                      "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 200 300 ] " + pageEntries + " >>"};
  objects.insert(objects.end(), more.begin(), more.end());
  return Writer(XrefKind::kTable, std::move(objects), 1, trailerEntries).Write();
}

std::string WithBrokenXref(std::string pdf) {
  return pdf.insert(pdf.rfind("startxref\n") + 10, "9");
}

std::string LargePdf(XrefKind kind, int pages, bool catalogLast) {
  const auto count = static_cast<std::size_t>(pages);
  // A page tree of two levels; object numbers: catalog, root of the tree, its branches, the pages.
  const std::size_t perBranch = 100;
  const std::size_t branches = (count + perBranch - 1) / perBranch;
  const std::size_t root = catalogLast ? 2 + branches + count : 1;
  const std::size_t tree = catalogLast ? 1 : 2;
  std::vector<std::string> objects(tree + branches + count + 1);
  std::string kids;
  for (std::size_t branch = 0; branch < branches; ++branch) {
    const std::size_t number = tree + 1 + branch;
    kids += Number(number) + " 0 R ";
    const std::size_t first = branch * perBranch;
    const std::size_t end = std::min(first + perBranch, count);
    std::string inner;
    for (std::size_t page = first; page < end; ++page) {
      const std::size_t pageNumber = tree + 1 + branches + page;
      inner += Number(pageNumber) + " 0 R ";
      objects[pageNumber] = "<< /Type /Page /Parent " + Number(number) + " 0 R /MediaBox [ 0 0 612 792 ] >>";
    }
    objects[number] =
        "<< /Type /Pages /Parent " + Number(tree) + " 0 R /Count " + Number(end - first) + " /Kids [ " + inner + "] >>";
  }
  objects[tree] = "<< /Type /Pages /Count " + Number(count) + " /Kids [ " + kids + "] >>";
  if (catalogLast) objects.emplace_back();
  objects[root] = "<< /Type /Catalog /Pages " + Number(tree) + " 0 R /URI << /Base (http://example.org/) >> >>";
  return Writer(kind, std::move(objects), root).Write();
}
