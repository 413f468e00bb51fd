#pragma once
// Start-up tidying of the program folder: temporary files that a killed writer left behind.
namespace nocturnel {

// Removes the leftover temporaries (older than the running program, writer gone) from the
// program folder and its user folders. Skipped, silently, while another process holds the
// folder lock: its own temporaries are then in use.
int removeProgramFolderLeftovers();

}  // namespace nocturnel
