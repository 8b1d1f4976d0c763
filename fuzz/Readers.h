// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "fuzz/Reading.h"

/// Each reads a whole PDF file with one library, as far as that library gets. They may crash, hang and take all memory
/// over a damaged file: call them in a process of their own.
Reading ReadWithQpdf(const std::string& file);
/// The same, but with every object outside of object streams read first. The library rebuilds wrong cross-references
/// when it meets them, and keeps the objects that it has read before.
Reading ReadWithQpdfPlainFirst(const std::string& file);
Reading ReadWithMupdf(const std::string& file);
Reading ReadWithPoppler(const std::string& file);
