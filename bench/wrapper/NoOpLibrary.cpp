// SPDX-License-Identifier: Apache-2.0
// A PDF library whose functions do nothing, so that only the way to them is measured.
#define HPL_EXPORT __attribute__((visibility("default")))
#include "pdflib/LibraryExports.h"

extern "C" {
#define HPL_SERVICE(name, c_result, c_parameters) \
  c_result HPL##name c_parameters {               \
    return {};                                    \
  }
#define HPL_FUNCTION(name, result, kinds, c_result, c_parameters, c_names) \
  c_result HPL##name c_parameters {                                        \
    return {};                                                             \
  }
#pragma GCC diagnostic ignored "-Wunused-parameter"
#include "pdflib/LibraryFunctions.def"
}
