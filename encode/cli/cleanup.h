// Temporary files the tool made are removed even when a signal (Ctrl-C, a
// closed pipe) ends it.
#pragma once

#include <string>

namespace fe::cli {

void RemoveTemporariesOnSignals();

// A temporary file or folder to remove if a signal ends the process; the
// returned slot is given back with Forget once it is removed or kept.
int RememberTemporary(const std::string& path);
void ForgetTemporary(int slot);

}  // namespace fe::cli
