// A recording whose worker is killed at any moment, again and again: what is lost. KESTRUM_KILLS says how often (the
// long drill: 300); the outcome is told in a line.
#include <signal.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "media_adapter/MediaKsLibFixture.h"

namespace kestrum::adapters {
namespace {

using Clock = std::chrono::steady_clock;

int Rounds() {
    const char* wanted = std::getenv("KESTRUM_KILLS");
    return wanted ? std::max(1, std::atoi(wanted)) : 4;
}

/// An index entry, and when the worker had taken it.
struct Entry {
    std::int32_t position;
    Clock::time_point taken;
};

class WorkerKillsTest : public MediaKsLibTest {
  protected:
    /// Records with an entry every tenth of a second and kills the worker after `ms`.
    void RecordAndKill(int ms) {
        entries.clear();
        Record();
        const auto end = Clock::now() + std::chrono::milliseconds(ms);
        String journal = JournalLine(0, u"Beginning");
        ASSERT_TRUE(m_lib.WriteIndexJournal(journal));
        while (Clock::now() < end) {
            m_window.Fill(static_cast<std::uint32_t>(entries.size()) * 0x10305U);
            const std::int32_t position = m_lib.AddKeyFrame();
            const auto told = Clock::now();
            ASSERT_GE(position, 0);
            lastPosition = position;
            lastTold = told;
            journal += JournalLine(position, u"Entry");
            ASSERT_TRUE(m_lib.WriteIndexJournal(journal));
            entries.push_back({position, Clock::now()});
            const auto rest = std::min(std::chrono::milliseconds(100),
                                       std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()));
            if (rest.count() > 0) std::this_thread::sleep_for(rest);
        }
        killed = Clock::now();
        kill(FindChild("ksmedia"), SIGKILL);
        ASSERT_TRUE(WaitFor([&] { return m_lib.EncoderState() == host::encoder_state::kGone; }));
        Stop();
    }

    static double Ms(Clock::duration time) { return std::chrono::duration<double, std::milli>(time).count(); }

    std::vector<Entry> entries;
    std::int32_t lastPosition = 0;
    Clock::time_point lastTold, killed;
};

TEST_F(WorkerKillsTest, AtAnyMoment_ThePackageIsReadable_AndOnlyTheLastMomentIsLost) {
    // On a busy machine the threads that write may wait for a processor; the drill's line tells the usual case.
    constexpr double kAtMostMs = 3000;
    std::mt19937 random(20261121);
    std::vector<double> lostMs;
    int lostEntries = 0, allEntries = 0;
    double oldestLostMs = 0;  // age of an entry that was lost
    for (int round = 0; round < Rounds(); ++round) {
        ASSERT_NO_FATAL_FAILURE(RecordAndKill(300 + static_cast<int>(random() % 2500)));
        ASSERT_NE(m_lib.verifyWholeKsFile(Package()), 0) << "unreadable after " << round << " rounds";
        const double end = lastPosition + Ms(killed - lastTold);
        lostMs.push_back(std::max(0.0, end - m_lib.GetLength(Package())));
        EXPECT_LT(lostMs.back(), kAtMostMs);
        ASSERT_EQ(m_lib.GetExtendDataFromProject(Package(), Targets()), 0);
        const std::string project = ReadText(Path("out.ksp"));
        for (const Entry& entry : entries) {
            const bool isThere = project.find(">" + std::to_string(entry.position) + "<") != std::string::npos ||
                                 project.find("\"" + std::to_string(entry.position) + "\"") != std::string::npos;
            ++allEntries;
            if (isThere) continue;
            ++lostEntries;
            oldestLostMs = std::max(oldestLostMs, Ms(killed - entry.taken));
            EXPECT_LT(oldestLostMs, kAtMostMs) << "an entry that was long in the file";
        }
        std::filesystem::remove(ToUtf8(Package()));
    }
    std::sort(lostMs.begin(), lostMs.end());
    const auto share = [&](double part) {
        return lostMs[static_cast<std::size_t>(part * static_cast<double>(lostMs.size() - 1))];
    };
    const auto above = std::count_if(lostMs.begin(), lostMs.end(), [](double ms) { return ms > 100; });
    std::printf(
        "%zu kills: lost ms median %.0f, 95%% %.0f, most %.0f; more than 100 ms: %zd; entries lost %d of %d, "
        "the oldest %.0f ms old\n",
        lostMs.size(), share(0.5), share(0.95), lostMs.back(), above, lostEntries, allEntries, oldestLostMs);
}

}  // namespace
}  // namespace kestrum::adapters
