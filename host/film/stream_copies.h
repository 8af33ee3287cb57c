// What a film holds beside its pictures, brought into the new one untouched: sound, subtitles, covers, attachments, chapters
// and texts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/film/film_origin.h"
#include "host/report.h"

namespace clarivex {

class StreamCopies {
public:
    /// Adds to `output`, which holds the stream of pictures alone, all that its container takes; notes name what it does
    /// not. `encoder` is that of the pictures. Throws std::bad_alloc.
    StreamCopies(const FilmOrigin& from, const AVCodecContext& encoder, AVFormatContext& output, Report& report);

    /// Writes the covers, behind the header. Throws RunError.
    void WriteCovers();

    /// Writes a packet of the origin, if its stream is copied and it is not too damaged to be. Throws RunError.
    void Write(const AVPacket& packet);

    /// "2 audio and 1 subtitle streams copied"; empty when there are none.
    std::string Description() const;

private:
    /// What the reader's thread changes while packets are written, as a container that finds new streams does its list, is
    /// not looked at again.
    struct Copy {
        int source = 0;
        int target = 0;
        AVMediaType kind = AVMEDIA_TYPE_UNKNOWN;
        AVRational timeBase{0, 1};
        int64_t partStart = 0;  // in that time base
        int64_t lastTime = INT64_MIN;
    };

    void AddStream(const AVStream& source);
    void AddChapters();

    const FilmOrigin& origin;
    AVFormatContext& output;
    Report& told;
    bool damageTold = false;
    std::vector<Copy> copies;
    AvPointer<AVPacket> packet = MakeAvPacket();
};

/// Copies a film's own texts, but for those that describe a file that no longer is.
void CopyTexts(const AVDictionary* from, AVDictionary** to);

}  // namespace clarivex
