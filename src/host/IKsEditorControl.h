// The editor control that splits a project into pieces.
#pragma once

namespace kestrum::host {

/// Its calls come with the export that makes them.
class IKsEditorControl {
  public:
    virtual ~IKsEditorControl() = default;
};

}  // namespace kestrum::host
