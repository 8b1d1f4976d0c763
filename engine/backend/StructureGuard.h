// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace engine {

class InputFile;

// Refuses small files whose cross-reference or object streams inflate to so much that the parser, which decodes them
// whole, would take the machine's memory. Large files pass: what they need is in proportion to their size. Streams of
// encrypted files cannot be looked into and pass as well.
// Throws EngineError kErrorDamaged.
void GuardStructure(const InputFile& file);

}  // namespace engine
