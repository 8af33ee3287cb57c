// What FFmpeg's video encoders are told unless the person says otherwise.
#pragma once

#include <array>
#include <string_view>

namespace clarivex {

struct EncoderSetting {
    const char* option = nullptr;
    const char* value = nullptr;
};

struct UsualSettings {
    std::string_view encoder;
    const char* quality = nullptr;             ///< on the encoder's own scale; null where it has none
    std::array<EncoderSetting, 4> settings{};  ///< up to the first without an option
};

/// Of an encoder that is not known: a quality on the scale of a quantiser, and nothing else.
const UsualSettings& UsualSettingsOf(std::string_view encoder);

}  // namespace clarivex
