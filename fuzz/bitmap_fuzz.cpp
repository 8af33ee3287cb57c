// Feeds the bitmap reader with whatever the fuzzer thinks of: it may refuse, and what it takes comes through the writer.
#include "fuzz/support/target.h"
#include "host/bitmap.h"
#include "host/errors.h"
#include "tests/host/memory_stream.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    using namespace clarivex;
    try {
        MemorySource source(std::span(bytes, size));
        const Bitmap bitmap = ReadBitmap(source);
        MemorySink sink;
        WriteBitmap(sink, bitmap);
        MemorySource written(sink.text);
        const Bitmap again = ReadBitmap(written);
        Demand(again.size == bitmap.size && again.pixels == bitmap.pixels, "the writer changes the picture");
    } catch (const RunError&) {
    }
    return 0;
}
