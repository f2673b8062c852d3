#pragma once

#include <string>
#include <vector>

namespace velmoran::render
{

// A file that appears under its final name only when it is complete: it is written under a
// temporary name in the same folder and renamed by commit(). Without commit the destructor
// removes the temporary file, so an interrupted or failed job leaves nothing half-written.
class AtomicFile
{
public:
    // Reserves a temporary file beside finalPath; throws RenderError naming finalPath when the
    // folder cannot be written.
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
};

// The whole content of a file; throws RenderError naming the file when it cannot be read.
std::vector<char> readFileBytes(const std::string& path);
// Writes bytes to path through an AtomicFile; throws RenderError naming the file on failure.
void writeFileBytes(const std::string& path, const std::vector<char>& bytes);

// The text of errno as the system gives it ("No such file or directory").
std::string systemReason(int error);

} // namespace velmoran::render
