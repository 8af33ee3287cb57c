// Each setting is a word NAME=VALUE; texts take the rest of their word, whatever is in it.
#include "play/play_settings.h"

#include <charconv>
#include <string_view>
#include <system_error>

namespace clarivex {

namespace {

/// Shows each setting with its name to `visit`.
template <class Settings, class Visit>
void ForEachSetting(Settings& settings, Visit visit) {
    visit("film", settings.film);
    visit("enhanced", settings.look.enhanced);
    visit("sharpness", settings.look.sharpness);
    visit("lighting", settings.look.lighting);
    visit("mode", settings.look.mode);
    visit("noise", settings.look.noise);
    visit("caption", settings.look.caption);
    visit("split", settings.look.split);
    visit("fullscreen", settings.fullScreen);
    visit("volume", settings.volume);
    visit("muted", settings.muted);
    visit("paused", settings.paused);
    visit("start", settings.start);
    visit("quiet", settings.quiet);
}

std::string TextOf(const std::string& text) { return text; }
std::string TextOf(bool flag) { return flag ? "1" : "0"; }

template <class Number>
std::string TextOf(Number number) {
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, number).ptr;
    return {text, end};
}

bool Read(std::string_view word, std::string& text) {
    text = word;
    return true;
}

bool Read(std::string_view word, bool& flag) {
    flag = word == "1";
    return flag || word == "0";
}

template <class Number>
bool Read(std::string_view word, Number& number) {
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

bool ReadWord(std::string_view word, PlaySettings& settings) {
    const size_t equals = word.find('=');
    if (equals == std::string_view::npos) return false;
    bool isRead = false;
    ForEachSetting(settings, [&](std::string_view name, auto& setting) {
        if (name == word.substr(0, equals)) isRead = Read(word.substr(equals + 1), setting);
    });
    return isRead;
}

}  // namespace

std::vector<std::string> PlayWords(const PlaySettings& settings) {
    std::vector<std::string> words;
    ForEachSetting(settings, [&](const char* name, const auto& setting) {
        words.push_back(std::string(name) + "=" + TextOf(setting));
    });
    return words;
}

std::optional<PlaySettings> ReadPlayWords(std::span<const char* const> words) {
    PlaySettings settings;
    for (const char* word : words)
        if (!ReadWord(word, settings)) return std::nullopt;
    return settings;
}

}  // namespace clarivex
