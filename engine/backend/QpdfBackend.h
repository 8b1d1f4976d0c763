// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "engine/document/Backend.h"

namespace engine {

// Documents over libqpdf, fonts over fontconfig.
class QpdfBackend : public Backend {
 public:
  std::unique_ptr<BackendDocument> Open(std::shared_ptr<const InputFile> file, const std::string& password) override;
  std::vector<std::string> FontFamilies(const std::string& language) override;
};

}  // namespace engine
