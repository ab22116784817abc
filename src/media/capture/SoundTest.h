// The audio test: a few seconds of a microphone into a raw file, and that file played back on the default output. The
// file is nothing but little-endian 16-bit samples, mono, 48000 Hz. Decides that nothing of it can hang: each direction
// has a thread of its own, a source, an output or a disk that fails ends it where it stands.
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>

namespace kestrum::media {

class TestRecording {
  public:
    /// Makes `file` empty and records into it. `source` as the server knows it; empty: the default one.
    TestRecording(std::string source, const std::string& file);
    /// Stops; the file is closed then.
    ~TestRecording();
    TestRecording(const TestRecording&) = delete;
    TestRecording& operator=(const TestRecording&) = delete;

    /// Milliseconds that are in the file.
    std::int64_t RecordedMs() const;

  private:
    void Run();
    /// False if the file takes no more.
    bool Write(const void* samples, std::size_t bytes);

    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    const std::string m_source;
    const std::unique_ptr<std::FILE, CloseFile> m_file;
    std::atomic<bool> m_stop{false};
    std::atomic<std::int64_t> m_frames{0};
    std::thread m_thread;
};

class TestPlayback {
  public:
    /// Plays `file`; one that is missing or empty is at its end at once.
    explicit TestPlayback(const std::string& file);
    /// Stops at once.
    ~TestPlayback();
    TestPlayback(const TestPlayback&) = delete;
    TestPlayback& operator=(const TestPlayback&) = delete;

    /// Milliseconds played; -1 at the end.
    std::int64_t PlayedMs() const;

  private:
    void Run();

    const std::string m_samples;
    std::atomic<bool> m_stop{false};
    std::atomic<bool> m_isAtEnd;
    std::atomic<std::int64_t> m_playedMs{0};
    std::thread m_thread;
};

}  // namespace kestrum::media
