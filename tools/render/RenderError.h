#pragma once

#include <stdexcept>
#include <string>

namespace velmoran::render
{

// A failure the user must read: the message names the file or setting and the cause. Usage
// errors (bad arguments) end the program with a different exit code than failures of the job.
class RenderError : public std::runtime_error
{
public:
    enum class Kind
    {
        usage,
        failure,
    };

    // An error with the text the user reads.
    explicit RenderError(const std::string& message, Kind kind = Kind::failure)
        : std::runtime_error(message), mKind(kind)
    {
    }

    // Whether the command line was at fault or the job itself.
    Kind kind() const { return mKind; }

private:
    Kind mKind;
};

// A usage error: the command line asked for something that cannot be done.
inline RenderError usageError(const std::string& message)
{
    return RenderError(message, RenderError::Kind::usage);
}

} // namespace velmoran::render
