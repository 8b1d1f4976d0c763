// SPDX-License-Identifier: Apache-2.0
// What it costs to open a file and read its base URL, by number of pages: the quick reader beside libqpdf.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <map>
#include <qpdf/QPDF.hh>
#include <stdexcept>
#include <string>
#include <utility>

#include "engine/base/InputFile.h"
#include "engine/quick/QuickReader.h"
#include "tests/engine/quick/QuickBaseUrl.h"
#include "tests/support/PdfFile.h"

namespace {

constexpr char kBaseUrl[] = "http://example.org/";

// Files on disk, each made once; removed at the end.
class Files {
 public:
  Files() {
    if (mkdtemp(folder_) == nullptr) throw std::runtime_error("no temporary folder");
  }
  ~Files() {
    for (const auto& [key, path] : paths_) unlink(path.c_str());
    rmdir(folder_);
  }
  Files(const Files&) = delete;
  Files& operator=(const Files&) = delete;

  const std::string& Path(XrefKind kind, int pages, bool catalogLast) {
    std::string& path = paths_[{static_cast<int>(kind) * 2 + (catalogLast ? 1 : 0), pages}];
    if (path.empty()) {
      path = std::string(folder_) + '/' + std::to_string(paths_.size()) + ".pdf";
      std::ofstream(path, std::ios::binary) << LargePdf(kind, pages, catalogLast);
    }
    return path;
  }

 private:
  char folder_[40] = "/tmp/quick-reader-bench-XXXXXX";
  std::map<std::pair<int, int>, std::string> paths_;
};

const std::string& PathFor(const benchmark::State& state) {
  static Files files;
  return files.Path(static_cast<XrefKind>(state.range(0)), static_cast<int>(state.range(2)), state.range(1) != 0);
}

void QuickReader(benchmark::State& state) {
  const std::string& path = PathFor(state);
  std::uint64_t read = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto input = engine::InputFile::Open(path);
    const auto document = engine::QuickReader::Read(*input);
    if (!document || QuickBaseUrl(*document) != kBaseUrl) state.SkipWithError("not read");
    read = input->BytesRead();
  }
  state.counters["bytes_read"] = static_cast<double>(read);
}

void Libqpdf(benchmark::State& state) {
  const std::string& path = PathFor(state);
  for ([[maybe_unused]] auto _ : state) {
    QPDF pdf;
    pdf.processFile(path.c_str());
    if (pdf.getRoot().getKey("/URI").getKey("/Base").getStringValue() != kBaseUrl) state.SkipWithError("not read");
  }
}

void Cases(benchmark::internal::Benchmark* benchmark) {
  benchmark->ArgNames({"table0_stream1_objstm2", "catalog_last", "pages"})
      ->ArgsProduct({{0, 1, 2}, {0, 1}, {1000, 20000, 200000}})
      ->Unit(benchmark::kMicrosecond);
}

BENCHMARK(QuickReader)->Apply(Cases);
BENCHMARK(Libqpdf)->Apply(Cases)->MinTime(0.05);

}  // namespace

BENCHMARK_MAIN();
