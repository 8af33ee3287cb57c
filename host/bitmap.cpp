// A bitmap is a file header of 14 bytes, a picture header that begins with its own length, and rows of pixels padded to
// a multiple of 4 bytes; all numbers have their low byte first.
#include "host/bitmap.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>

#include "host/errors.h"

namespace clarivex {

namespace {

constexpr const char* conversion = "ffmpeg -i PICTURE -pix_fmt bgr24 TARGET.bmp makes one that works";

constexpr uint32_t fileHeaderBytes = 14;
constexpr uint32_t pictureHeaderBytes = 40;       // of the plain form; later forms are longer
constexpr uint32_t longestPictureHeader = 124;    // of the latest form
constexpr uint32_t masksBytes = 12;               // three channel masks, behind a plain header or inside a longer one
constexpr uint32_t furthestPixels = 1024 * 1024;  // room for any header, palette and colour profile in front of them
constexpr uint32_t plainPixels = 0;
constexpr uint32_t maskedPixels = 3;

/// Little-endian numbers of a header.
class Fields {
public:
    explicit Fields(std::span<const uint8_t> given) : bytes(given) {}

    uint32_t Half(size_t at) const { return static_cast<uint32_t>(bytes[at] | bytes[at + 1] << 8); }
    uint32_t Word(size_t at) const { return Half(at) | Half(at + 2) << 16; }

private:
    std::span<const uint8_t> bytes;
};

/// What the headers tell of the pixels.
struct PixelLayout {
    PictureSize size;
    bool topDown = false;
    uint32_t bytesAPixel = 3;
    uint32_t firstByte = 0;  // of the first row, from the beginning of the stream

    size_t RowBytes() const { return (static_cast<size_t>(size.width) * bytesAPixel + 3) & ~size_t{3}; }
};

/// Fills `bytes` or tells what the stream lacks.
void ReadWhole(ByteSource& source, std::span<uint8_t> bytes, const std::string& what) {
    const size_t found = source.Read(bytes);
    if (found < bytes.size())
        throw RunError(what + " is cut short: " + std::to_string(bytes.size()) + " bytes expected, " +
                       std::to_string(found) + " found");
}

int32_t CheckedSide(int64_t side, const char* what) {
    if (side < 1 || side > largestPictureSide)
        throw RunError(std::string("the bitmap's ") + what + " is " + std::to_string(side) + ": it must be 1 to " +
                       std::to_string(largestPictureSide));
    return static_cast<int32_t>(side);
}

/// The height is negative in pictures that are stored from the top down.
void ReadSize(const Fields& header, PixelLayout& layout) {
    const auto height = static_cast<int32_t>(header.Word(8));
    layout.topDown = height < 0;
    layout.size.width = CheckedSide(static_cast<int32_t>(header.Word(4)), "width");
    layout.size.height = CheckedSide(std::abs(int64_t{height}), "height");
}

void CheckMasks(const Fields& masks) {
    constexpr std::array<uint32_t, 3> usual = {0xFF0000, 0xFF00, 0xFF};
    for (size_t i = 0; i < usual.size(); ++i) {
        if (masks.Word(4 * i) == usual[i]) continue;
        char text[64];
        std::snprintf(text, sizeof text, "%08x instead of %08x", static_cast<unsigned>(masks.Word(4 * i)),
                      static_cast<unsigned>(usual[i]));
        throw RunError(std::string("the bitmap has a channel mask of ") + text + ", which is not supported; " +
                       conversion);
    }
}

void ReadPixelForm(const Fields& header, PixelLayout& layout) {
    const uint32_t bits = header.Half(14);
    const uint32_t compression = header.Word(16);
    if (bits != 24 && bits != 32)
        throw RunError("the bitmap has " + std::to_string(bits) + " bits a pixel: 24 or 32 are needed; " + conversion);
    if (compression != plainPixels && (compression != maskedPixels || bits != 32))
        throw RunError("the bitmap's compression is " + std::to_string(compression) +
                       ": it must be 0, or 3 with 32 bits a pixel; " + conversion);
    layout.bytesAPixel = bits / 8;
}

std::vector<uint8_t> ReadPictureHeader(ByteSource& source) {
    std::vector<uint8_t> header(4);
    ReadWhole(source, header, "the bitmap's header");
    const uint32_t length = Fields(header).Word(0);
    if (length < pictureHeaderBytes || length > longestPictureHeader)
        throw RunError("the bitmap's header says that it has " + std::to_string(length) + " bytes: it must be " +
                       std::to_string(pictureHeaderBytes) + " to " + std::to_string(longestPictureHeader) + "; " +
                       conversion);
    header.resize(length);
    ReadWhole(source, std::span(header).subspan(4), "the bitmap's header");
    return header;
}

/// Reads the channel masks, where the header does not hold them itself, and gives the bytes read.
uint32_t ReadMasks(ByteSource& source, std::vector<uint8_t>& header) {
    const bool inside = header.size() >= pictureHeaderBytes + masksBytes;
    if (!inside) {
        header.resize(pictureHeaderBytes + masksBytes);
        ReadWhole(source, std::span(header).last(masksBytes), "the bitmap's channel masks");
    }
    CheckMasks(Fields(std::span(header).subspan(pictureHeaderBytes, masksBytes)));
    return inside ? 0 : masksBytes;
}

/// Skips what stands between the headers and the pixels: palettes and gaps.
void SkipTo(ByteSource& source, uint32_t position, uint32_t target) {
    if (target < position || target > furthestPixels)
        throw RunError("the bitmap's pixels begin at byte " + std::to_string(target) + ": it must be " +
                       std::to_string(position) + " to " + std::to_string(furthestPixels));
    std::vector<uint8_t> skipped(target - position);
    ReadWhole(source, skipped, "the bitmap's gap in front of its pixels");
}

/// Reads up to the first pixel.
PixelLayout ReadHeaders(ByteSource& source) {
    std::array<uint8_t, fileHeaderBytes> file{};
    const size_t found = source.Read(file);
    if (found < 2 || file[0] != 'B' || file[1] != 'M')
        throw RunError(std::string("is not a Windows bitmap; ") + conversion);
    if (found < file.size()) throw RunError("the bitmap ends inside its first header");

    std::vector<uint8_t> header = ReadPictureHeader(source);
    auto position = static_cast<uint32_t>(fileHeaderBytes + header.size());
    PixelLayout layout;
    ReadSize(Fields(header), layout);
    if (const uint32_t planes = Fields(header).Half(12); planes != 1)
        throw RunError("the bitmap has " + std::to_string(planes) + " colour planes: it must be 1");
    ReadPixelForm(Fields(header), layout);
    if (Fields(header).Word(16) == maskedPixels) position += ReadMasks(source, header);
    layout.firstByte = Fields(file).Word(10);
    SkipTo(source, position, layout.firstByte);
    return layout;
}

/// Appends the colours of one stored row. Memory grows with what the stream holds, not with what its header says.
void AppendRow(std::span<const uint8_t> row, const PixelLayout& layout, std::vector<uint8_t>& pixels) {
    const auto width = static_cast<size_t>(layout.size.width);
    for (size_t x = 0; x < width; ++x) {
        const auto pixel = row.subspan(x * layout.bytesAPixel, Bitmap::bytesAPixel);
        pixels.insert(pixels.end(), pixel.begin(), pixel.end());
    }
}

void TurnUpsideDown(Bitmap& bitmap) {
    const size_t rowBytes = static_cast<size_t>(bitmap.size.width) * Bitmap::bytesAPixel;
    auto upper = bitmap.pixels.begin();
    auto lower = bitmap.pixels.end();
    for (int32_t y = 0; y < bitmap.size.height / 2; ++y) {
        lower -= static_cast<ptrdiff_t>(rowBytes);
        upper = std::swap_ranges(lower, lower + static_cast<ptrdiff_t>(rowBytes), upper);
    }
}

void PutWord(std::vector<uint8_t>& bytes, uint32_t word, int32_t count = 4) {
    for (int32_t i = 0; i < count; ++i, word >>= 8) bytes.push_back(static_cast<uint8_t>(word));
}

std::vector<uint8_t> HeadersOf(const PixelLayout& layout) {
    const auto pixelBytes = static_cast<uint32_t>(layout.RowBytes() * static_cast<size_t>(layout.size.height));
    std::vector<uint8_t> bytes = {'B', 'M'};
    PutWord(bytes, layout.firstByte + pixelBytes);
    PutWord(bytes, 0);
    PutWord(bytes, layout.firstByte);
    PutWord(bytes, pictureHeaderBytes);
    PutWord(bytes, static_cast<uint32_t>(layout.size.width));
    PutWord(bytes, static_cast<uint32_t>(layout.size.height));
    PutWord(bytes, 1, 2);
    PutWord(bytes, 8 * layout.bytesAPixel, 2);
    PutWord(bytes, plainPixels);
    PutWord(bytes, pixelBytes);
    bytes.resize(layout.firstByte);  // no resolution, no palette
    return bytes;
}

}  // namespace

Bitmap ReadBitmap(ByteSource& source) {
    const PixelLayout layout = ReadHeaders(source);
    Bitmap bitmap{layout.size, {}};
    std::vector<uint8_t> row(layout.RowBytes());
    for (int32_t y = 0; y < layout.size.height; ++y) {
        ReadWhole(source, row, "row " + std::to_string(y) + " of the bitmap's " + std::to_string(layout.size.height));
        AppendRow(row, layout, bitmap.pixels);
    }
    if (!layout.topDown) TurnUpsideDown(bitmap);
    return bitmap;
}

void WriteBitmap(ByteSink& sink, const Bitmap& bitmap) {
    const PixelLayout layout{bitmap.size, false, Bitmap::bytesAPixel, fileHeaderBytes + pictureHeaderBytes};
    sink.Write(HeadersOf(layout));
    const size_t rowBytes = static_cast<size_t>(bitmap.size.width) * Bitmap::bytesAPixel;
    std::vector<uint8_t> row(layout.RowBytes());
    for (size_t y = static_cast<size_t>(bitmap.size.height); y-- > 0;) {
        std::copy_n(bitmap.pixels.begin() + static_cast<ptrdiff_t>(y * rowBytes), rowBytes, row.begin());
        sink.Write(row);
    }
    sink.Flush();
}

}  // namespace clarivex
