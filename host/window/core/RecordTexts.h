// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// What the error messages in vorlane-run's records mean for people at the window.
namespace RecordTexts {

// Whether the file could be opened with the right password.
bool IsAboutPassword(const QString& reason);

// Whether it counts the links that lead elsewhere in another viewer.
bool IsAboutLinks(const QString& warning);

// The message as a sentence, without the names of options of the command line.
QString PlainReason(const QString& reason);

// The warnings among what the program prints about itself, as sentences.
QStringList Warnings(const QStringList& messages);

}  // namespace RecordTexts
