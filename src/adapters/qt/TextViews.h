// The views of what is read: labels, links and pictures.
#pragma once

#include "adapters/qt/ControlView.h"

namespace kestrum::qt {

std::unique_ptr<ControlView> MakeLabelView(ui::Label& control, QWidget* parent);
std::unique_ptr<ControlView> MakeLinkView(ui::Link& control, QWidget* parent, const PostAct& post);
std::unique_ptr<ControlView> MakePictureView(ui::Picture& control, QWidget* parent, const PostAct& post);

}  // namespace kestrum::qt
