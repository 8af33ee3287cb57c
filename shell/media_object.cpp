// The player's media object: its interfaces, which types it takes and what it offers in return, and its frames.
#include "shell/media_object.h"

#include "pipeline/cpu_speed.h"
#include "platform/resources.h"
#include "shell/class_ids.h"
#include "shell/process_objects.h"
#include "shell/size_limits.h"
#include "shell/start_up.h"

namespace clarivex {
namespace {

/// The length that output is said to have is the input's, for larger pictures too: the player's renderer goes by the type.
constexpr ObjectKind playersKind = {.formats = playerFormats,
                                    .page = clsidPropertyPage,
                                    .settings = playersSettings,
                                    .repeatsInputType = true,
                                    .offerSettles = true,
                                    .toldLength = StreamSide::input,
                                    .tellsAllTimes = true};

}  // namespace

std::span<const InterfaceEntry<CVXMediaObject>> CVXMediaObject::Interfaces() {
    static constexpr InterfaceEntry<CVXMediaObject> interfaces[] = {
        EntryFor<CVXMediaObject, ICVXSettings>(iidCvxSettings),
        EntryFor<CVXMediaObject, IMediaObject>(iidMediaObject),
        EntryFor<CVXMediaObject, IWMPPluginEnable>(iidWmpPluginEnable),
        EntryFor<CVXMediaObject, ISpecifyPropertyPages>(iidSpecifyPropertyPages),
        EntryFor<CVXMediaObject, IPropertyBag>(iidPropertyBag),
    };
    return interfaces;
}

CVXMediaObject::CVXMediaObject() : CVXVideoObject(playersKind), pipeline(MakeProcessPipeline()) {
    settings.liftSizeLimits = SizeLimitsLifted();
    CheckForUpdate();
}

CVXMediaObject::~CVXMediaObject() = default;

HRESULT CVXMediaObject::SetInputType(DWORD index, const DMO_MEDIA_TYPE* type, DWORD flags) {
    newStream = true;
    return CVXVideoObject::SetInputType(index, type, flags);
}

HRESULT CVXMediaObject::SetEnable(BOOL enable) {
    settings.enabled = enable;
    return S_OK;
}

HRESULT CVXMediaObject::GetEnable(BOOL* enable) {
    if (enable == nullptr) return E_POINTER;
    *enable = settings.enabled;
    return S_OK;
}

HRESULT CVXMediaObject::LoadIconStream(IStream** stream) {
    return clarivex::LoadIconStream(ThisModule().instance, stream);
}

HRESULT CVXMediaObject::Read(LPCOLESTR name, VARIANT* value, IErrorLog*) {
    if (value == nullptr) return E_POINTER;
    if (name == nullptr || _wcsicmp(name, L"IconStreams") != 0) return S_OK;
    IStream* stream = nullptr;
    const HRESULT result = LoadIconStream(&stream);
    if (FAILED(result)) return result;
    value->vt = VT_UNKNOWN;
    value->punkVal = stream;
    return S_OK;
}

HRESULT CVXMediaObject::Write(LPCOLESTR, VARIANT*) { return S_OK; }

bool CVXMediaObject::Accepts(const DMO_MEDIA_TYPE& type, StreamSide side, const StreamTerms&) const {
    return IsAcceptedType(type, side, playerFormats);
}

uint32_t CVXMediaObject::BytesOf(const DMO_MEDIA_TYPE& type, StreamSide) const { return ImageBytes(type); }

HRESULT CVXMediaObject::OfferOutputType(DWORD typeIndex, StreamTerms& terms, DMO_MEDIA_TYPE* type) const {
    if (typeIndex >= playerFormats.size()) return DMO_E_NO_MORE_ITEMS;
    if (type == nullptr) return S_OK;
    Negotiated& next = terms.negotiated;
    next.plan.scalingOn = false;
    next.plan.sourceIsVih2WithoutBitrate = true;
    const DMO_MEDIA_TYPE input = terms.input.Get();
    std::optional<VideoHeader> header = ReadVideoHeader(input);
    if (!header) return DMO_E_TYPE_NOT_ACCEPTED;
    next.source = FormatOf(input);
    TraceSize(input);
    if (!DecideStream(*header, next.plan)) return DMO_E_TYPE_NOT_ACCEPTED;
    const HRESULT copied = MoCopyMediaType(type, &input);
    if (SUCCEEDED(copied)) WriteVideoHeader(*type, *header);
    return copied;
}

bool CVXMediaObject::DecideStream(VideoHeader& header, StreamPlan& plan) const {
    const PlanSettings choice{.mode = settings.mode, .allowHd = settings.allowHd, .speedGHz = MeasureCpuSpeed};
    return PlanStream(choice, header, plan);
}

HRESULT CVXMediaObject::MakeFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from) {
    return pipeline.RunFrame(RequestFor(terms), to, from);
}

FrameRequest CVXMediaObject::RequestFor(const StreamTerms& terms) {
    const StreamPlan& plan = terms.negotiated.plan;
    FrameRequest request;
    request.format = PixelFormatOf(terms.input.Get(), playerFormats);
    request.input = FormatOf(terms.input.Get());
    request.output = FormatOf(terms.output.Get());
    request.source = terms.negotiated.source;
    request.sourceWidth = plan.sourceWidth;
    request.sourceHeight = plan.sourceHeight;
    request.scalingOn = plan.scalingOn;
    request.sourceIsVih2WithoutBitrate = plan.sourceIsVih2WithoutBitrate;
    request.pixelAspect = plan.pixelAspect;
    request.newStream = newStream.exchange(false);
    request.settingsDirty = settings.TakeSharpnessChange();
    request.enabled = settings.enabled != 0;
    request.enableLighting = settings.enableLighting;
    request.liftSizeLimits = settings.liftSizeLimits;
    request.sharpness = settings.Sharpness();
    return request;
}

}  // namespace clarivex
