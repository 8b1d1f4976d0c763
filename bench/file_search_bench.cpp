// SPDX-License-Identifier: Apache-2.0
// SearchFilesInDir() beside `find -iname` on the same tree of 100,000 files in 1,111 folders, in turn within one run.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include "utils/CActionUtils.h"

namespace {

constexpr int kFiles = 100000;

// Ten folders of ten folders of ten folders; 90 files in each of the 1,111, the rest at the top.
int Fill(const QString& folder, int depth) {
  int made = 0;
  QDir().mkpath(folder);
  for (int i = 0; i < 90; ++i, ++made) {
    QFile file(folder + QStringLiteral("/file number %1.%2").arg(i).arg(QLatin1String(i % 2 == 0 ? "PDF" : "txt")));
    if (!file.open(QFile::WriteOnly)) return 0;
  }
  for (int i = 0; depth < 3 && i < 10; ++i) made += Fill(folder + QStringLiteral("/folder %1").arg(i), depth + 1);
  return made;
}

int Find(const QString& folder) {
  const QByteArray command = "find '" + QFile::encodeName(folder) + "' -type f -iname '*.pdf'";
  std::FILE* pipe = popen(command.constData(), "r");
  int lines = 0;
  for (int c; pipe && (c = std::getc(pipe)) != EOF;) lines += c == '\n';
  if (pipe) pclose(pipe);
  return lines;
}

void SearchBesideFind(benchmark::State& state) {
  using Clock = std::chrono::steady_clock;
  const QTemporaryDir tree;
  for (int made = Fill(tree.path(), 0); made < kFiles; ++made) {
    QFile(tree.path() + QStringLiteral("/more %1.txt").arg(made)).open(QFile::WriteOnly);
  }
  Find(tree.path());  // both find the tree in the cache
  double search = 0;
  double find = 0;
  for ([[maybe_unused]] auto _ : state) {
    const auto start = Clock::now();
    const int found = CActionUtils::SearchFilesInDir(QDir(tree.path()), {QStringLiteral("pdf")}, true).size();
    const auto middle = Clock::now();
    const int expected = Find(tree.path());
    const auto end = Clock::now();
    if (found != expected || found == 0) state.SkipWithError("the two found different files");
    search += std::chrono::duration<double, std::milli>(middle - start).count();
    find += std::chrono::duration<double, std::milli>(end - middle).count();
  }
  using benchmark::Counter;
  state.counters["search_ms"] = Counter(search, Counter::kAvgIterations);
  state.counters["find_ms"] = Counter(find, Counter::kAvgIterations);
  state.counters["ratio"] = search / find;
}

}  // namespace

BENCHMARK(SearchBesideFind)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK_MAIN();
