// Feeds the Y4M reader with whatever the fuzzer thinks of: it may refuse, but it must neither crash nor hang.
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "host/errors.h"
#include "host/y4m.h"
#include "tests/host/memory_stream.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    using namespace clarivex;
    try {
        MemorySource source(std::span(bytes, size));
        Y4mReader reader(source);
        if (reader.Header().size.PlanarBytes() > size)
            return 0;  // one frame can never be whole; its memory is not worth taking
        Y4mFrame frame;
        while (reader.ReadFrame(frame))
            if (frame.samples.size() != reader.Header().size.PlanarBytes()) __builtin_trap();
        std::string line = Y4mHeaderLine(reader.Header(), reader.Header().size, false);
        line.pop_back();
        const Y4mHeader again = ParseY4mHeader(line);
        if (again.size != reader.Header().size || again.tags.size() != reader.Header().tags.size()) __builtin_trap();
    } catch (const RunError&) {
        return 0;
    }
    return 0;
}
