#include "shell/saved_settings.h"

#include <bit>
#include <cstring>

namespace clarivex {
namespace {

constexpr uint32_t settingsMark = 0x53585643;  // "CVXS"
constexpr uint32_t settingsVersion = 1;

enum Switch : uint32_t { switchHd = 1, switchLighting = 2, switchLimits = 4, allSwitches = 7 };

/// What the bytes are, in the order of little-endian memory.
struct Record {
    uint32_t mark = settingsMark;
    uint32_t version = settingsVersion;
    float sharpness = 0;
    uint32_t mode = 0;
    uint32_t switches = 0;
    uint32_t reserved = 0;
    double scaleFactor = 0;
};
static_assert(sizeof(Record) == savedSettingsBytes && std::endian::native == std::endian::little);

}  // namespace

SavedSettings SaveAsBytes(const PluginSettings& settings) {
    Record record;
    record.sharpness = settings.Sharpness();
    record.mode = settings.mode;
    record.switches = (settings.allowHd ? switchHd : 0U) | (settings.enableLighting ? switchLighting : 0U) |
                      (settings.liftSizeLimits ? switchLimits : 0U);
    record.scaleFactor = settings.scaleFactor;
    return std::bit_cast<SavedSettings>(record);
}

bool LoadFromBytes(const SavedSettings& bytes, PluginSettings& settings) {
    const auto record = std::bit_cast<Record>(bytes);
    const bool known = record.mark == settingsMark && record.version == settingsVersion && record.reserved == 0 &&
                       (record.switches & ~uint32_t{allSwitches}) == 0;
    if (!known) return false;
    settings.SetSharpness(record.sharpness);
    settings.mode = record.mode;
    settings.allowHd = (record.switches & switchHd) != 0;
    settings.enableLighting = (record.switches & switchLighting) != 0;
    settings.liftSizeLimits = (record.switches & switchLimits) != 0;
    settings.scaleFactor = record.scaleFactor;
    return true;
}

}  // namespace clarivex
