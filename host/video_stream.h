// A video as the command line sees it, whatever it is stored in: 8-bit 4:2:0 pictures with their times.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/picture.h"
#include "host/video_colour.h"
#include "host/y4m.h"

struct AVPacket;  // of FFmpeg's libraries

namespace clarivex {

struct FilmOrigin;

/// What is known of a video before its pictures are read.
struct VideoInfo {
    PictureSize size;
    Ratio frameRate;     ///< frames a second, the average where it varies; unknown: frames carry no times
    Ratio sampleAspect;  ///< width to height of a sample
    VideoColour colour;
    Ratio timeBase;                  ///< seconds that one step of a frame's time stands for; known if frameRate is
    std::optional<uint64_t> frames;  ///< how many there will be, if that is known for certain
    std::optional<double> seconds;   ///< how long it plays, if that is known
    std::shared_ptr<FilmOrigin> origin{};  ///< of a film: what else it holds; none of a Y4M stream
    std::optional<Y4mHeader> y4mHeader{};  ///< of a Y4M stream: what passes on to another; none of a film
    bool isPart = false;                   ///< not all of the video's frames are read
};

/// What comes with a picture. Kept from frame to frame, so that its memory is used again.
struct VideoFrame {
    bool hasPicture = false;  ///< without one there is only what comes with it
    int64_t start = 0;        ///< in steps of the time base
    int64_t length = 0;       ///< in steps of the time base; 0 where it is not known
    std::string parameters;   ///< of a Y4M frame's own header: "" or words that begin with a space
    std::vector<std::shared_ptr<AVPacket>> companions;  ///< of a film's other streams, read before the picture
};

class VideoReader {
public:
    virtual ~VideoReader() = default;

    virtual const VideoInfo& Info() const = 0;

    /// Reads the next frame, its picture into `planes`, which have the video's size. False at the end of the video. Throws
    /// RunError, without the video's name, when nothing more can be read.
    virtual bool Read(VideoFrame& frame, const WritablePlanes& planes) = 0;

    /// How many places of the video could not be read and were left out or mended so far.
    virtual uint64_t DamagedPlaces() const { return 0; }
};

class VideoWriter {
public:
    virtual ~VideoWriter() = default;

    /// Writes a frame. `planes` are of the size and chroma format that the writer was made for, without gaps, or empty
    /// when the frame has no picture. Throws RunError, without the output's name.
    virtual void Write(const VideoFrame& frame, const PicturePlanes& planes) = 0;

    /// Writes what is still to come and closes the output, which then bears its name. Nothing may be written behind it.
    /// Throws RunError.
    virtual void Finish() = 0;

    /// Ends an output that will not be whole in such a way that what was written can be used, and gives the name it
    /// has. Call instead of Finish, even when that or Write has failed. Empty where nothing was left.
    virtual std::string Abandon() = 0;

    /// Of the pictures as they are written.
    virtual PictureSize Size() const = 0;

    /// How the pictures and what else was written are stored, in a few words; empty where the name says it.
    virtual std::string Description() const { return {}; }
};

}  // namespace clarivex
