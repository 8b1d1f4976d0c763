// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "pdflib/HalvexPDFLibraryCPDylibCPP1311.h"
#include "pdflib/LibraryErrorCodes.h"
#include "tests/support/Files.h"
#include "tests/support/PdfFile.h"

std::wstring Wide(const std::string& ascii);
std::string Narrow(const std::wstring& ascii);
bool StartsWith(const std::string& text, const std::string& start);

// The engine as a host sees it: the built file, through the wrapper.
class EngineFixture : public testing::Test {
 protected:
  EngineFixture();

  // Writes the file into the working folder and loads it.
  bool Load(const std::string& name, const std::string& bytes, const std::wstring& password = {});
  // What mutool shows of the object or path in the file.
  static std::string Show(const std::string& file, const std::string& what, const std::string& options = {});
  // Whether qpdf finds nothing to object to.
  static testing::AssertionResult Sound(const std::string& file, const std::string& options = {});

  HalvexPDFLibraryCPDylibCPP1311 library_;
};
