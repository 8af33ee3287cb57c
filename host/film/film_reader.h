// Reads a film: decoded pictures made fit for the media object, and beside them what the film's other streams hold.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/film/clock_jumps.h"
#include "host/film/film_origin.h"
#include "host/film/frame_times.h"
#include "host/film/picture_chain.h"

namespace clarivex {

class FilmReader final : public VideoReader {
public:
    /// Reads up to the first picture. `report` must outlive the reader. Throws RunError.
    FilmReader(const FilmRequest& request, Report& report);

    const VideoInfo& Info() const override { return info; }
    bool Read(VideoFrame& frame, const WritablePlanes& planes) override;
    uint64_t DamagedPlaces() const override { return damagedPlaces; }

private:
    enum class Step { picture, companions, end };

    std::string NoPictureText() const;
    void OpenDecoder();
    void DescribeVideo(const AVFrame& first);

    Step FindPicture();
    Step NextPicture();
    bool DecodeMore();
    void TakeDecoded();
    void BuildChain(const DecodedFormat& format);
    bool TakeFromChains();

    int TakePacket();
    void ReadPacket();
    void EndInput(int reason);
    void SendToDecoder(const AVPacket* read);
    bool CutToPart(AVPacket& companion, const AVStream& stream) const;
    void KeepCompanion();
    bool ReadCompanionsBehind();

    void GivePicture(VideoFrame& frame, const WritablePlanes& planes);
    double SecondsAt(int64_t steps) const;
    void NoteDamage(int64_t steps, const std::string& what);

    Report& told;
    PartOptions part;
    bool deinterlaces;
    bool withCompanions;
    std::shared_ptr<FilmOrigin> origin;
    ClockJumps clockJumps;
    AvPointer<AVCodecContext> decoder;
    AvPointer<AVPacket> packet = MakeAvPacket();
    AvPointer<AVFrame> decoded = MakeAvFrame();
    AvPointer<AVFrame> picture = MakeAvFrame();  // the next one to give, while pictureIsReady
    std::unique_ptr<PictureChain> chain;
    std::unique_ptr<PictureChain> emptiedChain;  // the one before, while pictures are left in it
    std::optional<DecodedFormat> chainFormat;
    std::vector<std::string> reasonsTold;
    std::optional<FrameTimer> timer;
    VideoInfo info;
    std::vector<std::shared_ptr<AVPacket>> companions;
    PictureSize firstSize;  // of decoded pictures
    bool pictureIsReady = false;
    bool inputEnded = false;
    bool decoderEnded = false;
    bool interlacedSeen = false;
    bool clockJumped = false;
    bool partEnded = false;
    int64_t pictureStart = 0;  // steps of the stream's time base behind the start of the part
    int64_t partEnd = INT64_MAX;
    double lastPacketEnd = 0.0;  // seconds behind the container's first moment
    uint64_t framesGiven = 0;
    uint64_t damagedPlaces = 0;
};

}  // namespace clarivex
