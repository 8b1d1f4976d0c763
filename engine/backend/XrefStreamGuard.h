// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace engine {

class InputFile;

// Refuses small files whose cross-reference streams, which the parser decodes whole when it opens a file, inflate to so
// much or name rows so long that it would take the machine's memory. Large files pass: what they need is in proportion
// to their size. All objects are looked at, wherever one starts, since the file may be damaged.
// Throws EngineError kErrorDamaged.
void GuardXrefStreams(const InputFile& file);

}  // namespace engine
