// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/RunArguments.h"

QStringList RunArguments(const ActionChoice&, const OutputChoice&, RunKind) {
  return {};
}
QString CommandText(const ActionChoice&, const OutputChoice&, const QStringList&) {
  return {};
}
