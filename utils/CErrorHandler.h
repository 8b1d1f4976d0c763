// SPDX-License-Identifier: Apache-2.0
#pragma once

/// @file

#include <cstdarg>
#include <QList>
#include <QString>

/// Takes a printf format and its arguments for the debug file. Logging is switched off: does nothing with any text.
void AddToDebugFile(const char* format, ...);
/// Takes an error for the log. Logging is switched off: does nothing with any text.
void StoreErrorToLog(const char* text);

/// Error messages kept in memory, oldest first, without a limit, until ClearAll() or the end of the store.
/// Used on the GUI thread only; nothing here fails.
class CErrorHandler {
 public:
  CErrorHandler();
  virtual ~CErrorHandler();
  CErrorHandler(const CErrorHandler&) = delete;
  CErrorHandler& operator=(const CErrorHandler&) = delete;

  /// Stores `format` as a finished message, with "%%" reduced to "%". `args` is not expanded: conversions such as "%d"
  /// stay in the text, so callers pass messages that need none.
  void Store(QString format, va_list args);
  /// The same; the variable arguments are not read.
  void StoreError(QString format, ...);

  /// The number of stored messages.
  int GetCount() const;
  /// The message at `index`, 0 being the oldest; "Unknown error" when there is none.
  QString GetAt(long index) const;
  /// The newest message; "Unknown error" when there is none.
  QString GetLast() const;
  /// Forgets all messages; those copied to the secondary list stay there.
  void ClearAll();

  /// Does nothing: logging is switched off.
  void WriteToLog(const char* text, bool flag);

 private:
  QList<QString> mErrors;

 public:
  /// A list that gets a copy of every message stored from now on; not owned, may be null.
  QList<QString>* mSecondaryErrors = nullptr;
};
