// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

// The text as one line for a window: control characters become spaces, bytes of names that are not UTF-8 become
// replacement characters, and what is longer than 500 characters is cut off. Files can hold megabytes of text where
// people expect a line.
QString ShownText(const QString& text);
