// Recording into packages, read back by the library itself and by other people's Matroska tools.

#include "media/package/PackageWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>

#include "PackageSamples.h"
#include "media/package/ClusterFormat.h"
#include "media/package/Layout.h"
#include "media/package/MediaScan.h"
#include "media/package/PackageMap.h"

namespace kestrum::media {
namespace {

using namespace test;

std::size_t Count(bool video) {
    const auto& samples = ShortLecture().samples;
    return static_cast<std::size_t>(
        std::count_if(samples.begin(), samples.end(), [&](const Sample& sample) { return sample.video == video; }));
}

class PackageWriterTest : public ::testing::Test {
  protected:
    TempFolder m_folder;
    const std::string m_path = m_folder.File("lecture.ktr");
};

TEST_F(PackageWriterTest, ClosedRecording_IsReadByEveryReader) {
    const std::int64_t length = RecordFile(m_path);
    ExpectReadersAgree(m_path, Count(true), Count(false));
    EXPECT_EQ(LengthMs(m_path), length);
    EXPECT_EQ(KeyFrames(m_path), (std::vector<std::int64_t>{0, 1000, 2000, 3000}));
    EXPECT_EQ(FrameSize(m_path)->width, 160);
    EXPECT_EQ(FrameSize(m_path)->height, 120);
    EXPECT_EQ(FormatVersion(m_path), 2048);
    EXPECT_EQ(AudioBitrate(m_path), 64);
    EXPECT_EQ(VideoAttribute(m_path), 0);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kSound);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kHoldsMedia);
}

TEST_F(PackageWriterTest, Length_IsWhatOtherReadersSay) {
    const std::int64_t length = RecordFile(m_path);
    const ToolResult probe =
        RunTool({"ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", m_path});
    EXPECT_EQ(std::llround(std::atof(probe.output.c_str()) * 1000), length);
}

TEST_F(PackageWriterTest, Close_WithALaterEnd_MakesThatTheLength) {
    const auto writer = PackageWriter::Open(m_path);
    Record(*writer, ShortLecture());
    writer->Close(9000);
    EXPECT_EQ(LengthMs(m_path), 9000);
}

TEST_F(PackageWriterTest, AppendingTwice_GrowsLengthAndIndexAndPlaysWhole) {
    const std::int64_t first = RecordFile(m_path);
    const std::int64_t second = RecordFile(m_path);
    const std::int64_t third = RecordFile(m_path);
    EXPECT_EQ(LengthMs(m_path), third);
    const std::vector<std::int64_t> keys = KeyFrames(m_path);
    ASSERT_EQ(keys.size(), 12u);
    EXPECT_EQ(keys[4], first);
    EXPECT_EQ(keys[8], second);
    ExpectReadersAgree(m_path, 3 * Count(true), 3 * Count(false));
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageWriterTest, Appending_ShowsTheTracksAndTheOldLength) {
    const std::int64_t length = RecordFile(m_path);
    const auto writer = PackageWriter::Open(m_path);
    EXPECT_EQ(writer->StartMs(), length);
    ASSERT_TRUE(writer->ExistingTracks());
    EXPECT_EQ(writer->ExistingTracks()->video.avcC, ShortLecture().tracks.video.avcC);
    EXPECT_EQ(writer->ExistingTracks()->audio->sampleRate, 48000);
    EXPECT_EQ(writer->ExistingTracks()->audio->channels, 1);
    EXPECT_FALSE(writer->Recovered());
    EXPECT_THROW(writer->SetTracks(ShortLecture().tracks), Error);
}

TEST_F(PackageWriterTest, Opening_WithoutRecording_LeavesTheMediaAlone) {
    const std::int64_t length = RecordFile(m_path);
    PackageWriter::Open(m_path)->Close(length + 5000);
    EXPECT_EQ(LengthMs(m_path), length);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kSound);
}

TEST_F(PackageWriterTest, Opening_WhileAnotherRecords_IsRefusedAndChangesNothing) {
    const auto writer = PackageWriter::Open(m_path);
    try {
        PackageWriter::Open(m_path);
        FAIL() << "two writers";
    } catch (const Error& error) {
        EXPECT_EQ(error.kind, ErrorKind::kLocked);
    }
    EXPECT_THROW(WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}}), Error);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kRecording);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kHoldsMedia);
}

TEST_F(PackageWriterTest, GrowingPackage_AnswersBeyondItsLastKeyFrame) {
    const auto writer = PackageWriter::Open(m_path);
    Record(*writer, ShortLecture(), [&](std::int64_t) {
        const std::vector<std::int64_t> keys = KeyFrames(m_path);
        EXPECT_GT(LengthMs(m_path), keys.empty() ? -1 : keys.back());
        EXPECT_LE(LengthMs(m_path), writer->LengthMs());
    });
    writer->Flush();
    EXPECT_EQ(LengthMs(m_path), writer->LengthMs());
    EXPECT_EQ(KeyFrames(m_path).size(), 4u);
    EXPECT_EQ(FrameSize(m_path)->width, 160);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kRecording);
}

TEST_F(PackageWriterTest, GrowingPackage_CanBePlayed) {
    const auto writer = PackageWriter::Open(m_path);
    Record(*writer, ShortLecture());
    writer->Flush();
    const ToolResult decode = RunTool({"ffmpeg", "-v", "error", "-i", m_path, "-f", "null", "-"});
    EXPECT_EQ(decode.exitCode, 0);
    EXPECT_EQ(decode.output, "");
}

TEST_F(PackageWriterTest, PicturesOutOfOrder_MoveToTheNextFreeMillisecond) {
    const auto writer = PackageWriter::Open(m_path);
    writer->SetTracks(ShortLecture().tracks);
    const Bytes& picture = FirstOf(ShortLecture(), true);
    EXPECT_EQ(writer->WriteVideo(0, true, picture), 0);
    EXPECT_EQ(writer->WriteVideo(0, true, picture), 1);
    EXPECT_EQ(writer->WriteVideo(-50, false, picture), 2);
    EXPECT_EQ(writer->WriteVideo(40, true, picture), 40);
    writer->Close(0);
    EXPECT_EQ(KeyFrames(m_path), (std::vector<std::int64_t>{0, 1, 40}));
}

TEST_F(PackageWriterTest, FirstPicture_MustBeAKeyFrame) {
    const auto writer = PackageWriter::Open(m_path);
    EXPECT_THROW(writer->WriteVideo(0, true, Bytes(10)), Error);  // no tracks yet
    writer->SetTracks(ShortLecture().tracks);
    EXPECT_THROW(writer->WriteVideo(0, false, Bytes(10)), Error);
}

TEST_F(PackageWriterTest, SoundLateByManySeconds_StaysInTheFile) {
    const auto writer = PackageWriter::Open(m_path);
    writer->SetTracks(ShortLecture().tracks);
    writer->WriteVideo(0, true, FirstOf(ShortLecture(), true));
    writer->WriteVideo(100'000, true, FirstOf(ShortLecture(), true));
    writer->WriteAudio(20'000, FirstOf(ShortLecture(), false));
    writer->Close(0);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    const ToolResult probe = RunTool({"ffprobe", "-v", "error", "-select_streams", "a:0", "-show_entries",
                                      "packet=pts_time", "-of", "csv=p=0", m_path});
    EXPECT_EQ(probe.output.substr(0, 6), "20.000") << probe.output;
}

TEST_F(PackageWriterTest, RecordingWithoutSound_IsWhole) {
    const auto writer = PackageWriter::Open(m_path);
    TrackConfigs silent = ShortLecture().tracks;
    silent.audio.reset();
    writer->SetTracks(silent);
    for (const Sample& sample : ShortLecture().samples)
        if (sample.video) writer->WriteVideo(sample.ms, sample.key, sample.data);
    EXPECT_THROW(writer->WriteAudio(0, Bytes(10)), Error);
    writer->Close(4000);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(AudioBitrate(m_path), 0);
    EXPECT_EQ(LengthMs(m_path), 4000);
}

TEST_F(PackageWriterTest, BigPictures_AreWrittenWithoutAFlush) {
    const auto writer = PackageWriter::Open(m_path);
    writer->SetTracks(ShortLecture().tracks);
    for (int i = 0; i < 40; ++i) writer->WriteVideo(i, true, Bytes(1 << 20, 7));
    EXPECT_GT(std::filesystem::file_size(m_path), 35u << 20);
    writer->Close(0);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(KeyFrames(m_path).size(), 40u);
}

TEST_F(PackageWriterTest, HeadersThatAreWrittenAgain_LieWithinOneSector) {
    const auto writer = PackageWriter::Open(m_path);
    writer->SetTracks(ShortLecture().tracks);
    for (std::size_t i = 0; i < 600; ++i) writer->WriteVideo(static_cast<std::int64_t>(i), true, Bytes(i, 7));
    writer->StoreFiles({{kPhotoName, Bytes(2 << 20, 5)}});
    writer->Close(0);
    const auto storage = FileStorage::Open(m_path, FileStorage::Access::kRead);
    const PackageMap map = ReadMap(*storage);
    const auto expectInSector = [](std::uint64_t position, std::uint64_t size) {
        EXPECT_EQ(position / kSectorSize, (position + size - 1) / kSectorSize) << position;
    };
    const MediaScan scan = ScanMedia(*storage, kMediaAt, 21, Damage::kStop);
    ASSERT_EQ(scan.cues.size(), 600u);
    for (const CueEntry& cue : scan.cues) expectInSector(cue.cluster, kClusterCheckedAt);
    expectInSector(map.head.attachments, ebml::kLongHeaderSize);
    expectInSector(map.cues->position, ebml::kLongVoidHeaderSize);
}

TEST_F(PackageWriterTest, Close_MergesTheJournalIntoTheStoredProject) {
    const auto writer = PackageWriter::Open(m_path);
    writer->StoreFiles({{kProjectFileName, ProjectFile({})}});
    Record(*writer, ShortLecture());
    writer->WriteJournal(JournalOf({0, 2000}));
    writer->Close(4500);
    EXPECT_EQ(IndexOf(*ReadStored(m_path).at(kProjectFileName)), "00:04.500|0|2000");
    EXPECT_EQ(RunTool({"mkvmerge", "-i", m_path}).output.find("journal"), std::string::npos);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kSound);
}

TEST_F(PackageWriterTest, Close_WithoutAProject_KeepsTheEntriesForTheOneThatComes) {
    const auto writer = PackageWriter::Open(m_path);
    Record(*writer, ShortLecture());
    writer->WriteJournal(JournalOf({0, 2000}));
    writer->Close(4000);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kSound);
    EXPECT_TRUE(ReadStored(m_path).empty());
}

TEST_F(PackageWriterTest, StoreFiles_WhileRecording_IsSeenAtOnceAndSurvivesTheEnd) {
    const auto writer = PackageWriter::Open(m_path);
    Record(*writer, ShortLecture(), [&](std::int64_t ms) {
        if (ms == 1000) writer->StoreFiles({{kCursorImageName, AsBytes("cursor")}});
        if (ms == 2000) writer->StoreFiles({{kPhotoName, Bytes(3 << 20, 5)}});
        if (ms == 3000) writer->WriteJournal(JournalOf({0, 1000, 2000, 3000}));
    });
    EXPECT_EQ(AsText(*ReadStored(m_path).at(kCursorImageName)), "cursor");
    writer->StoreFiles({{kProjectFileName, ProjectFile({})}});
    writer->Close(0);
    const StoredFiles stored = ReadStored(m_path);
    EXPECT_EQ(stored.at(kPhotoName)->size(), 3u << 20);
    EXPECT_EQ(AsText(*stored.at(kCursorImageName)), "cursor");
    EXPECT_EQ(IndexOf(*stored.at(kProjectFileName)).substr(9), "|0|1000|2000|3000");
    ExpectReadersAgree(m_path, Count(true), Count(false));
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

}  // namespace
}  // namespace kestrum::media
