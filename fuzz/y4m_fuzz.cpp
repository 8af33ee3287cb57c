// Feeds the Y4M reader with whatever the fuzzer thinks of: it may refuse, but it must neither crash nor hang.
#include "fuzz/support/target.h"
#include "host/errors.h"
#include "host/y4m.h"
#include "tests/host/memory_stream.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    using namespace clarivex;
    try {
        MemorySource source(std::span(bytes, size));
        Y4mReader reader(source);
        const Y4mHeader& header = reader.Header();
        if (header.size.PlanarBytes() > size) return 0;  // no frame can be whole; its memory is not worth taking
        Y4mFrame frame;
        while (reader.ReadFrame(frame)) Demand(frame.samples.size() == header.size.PlanarBytes(), "a frame in part");
        std::string line = Y4mHeaderLine(header, {.size = header.size});
        line.pop_back();
        const Y4mHeader again = ParseY4mHeader(line);
        Demand(again.size == header.size && again.tags.size() == header.tags.size(), "the header comes back changed");
    } catch (const RunError&) {
    }
    return 0;
}
