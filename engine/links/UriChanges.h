// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <map>
#include <string>

namespace engine {

// The text of an object with other values of /URI in some of its dictionaries. `uris` maps the paths of these
// dictionaries (see LocatedValue) to the values. Takes time in proportion to the text. Throws PdfSyntaxError.
std::string WithUris(const std::string& text, const std::map<std::string, std::string>& uris);

}  // namespace engine
