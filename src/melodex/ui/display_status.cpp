#include "melodex/ui/display_status.h"

#include <nlohmann/json.hpp>

namespace melodex {

using nlohmann::json;

namespace {

constexpr const char* ScreenNames[] = {"main", "stage"};
constexpr const char* BlankNames[] = {"none", "black", "white", "background"};

template <typename Enum, std::size_t N>
bool enumFromName(std::string_view name, const char* const (&names)[N], Enum& out) {
    for (std::size_t i = 0; i < N; ++i) {
        if (name == names[i]) {
            out = Enum(i);
            return true;
        }
    }
    return false;
}

// The dump that never throws: text that is not UTF-8 (a path with Latin-1
// bytes) is sent with replacement characters rather than failing the reply.
String dumpJson(const json& value) {
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

json layerToJson(const DisplayLayerState& layer) {
    return {{"path", layer.path},
            {"url", layer.url},
            {"mode", layer.mode},
            {"transition",
             {{"type", DisplayTransition::typeName(layer.transition.type)},
              {"duration_ms", layer.transition.durationMs}}}};
}

// Lenient where the server's own output could not be wrong: a member of the
// wrong type keeps the default.
template <typename T>
void readMember(const json& object, const char* name, T& out) {
    const auto found = object.find(name);
    if (found == object.end()) return;
    if constexpr (std::is_same_v<T, String>) {
        if (found->is_string()) out = found->template get<std::string>();
    } else {
        if (found->is_number_integer()) out = found->template get<T>();
    }
}

DisplayLayerState layerFromJson(const json& object, int defaultMode) {
    DisplayLayerState layer;
    layer.mode = defaultMode;
    if (!object.is_object()) return layer;
    readMember(object, "path", layer.path);
    readMember(object, "url", layer.url);
    readMember(object, "mode", layer.mode);
    if (const auto transition = object.find("transition");
        transition != object.end() && transition->is_object()) {
        String type;
        readMember(*transition, "type", type);
        DisplayTransition::typeFromName(type, layer.transition.type);
        readMember(*transition, "duration_ms", layer.transition.durationMs);
    }
    return layer;
}

json screenToJson(const DisplayScreenState& screen) {
    return {{"background", layerToJson(screen.background)},
            {"foreground", layerToJson(screen.foreground)},
            {"blank", blankName(screen.blank)},
            {"stage", screen.hasStage ? json::parse(screen.stage.toJson()) : json(nullptr)},
            {"viewers", screen.viewers},
            {"shown_seq", screen.shownSeq}};
}

bool screenFromJsonObject(const json& object, DisplayScreenState& out) {
    if (!object.is_object()) return false;
    DisplayScreenState screen;
    if (const auto found = object.find("background"); found != object.end())
        screen.background = layerFromJson(*found, ImageMode::Fill);
    if (const auto found = object.find("foreground"); found != object.end())
        screen.foreground = layerFromJson(*found, ImageMode::Fit);
    String blank;
    readMember(object, "blank", blank);
    blankFromName(blank, screen.blank);
    if (const auto found = object.find("stage"); found != object.end() && found->is_object())
        screen.hasStage = screen.stage.fromJson(dumpJson(*found));
    readMember(object, "viewers", screen.viewers);
    readMember(object, "shown_seq", screen.shownSeq);
    out = std::move(screen);
    return true;
}

}  // namespace

String screenName(DisplayScreen screen) {
    return ScreenNames[std::size_t(screen)];
}

bool screenFromName(std::string_view name, DisplayScreen& out) {
    return enumFromName(name, ScreenNames, out);
}

String blankName(DisplayBlank blank) {
    return BlankNames[std::size_t(blank)];
}

bool blankFromName(std::string_view name, DisplayBlank& out) {
    return enumFromName(name, BlankNames, out);
}

String layerName(DisplayLayer layer) {
    return layer == DisplayLayer::Foreground ? "foreground" : "background";
}

bool layerFromName(std::string_view name, DisplayLayer& out) {
    constexpr const char* names[] = {"foreground", "background"};
    return enumFromName(name, names, out);
}

String imageModeName(int mode) {
    constexpr const char* names[] = {"fill", "fit", "stretch", "centre"};
    return mode >= 0 && mode <= ImageMode::Last ? String(names[mode]) : std::to_string(mode);
}

bool imageModeFromName(std::string_view name, int& out) {
    constexpr const char* names[] = {"fill", "fit", "stretch", "centre"};
    for (int mode = 0; mode <= ImageMode::Last; ++mode) {
        if (name == names[mode] || name == std::to_string(mode)) {
            out = mode;
            return true;
        }
    }
    if (name == "center") {
        out = ImageMode::Centre;
        return true;
    }
    return false;
}

String DisplayScreenState::toJson() const {
    return dumpJson(screenToJson(*this));
}

bool DisplayScreenState::fromJson(std::string_view text) {
    return screenFromJsonObject(json::parse(text, nullptr, false), *this);
}

String DisplayStatus::toJson() const {
    json screensObject = json::object();
    for (int i = 0; i < DisplayScreenCount; ++i)
        screensObject[ScreenNames[i]] = screenToJson(screens[std::size_t(i)]);
    return dumpJson({{"seq", seq}, {"screens", std::move(screensObject)}});
}

bool DisplayStatus::fromJson(std::string_view text) {
    const json object = json::parse(text, nullptr, false);
    if (!object.is_object()) return false;
    const auto screensObject = object.find("screens");
    if (screensObject == object.end() || !screensObject->is_object()) return false;
    DisplayStatus status;
    readMember(object, "seq", status.seq);
    for (int i = 0; i < DisplayScreenCount; ++i) {
        const auto found = screensObject->find(ScreenNames[i]);
        if (found != screensObject->end())
            screenFromJsonObject(*found, status.screens[std::size_t(i)]);
    }
    *this = std::move(status);
    return true;
}

}  // namespace melodex
