// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDF.hh>

#include "engine/document/BackendDocument.h"

namespace engine {

enum class SearchDepth {
  kFields,      // the interactive form's fields and the catalog's /Perms
  kEverywhere,  // pages' widgets and all objects as well; what cannot be read where a signature may be counts as one
};

// Counts what holds a signature (ISO 32000-1, 12.7.4.5 and 12.8): signature fields with a value, usage rights and
// certifications that no field has, and for kEverywhere every other object that looks like a signature. Reads the
// certification level. Each object is visited once, however the form's tree is made.
BackendDocument::Signatures SearchSignatures(QPDF& document, SearchDepth depth);

}  // namespace engine
