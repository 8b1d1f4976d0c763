// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// The known word that a mistyped one most likely means: the nearest by edits, and near enough. Letter case does not
// count. Empty when none is near.
QString NearestWord(const QString& typed, const QStringList& known);

// " Did you mean 'WORD'?", or nothing when no known word is near.
QString Suggestion(const QString& typed, const QStringList& known);
