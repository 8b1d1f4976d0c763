// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/RecordTexts.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include "host/base/PdfLibrary.h"
#include "host/window/core/ShownText.h"
#include "pdflib/LibraryErrorCodes.h"

namespace {

// The start of a message, and what people read instead. "%1" is what follows the start.
struct Text {
  const char* start;
  const char* shown;
};

constexpr Text kTexts[] = {
    {"a password is needed", QT_TRANSLATE_NOOP("RecordTexts", "The file needs a password.")},
    {"wrong password", QT_TRANSLATE_NOOP("RecordTexts", "None of the passwords opens the file.")},
    {"not a PDF", QT_TRANSLATE_NOOP("RecordTexts", "This is not a PDF file.")},
    {"no such file", QT_TRANSLATE_NOOP("RecordTexts", "The file is not there any more.")},
    {"cannot read the file", QT_TRANSLATE_NOOP("RecordTexts", "You may not read the file, or its disk is damaged.")},
    {"damaged beyond repair",
     QT_TRANSLATE_NOOP("RecordTexts", "The file is damaged beyond repair. Get it again from where it came from.")},
    {"the file changed while it was open",
     QT_TRANSLATE_NOOP("RecordTexts", "Another program was changing the file. Try again.")},
    {"cannot write: ", QT_TRANSLATE_NOOP("RecordTexts", "The result cannot be written: %1.")},
    {"cannot write", QT_TRANSLATE_NOOP("RecordTexts", "The result cannot be written.")},
    {"the disk is full", QT_TRANSLATE_NOOP("RecordTexts", "The disk is full. Free some space and try again.")},
    {"not enough memory", QT_TRANSLATE_NOOP("RecordTexts", "The file needs more memory than there is.")},
    {"its certification permits no change",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "Its certification permits no change. To change it all the same, allow breaking signatures.")},
    {"signed, and ",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "Saving would break its signatures. To save it all the same, allow breaking signatures.")},
    {"took longer than the time limit of ",
     QT_TRANSLATE_NOOP("RecordTexts", "It took too long (more than %1) and was given up.")},
    {"crashed: ", QT_TRANSLATE_NOOP("RecordTexts", "The file made vorlane-run crash (%1). It stays as it was.")},
    {"interrupted", QT_TRANSLATE_NOOP("RecordTexts", "Cancelled. The file stays as it was.")},
    {"the same file as ", QT_TRANSLATE_NOOP("RecordTexts", "It is the same file as %1.")},
    {"cannot make the backup ", QT_TRANSLATE_NOOP("RecordTexts", "The backup cannot be made: %1.")},
};

// Advice that is about the command line.
const QRegularExpression& OptionAdvice() {
  static const QRegularExpression advice(QStringLiteral(" Use --unchecked to take it all the same\\."));
  return advice;
}

}  // namespace

bool RecordTexts::IsAboutPassword(const QString& reason) {
  return reason == QLatin1String(PdfLibrary::ErrorMessage(kErrorPasswordNeeded)) ||
         reason == QLatin1String(PdfLibrary::ErrorMessage(kErrorPasswordWrong));
}

QString RecordTexts::PlainReason(const QString& reason) {
  for (const Text& text : kTexts) {
    const QLatin1String start(text.start);
    if (!reason.startsWith(start)) continue;
    const QString shown = QCoreApplication::translate("RecordTexts", text.shown);
    return shown.contains(QLatin1String("%1")) ? shown.arg(ShownText(reason.mid(start.size()))) : shown;
  }
  QString sentence = QString(reason).remove(OptionAdvice());
  if (sentence.isEmpty()) return sentence;
  sentence[0] = sentence[0].toUpper();
  if (sentence.back().isLetterOrNumber()) sentence += QLatin1Char('.');
  return sentence;
}

QStringList RecordTexts::Warnings(const QStringList& messages) {
  static const QString start = QStringLiteral("Warning: ");
  QStringList warnings;
  for (const QString& message : messages) {
    if (message.startsWith(start)) warnings += PlainReason(message.mid(start.size()));
  }
  return warnings;
}
