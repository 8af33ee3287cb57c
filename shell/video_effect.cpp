// The video effect: what it takes and offers, how a stream is settled, its frames and its saved state.
#include "shell/video_effect.h"

#include <iterator>

#include "pipeline/cpu_speed.h"
#include "pipeline/frame_geometry.h"
#include "shell/class_ids.h"
#include "shell/process_objects.h"

namespace clarivex {
namespace {

constexpr ObjectKind effectsKind = {.formats = effectFormats,
                                    .page = clsidVideoEffectPage,
                                    .settings = effectsSettings,
                                    .toldLength = StreamSide::output};

/// The upper end of the heights whose colours players take for those of standard definition where nothing is told.
constexpr int32_t standardLines = 576;
constexpr float largestAspect = 64.0F;

bool CanBeEnlarged(const FrameSize& size) { return size.width >= smallestWidth; }

/// Without the columns that rounding would add.
FrameSize EnlargedSize(const FrameSize& size) {
    return {WidthWithoutPadding(size.width, true), OutputSize(size.width, size.height, true).height};
}

bool IsEnlarged(const PictureForm& source, const PictureForm& target) {
    return CanBeEnlarged(source.size) && target.size == EnlargedSize(source.size);
}

bool GoesWith(const PictureForm& source, const PictureForm& target) {
    return target.format == source.format && (target.size == source.size || IsEnlarged(source, target));
}

bool WantsColours(const VideoHeader& header, const FrameSize& from, const FrameSize& to) {
    return !TellsColours(header) && from.height <= standardLines && to.height > standardLines;
}

/// The type of an offer, made of the input's header.
struct Offer {
    bool enlarged = false;
    HeaderKind kind = HeaderKind::videoInfo;
};

/// Best first: the enlarged picture with room for its colours, with the input's header, then the picture in its size.
///
/// index  counts those that there are; nothing behind the last
std::optional<Offer> OfferAt(DWORD index, const VideoHeader& header, const FrameSize& size, bool enlarged) {
    const bool lacksRoom = header.kind == HeaderKind::videoInfo && WantsColours(header, size, EnlargedSize(size));
    const Offer offers[] = {{true, HeaderKind::videoInfo2}, {true, header.kind}, {false, header.kind}};
    const size_t first = enlarged ? lacksRoom ? 0 : 1 : 2;
    return index < std::size(offers) - first ? std::optional(offers[first + index]) : std::nullopt;
}

/// The header of the picture that is offered: at the corner of a buffer no larger than needed.
VideoHeader OfferedHeader(VideoHeader header, const Surface& source, const Offer& offer) {
    const FrameSize& from = source.picture.size;
    const FrameSize to = offer.enlarged ? EnlargedSize(from) : from;
    if (WantsColours(header, from, to)) TellStandardColours(header);
    const Surface target{{to, source.picture.format}, 0, 0, (to.width + 1) & ~1, to.height};
    header.source = header.target = {0, 0, to.width, to.height};
    BITMAPINFOHEADER& bitmap = header.bitmap;
    bitmap.biWidth = target.rowSamples;
    bitmap.biHeight = bitmap.biHeight < 0 ? -target.rows : target.rows;
    bitmap.biSizeImage = BytesOf(target);
    header.kind = offer.kind;
    return header;
}

/// What is no such number counts as square.
float LimitedAspect(float aspect) { return aspect >= 1 / largestAspect && aspect <= largestAspect ? aspect : 1.0F; }

HRESULT WriteAll(IStream& target, const SavedSettings& bytes) {
    ULONG written = 0;
    const HRESULT result = target.Write(bytes.data(), static_cast<ULONG>(bytes.size()), &written);
    return SUCCEEDED(result) && written != bytes.size() ? E_FAIL : result;
}

/// A stream may give less than it is asked for, and nothing at its end.
HRESULT ReadAll(IStream& source, SavedSettings& bytes) {
    for (size_t have = 0; have < bytes.size();) {
        ULONG read = 0;
        const auto wanted = static_cast<ULONG>(bytes.size() - have);
        const HRESULT result = source.Read(&bytes[have], wanted, &read);
        if (FAILED(result)) return result;
        if (read == 0 || read > wanted) return E_FAIL;
        have += read;
    }
    return S_OK;
}

}  // namespace

std::span<const InterfaceEntry<CVXVideoEffect>> CVXVideoEffect::Interfaces() {
    static constexpr InterfaceEntry<CVXVideoEffect> interfaces[] = {
        EntryFor<CVXVideoEffect, ICVXSettings>(iidCvxSettings),
        EntryFor<CVXVideoEffect, IMediaObject>(iidMediaObject),
        EntryFor<CVXVideoEffect, ISpecifyPropertyPages>(iidSpecifyPropertyPages),
        EntryFor<CVXVideoEffect, IPersistStream>(iidPersistStream),
        EntryFor<CVXVideoEffect, IPersistStream>(iidPersist),
    };
    return interfaces;
}

CVXVideoEffect::CVXVideoEffect() : CVXVideoObject(effectsKind) { settings.liftSizeLimits = true; }

CVXVideoEffect::~CVXVideoEffect() = default;

HRESULT CVXVideoEffect::Complete() {
    const HRESULT result = CVXVideoObject::Complete();
    NoteSaved(SaveAsBytes(settings));
    return result;
}

bool CVXVideoEffect::Accepts(const DMO_MEDIA_TYPE& type, StreamSide side, const StreamTerms& terms) const {
    const std::optional<Surface> surface = ReadSurface(type, side, effectFormats);
    if (!surface || side == StreamSide::input) return surface.has_value();
    const std::optional<Surface> source = ReadSurface(terms.input.Get(), StreamSide::input, effectFormats);
    return source && GoesWith(source->picture, surface->picture);
}

uint32_t CVXVideoEffect::BytesOf(const DMO_MEDIA_TYPE& type, StreamSide side) const {
    const std::optional<Surface> surface = ReadSurface(type, side, effectFormats);
    return surface ? clarivex::BytesOf(*surface) : 0;
}

HRESULT CVXVideoEffect::OfferOutputType(DWORD typeIndex, StreamTerms& terms, DMO_MEDIA_TYPE* type) const {
    const DMO_MEDIA_TYPE input = terms.input.Get();
    const std::optional<Surface> source = ReadSurface(input, StreamSide::input, effectFormats);
    if (!source) return DMO_E_TYPE_NOT_SET;
    const VideoHeader header = ReadVideoHeader(input).value();
    const PlanSettings choice = Choice();
    const FrameSize& size = source->picture.size;
    const bool enlarged = CanBeEnlarged(size) && TakesHd(choice, size) && WantsScaling(choice, size);
    const std::optional<Offer> offer = OfferAt(typeIndex, header, size, enlarged);
    if (!offer) return DMO_E_NO_MORE_ITEMS;
    return type != nullptr ? MakeVideoType(input, OfferedHeader(header, *source, *offer), *type) : S_OK;
}

PlanSettings CVXVideoEffect::Choice() const {
    return {.mode = settings.mode, .allowHd = settings.allowHd, .speedGHz = MeasureCpuSpeed};
}

void CVXVideoEffect::Settle(StreamTerms& terms) {
    const std::optional<Surface> source = ReadSurface(terms.input.Get(), StreamSide::input, effectFormats);
    const std::optional<PictureForm> picture = source ? std::optional(source->picture) : std::nullopt;
    if (picture != settledPicture) newStream = true;
    settledPicture = picture;
    terms.negotiated.plan.scalingOn = false;
    if (!source || terms.output.type == nullptr) return;
    const std::optional<Surface> target = ReadSurface(terms.output.Get(), StreamSide::output, effectFormats);
    if (!target || !GoesWith(*picture, target->picture)) {
        terms.output.type = nullptr;
        return;
    }
    StreamPlan& plan = terms.negotiated.plan;
    plan.scalingOn = IsEnlarged(*picture, target->picture);
    plan.hdAccepted = plan.scalingOn || TakesHd(Choice(), picture->size);
    plan.pixelAspect = LimitedAspect(PixelAspect(*ReadVideoHeader(terms.input.Get()), picture->size));
}

HRESULT CVXVideoEffect::MakeFrame(const StreamTerms& terms, OutputBuffer to, InputBuffer from) {
    const std::optional<Surface> source = ReadSurface(terms.input.Get(), StreamSide::input, effectFormats);
    const std::optional<Surface> target = ReadSurface(terms.output.Get(), StreamSide::output, effectFormats);
    if (!source || !target) return DMO_E_TYPE_NOT_SET;
    if (to.data == nullptr || from.data == nullptr) return E_POINTER;
    SourcePlanes read;
    TargetPlanes written;
    if (!PlacePlanes(*source, from, read) || !PlacePlanes(*target, to, written)) return E_INVALIDARG;
    if (newStream.exchange(false)) frames.reset();
    if (frames == nullptr) frames = WaitForMemory([] { return std::make_unique<PlaneStream>(ProcessKernels()); });
    if (terms.negotiated.plan.hdAccepted)
        frames->Process(RequestFor(source->picture, target->picture, terms.negotiated.plan), read, written);
    else
        CopyPicture(source->picture, read, written);
    return S_OK;
}

PlaneRequest CVXVideoEffect::RequestFor(const PictureForm& source, const PictureForm& target,
                                        const StreamPlan& plan) const {
    return {.source = source,
            .enlarged = plan.scalingOn,
            .targetWidth = target.size.width,
            .lighting = settings.enableLighting,
            .liftSizeLimits = settings.liftSizeLimits,
            .sharpness = settings.Sharpness(),
            .pixelAspect = plan.pixelAspect,
            .kernels = &ProcessKernels()};
}

HRESULT CVXVideoEffect::GetClassID(CLSID* classId) {
    if (classId == nullptr) return E_POINTER;
    *classId = clsidVideoEffect;
    return S_OK;
}

HRESULT CVXVideoEffect::IsDirty() {
    const CriticalSectionGuard guard(savedLock);
    return SaveAsBytes(settings) != saved ? S_OK : S_FALSE;
}

HRESULT CVXVideoEffect::Load(IStream* source) {
    if (source == nullptr) return E_POINTER;
    SavedSettings bytes = {};
    const HRESULT result = ReadAll(*source, bytes);
    if (FAILED(result)) return result;
    if (!LoadFromBytes(bytes, settings)) return E_FAIL;
    NoteSaved(bytes);
    return S_OK;
}

HRESULT CVXVideoEffect::Save(IStream* target, BOOL clearDirty) {
    if (target == nullptr) return E_POINTER;
    const SavedSettings bytes = SaveAsBytes(settings);
    const HRESULT result = WriteAll(*target, bytes);
    if (FAILED(result)) return result;
    if (clearDirty) NoteSaved(bytes);
    return S_OK;
}

HRESULT CVXVideoEffect::GetSizeMax(ULARGE_INTEGER* size) {
    if (size == nullptr) return E_POINTER;
    size->QuadPart = savedSettingsBytes;
    return S_OK;
}

void CVXVideoEffect::NoteSaved(const SavedSettings& now) {
    const CriticalSectionGuard guard(savedLock);
    saved = now;
}

}  // namespace clarivex
