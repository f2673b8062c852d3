#pragma once

#include <string>
#include <vector>

namespace velmoran::render
{

// The output path that stands for standard output.
constexpr const char* kStandardOutput = "-";

// A file that appears under its final name only when it is complete: it is written under a
// temporary name in the same folder and renamed by commit(). Without commit the destructor
// removes the temporary file, so an interrupted or failed job leaves nothing half-written. Only a
// regular file is ever replaced, and it keeps its permissions. For kStandardOutput the temporary
// file lies in the folder for temporary files and commit() copies it to standard output.
class AtomicFile
{
public:
    // Reserves a temporary file beside finalPath; throws RenderError naming finalPath when the
    // folder cannot be written or finalPath names something other than a regular file.
    explicit AtomicFile(const std::string& finalPath);
    ~AtomicFile();
    AtomicFile(const AtomicFile&) = delete;
    AtomicFile& operator=(const AtomicFile&) = delete;

    // The temporary path to write to.
    const std::string& temporaryPath() const { return mTemporaryPath; }
    // The name the file gets on commit.
    const std::string& finalPath() const { return mFinalPath; }
    // Moves the temporary file to its final name; throws RenderError when that fails.
    void commit();

private:
    std::string mFinalPath;
    std::string mTemporaryPath;
    bool mCommitted = false;
    int mInterruptionSlot = -1;
};

// The whole content of a file; throws RenderError naming the file when it cannot be read.
std::vector<char> readFileBytes(const std::string& path);
// At most mostBytes bytes from the start of a file (so a device without end cannot exhaust
// memory); throws RenderError naming the file when it cannot be read or is a folder.
std::vector<char> readFileStart(const std::string& path, size_t mostBytes);
// Throws a usage RenderError naming path when it exists and is not a regular file (a device, a
// folder, a pipe or a symbolic link), which the tool never replaces.
void checkReplaceable(const std::string& path);
// Writes bytes to path through an AtomicFile; throws RenderError naming the file on failure.
void writeFileBytes(const std::string& path, const std::vector<char>& bytes);

// The text of errno as the system gives it ("No such file or directory").
std::string systemReason(int error);

} // namespace velmoran::render
