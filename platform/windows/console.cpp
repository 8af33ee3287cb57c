// Console and pipes on Windows.
#include "platform/console.h"

#include <fcntl.h>
#include <io.h>

namespace clarivex {

bool IsTerminal(std::FILE* stream) { return _isatty(_fileno(stream)) != 0; }

void SetBinaryMode(std::FILE* stream) { _setmode(_fileno(stream), _O_BINARY); }

void FillStandardStreams() {
    const auto fill = [](std::FILE* stream, const char* mode) {
        if (_fileno(stream) < 0 || _get_osfhandle(_fileno(stream)) < 0) std::freopen("NUL", mode, stream);
    };
    fill(stdin, "w");
    fill(stdout, "r");
    fill(stderr, "r");
}

void ReportFailedWrites() {}  // such a write returns an error here by itself

}  // namespace clarivex
