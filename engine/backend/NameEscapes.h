// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDF.hh>

namespace engine {

// Writes every "#" in the document's names as "#23", in memory: the parser decodes names, but its writer leaves "#" as
// it is, so that a name with "#41" in its bytes would come out as one with "A" (ISO 32000-1, 7.3.5).
void EscapeNames(QPDF& document);

}  // namespace engine
