// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "engine/document/BackendDocument.h"

namespace engine {

// What the backend module offers; see BackendModule.
class Backend {
 public:
  virtual ~Backend() = default;

  // Opens a document. Throws EngineError: kErrorNotPdf, kErrorDamaged, kErrorPasswordNeeded, kErrorPasswordWrong or
  // kErrorUnsupportedSecurity.
  virtual std::unique_ptr<BackendDocument> Open(std::shared_ptr<const InputFile> file, const std::string& password) = 0;

  // The family names of the installed fonts (UTF-8), sorted, each once; only of those that cover the language (BCP 47),
  // if it is not empty.
  virtual std::vector<std::string> FontFamilies(const std::string& language) = 0;
};

}  // namespace engine

// The module's only export. What it returns lives as long as the process.
extern "C" engine::Backend* HalvexEngineBackend();
