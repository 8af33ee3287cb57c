#include "host/run_figures.h"

#include <cstdio>

#include "host/byte_stream.h"
#include "host/words.h"

namespace clarivex {

namespace {

/// A JSON string; what is no text in UTF-8 passes as it is.
std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\') quoted += '\\';
        quoted += letter;
    }
    return quoted + "\"";
}

double Rate(double count, double seconds) { return seconds > 0.0 ? count / seconds : 0.0; }

}  // namespace

std::string SummaryText(const RunFigures& figures) {
    std::string text = CountText(figures.frames, "frame") + ", " + SizeText(figures.from) + " to " +
                       SizeText(figures.to) + ", " +
                       Fixed(Rate(static_cast<double>(figures.frames), figures.seconds), 1) + " frames/s, written to " +
                       figures.output;
    if (!figures.description.empty()) text += " (" + figures.description + ")";
    return text;
}

std::string JsonText(const RunFigures& figures) {
    const auto number = [](const char* name, auto value) {
        return std::string(", \"") + name + "\": " + std::to_string(value);
    };
    const auto fraction = [](const char* name, double value) {
        return std::string(", \"") + name + "\": " + Fixed(value, 6);
    };
    return "{\"input\": " + Quoted(figures.input) + ", \"output\": " + Quoted(figures.output) +
           number("frames", figures.frames) + number("width", figures.from.width) +
           number("height", figures.from.height) + number("outputWidth", figures.to.width) +
           number("outputHeight", figures.to.height) + fraction("seconds", figures.seconds) +
           fraction("videoSeconds", figures.videoSeconds) +
           fraction("framesPerSecond", Rate(static_cast<double>(figures.frames), figures.seconds)) +
           number("damagedPlaces", figures.damagedPlaces) + "}\n";
}

std::string DamageText(uint64_t places) {
    return std::to_string(places) + (places == 1 ? " damaged place was" : " damaged places were") +
           " left out or mended";
}

void PrintFigures(const std::string& line, bool outputIsTaken) {
    if (outputIsTaken)
        std::fputs(line.c_str(), stderr);
    else
        PrintResult(line);
}

}  // namespace clarivex
