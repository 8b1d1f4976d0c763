// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <QStringList>

// " Did you mean 'WORD'?" with the known word that is the fewest edits away; empty when no known word is near. Letter
// case does not count.
QString Suggestion(const QString& typed, const QStringList& known);
