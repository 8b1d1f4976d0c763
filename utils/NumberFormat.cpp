// SPDX-License-Identifier: Apache-2.0
#include "utils/NumberFormat.h"

#include <QRegularExpression>

QString ExpandNumberFormat(const QString& format, std::optional<int> number) {
  static const QRegularExpression conversions(QString("%(%|[-+ #0]*[0-9]{0,3}(\\.[0-9]{0,3})?[diuoxX])"));

  const QString source = QString::fromUtf8(format.toUtf8().constData());
  QString text;
  int copied = 0;
  for (auto matches = conversions.globalMatch(source); matches.hasNext();) {
    const QRegularExpressionMatch match = matches.next();
    text += source.midRef(copied, match.capturedStart() - copied);
    copied = match.capturedEnd();
    if (match.capturedRef(1) == QLatin1String("%")) {
      text += QLatin1Char('%');
    } else if (number) {
      text += QString::asprintf(match.captured().toLatin1().constData(), *number);
      number.reset();
    } else {
      text += match.capturedRef();
    }
  }
  return text + source.midRef(copied);
}
