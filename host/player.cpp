// The calls of a player in their order, every result looked at.
#include "host/player.h"

#include <cstdio>
#include <string>
#include <utility>

#include "host/errors.h"
#include "host/words.h"
#include "platform/guids.h"
#include "runtime/ticks.h"
#include "shell/settings.h"

namespace clarivex {

namespace {

constexpr int32_t largestOutputSide = 16384;  // twice what this program reads; buffers stay below 2 GB
constexpr size_t mostSpareBytes = 1 << 24;    // behind a picture; a larger wish is nonsense

void Check(HRESULT code, const char* call) {
    if (code == S_OK) return;
    char text[96];
    std::snprintf(text, sizeof text, "the media object failed in %s with code 0x%08X", call,
                  static_cast<unsigned>(code));
    throw RunError(text);
}

ComPointer<ICVXSettings> SettingsOf(IMediaObject& object) {
    void* settings = nullptr;
    Check(object.QueryInterface(iidCvxSettings, &settings), "QueryInterface for its settings");
    if (!settings) throw RunError("the media object gives no settings");
    return ComPointer<ICVXSettings>(static_cast<ICVXSettings*>(settings));
}

void ApplySettings(IMediaObject& object, const PlayerSettings& wanted) {
    const ComPointer<ICVXSettings> settings = SettingsOf(object);
    Check(settings->put_CVXMode(wanted.mode), "put_CVXMode");
    Check(settings->put_Sharpness(wanted.sharpness), "put_Sharpness");
    Check(settings->put_EnableLighting(wanted.lighting ? 1 : 0), "put_EnableLighting");
    Check(settings->put_AllowHD(wanted.allowHd ? 1 : 0), "put_AllowHD");
}

/// A media type whose format block came from the object.
struct ReceivedType : DMO_MEDIA_TYPE {
    ReceivedType() : DMO_MEDIA_TYPE{} {}
    ~ReceivedType() { MoFreeMediaType(this); }
    ReceivedType(const ReceivedType&) = delete;
    ReceivedType& operator=(const ReceivedType&) = delete;
};

/// Whether the object would take the video if high definition were allowed: then its size alone made it refuse.
bool TakesItAsHd(IMediaObject& object) {
    ReceivedType type;
    return SettingsOf(object)->put_AllowHD(1) == S_OK && object.GetOutputType(0, 0, &type) == S_OK;
}

[[noreturn]] void ThrowRefused(PictureSize size) {
    if (size.width < smallestSide || size.height < smallestSide)
        throw RunError("a picture of " + SizeText(size) + " is too small: width and height must be at least " +
                       std::to_string(smallestSide));
    throw RunError("the media object refuses pictures of " + SizeText(size));
}

ComPointer<MediaBuffer> MakeBuffer(DWORD bytes, const BufferLayout& layout) {
    if (bytes < layout.Bytes() || bytes - layout.Bytes() > mostSpareBytes)
        throw RunError("the media object asks for a buffer of " + std::to_string(bytes) + " bytes; a picture of " +
                       SizeText(layout.Size()) + " needs " + std::to_string(layout.Bytes()));
    return MediaBuffer::Make(bytes);
}

}  // namespace

int64_t FrameStart(uint64_t frame, Ratio rate) {
    // Whole and broken ticks of a frame apart, so that products stay small.
    const uint64_t ticks = static_cast<uint64_t>(ticksPerSecond) * rate.denominator;
    const uint64_t whole = ticks / rate.numerator;
    const uint64_t rest = ticks % rate.numerator;
    return static_cast<int64_t>(frame * whole + frame * rest / rate.numerator);
}

Player::Player(ComPointer<IMediaObject> mediaObject, const VideoFormat& format, const PlayerSettings& settings)
    : object(std::move(mediaObject)),
      video(format),
      wanted(settings),
      inputLayout(format.pixelFormat, format.size),
      outputLayout(inputLayout) {
    ApplySettings(*object, wanted);
}

Player::~Player() { object->FreeStreamingResources(); }

Negotiated Player::Negotiate() {
    const VideoType inputType(video);
    if (object->SetInputType(0, &inputType.Type(), 0) != S_OK) ThrowRefused(video.size);
    PictureSize outputSize;
    if (!OfferOutput(outputSize)) {
        if (!wanted.allowHd && TakesItAsHd(*object)) return Negotiated::bypassedForHd;
        ThrowRefused(video.size);
    }
    outputLayout = BufferLayout(video.pixelFormat, outputSize);
    Check(object->AllocateStreamingResources(), "AllocateStreamingResources");
    return Negotiated::playing;
}

bool Player::OfferOutput(PictureSize& size) {
    ReceivedType offered;
    if (object->GetOutputType(0, 0, &offered) != S_OK) return false;
    const auto offeredSize = PictureSizeIn(offered, video.pixelFormat);
    if (!offeredSize || offeredSize->width < video.size.width || offeredSize->height < video.size.height ||
        offeredSize->width > largestOutputSide || offeredSize->height > largestOutputSide)
        throw RunError("the media object offers an output type that cannot be shown");
    Check(object->SetOutputType(0, &offered, 0), "SetOutputType");
    size = *offeredSize;
    return true;
}

ComPointer<MediaBuffer> Player::MakeInput() const {
    DWORD bytes = 0, lookahead = 0, alignment = 0;
    Check(object->GetInputSizeInfo(0, &bytes, &lookahead, &alignment), "GetInputSizeInfo");
    return MakeBuffer(bytes, inputLayout);
}

ComPointer<MediaBuffer> Player::MakeOutput() const {
    DWORD bytes = 0, alignment = 0;
    Check(object->GetOutputSizeInfo(0, &bytes, &alignment), "GetOutputSizeInfo");
    return MakeBuffer(bytes, outputLayout);
}

void Player::Play(MediaBuffer& source, MediaBuffer& target, const std::optional<FrameTimes>& times) {
    FeedInput(source, times);
    TakeOutput(target);
    ++framesPlayed;
}

PicturePlanes Player::Play(std::span<const uint8_t> samples) {
    if (!input) input = MakeInput();
    if (!output) output = MakeOutput();
    const PlanarPicture picture{video.size, samples};
    inputLayout.Put(picture, input->Bytes());
    outputLayout.Put(picture, output->Bytes());  // the object may write nothing, or only a part
    Play(*input, *output, TimesByRate());
    return outputLayout.Get(output->Bytes(), unpacked);
}

std::optional<FrameTimes> Player::TimesByRate() const {
    if (!video.frameRate.Known()) return std::nullopt;
    const int64_t start = FrameStart(framesPlayed, video.frameRate);
    return FrameTimes{start, FrameStart(framesPlayed + 1, video.frameRate) - start};
}

void Player::FeedInput(MediaBuffer& source, const std::optional<FrameTimes>& times) {
    constexpr DWORD timed = DMO_INPUT_DATA_BUFFERF_TIME | DMO_INPUT_DATA_BUFFERF_TIMELENGTH;
    const FrameTimes shown = times.value_or(FrameTimes{});
    const DWORD flags = DMO_INPUT_DATA_BUFFERF_SYNCPOINT | (times ? timed : 0);
    Check(source.SetLength(static_cast<DWORD>(source.Bytes().size())), "SetLength");
    Check(object->ProcessInput(0, &source, flags, shown.start, shown.length), "ProcessInput");
}

void Player::TakeOutput(MediaBuffer& target) {
    Check(target.SetLength(0), "SetLength");
    DMO_OUTPUT_DATA_BUFFER data = {};
    data.pBuffer = &target;
    DWORD status = 0;
    const auto before = Clock::now();
    const HRESULT code = object->ProcessOutput(0, 1, &data, &status);
    if (noteTimes) processTimes.push_back(Clock::now() - before);
    Check(code, "ProcessOutput");
}

void Player::Finish() { Check(object->Discontinuity(0), "Discontinuity"); }

}  // namespace clarivex
