#pragma once

#include <string>
#include <vector>

namespace velmoran::render
{

// A file named on the command line and what the job does with it.
struct JobFile
{
    std::string role; // "the input", "the state to save", ...
    std::string path;
    bool written = false;
};

// Refuses a job in which a file it writes is also another of its files, compared by identity
// (device and inode of the file, or of its folder and its name for a file still to be made), so
// that "in.wav", "./in.wav", an absolute path, a symbolic or a hard link are all seen as one
// file; refuses too a file to write that exists and is not a regular file. Throws a usage
// RenderError naming both files; empty paths and standard output ("-") are left out.
void checkJobFiles(const std::vector<JobFile>& files);

} // namespace velmoran::render
