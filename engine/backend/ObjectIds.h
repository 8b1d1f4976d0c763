// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <qpdf/QPDFObjGen.hh>

#include "engine/syntax/ObjectId.h"

namespace engine {

// An object's number and generation as the parser has them, and as the engine has them.
inline ObjectId IdOf(QPDFObjGen id) {
  return {static_cast<std::uint32_t>(id.getObj()), static_cast<std::uint32_t>(id.getGen())};
}
inline QPDFObjGen IdOf(ObjectId id) {
  return QPDFObjGen(static_cast<int>(id.number), static_cast<int>(id.generation));
}

}  // namespace engine
