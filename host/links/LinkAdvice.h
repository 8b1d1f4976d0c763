// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>
#include <string>

class HalvexPDFLibraryCPDylibCPP1311;

// A warning about a new base URL: how many relative links of the selected document would lead elsewhere in Chrome than
// in Firefox, and whether a "/" at its end would help. Empty when there are no such links.
std::string LinkAdvice(HalvexPDFLibraryCPDylibCPP1311& library, const QString& base);
