#include "pipeline/frame_pipeline.h"

#include <cmath>
#include <limits>

#include "engine/enhancement_pass.h"
#include "pipeline/complete_planes.h"
#include "pipeline/load_frame.h"
#include "pipeline/packed_output.h"
#include "pipeline/plain_copy.h"
#include "pipeline/planar_output.h"
#include "pipeline/tone_curve.h"

namespace clarivex {
namespace {

// With lighting on the picture is a little darker and paler before its contrast is raised.
constexpr int32_t neutralBias = 50;
constexpr int32_t litBrightness = 42;
constexpr int32_t litSaturation = 47;

bool ComesInBuffers(PixelFormat format) { return format != PixelFormat::nv12 && format != PixelFormat::other; }

bool IsPacked(const FrameRequest& request) { return request.format == PixelFormat::yuy2; }

}  // namespace

float StrengthOfSlider(float sharpness) {
    if (!(sharpness >= 0.0F)) return std::numeric_limits<float>::quiet_NaN();
    const double slider = sharpness;
    const double strength = slider > 2.0 ? slider : 2.0 * std::pow(slider / 2.0, 1.33);
    // A ninth and back: the roundings on the way are kept so that pictures stay what they were.
    return static_cast<float>(strength / 9.0 * 9.0);
}

HRESULT FramePipeline::RunFrame(const FrameRequest& request, OutputBuffer output, InputBuffer input) {
    TakeNotes(request);
    if (!ComesInBuffers(request.format)) return S_OK;
    FrameLayout layout;
    const HRESULT code = LayOutFrame(request, output, input, layout);
    if (FAILED(code) || layout.tooSmall) return code;
    if (request.enabled)
        Enhance(request, layout);
    else
        PlainCopy(request.format, layout);
    return S_OK;
}

void FramePipeline::RunPlanes(const FrameRequest& request, const FrameLayout& layout) {
    TakeNotes(request);
    Enhance(request, layout);
}

void FramePipeline::TakeNotes(const FrameRequest& request) {
    if (request.newStream) StartStream();
    if (request.settingsDirty) RenewFilters();
}

/// Lighting starts from the levels of video, the caption from its first frame, and filters are designed anew.
void FramePipeline::StartStream() {
    stream.engine.lighting = LightingState{};
    RenewFilters();
    process.RestartCaption();
}

void FramePipeline::Enhance(const FrameRequest& request, const FrameLayout& layout) {
    ApplySettings(request, layout);
    const SourceImage source = Load(request, layout);
    const PassPlan plan = MakePassPlan(stream.settings, {layout.width, layout.height}, AskPass(request));
    PassResult result = RunPass(plan, source, SizeTarget(request, layout, plan), stream.engine, *kernels);
    const PictureView picture = Complete(request, source, result);
    Tone(result.correction);
    MakeNoise(request, result.noiseAmplitude);
    ComposeOverlay(layout, result.aspect);
    Write(request, layout, picture, result.correction);
}

void FramePipeline::ApplySettings(const FrameRequest& request, const FrameLayout& layout) {
    FrameSettings& frame = stream.settings.frame;
    frame.horizontalMode = frame.verticalMode = request.scalingOn ? AxisScale::threeHalves : AxisScale::none;
    frame.sharpness = StrengthOfSlider(request.sharpness);
    frame.ditherGain = 0.0F;
    frame.lightingEnabled = request.enableLighting;
    ToneSettings& tone = stream.settings.tone;
    tone.colourBiasA = neutralBias;
    tone.colourBiasB = request.enableLighting ? litBrightness : neutralBias;
    tone.colourBiasC = request.enableLighting ? litSaturation : neutralBias;
    stream.settings.order.liftSizeLimits = request.liftSizeLimits;
    const FrameShape shape{layout.width, layout.height, request.scalingOn, request.liftSizeLimits};
    if (shape != stream.lastShape) RenewFilters();
    stream.lastShape = shape;
}

/// Packed pictures are split into planes; planar ones are read where they lie.
SourceImage FramePipeline::Load(const FrameRequest& request, const FrameLayout& layout) {
    if (!IsPacked(request)) return {layout.input, layout.inputEnd, {}};
    WorkingImage& split = stream.workspace.split;
    split.Resize(layout.width, layout.height);
    LoadFrame(layout.input.luma, split.Planes(), *kernels);
    return SourceOf(split);
}

/// Media times do not reach the engine, which sees 24 frames a second. Planar pictures of a buffer count as of square pixels,
/// packed ones do not: kept so that the caption stands where it did in both.
PassRequest FramePipeline::AskPass(const FrameRequest& request) {
    PassRequest ask;
    ask.planes = request.scalingOn ? allPlanes : lumaPlane;
    if (IsPacked(request) || request.aspectCounts) ask.pixelAspect = request.pixelAspect;
    ask.lightingAdoptNow = request.enableLighting && process.TakeAdoptAtOnce();
    return ask;
}

/// A planar picture is as large as the output, a packed one as large as what is written of it.
const ImagePlanes& FramePipeline::SizeTarget(const FrameRequest& request, const FrameLayout& layout,
                                             const PassPlan& plan) {
    WorkingImage& enhanced = stream.workspace.enhanced;
    if (!IsPacked(request))
        enhanced.Resize(layout.outputWidth, layout.outputHeight);
    else if (plan.Writes())
        enhanced.Resize(plan.target.width, plan.target.height);
    return enhanced.Planes();
}

/// The picture that is written, with the source's chroma where that is not enlarged. A packed picture without luma stays
/// empty, and its output as it was.
PictureView FramePipeline::Complete(const FrameRequest& request, const SourceImage& source,
                                    const PassResult& result) const {
    const ImagePlanes& enhanced = stream.workspace.enhanced.Planes();
    PictureView picture;
    if (!IsPacked(request)) {
        CompletePlanes(enhanced, source.planes, {result.written.width, result.written.height, request.scalingOn});
        picture = enhanced;
    } else if (result.written.width > 0) {
        picture = enhanced;
    }
    if (!request.scalingOn) {
        picture.second = source.planes.second;
        picture.third = source.planes.third;
    }
    return picture;
}

void FramePipeline::Tone(LightingCorrection& correction) const {
    ToneCurve(stream.settings.tone, stream.settings.frame.lightingEnabled, correction);
}

void FramePipeline::MakeNoise(const FrameRequest& request, float amplitude) {
    stream.noise.Build(request.noiseOn ? amplitude : 0.0F);
    stream.noise.offsets = process.AdvanceNoise();
}

void FramePipeline::ComposeOverlay(const FrameLayout& layout, float aspect) {
    OverlayCompose(stream.overlay, process.AdvanceCaption(), layout.outputWidth, layout.outputHeight, aspect, *kernels);
}

void FramePipeline::Write(const FrameRequest& request, const FrameLayout& layout, const PictureView& picture,
                          const LightingCorrection& correction) {
    const OutputStageInputs inputs{correction, stream.overlay.Tiles(), stream.noise, *kernels, stream.workspace.output};
    const bool leavesRows = picture.luma.height < layout.output.luma.height;
    if (IsPacked(request) && layout.outputEnd == nullptr && leavesRows)
        ShowPackedSource(layout.output.luma, layout.input.luma);
    const auto write = [&](auto&& stage) {
        if (picture.luma.height > 0) GiveRows(stream.workspace.enhanced.Planes().luma, stage);
        stage.Finish();
    };
    if (IsPacked(request))
        write(PackedOutput(layout.output.luma, layout.outputEnd, picture, inputs));
    else
        write(PlanarOutput(layout.output, layout.outputEnd, picture, inputs));
}

}  // namespace clarivex
