// Gathers what the floors below tell about themselves into lines for a person.
#include "host/info.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string_view>

#include "pipeline/cpu_speed.h"
#include "runtime/cpu_features.h"
#include "runtime/version.h"
#include "shell/instruction_set.h"

namespace clarivex {

namespace {

void Append(std::string& list, std::string_view word) { list += (list.empty() ? "" : ", ") + std::string(word); }

std::string ProcessorFeatures() {
    struct Feature {
        uint32_t flag;
        std::string_view name;
    };
    constexpr std::array<Feature, 6> features = {{{featureConditionalMove, "cmov"},
                                                  {featureMmx, "mmx"},
                                                  {featurePlainSse, "sse"},
                                                  {feature3dNow, "3dnow"},
                                                  {featureExtended3dNow, "extended 3dnow"},
                                                  {featureSse2, "sse2"}}};
    const uint32_t flags = FeatureFlagsOf(ReadCpuRegisters());
    const SimdSupport support = DetectSimdSupport();
    std::string list;
    for (const Feature& feature : features)
        if ((flags & feature.flag) != 0) Append(list, feature.name);
    if (support.avx2) Append(list, "avx2");
    if (support.avx512bw) Append(list, "avx512bw");
    if (support.avx512vbmi) Append(list, "avx512vbmi");
    return list.empty() ? "none" : list;
}

std::string InstructionSets() {
    std::string list;
    for (const std::string_view name : RunnableInstructionSets()) Append(list, name);
    return list;
}

/// The largest picture of this shape within an area.
std::string SizeWithin(int64_t area, int across, int down) {
    const int64_t units = static_cast<int64_t>(std::sqrt(static_cast<double>(area) / (across * down)));
    return std::to_string(units * across) + "x" + std::to_string(units * down);
}

std::string SpeedText(float speedGHz) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f GHz", static_cast<double>(speedGHz));
    return text;
}

std::string AutomaticText(int64_t area) {
    return "up to " + std::to_string(area) + " samples a picture, such as " + SizeWithin(area, 4, 3) + " or " +
           SizeWithin(area, 16, 9);
}

}  // namespace

std::string InfoText() {
    const float speedGHz = MeasureCpuSpeed();
    return std::string("version:           ") + versionText + "\nprocessor:         " + ProcessorFeatures() +
           "\ninstruction sets:  " + InstructionSets() + "\nin use:            " + std::string(InstructionSetInUse()) +
           "\nmeasured speed:    " + SpeedText(speedGHz) +
           "\nauto enlarges:     " + AutomaticText(LargestAutomaticArea(speedGHz)) + "\n";
}

}  // namespace clarivex
