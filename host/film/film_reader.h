// Reads a film: decoded pictures made fit for the media object, and beside them what the film's other streams hold.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/film/damage_log.h"
#include "host/film/film_origin.h"
#include "host/film/film_packets.h"
#include "host/film/frame_times.h"
#include "host/film/picture_chain.h"

namespace clarivex {

class FilmReader final : public VideoReader {
public:
    /// Reads up to the first picture. `report` must outlive the reader. Throws RunError.
    FilmReader(const FilmRequest& request, Report& report);

    const VideoInfo& Info() const override { return info; }
    bool Read(VideoFrame& frame, const WritablePlanes& planes) override;
    uint64_t DamagedPlaces() const override { return damage.Count(); }

private:
    enum class Step { picture, companions, end };

    std::string NoPictureText() const;
    void OpenDecoder();
    void Begin();

    Step FindPicture();
    Step NextPicture();
    bool DecodeMore();
    void FeedDecoder();
    void TakeDecoded();
    void BuildChain(const DecodedFormat& format);
    bool TakeFromChains();
    void GivePicture(VideoFrame& frame, const WritablePlanes& planes);

    Report& told;
    PartOptions part;
    bool deinterlaces;
    std::shared_ptr<FilmOrigin> origin;
    DamageLog damage;
    FilmPackets packets;
    AvPointer<AVCodecContext> decoder;
    AvPointer<AVFrame> decoded = MakeAvFrame();
    AvPointer<AVFrame> picture = MakeAvFrame();  // the next one to give, while pictureIsReady
    std::unique_ptr<PictureChain> chain;
    std::unique_ptr<PictureChain> emptiedChain;  // the one before, while pictures are left in it
    std::optional<DecodedFormat> chainFormat;
    std::vector<std::string> reasonsTold;
    std::optional<FrameTimer> timer;
    VideoInfo info;
    PictureSize firstSize;  // of decoded pictures
    bool pictureIsReady = false;
    bool decoderEnded = false;
    bool interlacedSeen = false;
    bool partEnded = false;
    int64_t pictureStart = 0;  // steps of the stream's time base behind the start of the part
    uint64_t framesGiven = 0;
};

}  // namespace clarivex
