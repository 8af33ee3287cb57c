#include "host/film_rules.h"

#include "host/errors.h"
#include "host/player.h"
#include "host/words.h"

namespace clarivex {

void RefuseHighDynamicRange(int32_t transfer, const std::string& path, char quote) {
    constexpr int32_t pq = 16;
    constexpr int32_t hlg = 18;
    if (transfer != pq && transfer != hlg) return;
    throw RunError(std::string("is of high dynamic range (") + (transfer == pq ? "PQ" : "HLG") +
                   "), which would come out grey and dull; this maps it first: ffmpeg -i " + quote +
                   PrintablePath(path) + quote +
                   " -vf zscale=t=linear:npl=100,format=gbrpf32le,zscale=p=bt709,tonemap=hable:desat=0,"
                   "zscale=t=bt709:m=bt709:r=tv,format=yuv420p -c:a copy mapped.mkv");
}

void CheckPictureSize(PictureSize size) {
    const std::string text = "pictures of " + SizeText(size);
    if (size.width > largestPictureSide || size.height > largestPictureSide)
        throw RunError(text + " are too large: width and height must be at most " + std::to_string(largestPictureSide));
    if (size.width < smallestSide || size.height < smallestSide)
        throw RunError(text + " are too small: width and height must be at least " + std::to_string(smallestSide));
}

const char* ScaleMatrixName(int32_t matrix) {
    switch (matrix) {
        case 1: return "bt709";
        case 4: return "fcc";
        case 7: return "smpte240m";
        case 9:
        case 10: return "bt2020";
        default: return "bt601";
    }
}

std::string ScaleFilter(PictureSize size, bool fromFullRange) {
    return "scale=w=" + std::to_string(size.width) + ":h=" + std::to_string(size.height) +
           ":flags=bicubic+accurate_rnd+full_chroma_int+full_chroma_inp:sws_dither=ed:in_range=" +
           (fromFullRange ? "full" : "limited") + ":out_range=limited";
}

}  // namespace clarivex
