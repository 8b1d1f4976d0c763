// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <string_view>

// The program's two outputs. Written unbuffered, so nothing is pending when worker processes are forked.
namespace Console {

// Opens the standard descriptors that are closed, so that no file of the program gets their numbers. Reading or writing
// one of them is still an error. Call before anything is opened.
void OpenMissingDescriptors();

// Writes to the standard output; false when it cannot be written (a closed pipe, a full disk).
bool Print(const QByteArray& text);
bool Print(const QString& text);
// "vorlane-run: MESSAGE" on the standard error, always one line.
void Error(const QString& message);
// "SUBJECT: MESSAGE" on the standard error, always one line; the subject is a file's name.
void ErrorAbout(std::string_view subject, std::string_view message);

// The text with control characters as "\xNN", so that a file's name cannot break a line or drive a terminal.
QByteArray OneLine(std::string_view text);
// Writes all bytes, also after interruptions; false on an error.
bool WriteAll(int descriptor, std::string_view bytes);

}  // namespace Console
