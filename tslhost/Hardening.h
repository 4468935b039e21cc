// What the process gives up before it does anything else.
#pragma once

namespace tsl {

// Libraries are looked for in the folder of the system only, where they are not named by their
// whole path or by an assembly: never beside the program or in the folder that it was started in,
// which others may be able to write. Links in the file system that only administrators could not
// have made are not followed. As far as the system has it: the first since Windows 8 (7 with its
// updates), the second since Windows 11. To be called once, before there is a second thread.
void HardenProcess() noexcept;

} // namespace tsl
