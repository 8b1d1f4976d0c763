// SPDX-License-Identifier: Apache-2.0
#include "utils/CErrorHandler.h"

#include "utils/NumberFormat.h"

void AddToDebugFile(const char*, ...) {}

void StoreErrorToLog(const char*) {}

CErrorHandler::CErrorHandler() = default;

CErrorHandler::~CErrorHandler() = default;

void CErrorHandler::Store(QString format, va_list) {
  const QString message = ExpandNumberFormat(format, std::nullopt);
  mErrors.append(message);
  if (mSecondaryErrors) mSecondaryErrors->append(message);
}

void CErrorHandler::StoreError(QString format, ...) {
  va_list args;
  va_start(args, format);
  Store(std::move(format), args);
  va_end(args);
}

int CErrorHandler::GetCount() const {
  return mErrors.size();
}

QString CErrorHandler::GetAt(long index) const {
  return index >= 0 && index < mErrors.size() ? mErrors.at(static_cast<int>(index)) : QString("Unknown error");
}

QString CErrorHandler::GetLast() const {
  return GetAt(GetCount() - 1L);
}

void CErrorHandler::ClearAll() {
  mErrors.clear();
}

void CErrorHandler::WriteToLog(const char*, bool) {}
