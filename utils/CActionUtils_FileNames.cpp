// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cmath>
#include <QFile>

#include "utils/CActionUtils.h"
#include "utils/SaturatedInt.h"

QString CActionUtils::GetStringWithLeadingZeroesFromNumber(int number, int width) {
  return GetStringWithLeadingZeroesFromString(QString::number(number), width);
}

QString CActionUtils::GetStringWithLeadingZeroesFromString(QString digits, int width) {
  return digits.rightJustified(std::max(width, 0), u'0');
}

QString CActionUtils::AppendCopyNumberToFilename(QString path) {
  const int dot = path.lastIndexOf(u'.');
  if (dot < 0) return path;  // nowhere to put a number
  QString candidate = path;
  for (int n = 1; QFile::exists(candidate); ++n) candidate = QString(path).insert(dot, QString(" (%1)").arg(n));
  return candidate;
}

void CActionUtils::FixStringForFilename(QString* name) {
  if (!name) return;
  *name = name->trimmed();
  for (const char c : {'\t', '\n', '\r', '<', '>', ':', '"', '/', '\\', '|', '?', '*'}) name->remove(QLatin1Char(c));
}

QString CActionUtils::ReplaceEnvironmentPaths(QString path) {
  const QLatin1String placeholder("%ALLUSERSPROFILE%");
  if (!path.contains(placeholder)) return path;
  QString folder = QDir::homePath().replace(u'\\', u'/');
  folder = folder.left(folder.lastIndexOf(u'/')) + QLatin1String("/All Users");
  if (folder.contains(QLatin1String("Documents and Settings"))) folder += QLatin1String("/Application Data");
  return path.replace(placeholder, folder + u'/');
}

int CActionUtils::Round(double value) {
  const double below = std::floor(value);
  return SaturatedInt(value - below > 0.5 ? std::ceil(value) : below);
}
