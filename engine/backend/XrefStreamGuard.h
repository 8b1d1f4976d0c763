// SPDX-License-Identifier: Apache-2.0
#pragma once

namespace engine {

class InputFile;

// Refuses small files whose cross-reference streams, which the parser decodes whole when it opens a file, inflate to so
// much or name rows so long that it would take the machine's memory. Large files pass: what they need is in proportion
// to their size. The streams are searched for as text, since the file may be damaged; what hides from that (a keyword
// inside a string) passes as well, so that a host that reads files of strangers limits its memory.
// Throws EngineError kErrorDamaged.
void GuardXrefStreams(const InputFile& file);

}  // namespace engine
