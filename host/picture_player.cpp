#include "host/picture_player.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "engine/scale_modes.h"
#include "host/caption.h"
#include "host/errors.h"
#include "pipeline/frame_geometry.h"
#include "shell/caption.h"
#include "shell/instruction_set.h"
#include "shell/size_limits.h"

namespace clarivex {

namespace {

void ChooseSimd(const std::string& name) {
    if (UseInstructionSet(name)) return;
    std::string runnable;
    for (const std::string_view one : RunnableInstructionSets())
        runnable += (runnable.empty() ? "" : ", ") + std::string(one);
    throw RunError("--simd " + name + ": this processor cannot run it; it runs " + runnable);
}

/// A plug-in library is what it is; the code linked in does what it is told.
std::optional<PluginLibrary> PreparePlugin(const PictureOptions& options) {
    if (!options.plugin.empty()) return std::optional<PluginLibrary>(options.plugin);
    ChooseSimd(options.simd);
    ShowCaption(options.caption.value_or(false));
    LiftSizeLimits(options.limits == SizeLimits::off);
    return std::nullopt;
}

bool LimitsStand(const PictureOptions& options) {
    return options.limits == SizeLimits::plugin || !options.plugin.empty();
}

/// What is too narrow to be enhanced would stand in a corner of the enlarged picture.
bool IsTooNarrow(PictureSize size) { return size.width < smallestWidth; }

PlayerSettings SettingsFor(const PictureOptions& options, PictureSize size) {
    const bool keepsSize = IsTooNarrow(size) && !LimitsStand(options);
    const EnlargeMode mode = keepsSize ? EnlargeMode::never : options.mode;
    return {static_cast<uint32_t>(mode), options.sharpness, options.lighting, options.allowHd};
}

/// The left part of a plane; the widths are those of its rows.
void CropPlane(std::span<const uint8_t> plane, size_t width, size_t croppedWidth, uint8_t*& target) {
    for (size_t start = 0; start < plane.size(); start += width, target += croppedWidth)
        std::memcpy(target, plane.data() + start, croppedWidth);
}

}  // namespace

PicturePlayer::PicturePlayer(const PictureOptions& options, const VideoInfo& video, Report& report)
    : plugin(PreparePlugin(options)),
      sourceSize(video.size),
      format(options.format),
      timeBase(video.timeBase),
      player(plugin ? plugin->MakeMediaObject() : MakeLinkedMediaObject(),
             {options.format, video.size, video.frameRate, video.sampleAspect}, SettingsFor(options, video.size)),
      bypassed(player.Negotiate() == Negotiated::bypassedForHd),
      // Not enlarged, pictures that are too narrow and the last row of an odd height are left as they were.
      writesAll(!LimitsStand(options) && PlayedSize().width > sourceSize.width),
      writtenSize(PlayedSize()) {
    if (options.padding == Padding::crop)
        writtenSize.width = WidthWithoutPadding(sourceSize.width, writtenSize.width > sourceSize.width);
    TellLimits(options, report);
}

void PicturePlayer::TellLimits(const PictureOptions& options, Report& report) const {
    const bool enlarged = PlayedSize().width > sourceSize.width;
    const FrameSize size{sourceSize.width, sourceSize.height};
    if (options.caption.value_or(false) && !HasCaptionFont()) report.Note(noFontText);
    if (bypassed)
        report.Note("high definition is bypassed: the pictures pass unchanged (--hd allow enhances them)");
    else if (IsTooNarrow(sourceSize) && !LimitsStand(options))
        report.Note("pictures less than " + std::to_string(smallestWidth) +
                    " wide are not enhanced: they pass unchanged");
    else if (IsTooNarrow(sourceSize))
        report.Warn("pictures less than " + std::to_string(smallestWidth) + " wide are not enhanced: " +
                    (enlarged ? "they stand at the upper left of the output, over black" : "they pass unchanged"));
    else if (LimitsStand(options) && enlarged && !IsEnlargedInFull(size))
        report.Warn(
            "pictures this large are not enlarged in both directions: they stand at the upper left of the output, "
            "over black (--limits off enlarges them, --mode never keeps their size)");
    else if (LimitsStand(options) && int64_t{size.width} * size.height >= bypassArea)
        report.Warn("pictures this large are not enhanced: they pass unchanged (--limits off enhances them)");
}

SourceFrame PicturePlayer::MakeSource() const {
    SourceFrame source;
    if (!bypassed) source.buffer = player.MakeInput();
    const auto inBuffer = bypassed || !writesAll ? std::nullopt : player.InputLayout().PlanesIn(source.buffer->Bytes());
    if (!inBuffer) source.samples.resize(sourceSize.PlanarBytes());
    source.planes = inBuffer ? *inBuffer : PlanesIn<uint8_t>(sourceSize, source.samples);
    return source;
}

EnhancedFrame PicturePlayer::MakeEnhanced() const {
    EnhancedFrame enhanced;
    if (bypassed)
        enhanced.passed.resize(sourceSize.PlanarBytes());
    else
        enhanced.buffer = player.MakeOutput();
    return enhanced;
}

void PicturePlayer::Load(SourceFrame& source) const {
    if (!bypassed && source.frame.hasPicture && !source.samples.empty())
        player.InputLayout().Put({sourceSize, source.samples}, source.buffer->Bytes());
}

void PicturePlayer::Play(SourceFrame& source, EnhancedFrame& target) {
    std::swap(source.frame, target.frame);
    if (!target.frame.hasPicture) return;
    if (bypassed) {
        std::swap(source.samples, target.passed);
        source.planes = PlanesIn<uint8_t>(sourceSize, source.samples);
        return;
    }
    if (!writesAll) player.OutputLayout().Put({sourceSize, source.samples}, target.buffer->Bytes());
    player.Play(*source.buffer, *target.buffer, TimesOf(target.frame));
}

std::optional<FrameTimes> PicturePlayer::TimesOf(const VideoFrame& frame) const {
    if (!timeBase.Known()) return std::nullopt;
    const Ratio stepsASecond{timeBase.denominator, timeBase.numerator};
    const auto start = static_cast<uint64_t>(std::max<int64_t>(frame.start, 0));
    const auto length = static_cast<uint64_t>(std::max<int64_t>(frame.length, 0));
    const int64_t first = FrameStart(start, stepsASecond);
    return FrameTimes{first, FrameStart(start + length, stepsASecond) - first};
}

PicturePlanes PicturePlayer::PlanesOf(EnhancedFrame& enhanced) const {
    if (!enhanced.frame.hasPicture) return {};
    if (bypassed) return PlanarPicture{sourceSize, enhanced.passed}.Planes();
    const PicturePlanes planes = player.OutputLayout().Get(enhanced.buffer->Bytes(), enhanced.unpacked);
    return writtenSize == PlayedSize() ? planes : Cropped(planes, enhanced.cropped);
}

PicturePlanes PicturePlayer::Cropped(const PicturePlanes& planes, std::vector<uint8_t>& scratch) const {
    const PictureSize played = PlayedSize();
    const auto chromaRows = static_cast<size_t>(GivesFullHeightChroma() ? played.height : played.ChromaHeight());
    const auto chromaWidth = static_cast<size_t>(writtenSize.ChromaWidth());
    const size_t lumaBytes = writtenSize.LumaBytes();
    const size_t chromaBytes = chromaWidth * chromaRows;
    scratch.resize(lumaBytes + 2 * chromaBytes);
    uint8_t* target = scratch.data();
    CropPlane(planes[0], static_cast<size_t>(played.width), static_cast<size_t>(writtenSize.width), target);
    for (const auto& chroma : {planes[1], planes[2]})
        CropPlane(chroma, static_cast<size_t>(played.ChromaWidth()), chromaWidth, target);
    const std::span<const uint8_t> samples(scratch);
    return {samples.subspan(0, lumaBytes), samples.subspan(lumaBytes, chromaBytes),
            samples.subspan(lumaBytes + chromaBytes)};
}

void PicturePlayer::Finish() {
    if (!bypassed) player.Finish();
}

}  // namespace clarivex
