// A private sound server for one test: a sink "speaker" (its monitor is the system's sound) and a source "mic" that
// hears whatever is played into the sink "micbus". Works as root and beside the user's own server.
#pragma once

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "real/ChildProcess.h"

namespace kestrum::real {

class PulseServer {
  public:
    static constexpr const char* kMicrophone = "mic";
    static constexpr const char* kSystemSound = "speaker.monitor";

    /// Starts the server and waits until it takes connections. Throws if it does not.
    PulseServer() {
        const std::string run = m_folder / "run";
        mkdir(run.c_str(), 0700);
        m_socket = run + "/pulse.sock";
        Start();
    }

    /// Starts the server again after Kill, at the same address with the same devices.
    void Start() {
        std::filesystem::remove(m_socket);
        ChildProcess::Options options;
        options.quiet = true;
        options.env = Env();
        m_process = ChildProcess(
            {"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--disallow-exit", "-L",
             "module-native-protocol-unix socket=" + m_socket + " auth-anonymous=1", "-L",
             "module-null-sink sink_name=speaker rate=48000 sink_properties=device.description=Speaker", "-L",
             "module-null-sink sink_name=micbus rate=48000", "-L",
             "module-remap-source master=micbus.monitor source_name=mic source_properties=device.description="
             "Microphone"},
            options);
        if (!WaitFor([this] { return Answers(); })) throw std::runtime_error("pulseaudio did not start");
    }

    /// Variables that point a client at this server.
    std::vector<std::pair<std::string, std::string>> Env() const {
        return {{"XDG_RUNTIME_DIR", m_folder / "run"},
                {"PULSE_SERVER", "unix:" + m_socket},
                {"PULSE_COOKIE", m_folder / "cookie"},
                {"HOME", m_folder.Path().string()}};
    }
    std::string Address() const { return "unix:" + m_socket; }
    /// Points PULSE_SERVER of the test program at this server, until the end of the scope.
    [[nodiscard]] ScopedEnv Use() const { return ScopedEnv("PULSE_SERVER", Address()); }

    /// Runs pactl, for instance {"unload-module", "module-remap-source"}.
    Outcome Control(std::vector<std::string> words) const {
        words.insert(words.begin(), "pactl");
        return Run(words, Env());
    }
    /// Plays a sound file into a sink until it ends or the object goes.
    [[nodiscard]] ChildProcess Play(const std::string& wavFile, const std::string& sink = "micbus") const {
        ChildProcess::Options options;
        options.env = Env();
        options.quiet = true;
        return ChildProcess({"paplay", "-d", sink, wavFile}, options);
    }
    /// Writes a sine tone as a 48 kHz stereo file.
    static void WriteTone(const std::string& wavFile, double hertz, double seconds) {
        Run({"sox", "-n", "-r", "48000", "-c", "2", wavFile, "synth", std::to_string(seconds), "sine",
             std::to_string(hertz), "vol", "0.5"});
    }
    /// Unloads the module of which a word is known.
    void Unload(const std::string& word) const {
        const std::string modules = Control({"list", "short", "modules"}).output;
        const auto at = modules.find(word);
        if (at == std::string::npos) throw std::runtime_error("no sound module with " + word);
        const auto line = modules.rfind('\n', at) + 1;
        Control({"unload-module", modules.substr(line, modules.find('\t', line) - line)});
    }
    /// Unplugs the microphone, and plugs the same one in again.
    void Unplug() const { Unload("source_name=mic"); }
    void PlugIn() const {
        Control({"load-module", "module-remap-source", "master=micbus.monitor", "source_name=mic",
                 "source_properties=device.description=Microphone"});
    }
    /// The server hangs, and goes on.
    void Freeze() { m_process.Signal(SIGSTOP); }
    void Thaw() { m_process.Signal(SIGCONT); }
    /// Ends the server, as its crash does.
    void Kill() {
        m_process.Signal(SIGKILL);
        m_process.WaitForEnd();
    }

  private:
    bool Answers() const { return Control({"list", "short", "sources"}).output.find(kMicrophone) != std::string::npos; }

    TempFolder m_folder;
    std::string m_socket;
    ChildProcess m_process;
};

}  // namespace kestrum::real
