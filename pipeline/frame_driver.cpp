#include "pipeline/frame_driver.h"

#include <cmath>
#include <limits>

#include "pipeline/complete_planes.h"
#include "pipeline/load_frame.h"
#include "pipeline/packed_output.h"
#include "pipeline/planar_output.h"
#include "pipeline/tone_curve.h"

namespace clarivex {
namespace {

ToneSettings ToneSettingsOf(const EngineSettings& settings) {
    return {.active = settings.toneEnabled != 0 && settings.toneSuspended == 0,
            .colourBiasA = settings.colourBiasA,
            .colourBiasB = settings.colourBiasB,
            .colourBiasC = settings.colourBiasC,
            .blackSlope = settings.toneBlackSlope,
            .whiteSlope = settings.toneWhiteSlope,
            .lightingEnabled = settings.lightingEnabled != 0};
}

}  // namespace

float StrengthOfSlider(float sharpness) {
    if (!(sharpness >= 0.0F)) return std::numeric_limits<float>::quiet_NaN();
    const double slider = sharpness;
    const double strength = slider > 2.0 ? slider : 2.0 * std::pow(slider / 2.0, 1.33);
    return static_cast<float>(strength / 9.0 * 9.0);  // both roundings are part of the result
}

void FrameDriver::StartStream() {
    engine.lighting = LightingState{};
    RenewFilters();
    process.RestartCaption();
}

void FrameDriver::Enhance(const FrameRequest& request, const FrameLayout& layout) {
    ApplySettings(request, layout);
    if (request.format == PixelFormat::yuy2)
        EnhancePacked(request, layout);
    else
        EnhancePlanar(request, layout);
}

void FrameDriver::ApplySettings(const FrameRequest& request, const FrameLayout& layout) {
    engine.horizontalMode = engine.verticalMode = request.scalingOn ? 1 : 0;
    engine.sharpness = StrengthOfSlider(request.sharpness);
    engine.ditherGain = 0.0F;
    engine.lightingEnabled = request.enableLighting ? 1 : 0;
    engine.colourBiasA = 50;
    engine.colourBiasB = request.enableLighting ? 42 : 50;
    engine.colourBiasC = request.enableLighting ? 47 : 50;
    engine.lightingAdoptNow = request.enableLighting && process.TakeAdoptAtOnce() ? 1 : 0;
    const FrameShape shape{layout.width, layout.height, request.scalingOn};
    if (shape != lastShape) RenewFilters();
    lastShape = shape;
}

void FrameDriver::EnhancePacked(const FrameRequest& request, const FrameLayout& layout) {
    workspace.split.Resize(layout.width, layout.height);
    LoadFrame(layout.input.luma, workspace.split.Planes(), kernels);
    const SourceImage source = SourceOf(workspace.split);
    float aspect = request.pixelAspect;
    const FrameInfo info = RunEngine(request, source, {&workspace.enhanced, nullptr}, aspect);

    PictureView picture = info.writtenWidth > 0 ? workspace.enhanced.Planes() : ImagePlanes{};
    if (!request.scalingOn) {
        picture.second = source.planes.second;
        picture.third = source.planes.third;
    }
    PrepareOutput(info, layout, aspect);
    PackedOutputStage(layout.output.luma, layout.outputEnd, picture,
                      {info.correction, overlay.Tiles(), noise, kernels, workspace.output});
}

void FrameDriver::EnhancePlanar(const FrameRequest& request, const FrameLayout& layout) {
    const SourceImage source{layout.input, layout.inputEnd, {}};
    workspace.enhanced.Resize(layout.outputWidth, layout.outputHeight);
    const ImagePlanes& enhanced = workspace.enhanced.Planes();
    float aspect = 1.0F;
    const FrameInfo info = RunEngine(request, source, {nullptr, &enhanced}, aspect);

    CompletePlanes(enhanced, source.planes, {info.writtenWidth, info.writtenHeight, request.scalingOn});
    PictureView picture = enhanced;
    if (!request.scalingOn) {
        picture.second = source.planes.second;
        picture.third = source.planes.third;
    }
    PrepareOutput(info, layout, aspect);
    PlanarOutputStage(layout.output, layout.outputEnd, picture,
                      {info.correction, overlay.Tiles(), noise, kernels, workspace.output});
}

/// The engine's pass, then the tone curve on its correction.
FrameInfo FrameDriver::RunEngine(const FrameRequest& request, const SourceImage& source, const PassTarget& target,
                                 float& aspect) {
    FrameRecord frame;  // always new: media times do not reach the engine, which sees 24 frames a second
    FrameInfo info;
    EnhancementPass(engine, frame, source, target, aspect, info, request.scalingOn ? allPlanes : lumaPlane, kernels);
    ToneCurve(ToneSettingsOf(engine), info.correction);
    return info;
}

void FrameDriver::PrepareOutput(const FrameInfo& info, const FrameLayout& layout, float aspect) {
    noise.Build(info.noiseAmplitude);
    noise.offsets = process.AdvanceNoise();
    OverlayCompose(overlay, process.AdvanceCaption(), layout.outputWidth, layout.outputHeight, aspect, kernels);
}

}  // namespace clarivex
