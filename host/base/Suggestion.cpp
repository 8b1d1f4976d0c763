// SPDX-License-Identifier: Apache-2.0
#include "host/base/Suggestion.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace {

// How many insertions, deletions and replacements lead from one text to the other (Levenshtein).
int EditDistance(const QString& one, const QString& other) {
  std::vector<int> row(static_cast<std::size_t>(other.size()) + 1);
  std::iota(row.begin(), row.end(), 0);
  for (int i = 0; i < one.size(); ++i) {
    int diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 1; j < row.size(); ++j) {
      const int replaced = diagonal + (one[i] == other[static_cast<int>(j) - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
    }
  }
  return row.back();
}

QString NearestWord(const QString& typed, const QStringList& known) {
  constexpr int kLongest = 100;
  if (typed.size() > kLongest) return {};
  QString nearest;
  // A third of the letters may be wrong, and always one or two.
  int best = std::max(2, typed.size() / 3) + 1;
  for (const QString& word : known) {
    if (typed.size() > 2 && word.startsWith(typed, Qt::CaseInsensitive)) return word;
    const int distance = EditDistance(typed.toLower(), word.toLower());
    if (distance < best && distance < word.size()) {
      best = distance;
      nearest = word;
    }
  }
  return nearest;
}

}  // namespace

QString Suggestion(const QString& typed, const QStringList& known) {
  const QString word = NearestWord(typed, known);
  return word.isEmpty() ? QString() : QStringLiteral(" Did you mean '%1'?").arg(word);
}
