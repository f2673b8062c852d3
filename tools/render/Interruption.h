#pragma once

#include <cstdio>
#include <string>

namespace velmoran::render
{

// Ctrl-C (SIGINT) and SIGTERM in the middle of a job: the files being written are removed, an
// unfinished progress line is ended, and the program exits with the shell's status for the
// signal (130, 143). Everything the handler touches is set up beforehand, so that it only calls
// unlink, write and _exit.
void installInterruptionHandlers();

// Marks a temporary file for removal on interruption; the slot to give back to
// forgetTemporaryFile, or -1 when every slot is taken.
int rememberTemporaryFile(const std::string& path);
// Ends the interruption's claim on a temporary file that was renamed or removed.
void forgetTemporaryFile(int slot);

// Whether a progress line without its line end stands on stream (so an interruption ends it).
void setProgressLineOpen(std::FILE* stream, bool open);

} // namespace velmoran::render
