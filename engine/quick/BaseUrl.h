// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

namespace engine {

// The catalog's text with another base URL (/Base in its /URI dictionary; ISO 32000-1, 12.6.4.7); every other byte of
// it is kept. `url` is ASCII; its delimiters are escaped. An empty one removes /Base, and /URI when nothing else is in
// it. A /URI that is a reference gives way to a new dictionary. Throws PdfSyntaxError.
std::string WithBaseUrl(const std::string& catalog, const std::string& url);

}  // namespace engine
