// Real deaths and real refusals: a recorder process that is killed, and a disk that is full for a while.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "PackageSamples.h"

namespace kestrum::media {
namespace {

using namespace test;

/// Records round after round into `path`, telling after each flush how far it is; never returns.
[[noreturn]] void RecordUntilKilled(const std::string& path, int tell) {
    const auto writer = PackageWriter::Open(path);
    const std::int64_t round = ShortLecture().samples.back().ms + 30;
    std::vector<std::int64_t> entries;
    if (!writer->ExistingTracks()) writer->SetTracks(ShortLecture().tracks);
    for (std::int64_t start = writer->StartMs();; start += round) {
        for (const Sample& sample : ShortLecture().samples) {
            if (sample.video) writer->WriteVideo(start + sample.ms, sample.key, sample.data);
            if (!sample.video) writer->WriteAudio(start + sample.ms, sample.data);
            if (!sample.key || !sample.video) continue;
            entries.push_back(start + sample.ms);
            writer->WriteJournal(JournalOf(entries));
            const std::int64_t safe[2] = {writer->LengthMs(), entries.back()};
            if (write(tell, safe, sizeof(safe)) != sizeof(safe)) _exit(1);
        }
        writer->Flush();
    }
}

class PackageDeathTest : public ::testing::Test {
  protected:
    TempFolder m_folder;
    const std::string m_path = m_folder.File("lecture.ktr");
};

TEST_F(PackageDeathTest, KilledRecorder_LosesNothingItHadHandedOver) {
    ShortLecture();  // made before the fork
    WriteStored(m_path, {{kProjectFileName, ProjectFile({})}});
    int pipes[2];
    ASSERT_EQ(pipe(pipes), 0);
    const pid_t recorder = fork();
    if (recorder == 0) RecordUntilKilled(m_path, pipes[1]);
    close(pipes[1]);
    std::int64_t safe[2] = {0, 0};
    for (int told = 0; told < 25; ++told) ASSERT_EQ(read(pipes[0], safe, sizeof(safe)), ssize_t{sizeof(safe)});
    EXPECT_EQ(QuickVerify(m_path), Soundness::kRecording);
    EXPECT_GE(LengthMs(m_path), safe[0]);
    kill(recorder, SIGKILL);
    waitpid(recorder, nullptr, 0);
    while (read(pipes[0], safe, sizeof(safe)) == ssize_t{sizeof(safe)}) continue;
    close(pipes[0]);

    EXPECT_EQ(QuickVerify(m_path), Soundness::kInterrupted);
    EXPECT_GE(LengthMs(m_path), safe[0]);
    const VerifyResult verified = WholeVerify(m_path, nullptr, nullptr);
    EXPECT_EQ(verified.soundness, Soundness::kSound);
    ASSERT_TRUE(verified.recovered);
    EXPECT_GE(verified.recovered->lengthMs, safe[0]);
    const std::string index = IndexOf(*ReadStored(m_path).at(kProjectFileName));
    EXPECT_NE((index + "|").find("|" + std::to_string(safe[1]) + "|"), std::string::npos) << index;
    const ToolResult decode = RunTool({"ffmpeg", "-v", "error", "-i", m_path, "-f", "null", "-"});
    EXPECT_EQ(decode.output, "");
}

/// Refuses one operation, as a full disk does, after writing a part of it.
class RefusingStorage final : public IStorage {
  public:
    RefusingStorage(const std::string& path, int refused, int& operations)
        : m_inner(FileStorage::Open(path, FileStorage::Access::kReadWrite)),
          m_refused(refused),
          m_operations(operations) {
        m_inner->LockExclusive();
    }
    std::uint64_t Size() override { return m_inner->Size(); }
    std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) override {
        return m_inner->ReadAt(position, target);
    }
    void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) override {
        constexpr std::size_t kSector = 512;
        // What lies within a sector is written whole or not at all.
        if (Refuses()) {
            if (data.size() > 2 * kSector) m_inner->WriteAt(position, data.first(data.size() / 2));
            throw Error(ErrorKind::kDiskFull, "The disk is full for the test.", ENOSPC);
        }
        m_inner->WriteAt(position, data);
    }
    void Truncate(std::uint64_t size) override {
        if (Refuses()) throw Error(ErrorKind::kIo, "The disk refuses for the test.", EIO);
        m_inner->Truncate(size);
    }
    void Sync() override {
        if (Refuses()) throw Error(ErrorKind::kIo, "The disk refuses for the test.", EIO);
    }

  private:
    bool Refuses() { return m_operations++ == m_refused; }

    std::unique_ptr<FileStorage> m_inner;
    const int m_refused;
    int& m_operations;
};

/// Calls again once if the disk refused, as a recorder does.
void Insist(const std::function<void()>& call) {
    try {
        call();
    } catch (const Error&) {
        call();
    }
}

void RecordInsisting(std::unique_ptr<IStorage> storage) {
    const auto writer = PackageWriter::Open(std::move(storage));
    if (!writer->ExistingTracks()) Insist([&] { writer->SetTracks(ShortLecture().tracks); });
    std::vector<std::int64_t> entries;
    for (const Sample& sample : ShortLecture().samples) {
        const std::int64_t ms = writer->StartMs() + sample.ms;
        Insist([&] {
            if (sample.video) writer->WriteVideo(ms, sample.key, sample.data);
            if (!sample.video) writer->WriteAudio(ms, sample.data);
        });
        if (!sample.video || !sample.key) continue;
        entries.push_back(ms);
        Insist([&] { writer->WriteJournal(JournalOf(entries)); });
    }
    Insist([&] { writer->StoreFiles({{kPhotoName, Bytes(2 << 20, 3)}}); });
    Insist([&] { writer->Close(0); });
}

TEST_F(PackageDeathTest, RefusedWriteAnywhere_IsMadeUpForByTheNextCall) {
    int operations = 1;
    for (int refused = -1; refused < operations; ++refused) {
        SCOPED_TRACE("operation " + std::to_string(refused));
        std::filesystem::remove(m_path);
        WriteStored(m_path, {{kProjectFileName, ProjectFile({})}});
        int counted = 0;
        RecordInsisting(std::make_unique<RefusingStorage>(m_path, refused, counted));
        if (refused == -1) operations = counted;
        EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
        EXPECT_EQ(IndexOf(*ReadStored(m_path).at(kProjectFileName)).substr(9), "|0|1000|2000|3000");
        EXPECT_EQ(ReadStored(m_path).at(kPhotoName)->size(), 2u << 20);
        EXPECT_EQ(KeyFrames(m_path).size(), 4u);
    }
    EXPECT_GT(operations, 30);
}

}  // namespace
}  // namespace kestrum::media
