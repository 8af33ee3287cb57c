// clarivex_manual FOLDER: writes the manual page clarivex.1 and the completion clarivex.bash into a folder, for the build.
#include <cstdio>
#include <fstream>
#include <string>

#include "host/completion.h"
#include "host/manual.h"

namespace {

bool Write(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    file.close();
    if (!file) std::fprintf(stderr, "clarivex_manual: %s: cannot be written\n", path.c_str());
    return !file.fail();
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 2) {
        std::fprintf(stderr, "clarivex_manual: one folder is needed, to write clarivex.1 and clarivex.bash into\n");
        return 2;
    }
    const std::string folder = arguments[1];
    return Write(folder + "/clarivex.1", clarivex::ManualPage()) &&
                   Write(folder + "/clarivex.bash", clarivex::BashCompletion())
               ? 0
               : 1;
}
