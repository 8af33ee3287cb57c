// Pictures of odd sizes through the media object: which bytes of the output buffer are written, and with what, by the
// rules in words. Everything else stays as the host left it.

#include "shell/caption.h"
#include "tests/support/host_stream.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

/// What a byte of the output may be; untouched when low > high.
struct Expected {
    int32_t low = 1, high = 0;
};

constexpr int32_t noise = 14;  // what sharpening, noise and dither may change of a soft ramp
constexpr Expected anything{0, 255};
constexpr Expected anythingOrUntouched{-1, 255};

/// One frame: the source in its buffer and what the output buffer should hold.
class OddFrame {
public:
    OddFrame(const GUID& subtype, const HostSize& size, const HostPicture& output, bool isEnlarged)
        : target(output),
          enlarged(isEnlarged),
          width(size.width),
          height(size.height),
          outWidth(enlarged ? size.EnlargedWidth() : width),
          outHeight(enlarged ? size.EnlargedHeight() : height / 2 * 2),
          source(HostPicture::Decoded(subtype, size, enlarged)),
          input(source.BytesOf(width, height)) {
        for (int32_t plane = 0; plane < 3; ++plane)
            for (int32_t y = 0; y < RowsOf(plane, height); ++y)
                for (int32_t x = 0; x < ColumnsOf(plane); ++x)
                    input[source.PlaceOf(plane, x, y)] = static_cast<uint8_t>(Ramp(plane, x, y));
    }

    /// What two frames over different old content, 0 and 255, make of the output: never these values where they write.
    void Check(TestObject& object, bool switchedOn, int32_t typeWidth, int32_t typeHeight) {
        constexpr size_t spareBytes = 41;
        const size_t outputBytes = target.BytesOf(typeWidth, typeHeight) + spareBytes;
        expected.assign(outputBytes, {});
        object.player->SetEnable(switchedOn);
        switchedOn ? source.packed ? ExpectPacked() : ExpectPlanar() : ExpectCopy();
        FakeBuffer in(input), black(outputBytes, 0), white(outputBytes, 255);
        ASSERT_EQ(S_OK, PlayFrame(object, in, black));
        ASSERT_EQ(S_OK, PlayFrame(object, in, white));
        for (size_t i = 0; i < outputBytes; ++i) {
            const auto [low, high] = expected[i];
            const int32_t a = black.Bytes()[i], b = white.Bytes()[i];
            const bool isUntouched = a == 0 && b == 255;
            const bool isWithin = a >= low && a <= high && b >= low && b <= high;
            ASSERT_TRUE(low > high ? isUntouched : isWithin && (!isUntouched || low < 0))
                << "byte " << i << " of " << outputBytes << ", rows of " << target.Stride() << ": " << a << " and " << b
                << " instead of " << low << " … " << high;
        }
    }

private:
    /// The chroma of a packed picture's odd rows is far off: it does not count.
    int32_t Ramp(int32_t plane, int32_t x, int32_t y) const {
        if (plane == 0) return 20 + 2 * x + y / 2;
        return 40 + 50 * plane + x + (source.packed ? y / 2 + y % 2 * 30 : y);
    }
    int32_t RowsOf(int32_t plane, int32_t rows) const { return plane == 0 || source.packed ? rows : (rows + 1) / 2; }
    int32_t ColumnsOf(int32_t plane) const {
        if (plane == 0) return source.packed ? (width + 1) / 2 * 2 : width;
        return (width + 1) / 2;
    }
    /// The source's sample nearest to a place; a packed pair of rows shares the chroma of the first.
    int32_t SourceAt(int32_t plane, int32_t x, int32_t y) const {
        x = std::clamp(x, 0, ColumnsOf(plane) - 1);
        y = std::clamp(y, 0, RowsOf(plane, height) - 1);
        return input[source.PlaceOf(plane, x, plane > 0 && source.packed ? y & ~1 : y)];
    }

    /// Near the source's samples around the same place of the picture.
    Expected Near(int32_t plane, int32_t x, int32_t y) const {
        const int32_t reach = plane > 0 && source.packed ? 2 : 1;
        const int32_t fromX = enlarged ? x * 2 / 3 : x, fromY = enlarged ? y * 2 / 3 : y;
        Expected around{255, 0};
        for (int32_t dy = -reach; dy <= reach; ++dy)
            for (int32_t dx = -1; dx <= 1; ++dx) {
                const int32_t sample = SourceAt(plane, fromX + dx, fromY + dy);
                around = {std::min(around.low, sample), std::max(around.high, sample)};
            }
        return {around.low - noise, around.high + noise};
    }

    /// Black words of 4 bytes from `first` on, at least one, none across the row's end.
    void ExpectMargin(size_t row, int32_t first, int32_t stride, int32_t words, const char* pattern) {
        for (int32_t i = first; stride > first && i < std::min(stride, first + 4 * std::max(words, 1)); ++i) {
            const int32_t value = static_cast<uint8_t>(pattern[(i - first) % 2]);
            expected[row + static_cast<size_t>(i)] = {value, value};
        }
    }

    // Whole pairs of columns; the second sample of an odd width's last pair is whatever the stages left there.
    void ExpectPacked() {
        const int32_t columns = std::min(enlarged ? width * 3 / 2 : width, outWidth);
        const int32_t pairs = (columns + 1) / 2;
        for (int32_t y = 0; y < outHeight; ++y) {
            for (int32_t x = 0; x < 2 * pairs; ++x)
                expected[target.PlaceOf(0, x, y)] = x < columns ? Near(0, x, y) : anything;
            for (int32_t x = 0; x < pairs; ++x)
                for (const int32_t plane : {1, 2}) expected[target.PlaceOf(plane, x, y)] = Near(plane, x, y);
            const int32_t stride = target.Stride();
            ExpectMargin(target.PlaceOf(0, 0, y), 4 * pairs, stride, (stride - 4 * pairs) / 4, "\x10\x80");
        }
    }

    // Planes and rows overlap where strides and heights are odd: the later byte wins. Chroma that is not enlarged is the
    // source's. The last columns of enlarged rows are made of what follows in the buffer, too.
    void ExpectPlanar() {
        const int32_t stride = target.width, chromaColumns = (outWidth + 1) / 2;
        for (int32_t y = 0; y < outHeight; ++y) {
            const int32_t ownColumns = enlarged ? width * 3 / 2 - 6 : width;
            for (int32_t x = 0; x < outWidth; ++x)
                expected[target.PlaceOf(0, x, y)] = x < ownColumns ? Near(0, x, y) : anything;
            const int32_t even = (outWidth + 1) / 2 * 2;
            if (outWidth < std::min(even, stride)) expected[target.PlaceOf(0, outWidth, y)] = Near(0, outWidth - 1, y);
            ExpectMargin(target.PlaceOf(0, 0, y), even, stride, (stride - even + 3) / 4, "\x10\x10");
        }
        for (const int32_t plane : {1, 2})
            for (int32_t y = 0; y < (outHeight + 1) / 2; ++y) {
                for (int32_t x = 0; x < chromaColumns; ++x) {
                    const int32_t same = SourceAt(plane, x, y);
                    expected[target.PlaceOf(plane, x, y)] = enlarged ? Near(plane, x, y) : Expected{same, same};
                }
                ExpectMargin(target.PlaceOf(plane, 0, y), chromaColumns, stride / 2,
                             (stride / 2 - chromaColumns + 3) / 4, "\x80\x80");
            }
    }

    HostPicture target;
    // A switched off object copies what both pictures share; between the rows it may copy on.
    void ExpectCopy() {
        for (int32_t plane = 0; plane < (source.packed ? 1 : 3); ++plane) {
            const int32_t part = plane == 0 ? 1 : 2;
            const int32_t shared = std::min(source.Stride(), target.Stride()) / part;
            const int32_t bytes = source.packed ? 2 * width : ColumnsOf(plane);
            for (int32_t y = 0; y < std::min(RowsOf(plane, height), RowsOf(plane, outHeight)); ++y)
                for (int32_t i = 0; i < std::max(shared, bytes); ++i) {
                    const size_t place = target.PlaceOf(plane, 0, y) + static_cast<size_t>(i);
                    const size_t from = source.PlaceOf(plane, 0, y) + static_cast<size_t>(i);
                    expected[place] =
                        i < std::min(shared, bytes) ? Expected{input[from], input[from]} : anythingOrUntouched;
                }
        }
    }

    bool enlarged;
    int32_t width, height, outWidth, outHeight;
    HostPicture source;
    std::vector<uint8_t> input;
    std::vector<Expected> expected;
};

TEST(OddSizes, WriteTheBytesThatAreToldAndNoOthers) {
    ShowCaption(false);
    TestObject object;
    object.settings->put_EnableLighting(0);
    constexpr HostSize sizes[] = {{65, 48}, {64, 49},         {65, 49},         {66, 50},
                                  {33, 19}, {72, 48, 65, 47}, {70, 51, 69, 51}, {48, 16, 47, 9}};
    for (const HostSize& size : sizes)
        for (const GUID& subtype : {mediaSubtypeYv12, mediaSubtypeIyuv, mediaSubtypeYuy2})
            for (const unsigned mode : {neverEnlarged, alwaysEnlarged}) {
                SCOPED_TRACE(std::to_string(size.width) + " x " + std::to_string(size.height) + ", mode " +
                             std::to_string(mode) + ", subtype " + std::to_string(subtype.Data1 & 0xFF));
                const auto offered = Negotiate(object, subtype, size, mode);
                const HostPicture target(subtype, offered.biWidth, offered.biHeight);
                for (const bool switchedOn : {true, false})
                    OddFrame(subtype, size, target, mode == alwaysEnlarged)
                        .Check(object, switchedOn, offered.biWidth, offered.biHeight);
            }
    ShowCaption(true);
}

}  // namespace
}  // namespace clarivex
