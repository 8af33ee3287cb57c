// What a person asks of each command, as plain values. The parser of the command line makes them, the commands read them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/picture.h"
#include "shell/tuning.h"

namespace clarivex {

/// When the plug-in enlarges; the values are those of its setting.
enum class EnlargeMode : uint32_t { never = 0, automatic = 1, always = 2 };

/// Whether the plug-in's limits on the size of a picture hold.
enum class SizeLimits { off, plugin };

/// What becomes of the columns that the plug-in adds to reach a multiple of 8.
enum class Padding { crop, keep };

enum class Deinterlacing { automatic, off };

/// How pictures are enhanced.
struct PictureOptions {
    SampleFormat format = SampleFormat::yv12;
    EnlargeMode mode = EnlargeMode::always;
    float sharpness = 1.0f;  ///< 0 … 2
    bool lighting = true;
    bool allowHd = true;
    std::optional<bool> caption;  ///< shown or not; without a word of it, not shown by the code linked in
    SizeLimits limits = SizeLimits::off;
    Padding padding = Padding::crop;
    std::string simd = "auto";  ///< scalar, sse2, avx2, avx512 or auto
    std::string plugin;         ///< path of a plug-in library, whose limits then stand; empty for the code linked in
};

/// Which part of a video is taken. Times are in microseconds.
struct PartOptions {
    int64_t start = 0;             ///< from the video's first moment on
    int64_t duration = INT64_MAX;  ///< above 0
    uint64_t frames = UINT64_MAX;  ///< at least 1
};

/// How a film is read and written; a Y4M stream has no use for most of it.
struct FilmOptions {
    Deinterlacing deinterlacing = Deinterlacing::automatic;
    std::string encoder;            ///< its name; empty for the one that the container is usually written with
    std::optional<double> quality;  ///< on the encoder's own scale
    std::string encoderOptions;     ///< "name=value:name=value"
    bool lossless = false;
    bool strict = false;  ///< damage in the input makes the run fail at its end
};

struct EnhanceOptions {
    PictureOptions picture;
    PartOptions part;
    FilmOptions film;
    bool overwrite = false;
    bool quiet = false;
    bool timing = false;
    bool json = false;                ///< a line of figures for scripts
    std::vector<std::string> inputs;  ///< one with `output`, any number with `folder`
    std::string output;
    std::string folder;                ///< where the outputs of `inputs` go; empty when there is `output`
    std::string suffix = "-enhanced";  ///< behind the stem of an input's name, in `folder`
};

/// How the two pictures of a comparison stand: beside each other, or as the halves of one.
enum class ComparisonLayout { side, split };

/// A part of a picture, in samples.
struct PictureCrop {
    PictureSize size;
    int32_t x = 0;
    int32_t y = 0;

    bool operator==(const PictureCrop&) const = default;
};

constexpr int32_t largestZoom = 16;

struct CompareOptions {
    PictureOptions picture;
    Deinterlacing deinterlacing = Deinterlacing::automatic;
    std::optional<int64_t> at;        ///< microseconds from the video's first moment; by default its middle
    std::optional<PictureCrop> crop;  ///< of the enlarged picture
    int32_t zoom = 1;                 ///< 1 … largestZoom: each sample becomes so many pixels across and down
    ComparisonLayout layout = ComparisonLayout::side;
    bool overwrite = false;
    bool quiet = false;
    std::string input;
    std::string output;  ///< a PNG file
};

constexpr int32_t largestCaptionFrame = 1000;  ///< well behind the caption's end, which can be looked at too

struct CaptionOptions {
    int32_t frame = 100;  ///< 1 … largestCaptionFrame
    PictureSize size{960, 720};
    Ratio sampleAspect{1, 1};
    std::string output;
};

constexpr int32_t mostTuningAttempts = 1000000;

struct TuneOptions {
    TuningOptions tuning;  ///< attempts: 1 … mostTuningAttempts
    bool quiet = false;
    std::string target;
};

}  // namespace clarivex
