#include "AtomicFile.h"

#include "RenderError.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace velmoran::render
{

namespace
{

// The folder part of a path ("." for a bare name) and the name part.
void splitPath(const std::string& path, std::string& folder, std::string& name)
{
    const size_t slash = path.find_last_of('/');
    if (slash == std::string::npos)
    {
        folder = ".";
        name = path;
        return;
    }
    folder = slash == 0 ? "/" : path.substr(0, slash);
    name = path.substr(slash + 1);
}

} // namespace

std::string systemReason(int error)
{
    return std::strerror(error);
}

AtomicFile::AtomicFile(const std::string& finalPath) : mFinalPath(finalPath)
{
    std::string folder;
    std::string name;
    splitPath(finalPath, folder, name);
    if (name.empty())
    {
        throw RenderError("cannot write '" + finalPath + "': the path names a folder, not a file");
    }
    // A hidden name in the same folder, so that the rename stays on one file system.
    std::string pattern = folder + "/." + name + ".XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    const int descriptor = mkstemp(buffer.data());
    if (descriptor < 0)
    {
        throw RenderError("cannot write '" + finalPath + "': " + systemReason(errno));
    }
    // mkstemp makes the file private; the finished file gets the permissions any new file gets.
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(descriptor, 0666 & ~mask);
    close(descriptor);
    mTemporaryPath = buffer.data();
}

AtomicFile::~AtomicFile()
{
    if (!mCommitted)
    {
        std::remove(mTemporaryPath.c_str());
    }
}

void AtomicFile::commit()
{
    if (std::rename(mTemporaryPath.c_str(), mFinalPath.c_str()) != 0)
    {
        throw RenderError("cannot write '" + mFinalPath + "': " + systemReason(errno));
    }
    mCommitted = true;
}

std::vector<char> readFileBytes(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    if (!stream)
    {
        throw RenderError("cannot read '" + path + "': " + systemReason(errno));
    }
    std::vector<char> bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (stream.bad())
    {
        throw RenderError("cannot read '" + path + "': " + systemReason(errno));
    }
    return bytes;
}

void writeFileBytes(const std::string& path, const std::vector<char>& bytes)
{
    AtomicFile file(path);
    {
        std::ofstream stream(file.temporaryPath(), std::ios::binary | std::ios::trunc);
        stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        stream.flush();
        if (!stream)
        {
            throw RenderError("cannot write '" + path + "': " + systemReason(errno));
        }
    }
    file.commit();
}

} // namespace velmoran::render
