// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <string>

class HalvexPDFLibraryCPDylibCPP1311;

// What to say of a new base URL: how many relative links of the selected document lead elsewhere in Chrome than in
// Firefox with it, and whether a "/" at its end would help. Empty when there are none.
std::string LinkAdvice(HalvexPDFLibraryCPDylibCPP1311& library, const QString& base);
