// The functions of the C interface: they check what they are given, call one function of the stream and let nothing out but
// a result.
#include <clarivex/clarivex.h>

#include <iterator>
#include <memory>
#include <string_view>

#include "library/settings.h"
#include "library/stream.h"
#include "runtime/memory.h"
#include "runtime/version.h"

namespace {

using namespace clarivex;

static_assert(std::string_view(CVX_VERSION_TEXT) == versionText, "the header tells another version than the build");
constexpr int32_t versionNumbers[] = {CLARIVEX_VERSION_NUMBERS};
static_assert(versionNumbers[0] == CVX_VERSION_MAJOR && versionNumbers[1] == CVX_VERSION_MINOR &&
              versionNumbers[2] == CVX_VERSION_PATCH);

/// In the order of the codes, from CVX_OK downwards.
constexpr const char* errorTexts[] = {
    "no error",
    "a pointer is null that must not be",
    "struct_size is not that of a cvx_settings that this library knows; cvx_settings_init sets it",
    "the format is none of the CVX_FORMAT constants",
    "a side of the picture is below 16 or above 8192 samples",
    "sharpness must be a number from 0 to 2",
    "a switch is neither 0 nor 1, or a choice is none of its constants",
    "pixel_aspect must be a number from 1/64 to 64",
    "this processor or operating system cannot run the instruction set asked for",
    "a stride is shorter than its row, or reaches beyond the address space",
    "rows of the target overlap each other or the source",
    "memory is short",
};
static_assert(std::size(errorTexts) == 1 - CVX_ERROR_MEMORY);

/// What the call gives. Whoever finds no memory in it throws at once, and nothing else is thrown below this floor.
template <class Call>
cvx_result Guarded(Call call) noexcept {
    try {
        const MemoryImpatience impatience;
        return call();
    } catch (...) {
        return CVX_ERROR_MEMORY;
    }
}

void GiveSize(const FrameSize& size, int32_t* width, int32_t* height) {
    *width = size.width;
    *height = size.height;
}

}  // namespace

struct cvx_context {
    Stream stream;
};

int32_t cvx_version() { return CVX_VERSION; }

const char* cvx_version_text() { return versionText; }

const char* cvx_error_text(cvx_result result) {
    return result <= CVX_OK && result >= CVX_ERROR_MEMORY ? errorTexts[-result] : "unknown result";
}

cvx_result cvx_settings_init(cvx_settings* settings, size_t structSize) {
    if (settings == nullptr) return CVX_ERROR_NULL;
    if (structSize != sizeof *settings) return CVX_ERROR_STRUCT_SIZE;
    *settings = DefaultSettings();
    return CVX_OK;
}

cvx_result cvx_predict_output_size(int32_t width, int32_t height, const cvx_settings* settings, int32_t* outputWidth,
                                   int32_t* outputHeight) {
    if (outputWidth == nullptr || outputHeight == nullptr) return CVX_ERROR_NULL;
    return Guarded([&] {
        const FrameSize source{width, height};
        SettledSettings settled;
        const cvx_result result = SettleSettings(source, settings, settled);
        if (result == CVX_OK) GiveSize(TargetSize(source, settled), outputWidth, outputHeight);
        return result;
    });
}

cvx_result cvx_create(int32_t width, int32_t height, int32_t format, const cvx_settings* settings,
                      cvx_context** context) {
    if (context == nullptr) return CVX_ERROR_NULL;
    *context = nullptr;
    if (!IsFormat(format)) return CVX_ERROR_FORMAT;
    return Guarded([&] {
        const PictureKind kind{{width, height}, format};
        SettledSettings settled;
        const cvx_result result = SettleSettings(kind.size, settings, settled);
        if (result == CVX_OK) *context = new cvx_context{Stream(kind, settled)};
        return result;
    });
}

cvx_result cvx_set_settings(cvx_context* context, const cvx_settings* settings) {
    if (context == nullptr) return CVX_ERROR_NULL;
    return Guarded([&] {
        SettledSettings settled;
        const cvx_result result = SettleSettings(context->stream.Source().size, settings, settled);
        if (result == CVX_OK) context->stream.Use(settled);
        return result;
    });
}

cvx_result cvx_output_size(const cvx_context* context, int32_t* width, int32_t* height) {
    if (context == nullptr || width == nullptr || height == nullptr) return CVX_ERROR_NULL;
    GiveSize(context->stream.Target().size, width, height);
    return CVX_OK;
}

cvx_result cvx_process(cvx_context* context, const cvx_source* source, const cvx_target* target, int64_t /*time*/) {
    if (context == nullptr || source == nullptr || target == nullptr) return CVX_ERROR_NULL;
    return Guarded([&] {
        Stream& stream = context->stream;
        const cvx_result result = CheckPlanes(stream.Source(), *source, stream.Target(), *target);
        if (result == CVX_OK) stream.Process(*source, *target);
        return result;
    });
}

cvx_result cvx_reset(cvx_context* context) {
    if (context == nullptr) return CVX_ERROR_NULL;
    return Guarded([&] {
        context->stream.Restart();
        return CVX_OK;
    });
}

void cvx_destroy(cvx_context* context) { delete context; }
