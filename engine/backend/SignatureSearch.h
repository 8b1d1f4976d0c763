// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <qpdf/QPDF.hh>

#include "engine/document/BackendDocument.h"

namespace engine {

// Counts the signature fields of the interactive form that hold a signature (ISO 32000-1, 12.7.4.5) and reads the
// certification level. Each field is visited once, however the form's tree is made.
BackendDocument::Signatures SearchSignatures(QPDF& document);

}  // namespace engine
