// Windows bitmaps in memory, friendly and hostile.
#include "host/bitmap.h"

#include <gtest/gtest.h>

#include "tests/host/error_of.h"
#include "tests/host/memory_stream.h"

namespace clarivex {
namespace {

std::string Word(uint32_t value, int bytes = 4) {
    std::string text;
    for (; bytes > 0; --bytes, value >>= 8) text += static_cast<char>(value);
    return text;
}

/// The two headers of a bitmap with its pixels right behind them.
std::string Headers(uint32_t width, uint32_t height, uint32_t bits, uint32_t compression = 0, uint32_t gap = 0) {
    return "BM" + Word(0) + Word(0) + Word(54 + gap) + Word(40) + Word(width) + Word(height) + Word(1, 2) +
           Word(bits, 2) + Word(compression) + std::string(20, '\0');
}

const std::string usualMasks = Word(0xFF0000) + Word(0xFF00) + Word(0xFF);

Bitmap Read(const std::string& bytes) {
    MemorySource source(bytes);
    return ReadBitmap(source);
}

TEST(Bitmap, ReadsBothDepthsAndBothRowOrders) {
    const std::vector<uint8_t> topRowFirst = {'a', 'b', 'c', 'd', 'e', 'f', 'g', 'h', 'i',
                                              'j', 'k', 'l', 'm', 'n', 'o', 'p', 'q', 'r'};
    const std::string top24 = "abcdefghi...", bottom24 = "jklmnopqr...";  // padded to 12 bytes
    const std::string top32 = "abc.def.ghi.", upwards32 = "jkl.mno.pqr." + top32;
    const uint32_t topDown = static_cast<uint32_t>(-2);
    std::string longHeader = Headers(3, 2, 32, 3, 68) + usualMasks + std::string(56, '\0') + upwards32;
    longHeader[14] = 108;
    for (const std::string& file : {Headers(3, topDown, 24) + top24 + bottom24, Headers(3, 2, 32) + upwards32,
                                    Headers(3, 2, 24, 0, 7) + "palette" + bottom24 + top24 + "and more",
                                    Headers(3, 2, 32, 3, 12) + usualMasks + upwards32, longHeader}) {
        const Bitmap bitmap = Read(file);
        EXPECT_EQ(bitmap.size, (PictureSize{3, 2}));
        EXPECT_EQ(bitmap.pixels, topRowFirst);
    }
}

TEST(Bitmap, WritesWhatTheReaderReads) {
    const Bitmap bitmap{{3, 2}, {0, 1, 2, 3, 4, 5, 6, 7, 8, 250, 251, 252, 253, 254, 255, 9, 10, 11}};
    MemorySink sink;
    WriteBitmap(sink, bitmap);
    EXPECT_EQ(sink.text.substr(2, 4), Word(54 + 2 * 12)) << "the file's size";
    EXPECT_EQ(sink.flushedBytes, sink.text.size());
    const Bitmap again = Read(sink.text);
    EXPECT_EQ(again.size, bitmap.size);
    EXPECT_EQ(again.pixels, bitmap.pixels);
    MemorySink full(60);
    EXPECT_THROW(WriteBitmap(full, bitmap), RunError);
}

TEST(Bitmap, ErrorsNameTheFieldAndWhatWouldBeRight) {
    const auto says = [](const std::string& bytes, const char* words) { ExpectError(words, [&] { Read(bytes); }); };
    says("", "is not a Windows bitmap; ffmpeg");
    says("BM12345", "ends inside its first header");
    says(Headers(0, 1, 24), "width is 0: it must be 1 to 8192");
    says(Headers(8193, 1, 24), "width is 8193: it must be 1 to 8192");
    says(Headers(0x80000000, 1, 24), "width is -2147483648");
    says(Headers(1, 0x80000000, 24), "height is 2147483648: it must be 1 to 8192");
    says(Headers(1, 1, 8), "8 bits a pixel: 24 or 32 are needed; ffmpeg");
    says(Headers(1, 1, 24, 3), "compression is 3: it must be 0, or 3 with 32 bits");
    says(Headers(1, 1, 32, 3, 12) + Word(0xFF) + Word(0xFF00) + Word(0xFF0000) + "abc.",
         "channel mask of 000000ff instead of 00ff0000");
    says(Headers(1, 1, 32, 3, 12) + "mask", "channel masks is cut short: 12 bytes expected, 4 found");
    says(Headers(1, 1, 24, 0, static_cast<uint32_t>(-1)) + "abc.", "pixels begin at byte 53: it must be 54 to");
    says(Headers(1, 1, 24, 0, 0x7FFFFFFF), "pixels begin at byte 2147483701");
    says(Headers(1, 1, 24, 0, 100) + "abc.", "gap in front of its pixels is cut short: 100 bytes expected, 4 found");
    says(Headers(2, 3, 24) + std::string(13, 'x'), "row 1 of the bitmap's 3 is cut short: 8 bytes expected, 5 found");
    says(Headers(8192, 8192, 32), "row 0 of the bitmap's 8192 is cut short");
    std::string planes = Headers(1, 1, 24) + "abc.";
    planes[26] = 2;
    says(planes, "2 colour planes: it must be 1");
    for (const char length : {'\0', '\x0c', '\x27', '\x7d', '\xff'}) {
        std::string header = Headers(1, 1, 24) + "abc.";
        header[14] = length;
        says(header, "bytes: it must be 40 to 124");
    }
}

}  // namespace
}  // namespace clarivex
