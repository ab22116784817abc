// Monitors, windows, hooks and the recording hook of a program without a screen: there are none, and every question is
// answered so.
#pragma once

#include "host/IFileDialog.h"
#include "host/IInputHooks.h"
#include "host/IKsHook.h"
#include "host/IMonitors.h"
#include "host/IPower.h"
#include "host/IWindows.h"

namespace kestrum::app {

class NoMonitors final : public host::IMonitors {
  public:
    std::vector<host::MonitorHandle> Handles() override { return {}; }
    std::optional<host::MonitorHandle> MonitorFromPoint(host::Point) override { return std::nullopt; }
    std::optional<host::Rect> MonitorRecord(host::MonitorHandle) override { return std::nullopt; }
    String MonitorName(host::MonitorHandle) override { return {}; }
    std::optional<host::DisplayMode> CurrentMode(host::MonitorHandle) override { return std::nullopt; }
    std::optional<host::DisplayMode> EnumerateMode(host::MonitorHandle, std::int32_t) override { return std::nullopt; }
    bool ChangeMode(host::MonitorHandle, std::int32_t, std::int32_t) override { return false; }
    std::optional<host::Point> LogicalToPhysical(host::MonitorHandle, host::Point) override { return std::nullopt; }
    host::Point PrimaryDeviceSize() override { return {}; }
    std::int32_t PixelsPerInchX() override { return 96; }
    std::int32_t PixelsPerInchY() override { return 96; }
    std::int32_t BitsPerPixel() override { return 0; }
};

class NoHooks final : public host::IInputHooks {
  public:
    std::unique_ptr<host::IHook> InstallMouseHook(
        std::function<std::int32_t(std::int32_t, std::int32_t, const host::MouseRecord&)>) override {
        return nullptr;
    }
    std::unique_ptr<host::IHook> InstallKeyHook(
        std::function<std::int32_t(std::int32_t, std::int32_t, std::uint32_t)>) override {
        return nullptr;
    }
    std::int32_t CallNextHook(std::int32_t) override { return 0; }
    host::Point CursorPosition() override { return {}; }
    host::Point PhysicalCursorPosition() override { return {}; }
    host::WindowHandle WindowFromPoint(host::Point) override { return 0; }
    host::WindowHandle WindowFromPhysicalPoint(host::Point) override { return 0; }
};

class NoWindows final : public host::IWindows {
  public:
    std::unique_ptr<host::IMessageWindow> CreateMessageWindow(
        const String&, std::function<std::int64_t(const host::WindowMessage&)>) override {
        return std::make_unique<Nowhere>();
    }
    bool IsWindow(host::WindowHandle) override { return false; }
    std::optional<host::WindowHandle> FindWindow(const String&, const String&) override { return std::nullopt; }
    String WindowText(host::WindowHandle, std::int32_t) override { return {}; }
    std::int64_t SendMessage(host::WindowHandle, const host::WindowMessage&) override { return 0; }
    void InvalidateAndUpdate(host::WindowHandle) override {}
    void BringToFront(host::WindowHandle) override {}
    std::uint64_t Property(host::WindowHandle, const String&) override { return 0; }
    bool SetProperty(host::WindowHandle, const String&, std::uint64_t) override { return false; }
    void RemoveProperty(host::WindowHandle, const String&) override {}
    std::optional<host::WindowHandle> WindowOfProcess(std::int64_t) override { return std::nullopt; }

  private:
    class Nowhere final : public host::IMessageWindow {
      public:
        host::WindowHandle Handle() override { return 0; }
    };
};

class NoKsHook final : public host::IKsHook {
  public:
    std::int32_t InstallMessageHook(host::WindowHandle, std::int32_t) override { return 0; }
    void UnInstallMessageHook() override {}
    void EnableHotKey(std::int32_t) override {}
};

/// Nobody is there to pick a file.
class NoFileDialog final : public host::IFileDialog {
  public:
    std::optional<String> OpenFile(const host::FileQuestion&) override { return std::nullopt; }
};

/// A batch command keeps nobody's screen awake.
class NoPower final : public host::IPower {
  public:
    void SetExecutionState(std::uint32_t) override {}
    bool KeepsDisplayAwake() override { return true; }
};

}  // namespace kestrum::app
