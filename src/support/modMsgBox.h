// Messages to the user: our own box, which can carry a check box and stay on top, our box with a link, and the
// platform's message box.
#pragma once

#include "support/Context.h"

namespace kestrum::modMsgBox {

/// Answers of a box; the platform's numbers.
inline constexpr std::int32_t kOk = 1;
inline constexpr std::int32_t kCancel = 2;
inline constexpr std::int32_t kYes = 6;
inline constexpr std::int32_t kNo = 7;

/// Buttons of ShowMsgBox.
inline constexpr std::int32_t kButtonsOk = 0;
inline constexpr std::int32_t kButtonsOkCancel = 1;
inline constexpr std::int32_t kButtonsYesNo = 4;

struct MsgBoxRequest {
    /// "\n" written as two characters is a line break.
    String text;
    std::int32_t buttons = kButtonsOk;
    /// Empty is the product's name.
    String title;
    /// Pixels; a width of 0 makes it 400 by 120, whatever the height.
    std::int32_t width = 0;
    std::int32_t height = 0;
    bool showCheck = false;
    bool topmost = false;
    bool modal = true;
    /// Empty leaves the caption of the language file.
    String checkCaption;
};

/// Shows the box and gives its answer; `checked` gets the check box's state. Re-enters. A box that is up already takes
/// this message over, and both calls return its answer. A box that is not modal returns 1 at once.
std::int32_t ShowMsgBox(const support::Context& c, const MsgBoxRequest& request, bool& checked);

/// Shows a message over a link that opens in the browser. `width` and `height` 0 fit the text. Re-enters.
void ShowMsgLink(const support::Context& c, const String& text, const String& link, const String& title,
                 std::int32_t width, std::int32_t height);

/// The platform's message box; an empty title is the application's. Re-enters.
host::BoxAnswer MsgBox(const support::Context& c, const String& text, host::BoxButtons buttons, const String& title);

/// The same with an OK button and the application's title.
void MsgBox(const support::Context& c, const String& text);

}  // namespace kestrum::modMsgBox
