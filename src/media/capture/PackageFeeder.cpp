#include "media/capture/PackageFeeder.h"

#include <sys/stat.h>
#include <sys/statvfs.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "media/capture/Clock.h"

namespace kestrum::media {
namespace {

// A sample goes to the file at once, or this long after the one before it. With the time that the sound takes through
// its server and its encoder, a kill costs less than 100 ms.
constexpr auto kRoundInterval = std::chrono::milliseconds(10);
// For what falls due by itself: syncs, the room on the disk.
constexpr auto kIdleInterval = std::chrono::milliseconds(500);
constexpr std::int64_t kSyncNs = 3 * kNsPerSecond;
constexpr std::int64_t kRoomCheckNs = 2 * kNsPerSecond;
constexpr std::int64_t kJournalPatienceNs = kNsPerSecond;
// Video waits up to the first limit; a queue beyond the others means that the disk has stopped taking anything.
constexpr std::size_t kVideoBacklog = 32U << 20;
constexpr std::size_t kVideoOverflow = 96U << 20;
constexpr std::size_t kAudioOverflow = 32U << 20;

enum class Track { kScreen, kWebcam, kSound };

struct Sample {
    std::int64_t position = 0;
    Track track = Track::kSound;
    bool isKey = false;
    Bytes bytes;
};

struct Journal {
    std::string text;
    std::int64_t afterMs = 0;
    std::int64_t latestNs = 0;
};

}  // namespace

class PackageFeeder::Impl {
  public:
    Impl(std::unique_ptr<PackageWriter> writer, std::string path, RoomLimits limits)
        : m_path(std::move(path)), m_limits(limits), m_writer(std::move(writer)), m_writtenMs(m_writer->LengthMs()) {
        m_thread = std::thread([this] { Run(); });
    }
    ~Impl() { Join(); }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    void Push(Sample sample) {
        const std::lock_guard lock(m_mutex);
        if (m_isBroken) return;
        (sample.track == Track::kSound ? m_audioBytes : m_videoBytes) += sample.bytes.size();
        if (m_videoBytes > kVideoOverflow) Fail(EncoderState::kVideoOverflow);
        if (m_audioBytes > kAudioOverflow) Fail(EncoderState::kAudioOverflow);
        m_waiting.push_back(std::move(sample));
        WakeWriter();
    }

    bool IsBehind() const {
        const std::lock_guard lock(m_mutex);
        return m_videoBytes > kVideoBacklog;
    }

    bool PushJournal(std::string text, std::int64_t afterMs) {
        const std::lock_guard lock(m_mutex);
        if (m_isBroken) return false;
        m_journals.push_back({std::move(text), afterMs, MonotonicNs() + kJournalPatienceNs});
        WakeWriter();
        return true;
    }

    void StoreFiles(const StoredFiles& files) {
        const std::lock_guard lock(m_writerMutex);
        m_writer->StoreFiles(files);
    }

    EncoderState State() const {
        const std::lock_guard lock(m_mutex);
        return m_state;
    }

    std::int64_t WrittenMs() const {
        const std::lock_guard lock(m_mutex);
        return m_writtenMs;
    }

    void Finish(std::int64_t endMs) {
        Join();
        const std::lock_guard lock(m_writerMutex);
        try {
            WriteWaiting();
            WriteJournalIfDue(true);
            m_writer->Close(endMs);
        } catch (const Error& error) {
            const std::lock_guard stateLock(m_mutex);
            Fail(StateOf(error));
            throw;
        }
    }

  private:
    static EncoderState StateOf(const Error& error) {
        return error.kind == ErrorKind::kDiskFull ? EncoderState::kDiskFull : EncoderState::kFileError;
    }

    void Join() {
        {
            const std::lock_guard lock(m_mutex);
            m_stop = true;
        }
        m_wake.notify_all();
        if (m_thread.joinable()) m_thread.join();
    }

    /// The first failure stays. Called with m_mutex held.
    void Fail(EncoderState state) {
        if (m_state == EncoderState::kRunning) m_state = state;
    }

    /// Called with m_mutex held.
    void WakeWriter() {
        m_hasNews = true;
        m_wake.notify_all();
    }

    void Run() {
        std::unique_lock lock(m_mutex);
        auto earliest = std::chrono::steady_clock::now();
        for (;;) {
            AwaitNews(lock);
            // What comes meanwhile is written together.
            if (m_wake.wait_until(lock, earliest, [this] { return m_stop; })) return;
            m_hasNews = false;
            earliest = std::chrono::steady_clock::now() + kRoundInterval;
            lock.unlock();
            const auto failure = Step();
            lock.lock();
            if (failure) Fail(*failure);
            m_isBroken = m_isBroken || failure;
        }
    }

    void AwaitNews(std::unique_lock<std::mutex>& lock) {
        // A journal that waits for its picture has a time limit, too.
        const auto longest = m_journals.empty() ? kIdleInterval : kRoundInterval;
        m_wake.wait_for(lock, longest, [this] { return m_stop || m_hasNews; });
    }

    /// One round; what went wrong, if the file takes nothing any more.
    std::optional<EncoderState> Step() {
        try {
            const std::lock_guard lock(m_writerMutex);
            WriteWaiting();
            WriteJournalIfDue(false);
            m_writer->Flush();
            SyncIfDue();
            CheckRoomIfDue();
            return std::nullopt;
        } catch (const Error& error) {
            return StateOf(error);
        } catch (const std::bad_alloc&) {
            return EncoderState::kOutOfMemory;
        }
    }

    /// Sound comes later than the pictures of its time: sorting what came together keeps the file in order.
    void WriteWaiting() {
        std::vector<Sample> samples = TakeWaiting();
        std::stable_sort(samples.begin(), samples.end(),
                         [](const Sample& a, const Sample& b) { return a.position < b.position; });
        for (const auto& sample : samples) {
            Write(sample);
        }
        const std::lock_guard lock(m_mutex);
        m_writtenMs = m_writer->LengthMs();
    }

    void Write(const Sample& sample) {
        switch (sample.track) {
            case Track::kSound:
                m_writer->WriteAudio(sample.position, sample.bytes);
                return;
            case Track::kWebcam:
                m_writer->WriteWebcam(sample.position, sample.isKey, sample.bytes);
                return;
            case Track::kScreen:
                m_writer->WriteVideo(sample.position, sample.isKey, sample.bytes);
                m_lastVideoMs = sample.position;
        }
    }

    std::vector<Sample> TakeWaiting() {
        const std::lock_guard lock(m_mutex);
        m_videoBytes = m_audioBytes = 0;
        return std::exchange(m_waiting, {});
    }

    /// Of the journals that wait the last one whose picture is there: it holds those before it. A later one must not
    /// keep it out of the file.
    void WriteJournalIfDue(bool atEnd) {
        std::optional<std::string> text;
        {
            const std::lock_guard lock(m_mutex);
            const std::int64_t now = MonotonicNs();
            while (!m_journals.empty()) {
                Journal& first = m_journals.front();
                if (!atEnd && m_lastVideoMs < first.afterMs && now < first.latestNs) break;
                text = std::move(first.text);
                m_journals.pop_front();
            }
        }
        if (text) m_writer->WriteJournal(*text);
    }

    void SyncIfDue() {
        const std::int64_t now = MonotonicNs();
        if (now < m_nextSyncNs) return;
        m_nextSyncNs = now + kSyncNs;
        m_writer->Sync();
    }

    void CheckRoomIfDue() {
        const std::int64_t now = MonotonicNs();
        if (now < m_nextRoomCheckNs) return;
        m_nextRoomCheckNs = now + kRoomCheckNs;
        struct stat file {};
        struct statvfs disk {};
        const std::lock_guard lock(m_mutex);
        if (stat(m_path.c_str(), &file) == 0 && file.st_size >= m_limits.largestPackage)
            Fail(EncoderState::kLargestSize);
        if (statvfs(m_path.c_str(), &disk) != 0) return;
        const auto freeBytes = static_cast<std::int64_t>(disk.f_bavail) * static_cast<std::int64_t>(disk.f_frsize);
        if (freeBytes < m_limits.leastFreeBytes) Fail(EncoderState::kDiskFull);
    }

    const std::string m_path;
    const RoomLimits m_limits;
    std::mutex m_writerMutex;  ///< taken before m_mutex where both are needed
    std::unique_ptr<PackageWriter> m_writer;
    std::int64_t m_lastVideoMs = -1;
    std::int64_t m_nextSyncNs = 0;
    std::int64_t m_nextRoomCheckNs = 0;

    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::vector<Sample> m_waiting;
    std::size_t m_videoBytes = 0;
    std::size_t m_audioBytes = 0;
    std::deque<Journal> m_journals;  ///< each holds the entries of those before it
    std::int64_t m_writtenMs;
    EncoderState m_state = EncoderState::kRunning;
    bool m_isBroken = false;
    bool m_hasNews = false;
    bool m_stop = false;
    std::thread m_thread;
};

PackageFeeder::PackageFeeder(std::unique_ptr<PackageWriter> writer, std::string path, RoomLimits limits)
    : m_impl(std::make_unique<Impl>(std::move(writer), std::move(path), limits)) {}
PackageFeeder::~PackageFeeder() = default;
void PackageFeeder::PushVideo(std::int64_t positionMs, bool key, Bytes sample) {
    m_impl->Push({positionMs, Track::kScreen, key, std::move(sample)});
}
void PackageFeeder::PushWebcam(std::int64_t positionMs, bool key, Bytes sample) {
    m_impl->Push({positionMs, Track::kWebcam, key, std::move(sample)});
}
void PackageFeeder::PushAudio(std::int64_t positionMs, Bytes sample) {
    m_impl->Push({positionMs, Track::kSound, false, std::move(sample)});
}
bool PackageFeeder::IsBehind() const {
    return m_impl->IsBehind();
}
bool PackageFeeder::PushJournal(std::string text, std::int64_t afterMs) {
    return m_impl->PushJournal(std::move(text), afterMs);
}
void PackageFeeder::StoreFiles(const StoredFiles& files) {
    m_impl->StoreFiles(files);
}
EncoderState PackageFeeder::State() const {
    return m_impl->State();
}
std::int64_t PackageFeeder::WrittenMs() const {
    return m_impl->WrittenMs();
}
void PackageFeeder::Finish(std::int64_t endMs) {
    m_impl->Finish(endMs);
}

}  // namespace kestrum::media
