// A folder that a test fills and that goes with it.
#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>

#include "platform/win32.h"

namespace clarivex {

/// The folder of the running test program. Windows only.
inline std::filesystem::path ProgramFolder() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

/// A folder of a new name beside the test program, removed with all that is in it. Windows only.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& name) : path(ProgramFolder() / name) {
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~TemporaryFolder() {
        std::error_code ignored;  // a file in use stays until the next run
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Copies a file of the program's folder into this one and returns the copy's full path.
    std::string Copy(const std::filesystem::path& source) const {
        const std::filesystem::path target = path / source.filename();
        std::filesystem::copy_file(ProgramFolder() / source, target);
        return target.string();
    }

private:
    const std::filesystem::path path;
};

}  // namespace clarivex
