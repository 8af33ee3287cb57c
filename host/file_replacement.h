// A file that takes its name, and the place of what bears it, only when it is whole.
#pragma once

#include <functional>
#include <string>

#include "host/byte_stream.h"

namespace clarivex {

/// Written under a name of its own beside `path`; what stands at `path` is not touched before TakePlace. All errors have
/// the path in front.
class FileReplacement {
public:
    /// Throws RunError when the new file cannot be made, or when what stands at `path` could not be written itself.
    explicit FileReplacement(const std::string& path);
    FileReplacement(const FileReplacement&) = delete;
    FileReplacement& operator=(const FileReplacement&) = delete;

    /// Has the whole content written, and closes the file. Throws RunError, that of `write` included.
    void Fill(const std::function<void(ByteSink&)>& write);

    /// Call once, after Fill; without it the new file is deleted. Throws RunError.
    void TakePlace();

private:
    /// Deleted at the end, unless it has another name by then.
    struct PartFile {
        ~PartFile();
        std::string path;
    };

    std::string path;
    PartFile part;
    FileSink sink;
};

}  // namespace clarivex
