#include "host/file_replacement.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "host/naming.h"
#include "platform/paths.h"

namespace clarivex {

namespace {

namespace files = std::filesystem;

/// A name that is free, so that nobody's file is lost.
std::string FreeNameBeside(const std::string& path) {
    std::error_code error;
    if (files::is_directory(PathOf(path), error)) throw RunError("cannot be replaced: it is a folder; name a file");
    if (files::exists(PathOf(path), error) && !OwnedFile(std::fopen(path.c_str(), "r+b")))  // opened without a change
        throw RunError(std::string("cannot be replaced: ") + std::strerror(errno) + "; check its rights");
    std::string part = path + ".part";
    if (files::exists(files::symlink_status(PathOf(part), error)))
        throw RunError("cannot be written: " + part + " is in its way; delete or rename that");
    return part;
}

}  // namespace

FileReplacement::PartFile::~PartFile() { std::remove(path.c_str()); }

FileReplacement::FileReplacement(const std::string& finalPath)
    : path(finalPath), part{Naming(path, [this] { return FreeNameBeside(path); })}, sink(Naming(path, [this] {
          return FileSink(part.path);
      })) {}

void FileReplacement::Fill(const std::function<void(ByteSink&)>& write) {
    Naming(path, [&] {
        write(sink);
        sink.Close();
    });
}

void FileReplacement::TakePlace() {
    std::error_code error;
    files::rename(PathOf(part.path), PathOf(path), error);
    if (error) throw RunError(path + ": cannot be replaced: " + error.message());
}

}  // namespace clarivex
