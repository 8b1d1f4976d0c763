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
  // Far apart: no object stream has both the catalog and the page tree.
  const std::size_t last = static_cast<std::size_t>(pages) + 2;
  const std::size_t root = catalogLast ? last : 1;
  const std::size_t tree = catalogLast ? 1 : last;
  std::vector<std::string> objects(last + 1);
  std::string kids;
  for (std::size_t page = 2; page < last; ++page) {
    kids += Number(page) + " 0 R ";
    objects[page] = "<< /Type /Page /Parent " + Number(tree) + " 0 R /MediaBox [ 0 0 612 792 ] >>";
  }
  objects[tree] = "<< /Type /Pages /Count " + Number(last - 2) + " /Kids [ " + kids + "] >>";
  objects[root] = "<< /Type /Catalog /Pages " + Number(tree) + " 0 R /URI << /Base (http://example.org/) >> >>";
  return Writer(kind, std::move(objects), root).Write();
}
