// Puts a file written through a temporary file in its output's place.
#pragma once

#include "errors/last_error.h"
#include "platform/platform.h"

namespace fe::files {

// Moves the finished temporary file over `replaced`, the file that stood at
// the output's name (only while it is unchanged), or to the name while it
// is still free when `replaced` is null. On failure the temporary file is
// removed and the failure's code kept.
inline bool PlaceFinishedFile(const char* temporary, const platform::FileIdentity& created,
                              const char* output, const platform::FileIdentity* replaced) {
  const bool placed = replaced != nullptr
                          ? platform::ReplaceFileAtomically(temporary, output, *replaced)
                          : platform::MoveFileToNewName(temporary, output);
  if (!placed) {
    const KeepLastError keep;
    platform::RemoveCreatedFile(temporary, created);
  }
  return placed;
}

}  // namespace fe::files
