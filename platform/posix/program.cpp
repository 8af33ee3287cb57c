#include "platform/program.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace clarivex {

std::string ProgramFolder() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
}

std::string BecomeProgram(const std::string& path, const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {path};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& word : words) pointers.push_back(word.data());
    pointers.push_back(nullptr);
    execv(path.c_str(), pointers.data());
    return std::strerror(errno);
}

}  // namespace clarivex
