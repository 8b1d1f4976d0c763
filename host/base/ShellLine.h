// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// The words as one command for a POSIX shell. Bytes of names that are not UTF-8 (see NativeName) become calls of
// printf, so that the command can be copied as text.
QString ShellLine(const QStringList& words);
