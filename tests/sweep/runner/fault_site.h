// Which argument a faulting access hit: the release build's guard page after each array is told apart by
// address, so that a crash report names the array and how far past its end the access went.
#pragma once

#include <cstddef>

namespace sweep {

// The arrays of the call about to be made (cleared by the next call's first note).
void forget_arrays();
void note_array(const char* name, const void* data, std::size_t bytes);

// Installs the handler (in a child): on SIGSEGV it writes "sweep: fault ..." to the error output, naming the
// array, then lets the signal end the process as before.
void locate_faults();

}  // namespace sweep
