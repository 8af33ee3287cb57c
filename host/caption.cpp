#include "host/caption.h"

#include <vector>

#include "host/byte_stream.h"
#include "host/naming.h"
#include "host/y4m.h"
#include "shell/caption.h"

namespace clarivex {

const char* const noFontText = "there is no sans-serif font on this system, so no caption; install one, such as DejaVu";

void RunCaption(const CaptionOptions& options) {
    if (!HasCaptionFont()) throw RunError(noFontText);
    const float pixelAspect =
        static_cast<float>(options.sampleAspect.numerator) / static_cast<float>(options.sampleAspect.denominator);
    const std::vector<uint8_t> picture =
        DrawCaption(options.frame, options.size.width, options.size.height, pixelAspect);
    Naming(OutputName(options.output), [&] {
        FileSink sink(options.output);
        Y4mWriter writer(sink, Y4mHeaderLine({options.size, {24, 1}, options.sampleAspect}));
        writer.WriteFrame("", PlanarPicture{options.size, picture}.Planes());
        sink.Close();
    });
}

}  // namespace clarivex
