// How a damaged database is divided into pages, when its header is not to be believed.
#pragma once

#include "upkeep/recovery/PageFile.h"

namespace tsl {

// Divides the file as the header says, or as the component's own files are: whichever shows more
// records.
void ChooseLayout(CPageFile& file);

} // namespace tsl
