// SPDX-License-Identifier: Apache-2.0
// Page-range texts of 1,000 to 1,000,000 pages: expanded, validated, compressed into runs, and read by libqpdf's own
// page-range parser. The texts that need reading on inside excluded items are not page ranges to libqpdf.
#include <benchmark/benchmark.h>

#include <qpdf/QUtil.hh>
#include <QStringList>
#include <string>

#include "utils/CActionUtils.h"

namespace {

enum Shape { OneRange, EverySecondPage, Descending, RangesOfTen };

QString Text(int shape, int pages) {
  QStringList items;
  switch (shape) {
    case OneRange:
      return QStringLiteral("1-%1").arg(pages);
    case EverySecondPage:
      for (int page = 1; page <= pages; page += 2) items << QString::number(page);
      break;
    case Descending:
      for (int page = pages; page >= 1; --page) items << QString::number(page);
      break;
    default:
      for (int page = 1; page + 9 <= pages; page += 10) items << QStringLiteral("%1-%2").arg(page).arg(page + 9);
      break;
  }
  return items.join(u',');
}

void Sizes(benchmark::internal::Benchmark* bench) {
  for (int shape : {OneRange, EverySecondPage, Descending, RangesOfTen}) {
    for (int pages = 1000; pages <= 1000000; pages *= 10) bench->Args({shape, pages});
  }
  bench->ArgNames({"shape", "pages"})->Unit(benchmark::kMillisecond);
}

void Expand(benchmark::State& state, bool skipEven) {
  const int pages = static_cast<int>(state.range(1));
  const QString text = Text(static_cast<int>(state.range(0)), pages);
  for ([[maybe_unused]] auto _ : state) {
    QList<int> list;
    CActionUtils::GetPageList(text, pages, false, skipEven, &list);
    benchmark::DoNotOptimize(list);
  }
}

void Qpdf(benchmark::State& state) {
  const int pages = static_cast<int>(state.range(1));
  const std::string text = Text(static_cast<int>(state.range(0)), pages).toStdString();
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(QUtil::parse_numrange(text.c_str(), pages));
}

void Validate(benchmark::State& state) {
  const QString text = Text(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
  for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(CActionUtils::ValidatePageRange(text, false));
}

void Collect(benchmark::State& state) {
  const int pages = static_cast<int>(state.range(1));
  QList<int> list;
  CActionUtils::GetPageList(Text(static_cast<int>(state.range(0)), pages), pages, false, false, &list);
  for ([[maybe_unused]] auto _ : state) {
    QList<int> runs;
    CActionUtils::CollectPageList(&list, &runs);
    benchmark::DoNotOptimize(runs);
  }
}

}  // namespace

BENCHMARK_CAPTURE(Expand, all, false)->Apply(Sizes);
BENCHMARK_CAPTURE(Expand, skip_even, true)->Apply(Sizes);
BENCHMARK(Qpdf)->Apply(Sizes);
BENCHMARK(Validate)->Apply(Sizes);
BENCHMARK(Collect)->Apply(Sizes);
BENCHMARK_MAIN();
