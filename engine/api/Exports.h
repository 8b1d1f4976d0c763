// SPDX-License-Identifier: Apache-2.0
#pragma once

// The prototypes that the exported functions are checked against.
#define HPL_EXPORT __attribute__((visibility("default")))
#include "pdflib/LibraryExports.h"
