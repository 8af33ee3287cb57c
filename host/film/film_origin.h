// An opened film: its container, the stream whose pictures are taken, and what of its time is wanted.
#pragma once

#include <cstdint>
#include <optional>

#include "host/film.h"
#include "host/film/av_objects.h"

namespace clarivex {

/// Owns the container. What a writer copies from it does not change once it is open.
struct FilmOrigin {
    /// Opens the container and finds its best video stream. Throws RunError.
    explicit FilmOrigin(const FilmRequest& request);

    AVStream& VideoStream() const { return *container->streams[videoIndex]; }

    /// Where the part begins that is wanted, in AV_TIME_BASE units of the container's own clock.
    int64_t PartStart() const { return firstTime + partStart; }

    /// When the last of its streams ends, in seconds behind firstTime; nothing where that is not known or only guessed.
    std::optional<double> StatedEnd() const;

private:
    AvPointer<AVIOContext> streamInput;  // where it is read from a stream; outlives the container

public:
    AvPointer<AVFormatContext> container;
    int videoIndex = -1;
    int64_t firstTime = 0;  ///< of the container, in AV_TIME_BASE units; 0 where that begins before 0
    int64_t partStart = 0;  ///< after firstTime
    int64_t partLength;     ///< INT64_MAX where it is not limited

private:
    void Open(const FilmRequest& request);
    void FindVideo();
    void SeekToPart();
    bool SeekTo(int64_t time);

    /// Whether a picture that needs no other comes before the part that is wanted; reads up to it. Some containers find no
    /// better place than one between such pictures.
    bool KeyPictureComesInTime();
};

}  // namespace clarivex
