// What a test says about a presentation, as plain values.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "host/String.h"

namespace kestrum::sim {

/// A shape beside the title, in drawing order.
struct ShapeScript {
    String text;
    /// In points from the slide's top, and the size of the text in points.
    float top = 100, fontSize = 18;
    bool hasTextFrame = true;
};

struct SlideScript {
    /// None: a slide without a title placeholder. An empty text: an empty placeholder.
    std::optional<String> title;
    bool hidden = false;
    /// Clicks that the slide waits for before it is left.
    int builds = 0;
    std::vector<ShapeScript> shapes;
};

struct Deck {
    /// Full path; for one that was never saved its title alone.
    String fullName;
    std::vector<SlideScript> slides;
    /// Points.
    float width = 960, height = 540;
    /// By lower-case English name; a missing one raises when it is asked for.
    std::map<String, String> properties;
    bool markedFinal = false;
    std::int16_t saved = -1;

    /// A deck of titled slides.
    static Deck Titled(const String& fullName, const std::vector<String>& titles) {
        Deck deck;
        deck.fullName = fullName;
        for (const String& title : titles) {
            SlideScript slide;
            slide.title = title;
            deck.slides.push_back(slide);
        }
        return deck;
    }
};

}  // namespace kestrum::sim
