// The views of what is read: labels, links and pictures.
#pragma once

#include "adapters/qt/ControlView.h"

namespace kestrum::qt {

/// Object name of the part of a label that scrolls a text too long for the screen.
inline constexpr char kScrolledText[] = "scrolledText";
/// Object name of the label of a link.
inline constexpr char kLinkText[] = "link";

std::unique_ptr<ControlView> MakeLabelView(ui::Label& control, QWidget* parent);
std::unique_ptr<ControlView> MakeLinkView(ui::Link& control, QWidget* parent, const PostAct& post);
std::unique_ptr<ControlView> MakePictureView(ui::Picture& control, QWidget* parent, const PostAct& post);

}  // namespace kestrum::qt
