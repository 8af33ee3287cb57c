#include "shell/caption.h"

#include "overlay/font_engine.h"
#include "pipeline/caption_picture.h"
#include "runtime/memory.h"
#include "shell/process_objects.h"

namespace clarivex {

void ShowCaption(bool on) { ThisProcess().ShowCaption(on); }

bool HasCaptionFont() {
    return WaitForMemory([] { return MakeSystemFontEngine()->MakeFont({}) != nullptr; });
}

std::vector<uint8_t> DrawCaption(int32_t frame, int32_t width, int32_t height, float pixelAspect) {
    return DrawCaptionPicture(frame, width, height, pixelAspect, WaitForMemory(MakeSystemFontEngine), ProcessKernels());
}

}  // namespace clarivex
