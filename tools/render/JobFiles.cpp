#include "JobFiles.h"

#include "AtomicFile.h"
#include "RenderError.h"

#include <sys/stat.h>

#include <optional>

namespace velmoran::render
{

namespace
{

// What makes a file itself: its device and inode when it exists, else its folder's and its name.
struct Identity
{
    dev_t device = 0;
    ino_t inode = 0;
    std::string name;

    bool operator==(const Identity& other) const
    {
        return device == other.device && inode == other.inode && name == other.name;
    }
};

std::optional<Identity> identityOf(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) == 0)
    {
        return Identity{status.st_dev, status.st_ino, {}};
    }
    const size_t slash = path.find_last_of('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty() || name == "." || name == ".." || stat(folder.c_str(), &status) != 0)
    {
        return std::nullopt;
    }
    return Identity{status.st_dev, status.st_ino, name};
}

bool isFileOfTheJob(const JobFile& file)
{
    return !file.path.empty() && file.path != kStandardOutput;
}

} // namespace

void checkJobFiles(const std::vector<JobFile>& files)
{
    std::vector<std::optional<Identity>> identities;
    for (const JobFile& file : files)
    {
        identities.push_back(isFileOfTheJob(file) ? identityOf(file.path) : std::nullopt);
    }
    for (size_t first = 0; first < files.size(); ++first)
    {
        for (size_t second = first + 1; second < files.size(); ++second)
        {
            if ((files[first].written || files[second].written) && identities[first] &&
                identities[first] == identities[second])
            {
                throw usageError(files[second].role + " '" + files[second].path + "' is the same file as " +
                                 files[first].role + " '" + files[first].path +
                                 "': it would be overwritten; choose another name");
            }
        }
    }
    for (const JobFile& file : files)
    {
        if (file.written && isFileOfTheJob(file))
        {
            checkReplaceable(file.path);
        }
    }
}

} // namespace velmoran::render
