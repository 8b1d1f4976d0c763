// SPDX-License-Identifier: Apache-2.0
#include "host/run/JobDigest.h"

#include <QCryptographicHash>
#include <QDataStream>

namespace {

constexpr int kDigits = 32;

// The order of a QHash differs from process to process.
QVariant Ordered(const QVariant& value) {
  const int type = value.userType();
  if (type == QMetaType::QVariantList) {
    QVariantList list = value.toList();
    for (QVariant& element : list) element = Ordered(element);
    return list;
  }
  if (type != QMetaType::QVariantMap && type != QMetaType::QVariantHash) return value;
  QVariantMap map = value.toMap();
  for (QVariant& element : map) element = Ordered(element);
  return map;
}

}  // namespace

std::string JobDigest(const std::vector<ConfiguredAction>& actions, const std::string& root) {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream.setVersion(QDataStream::Qt_5_15);
  for (const ConfiguredAction& action : actions) {
    stream << action.name << Ordered(action.settings).toMap();
    for (auto each = action.templates.begin(); each != action.templates.end(); ++each) {
      stream << each.key() << each->Text() << QByteArray::fromStdString(root);
    }
  }
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(kDigits).toStdString();
}
