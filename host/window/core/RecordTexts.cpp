// SPDX-License-Identifier: Apache-2.0
#include "host/window/core/RecordTexts.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <vector>

#include "host/base/PdfLibrary.h"
#include "host/window/core/ShownText.h"
#include "pdflib/LibraryErrorCodes.h"

namespace {

// A message, and what people read instead, with the parts in parentheses.
struct Text {
  const char* pattern;
  const char* shown;
};

constexpr char kAboutLinks[] = "(\\d+) relative links?, (\\d+) leads? elsewhere in Chrome than in Firefox.*";

constexpr Text kTexts[] = {
    {"a password is needed", QT_TRANSLATE_NOOP("RecordTexts", "The file needs a password.")},
    {"wrong password", QT_TRANSLATE_NOOP("RecordTexts", "None of the passwords opens the file.")},
    {"not a PDF", QT_TRANSLATE_NOOP("RecordTexts", "This is not a PDF file.")},
    {"no such file", QT_TRANSLATE_NOOP("RecordTexts", "The file is not there any more.")},
    {"cannot read the file", QT_TRANSLATE_NOOP("RecordTexts", "You may not read the file, or its disk is damaged.")},
    {"damaged beyond repair: .*(?:several documents|two documents|another document|encrypted differently).*",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "The file seems to be several documents that were joined. Get each from where it came from.")},
    {"damaged beyond repair: the encryption dictionary .*",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "The part of the file that its password belongs to is damaged. Get it again from where it came "
                       "from.")},
    {"damaged beyond repair: the font .*",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "A font in the file is damaged: saving could lose text. Get the file again from where it came "
                       "from.")},
    {"damaged beyond repair(?:: .*)?",
     QT_TRANSLATE_NOOP("RecordTexts", "The file is damaged beyond repair. Get it again from where it came from.")},
    {"the file changed while it was open",
     QT_TRANSLATE_NOOP("RecordTexts", "Another program was changing the file. Try again.")},
    {"cannot write: (.*)", QT_TRANSLATE_NOOP("RecordTexts", "The result cannot be written: %1.")},
    {"cannot write", QT_TRANSLATE_NOOP("RecordTexts", "The result cannot be written.")},
    {"the disk is full", QT_TRANSLATE_NOOP("RecordTexts", "The disk is full. Free some space and try again.")},
    {"not enough memory", QT_TRANSLATE_NOOP("RecordTexts", "The file needs more memory than there is.")},
    {"its certification permits no change",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "Its certification permits no change. To change it all the same, allow breaking signatures.")},
    {"signed, and .*",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "Saving would break its signatures. To save it all the same, allow breaking signatures.")},
    {"took longer than the time limit of (.*)",
     QT_TRANSLATE_NOOP("RecordTexts", "It took too long (more than %1) and was given up.")},
    {"crashed: (.*)", QT_TRANSLATE_NOOP("RecordTexts", "The file made vorlane-run crash (%1). It stays as it was.")},
    {"interrupted", QT_TRANSLATE_NOOP("RecordTexts", "Cancelled. The file stays as it was.")},
    {"the same file as (.*)", QT_TRANSLATE_NOOP("RecordTexts", "It is the same file as %1.")},
    {"cannot make the backup (.*)", QT_TRANSLATE_NOOP("RecordTexts", "The backup cannot be made: %1.")},
    {"not a regular file|is a folder.*", QT_TRANSLATE_NOOP("RecordTexts", "This is not a file.")},
    {"a folder has that name", QT_TRANSLATE_NOOP("RecordTexts", "A folder has the name of the result.")},
    {"the PDF library does not support this|the PDF library failed",
     QT_TRANSLATE_NOOP("RecordTexts", "The PDF library cannot do this with the file.")},
    {"a part of the PDF library that this needs is missing",
     QT_TRANSLATE_NOOP("RecordTexts", "A part of this program is missing. Please install it again.")},
    {"encrypted in a way that is not supported",
     QT_TRANSLATE_NOOP("RecordTexts", "The file is encrypted in a way that this program cannot read.")},
    {"the file is too large", QT_TRANSLATE_NOOP("RecordTexts", "The file is too large for this program.")},
    {"hangs in the system and cannot be ended",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "The system does not answer when the file is read. Its disk or network may be at fault.")},
    {"its output (.*) would overwrite a file that is not an earlier result of it.*",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "The folder for the results has another file of that name: %1. Choose another folder.")},
    {"its output (.*) would overwrite (?:an input|the .*)",
     QT_TRANSLATE_NOOP(
         "RecordTexts",
         "The result %1 would replace a file that this run reads. Choose another folder for the results.")},
    {"cannot make the folder of its output (.*)",
     QT_TRANSLATE_NOOP("RecordTexts", "The folder of the result %1 cannot be made.")},
    {"its path is too long .*", QT_TRANSLATE_NOOP("RecordTexts", "The path of the file is too long for the system.")},
    {"(?:cannot read the folder|cannot be looked up): (.*)",
     QT_TRANSLATE_NOOP("RecordTexts", "The file cannot be looked up: %1.")},
    {"Cannot make the output folder '(.*)': .*",
     QT_TRANSLATE_NOOP("RecordTexts", "The folder for the results cannot be made: %1. Choose another one.")},
    {"Cannot use the action list '(.*)': .*",
     QT_TRANSLATE_NOOP("RecordTexts", "The action list %1 cannot be used: it is damaged, or cannot be read.")},
    {"Cannot (?:write|remove) the action list '(.*?)'.*",
     QT_TRANSLATE_NOOP(
         "RecordTexts",
         "The action list %1 cannot be written. Check that its folder can be written and that the disk is not full.")},
    {"Cannot use the settings '(.*)': .*",
     QT_TRANSLATE_NOOP("RecordTexts", "The settings file %1 cannot be used: it is damaged, or is for something else.")},
    // Why an address cannot be used.
    {"it is a path on a drive, not a URL",
     QT_TRANSLATE_NOOP("RecordTexts", "It is a path on a drive, not an address.")},
    {"it has no scheme, such as https://", QT_TRANSLATE_NOOP("RecordTexts", "It has no beginning such as https://.")},
    {"it has a space or a control character; .*",
     QT_TRANSLATE_NOOP("RecordTexts", "It has a space or a control character. Write a space as %20.")},
    {"it has the character (.*), which no URL may hold",
     QT_TRANSLATE_NOOP("RecordTexts", "It has the character %1, which no address can have.")},
    {"it has a '%' without two hexadecimal digits after it",
     QT_TRANSLATE_NOOP("RecordTexts", "It has a percent sign without two hexadecimal digits after it.")},
    {"it is not a valid URL", QT_TRANSLATE_NOOP("RecordTexts", "It is not a valid address.")},
    {"it names no host", QT_TRANSLATE_NOOP("RecordTexts", "It names no host, such as example.org.")},
    {"'.*': not every viewer follows links with the scheme '(.*):'",
     QT_TRANSLATE_NOOP("RecordTexts", "Not every viewer follows links that begin with %1:.")},
    {"'.*': it has a password, .*",
     QT_TRANSLATE_NOOP("RecordTexts", "The base URL has a password, which every reader of the file can see.")},
    // What a run may want to be known.
    {"'.*': it does not end in \"/\": .*", QT_TRANSLATE_NOOP("RecordTexts",
                                                             "The base URL does not end in a slash. Firefox then drops "
                                                             "its last part; Chrome and MuPDF join it with the link.")},
    {"'.*': it is written as (.*)", QT_TRANSLATE_NOOP("RecordTexts", "The base URL is written as %1.")},
    {"'.*': not every viewer understands a host outside ASCII; (.*) is safer",
     QT_TRANSLATE_NOOP("RecordTexts", "Not every viewer understands such a host name. %1 is safer.")},
    {"'.*': a base URL should have no .*",
     QT_TRANSLATE_NOOP(
         "RecordTexts",
         "A base URL should have no question mark and no number sign: viewers differ in what they make of it.")},
    {kAboutLinks,
     QT_TRANSLATE_NOOP("RecordTexts", "Relative links: %1. Those that lead elsewhere in Chrome than in Firefox: %2.")},
    {"its certification permits only filling in forms: .*",
     QT_TRANSLATE_NOOP("RecordTexts",
                       "Its certification permits filling in forms only: readers may report the change.")},
    {"its certification permits .*",
     QT_TRANSLATE_NOOP("RecordTexts", "Readers may report the change, since the file is certified.")},
    {"the whole file is rewritten.*, which breaks its signatures",
     QT_TRANSLATE_NOOP("RecordTexts", "The whole file is written anew, which breaks its signatures.")},
    {"the whole file is rewritten \\((.*)\\)", QT_TRANSLATE_NOOP("RecordTexts", "The whole file is written anew: %1.")},
};

// In the order of kTexts.
const std::vector<QRegularExpression>& Patterns() {
  static const std::vector<QRegularExpression> patterns = [] {
    std::vector<QRegularExpression> all;
    for (const Text& text : kTexts) {
      all.emplace_back(QRegularExpression::anchoredPattern(QLatin1String(text.pattern)),
                       QRegularExpression::DotMatchesEverythingOption);
    }
    return all;
  }();
  return patterns;
}

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

bool RecordTexts::IsAboutLinks(const QString& warning) {
  static const QRegularExpression pattern(QRegularExpression::anchoredPattern(QLatin1String(kAboutLinks)));
  return pattern.match(warning).hasMatch();
}

QString RecordTexts::PlainReason(const QString& reason) {
  if (reason.isEmpty()) return {};
  static const QRegularExpression ofAction(QStringLiteral("^action '([^']*)': (.*)$"));
  if (const QRegularExpressionMatch match = ofAction.match(reason); match.hasMatch()) {
    return QCoreApplication::translate("RecordTexts", "The action \"%1\" failed.").arg(ShownText(match.captured(1))) +
           QLatin1Char(' ') + PlainReason(match.captured(2));
  }
  for (std::size_t i = 0; i < Patterns().size(); ++i) {
    const QRegularExpressionMatch match = Patterns()[i].match(reason);
    if (!match.hasMatch()) continue;
    QString shown = QCoreApplication::translate("RecordTexts", kTexts[i].shown);
    for (int part = 1; part <= match.lastCapturedIndex(); ++part) shown = shown.arg(ShownText(match.captured(part)));
    return shown;
  }
  QString sentence = QString(reason).remove(OptionAdvice());
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
