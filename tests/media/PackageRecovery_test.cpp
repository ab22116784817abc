// A recorder can die at any moment: whatever it leaves behind is whole or comes back whole, and nothing that was handed
// over before is lost.

#include "media/package/Recovery.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <random>

#include "PackageSamples.h"
#include "media/package/Layout.h"

namespace kestrum::media {
namespace {

using namespace test;

/// What a recorder was promised before it died.
struct Promised {
    std::int64_t flushedMs = 0;
    std::vector<std::int64_t> entries;
};

/// One lecture with an entry per second, as a recorder drives it.
void RecordWithEntries(PackageWriter& writer, std::vector<std::int64_t> entries, Promised& promised) {
    if (!writer.ExistingTracks()) writer.SetTracks(ShortLecture().tracks);
    std::int64_t flushed = 0;
    for (const Sample& sample : ShortLecture().samples) {
        const std::int64_t ms = writer.StartMs() + sample.ms;
        if (sample.ms >= flushed + 200) {
            writer.Flush();
            flushed = sample.ms;
            promised.flushedMs = writer.LengthMs();
        }
        if (!sample.video) {
            writer.WriteAudio(ms, sample.data);
            continue;
        }
        writer.WriteVideo(ms, sample.key, sample.data);
        if (!sample.key) continue;
        entries.push_back(ms);
        writer.WriteJournal(JournalOf(entries));
        promised.entries = entries;
        promised.flushedMs = writer.LengthMs();
    }
    writer.Close(0);
}

std::vector<std::int64_t> EntriesOf(const std::string& path) {
    std::string text = IndexOf(*ReadStored(path).at(kProjectFileName));
    std::vector<std::int64_t> entries;
    for (std::size_t bar = text.find('|'); bar != std::string::npos; bar = text.find('|', bar + 1))
        entries.push_back(std::atoll(text.c_str() + bar + 1));
    return entries;
}

void ExpectKept(const std::string& path, const Promised& promised) {
    EXPECT_GE(LengthMs(path), promised.flushedMs);
    const std::vector<std::int64_t> entries = EntriesOf(path);
    for (const std::int64_t entry : promised.entries)
        EXPECT_NE(std::find(entries.begin(), entries.end(), entry), entries.end()) << "entry at " << entry;
    const std::vector<std::int64_t> keys = KeyFrames(path);
    for (const std::int64_t entry : entries)
        EXPECT_NE(std::find(keys.begin(), keys.end(), entry), keys.end()) << "no key frame at " << entry;
    EXPECT_EQ(AsText(*ReadStored(path).at("notes.vtt")), "from a later version");
    EXPECT_EQ(AsText(*ReadStored(path).at(kPhotoName)), "photo");
}

class PackageRecoveryTest : public ::testing::Test {
  protected:
    /// A package that holds the files, and media with entries if `withMedia`.
    void MakeBase(bool withMedia) {
        WriteStored(m_base, {{kProjectFileName, ProjectFile({})},
                             {kPhotoName, AsBytes("photo")},
                             {"notes.vtt", AsBytes("from a later version")}});
        if (!withMedia) return;
        Promised promised;
        RecordWithEntries(*PackageWriter::Open(m_base), {}, promised);
        m_oldEntries = promised.entries;
    }

    std::string Copy(const std::string& from) {
        const std::string to = m_folder.File("copy.ktr");
        std::filesystem::copy_file(from, to, std::filesystem::copy_options::overwrite_existing);
        return to;
    }

    /// Records into a copy of the base, dying at operation `fatal`; -1 lives. Returns the number of operations.
    int RecordDying(int fatal, double written, Promised& promised) {
        const auto script = std::make_shared<DyingStorage::Script>();
        script->fatal = fatal;
        script->written = written;
        m_path = Copy(m_base);
        promised = {LengthMs(m_path), m_oldEntries};
        try {
            RecordWithEntries(*PackageWriter::Open(OpenDying(m_path, script)), m_oldEntries, promised);
        } catch (const DyingStorage::Death&) {
        }
        return script->operations;
    }

    void ExpectWholeAfterDeath(const Promised& promised) {
        ExpectKept(m_path, promised);  // as it stands, without changing a byte
        const std::int64_t seenBefore = LengthMs(m_path);
        const VerifyResult verified = WholeVerify(m_path, nullptr, nullptr);
        EXPECT_EQ(verified.soundness, Soundness::kSound);
        EXPECT_EQ(LengthMs(m_path), seenBefore);
        ExpectKept(m_path, promised);
        EXPECT_FALSE(WholeVerify(m_path, nullptr, nullptr).recovered);
        EXPECT_EQ(IndexOf(*ReadStored(m_path).at(kProjectFileName)).substr(0, 2), "00");
    }

    void TryEveryDeath() {
        Promised promised;
        const int operations = RecordDying(-1, 1, promised);
        ASSERT_GT(operations, 40);
        for (int fatal = 0; fatal < operations; ++fatal) {
            for (const double written : {0.0, 0.6, 1.0}) {
                SCOPED_TRACE("operation " + std::to_string(fatal) + ", part " + std::to_string(written));
                RecordDying(fatal, written, promised);
                ExpectWholeAfterDeath(promised);
                if (HasFailure()) return;
            }
        }
    }

    TempFolder m_folder;
    const std::string m_base = m_folder.File("base.ktr");
    std::string m_path;
    std::vector<std::int64_t> m_oldEntries;
};

TEST_F(PackageRecoveryTest, FirstRecording_DyingAtAnyWrite_KeepsAllThatWasHandedOver) {
    MakeBase(false);
    TryEveryDeath();
}

TEST_F(PackageRecoveryTest, AppendedRecording_DyingAtAnyWrite_KeepsAllThatWasHandedOver) {
    MakeBase(true);
    TryEveryDeath();
}

TEST_F(PackageRecoveryTest, Recovery_DyingAtAnyWrite_ComesToTheSameEndTheNextTime) {
    MakeBase(true);
    Promised promised;
    const int operations = RecordDying(-1, 1, promised);
    RecordDying(operations * 2 / 3, 0.6, promised);
    const std::string torn = m_folder.File("torn.ktr");
    std::filesystem::copy_file(m_path, torn);

    const auto script = std::make_shared<DyingStorage::Script>();
    RecoverIfInterrupted(*OpenDying(Copy(torn), script));
    const std::string wanted = IndexOf(*ReadStored(m_path).at(kProjectFileName));
    const int steps = script->operations;
    ASSERT_GT(steps, 4);
    for (int fatal = 0; fatal < steps; ++fatal) {
        for (const double written : {0.0, 0.6, 1.0}) {
            SCOPED_TRACE("operation " + std::to_string(fatal) + ", part " + std::to_string(written));
            *script = {0, fatal, written};
            EXPECT_THROW(RecoverIfInterrupted(*OpenDying(Copy(torn), script)), DyingStorage::Death);
            ExpectWholeAfterDeath(promised);
            EXPECT_EQ(IndexOf(*ReadStored(m_path).at(kProjectFileName)), wanted);
        }
    }
}

TEST_F(PackageRecoveryTest, RecoveredPackage_IsReadByEveryReader) {
    MakeBase(true);
    Promised promised;
    const int operations = RecordDying(-1, 1, promised);
    RecordDying(operations / 2, 0.6, promised);
    const auto report = Recover(m_path);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->lengthMs, LengthMs(m_path));
    EXPECT_EQ(report->entries, static_cast<int>(EntriesOf(m_path).size()));
    const ToolResult decode = RunTool({"ffmpeg", "-v", "error", "-i", m_path, "-f", "null", "-"});
    EXPECT_EQ(decode.output, "");
    for (const char* tool : {"mkvinfo", "mkvmerge"}) {
        const ToolResult result = RunTool({tool, tool == std::string("mkvinfo") ? "--all" : "-i", m_path});
        EXPECT_EQ(result.exitCode, 0) << result.output;
        EXPECT_EQ(result.output.find("Error"), std::string::npos) << result.output;
    }
}

TEST_F(PackageRecoveryTest, AppendingToAnInterruptedPackage_RecoversItFirstAndSaysSo) {
    MakeBase(false);
    Promised promised;
    RecordDying(RecordDying(-1, 1, promised) / 2, 0.6, promised);
    const auto writer = PackageWriter::Open(m_path);
    ASSERT_TRUE(writer->Recovered());
    EXPECT_GE(writer->StartMs(), promised.flushedMs);
    Record(*writer, ShortLecture());
    writer->Close(0);
    ExpectKept(m_path, promised);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageRecoveryTest, CutAnywhere_KeepsEveryWholeBlock) {
    MakeBase(true);
    const auto size = std::filesystem::file_size(m_base);
    std::mt19937 random(4711);
    for (int i = 0; i < 60; ++i) {
        const std::uint64_t cut = kMediaAt + random() % (size - kMediaAt);
        SCOPED_TRACE("cut at " + std::to_string(cut));
        m_path = Copy(m_base);
        std::filesystem::resize_file(m_path, cut);
        const double part = static_cast<double>(cut - kMediaAt) / static_cast<double>(size - kMediaAt);
        const VerifyResult verified = WholeVerify(m_path, nullptr, nullptr);
        EXPECT_EQ(verified.soundness, Soundness::kSound);
        EXPECT_TRUE(verified.recovered);
        EXPECT_GT(static_cast<double>(LengthMs(m_path)), 4000 * part - 700);
        EXPECT_EQ(AsText(*ReadStored(m_path).at(kPhotoName)), "photo");
    }
}

TEST_F(PackageRecoveryTest, CutInTheHead_IsDamagedAndStaysAsItIs) {
    MakeBase(true);
    for (const std::uint64_t cut : {0u, 1u, 40u, 300u, 600u, 4096u, 5000u, 2'000'000u}) {
        SCOPED_TRACE("cut at " + std::to_string(cut));
        m_path = Copy(m_base);
        std::filesystem::resize_file(m_path, cut);
        const auto before = ReadWholeFile(m_path);
        EXPECT_EQ(IsEmpty(m_path), Emptiness::kHoldsMedia);
        EXPECT_NE(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
        EXPECT_THROW(PackageWriter::Open(m_path), Error);
        EXPECT_THROW(WriteStored(m_path, {{kPhotoName, AsBytes("x")}}), Error);
        EXPECT_EQ(ReadWholeFile(m_path), before);
    }
}

TEST_F(PackageRecoveryTest, DamageInTheMiddleOfAnInterruptedPackage_CostsOnlyThatPiece) {
    MakeBase(true);
    m_path = Copy(m_base);
    {
        const auto storage = FileStorage::Open(m_path, FileStorage::Access::kReadWrite);
        const std::uint64_t third = kMediaAt + (storage->Size() - kMediaAt) / 3;
        storage->WriteAt(third, Bytes(3000, 0));
        storage->Truncate(storage->Size() - 10);  // the list of key frames is torn too
    }
    const VerifyResult verified = WholeVerify(m_path, nullptr, nullptr);
    ASSERT_TRUE(verified.recovered);
    EXPECT_GT(LengthMs(m_path), 3900);
    EXPECT_EQ(KeyFrames(m_path).back(), 3000);
}

TEST_F(PackageRecoveryTest, DamageInAClosedPackage_IsFoundAndNothingIsTouched) {
    MakeBase(true);
    m_path = Copy(m_base);
    {
        const auto storage = FileStorage::Open(m_path, FileStorage::Access::kReadWrite);
        storage->WriteAt(kMediaAt + 5000, Bytes(1, 0x5A));
    }
    const auto before = ReadWholeFile(m_path);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kDamaged);
    EXPECT_EQ(ReadWholeFile(m_path), before);
}

TEST_F(PackageRecoveryTest, EntriesBeyondTheMedia_AreLeftOutAndCounted) {
    MakeBase(false);
    m_path = Copy(m_base);
    {
        const auto writer = PackageWriter::Open(m_path);
        Record(*writer, ShortLecture());
        writer->WriteJournal(JournalOf({0, 1000, -1, 100'000}));
    }
    const auto report = Recover(m_path);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->entries, 3);
    EXPECT_EQ(report->entriesWithoutMedia, 1);
    EXPECT_EQ(EntriesOf(m_path), (std::vector<std::int64_t>{0, 1000, -1}));
}

TEST_F(PackageRecoveryTest, DeathBeforeTheFirstPicture_LeavesAnEmptyPackage) {
    MakeBase(false);
    m_path = Copy(m_base);
    {
        const auto writer = PackageWriter::Open(m_path);
        writer->SetTracks(ShortLecture().tracks);
        writer->WriteJournal(JournalOf({0}));
    }
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kHoldsMedia);  // not yet looked after: keep it
    const auto report = Recover(m_path);
    ASSERT_TRUE(report);
    EXPECT_EQ(report->entriesWithoutMedia, 1);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kEmpty);
    EXPECT_GT(RecordFile(m_path), 3900);
}

TEST_F(PackageRecoveryTest, DeathBeforeAProjectWasStored_MergesTheEntriesIntoTheOneThatComes) {
    m_path = m_folder.File("bare.ktr");
    {
        const auto writer = PackageWriter::Open(m_path);
        Record(*writer, ShortLecture());
        writer->WriteJournal(JournalOf({0, 2000}));
    }
    EXPECT_FALSE(ExtractStored(m_path, {m_folder.File("p"), "", "", ""}));
    const VerifyResult verified = WholeVerify(m_path, nullptr, nullptr);
    ASSERT_TRUE(verified.recovered);
    EXPECT_TRUE(verified.recovered->indexPending);
    EXPECT_EQ(verified.soundness, Soundness::kSound);
    WriteStored(m_path, {{kProjectFileName, ProjectFile({})}});
    EXPECT_EQ(EntriesOf(m_path), (std::vector<std::int64_t>{0, 2000}));
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}});
    EXPECT_EQ(EntriesOf(m_path), (std::vector<std::int64_t>{0}));  // asked once, not for ever
}

TEST_F(PackageRecoveryTest, StoringAnOldProjectIntoAnInterruptedPackage_LosesNoEntry) {
    MakeBase(false);
    m_path = Copy(m_base);
    {
        const auto writer = PackageWriter::Open(m_path);
        Record(*writer, ShortLecture());
        writer->WriteJournal(JournalOf({0, 1000, 3000}));
    }
    const auto recovered = WriteStored(m_path, {{kProjectFileName, ProjectFile({0, 2000})}});
    EXPECT_TRUE(recovered);
    EXPECT_EQ(EntriesOf(m_path), (std::vector<std::int64_t>{0, 1000, 2000, 3000}));
}

TEST_F(PackageRecoveryTest, UnreadableProject_KeepsTheJournalBesideIt) {
    m_path = m_folder.File("odd.ktr");
    {
        const auto writer = PackageWriter::Open(m_path);
        writer->StoreFiles({{kProjectFileName, AsBytes("not a project")}});
        Record(*writer, ShortLecture());
        writer->WriteJournal(JournalOf({0}));
    }
    const auto report = Recover(m_path);
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->indexPending);
    EXPECT_EQ(AsText(*ReadStored(m_path).at(kProjectFileName)), "not a project");
    EXPECT_EQ(AsText(*ReadStored(m_path).at("journal.unmerged.txt")), JournalOf({0}));
    EXPECT_FALSE(Recover(m_path));
}

TEST_F(PackageRecoveryTest, Describe_OfAnInterruptedPackage_ShowsItsEntriesAndChangesNothing) {
    MakeBase(false);
    m_path = Copy(m_base);
    {
        const auto writer = PackageWriter::Open(m_path);
        Record(*writer, ShortLecture());
        writer->WriteJournal(JournalOf({0, 3000}));
    }
    const auto before = ReadWholeFile(m_path);
    const PackageDescription description = Describe(m_path);
    EXPECT_EQ(description.soundness, Soundness::kInterrupted);
    EXPECT_EQ(IndexOf(*description.stored.at(kProjectFileName)).substr(9), "|0|3000");
    EXPECT_EQ(description.keyFrames.size(), 4u);
    EXPECT_EQ(description.stored.count(kJournalName), 0u);
    EXPECT_EQ(ReadWholeFile(m_path), before);
}

TEST_F(PackageRecoveryTest, RecoveryOfDamagedPackages_EndsWholeOrSaysWhyNot) {
    MakeBase(true);
    Promised promised;
    RecordDying(RecordDying(-1, 1, promised) * 2 / 3, 0.6, promised);
    const Bytes torn = *ReadWholeFile(m_path);
    std::mt19937 random(815);
    int whole = 0;
    for (int i = 0; i < 400; ++i) {
        Bytes bytes = torn;
        for (int flips = 0; flips < 4; ++flips) {
            const bool head = random() % 4 == 0;
            const std::size_t at = head ? random() % 6000 : kMediaAt + random() % (bytes.size() - kMediaAt);
            bytes[at] = static_cast<std::uint8_t>(random());
        }
        WriteWholeFile(m_path, bytes);
        try {
            RecoverIfInterrupted(*FileStorage::Open(m_path, FileStorage::Access::kReadWrite));
            EXPECT_FALSE(RecoverIfInterrupted(*FileStorage::Open(m_path, FileStorage::Access::kReadWrite)));
            ++whole;
        } catch (const Error& error) {
            EXPECT_EQ(error.kind, ErrorKind::kDamaged) << error.what();
        }
    }
    EXPECT_GT(whole, 200);
}

TEST_F(PackageRecoveryTest, WholeVerify_WhenCancelled_SaysSo) {
    MakeBase(true);
    int lastPercent = -1;
    const VerifyResult verified = WholeVerify(
        m_base, [&](int percent) { lastPercent = percent; }, [&] { return lastPercent > 20; });
    EXPECT_TRUE(verified.cancelled);
    EXPECT_LT(lastPercent, 100);
}

}  // namespace
}  // namespace kestrum::media
