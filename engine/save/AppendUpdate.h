// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <vector>

#include "engine/quick/FileTail.h"
#include "engine/save/ChangedObject.h"

namespace engine {

class InputFile;
class OutputFile;

// Writes the source byte for byte and after it an incremental update (ISO 32000-1, 7.5.6): the changed objects and a
// cross-reference section of the file's own kind. With tail.kept the section is complete and has no /Prev; it is a
// stream if an object is in an object stream, else a table. The trailer repeats the source's; /ID gets a new second
// part that depends on the old one and the changes only, so that the same input gives the same bytes. `changes` names
// every object once; new objects have numbers from tail.size on. Does not commit the output. Throws EngineError as
// OutputFile does.
void AppendUpdate(const InputFile& source, const FileTail& tail, const std::vector<ChangedObject>& changes,
                  OutputFile& output);

}  // namespace engine
