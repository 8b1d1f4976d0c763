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

std::string DigestOf(const std::vector<ConfiguredAction>& actions, const std::string& pathBelow) {
  QByteArray bytes;
  QDataStream stream(&bytes, QIODevice::WriteOnly);
  stream.setVersion(QDataStream::Qt_5_15);
  for (const ConfiguredAction& action : actions) {
    QMap<QString, QVariant> settings = action.settings;
    for (auto each = action.templates.begin(); each != action.templates.end(); ++each) {
      settings.insert(each.key(), each->Fill(pathBelow));
    }
    stream << action.name << Ordered(settings).toMap();
  }
  return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(kDigits).toStdString();
}

}  // namespace

JobDigest::JobDigest(const std::vector<ConfiguredAction>& actions) : actions_(actions) {
  for (const ConfiguredAction& action : actions) sameForAll_ = sameForAll_ && action.templates.isEmpty();
  if (sameForAll_) digest_ = DigestOf(actions, {});
}

const std::string& JobDigest::Of(const std::string& pathBelow) const {
  if (!sameForAll_) digest_ = DigestOf(actions_, pathBelow);
  return digest_;
}
