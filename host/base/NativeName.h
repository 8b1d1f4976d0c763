// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QByteArray>
#include <QString>
#include <string>
#include <string_view>

// File names are bytes, and any bytes must come back as they were, whatever the locale. Names are read as UTF-8; a byte
// that is not part of well-formed UTF-8 becomes the code unit U+DC00 + byte (U+DC80 to U+DCFF), and back.
namespace NativeName {

QString ToText(std::string_view bytes);
QByteArray ToBytes(const QString& text);
// 32-bit units for the PDF library, with undecodable bytes as above.
std::wstring ToWide(std::string_view bytes);
// One unit for each byte: how the wrapper wants the path of the library file.
std::wstring ToUnitPerByte(std::string_view bytes);

// Makes Qt decode and encode arguments and file names in this way, in every locale. Call it before the application
// object is made.
void InstallAsLocale();

}  // namespace NativeName
