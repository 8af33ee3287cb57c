// Reads and writes YUV4MPEG2 ("Y4M") streams of 8 bits a sample: 4:2:0 in, 4:2:0 or 4:2:2 out.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/byte_stream.h"
#include "host/picture.h"

namespace clarivex {

constexpr std::string_view y4mMagic = "YUV4MPEG2";  ///< how a stream begins
constexpr size_t longestY4mLine = 2048;             ///< of a stream's or a frame's header, in bytes

/// In which order a stream's frames show their two fields; a stream that does not say counts as progressive.
enum class Interlacing { progressive, topFieldFirst, bottomFieldFirst, mixed };

/// What the first line of a stream tells.
struct Y4mHeader {
    PictureSize size;
    Ratio frameRate;     ///< frames a second
    Ratio sampleAspect;  ///< width to height of one sample
    Interlacing interlacing = Interlacing::progressive;
    ChromaSite chromaSite = ChromaSite::center;  ///< also where the header says just 4:2:0, or nothing
    ColourRange range = ColourRange::video;
    std::vector<std::string> tags;  ///< every word behind the magic one, as it came
};

/// Parses the first line of a stream, without its line end. Throws RunError for anything that is not 8-bit 4:2:0 with
/// sides of 1 … largestPictureSide, or whose numbers cannot be read.
Y4mHeader ParseY4mHeader(std::string_view line);

/// What a person is to know of a stream whose frames are not progressive: what its header says, and a command that makes
/// it so. "" for a progressive one.
std::string InterlacingWarning(const Y4mHeader& header);

/// In what a stream differs from the one it is made of.
struct Y4mChanges {
    PictureSize size;
    bool fullHeightChroma = false;  ///< it is a 4:2:2 stream
    bool otherLength = false;       ///< it may have another number of frames, so that none is stated
    bool toVideoRange = false;      ///< its levels are those of video range now
};

/// The first line of a stream made of `input`, line end included. What does not change is kept as it came: tags for rate,
/// aspect, interlacing and colour, and those that nobody here knows.
std::string Y4mHeaderLine(const Y4mHeader& input, const Y4mChanges& changes);

/// A stream of progressive frames in video range that was no Y4M before. What is not known of rate and aspect is left open.
struct Y4mFormat {
    PictureSize size;
    Ratio frameRate;
    Ratio sampleAspect;
    ChromaSite chromaSite = ChromaSite::center;  ///< of a 4:2:0 stream
    bool fullHeightChroma = false;
};

/// Its first line, line end included.
std::string Y4mHeaderLine(const Y4mFormat& format);

/// One frame as it stands in the stream. Kept from frame to frame, so that its memory is used again.
struct Y4mFrame {
    std::string parameters;        ///< of the frame's own header: "" or words that begin with a space
    std::vector<uint8_t> samples;  ///< Y, U, V
};

class Y4mReader {
public:
    /// Reads the stream's header. `stream` must outlive the reader. Throws RunError.
    explicit Y4mReader(ByteSource& stream);

    const Y4mHeader& Header() const { return header; }

    /// Reads the next frame. False at the end of the stream, when that comes between two frames. Throws RunError for a
    /// damaged frame header and for a frame that is cut short.
    bool ReadFrame(Y4mFrame& frame);

    /// The same, with the samples put where `planes` says, which have the header's size.
    bool ReadFrame(std::string& parameters, const WritablePlanes& planes);

    /// Frames that a whole stream of this many bytes holds, if no frame has parameters.
    uint64_t FramesIn(uint64_t streamBytes) const;

private:
    ByteSource& source;
    Y4mHeader header;
    uint64_t headerBytes = 0;
    uint64_t framesRead = 0;
};

class Y4mWriter {
public:
    /// Writes the stream's header. `stream` must outlive the writer. Throws RunError.
    Y4mWriter(ByteSink& stream, std::string_view headerLine);

    /// Writes one frame of three planes. `parameters` as in Y4mFrame. Throws RunError.
    void WriteFrame(std::string_view parameters, const PicturePlanes& planes);

private:
    ByteSink& sink;
};

}  // namespace clarivex
