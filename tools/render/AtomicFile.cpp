#include "AtomicFile.h"

#include "Interruption.h"
#include "RenderError.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
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

// The pattern mkstemp turns into the temporary name for finalPath.
std::string temporaryPattern(const std::string& finalPath)
{
    if (finalPath == kStandardOutput)
    {
        const char* base = std::getenv("TMPDIR");
        return std::string(base && *base ? base : "/tmp") + "/velmoran-render.XXXXXX";
    }
    std::string folder;
    std::string name;
    splitPath(finalPath, folder, name);
    if (name.empty())
    {
        throw RenderError("cannot write '" + finalPath + "': the path names a folder, not a file");
    }
    // A hidden name in the same folder, so that the rename stays on one file system.
    return folder + "/." + name + ".XXXXXX";
}

// The permissions a file replacing finalPath gets: those of the file it replaces, else those any
// new file gets.
mode_t permissionsFor(const std::string& finalPath)
{
    struct stat existing = {};
    if (finalPath != kStandardOutput && lstat(finalPath.c_str(), &existing) == 0)
    {
        return existing.st_mode & 07777;
    }
    const mode_t mask = umask(0);
    umask(mask);
    return 0666 & ~mask;
}

// Copies a whole file to standard output; false when it cannot be read or written.
bool copyToStandardOutput(const std::string& path)
{
    const int source = open(path.c_str(), O_RDONLY);
    if (source < 0)
    {
        return false;
    }
    std::fflush(stdout);
    char buffer[65536];
    bool copied = true;
    for (ssize_t got = read(source, buffer, sizeof(buffer)); got != 0 && copied;
         got = read(source, buffer, sizeof(buffer)))
    {
        copied = got > 0;
        for (ssize_t done = 0; copied && done < got;)
        {
            const ssize_t written = write(STDOUT_FILENO, buffer + done, static_cast<size_t>(got - done));
            copied = written > 0;
            done += written;
        }
    }
    close(source);
    return copied;
}

} // namespace

std::string systemReason(int error)
{
    return std::strerror(error);
}

void checkReplaceable(const std::string& path)
{
    struct stat existing = {};
    if (path == kStandardOutput || lstat(path.c_str(), &existing) != 0 || S_ISREG(existing.st_mode))
    {
        return;
    }
    const char* what = S_ISDIR(existing.st_mode)    ? "a folder"
                       : S_ISLNK(existing.st_mode)  ? "a symbolic link"
                       : S_ISFIFO(existing.st_mode) ? "a pipe"
                                                    : "a device";
    throw usageError("will not replace '" + path + "': it is " + what +
                     ", not a regular file (give - to write to standard output)");
}

AtomicFile::AtomicFile(const std::string& finalPath) : mFinalPath(finalPath)
{
    checkReplaceable(finalPath);
    std::string pattern = temporaryPattern(finalPath);
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    // No interruption between making the file and remembering it, or it would stay behind.
    sigset_t interruptions;
    sigset_t previous;
    sigemptyset(&interruptions);
    sigaddset(&interruptions, SIGINT);
    sigaddset(&interruptions, SIGTERM);
    sigprocmask(SIG_BLOCK, &interruptions, &previous);
    const int descriptor = mkstemp(buffer.data());
    const int error = errno;
    if (descriptor >= 0)
    {
        mInterruptionSlot = rememberTemporaryFile(buffer.data());
    }
    sigprocmask(SIG_SETMASK, &previous, nullptr);
    if (descriptor < 0)
    {
        throw RenderError("cannot write '" + finalPath + "': " + systemReason(error));
    }
    // mkstemp makes the file private; the finished file gets the permissions it had or any new file gets.
    fchmod(descriptor, permissionsFor(finalPath));
    close(descriptor);
    mTemporaryPath = buffer.data();
}

AtomicFile::~AtomicFile()
{
    if (!mCommitted)
    {
        std::remove(mTemporaryPath.c_str());
    }
    forgetTemporaryFile(mInterruptionSlot);
}

void AtomicFile::commit()
{
    if (mFinalPath == kStandardOutput)
    {
        if (!copyToStandardOutput(mTemporaryPath))
        {
            throw RenderError("cannot write to standard output: " + systemReason(errno));
        }
        return;
    }
    // The path may have become something else while the job ran.
    checkReplaceable(mFinalPath);
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

std::vector<char> readFileStart(const std::string& path, size_t mostBytes)
{
    const int descriptor = open(path.c_str(), O_RDONLY);
    if (descriptor < 0)
    {
        throw RenderError("cannot read '" + path + "': " + systemReason(errno));
    }
    std::vector<char> bytes(mostBytes);
    size_t filled = 0;
    ssize_t got = 0;
    while (filled < mostBytes && (got = read(descriptor, bytes.data() + filled, mostBytes - filled)) > 0)
    {
        filled += static_cast<size_t>(got);
    }
    const int error = errno;
    close(descriptor);
    if (got < 0)
    {
        throw RenderError("cannot read '" + path + "': " + systemReason(error));
    }
    bytes.resize(filled);
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
