// A folder that a test fills and that goes with it.
#pragma once

#include <filesystem>
#include <string>

#include "platform/win32.h"

namespace clarivex {

/// A folder of a new name beside the test program, removed with all that is in it. Windows only.
class TemporaryFolder {
public:
    explicit TemporaryFolder(const std::string& name) {
        char program[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        path = std::filesystem::path(program).parent_path() / name;
        std::filesystem::remove_all(path);
        std::filesystem::create_directories(path);
    }
    ~TemporaryFolder() {
        std::error_code ignored;  // a file in use stays until the next run
        std::filesystem::remove_all(path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// Copies a file that lies beside the program into this folder and returns the copy's full path.
    std::string Copy(const std::string& file, const std::string& newName = "") const {
        const std::filesystem::path target = path / (newName.empty() ? file : newName);
        std::filesystem::copy_file(path.parent_path() / file, target);
        return target.string();
    }

private:
    std::filesystem::path path;
};

}  // namespace clarivex
