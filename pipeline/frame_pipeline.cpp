#include "pipeline/frame_pipeline.h"

#include <cmath>
#include <cstdlib>
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

/// Whether whole rows of two planes share memory, margins included.
bool Overlap(const PlaneView& a, const PlaneView& b) {
    const auto first = [](const PlaneView& plane) {
        return reinterpret_cast<uintptr_t>(plane.Row(plane.stride < 0 ? plane.height - 1 : 0));
    };
    const auto bytes = [](const PlaneView& plane) {
        return static_cast<uintptr_t>(plane.height) * static_cast<uintptr_t>(std::abs(plane.stride));
    };
    return first(a) < first(b) + bytes(b) && first(b) < first(a) + bytes(a);
}

/// A host may give one buffer for both.
bool Overlaps(const PlaneView& target, const PictureView& source) {
    return Overlap(target, source.luma) || Overlap(target, source.second) || Overlap(target, source.third);
}

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
    EnhancementPass pass(plan, source, stream.engine, *kernels);
    PassResult result = pass.Begin();
    Tone(result.correction);
    MakeNoise(request, result.noiseAmplitude);
    ComposeOverlay(layout, result.aspect);
    const OutputStageInputs inputs{result.correction, stream.overlay.Tiles(), stream.noise, *kernels,
                                   stream.workspace.output};
    if (IsPacked(request))
        WritePacked({request, layout, plan, source}, pass, inputs);
    else
        WritePlanar({request, layout, plan, source}, pass, inputs);
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

/// Room for what the engine writes. A picture that is not enlarged keeps the source's chroma.
PictureView FramePipeline::MakeRoom(const Frame& frame, const FrameSize& size, bool streams) {
    WorkingImage& enhanced = stream.workspace.enhanced;
    const bool keepsChroma = !frame.request.scalingOn;
    if (!streams)
        enhanced.Resize(size.width, size.height);
    else if (!keepsChroma)
        enhanced.ResizeChroma(size.width, size.height);
    PictureView picture = keepsChroma ? frame.source.planes : enhanced.Planes();
    picture.luma = {nullptr, size.width, size.height, 0};
    return picture;
}

/// A planar picture is as large as the output. Luma goes there row by row, unless that writes over what is still to be read.
void FramePipeline::WritePlanar(const Frame& frame, EnhancementPass& pass, const OutputStageInputs& inputs) {
    const auto& [request, layout, plan, source] = frame;
    const FrameSize size{layout.outputWidth, layout.outputHeight};
    const bool rowsHaveRoom = !plan.Writes() || size.width < plan.written.width + sinkRoom;
    const bool streams = plan.GivesRows() && rowsHaveRoom && !Overlaps(layout.output.luma, layout.input);
    PlanarOutput stage(layout.output, layout.outputEnd, MakeRoom(frame, size, streams), inputs);
    const ImagePlanes& enhanced = stream.workspace.enhanced.Planes();
    const LumaCompletion completion{size, plan.written, source.planes.luma};
    if (streams) {
        CompletingSink sink(completion, stage);
        pass.GiveRows(enhanced, sink);
        sink.Finish(stream.workspace.unwritten.Prepare(size.width + 1));
    } else {
        pass.WritePlanes(enhanced);
        completion.Complete(0, RowsOf(enhanced.luma, 0, size.height));
    }
    if (request.scalingOn) CompleteChroma(enhanced, source.planes, plan.written);
    if (!streams) stage.TakeLuma(0, enhanced.luma);
    stage.Finish();
}

/// A packed picture is as large as what is written of it. Without luma it stays empty, and its output as it was.
void FramePipeline::WritePacked(const Frame& frame, EnhancementPass& pass, const OutputStageInputs& inputs) {
    const auto& [request, layout, plan, source] = frame;
    const bool streams = plan.GivesRows();
    const FrameSize size = plan.written.width > 0 ? plan.target : FrameSize{};
    const PictureView picture = plan.Writes() ? MakeRoom(frame, size, streams) : PictureView{};
    if (layout.outputEnd == nullptr && size.height < layout.output.luma.height)
        ShowPackedSource(layout.output.luma, layout.input.luma);
    PackedOutput stage(layout.output.luma, layout.outputEnd, picture, inputs);
    const ImagePlanes& enhanced = stream.workspace.enhanced.Planes();
    if (streams) {
        pass.GiveRows(enhanced, stage);
    } else {
        pass.WritePlanes(enhanced);
        stage.TakeLuma(0, enhanced.luma);
    }
    stage.Finish();
}

}  // namespace clarivex
