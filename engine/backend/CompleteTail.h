// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <qpdf/QPDF.hh>

#include "engine/quick/FileTail.h"

namespace engine {

class InputFile;

// What a complete section for all objects of the document's cross-references has; no value when the catalog is not an
// object of its own.
std::optional<FileTail> CompleteTail(QPDF& document, const InputFile& file);

}  // namespace engine
