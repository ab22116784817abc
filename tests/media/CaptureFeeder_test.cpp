// The way of the media into a real package: order, journal, room.
#include "media/capture/PackageFeeder.h"

#include <gtest/gtest.h>

#include <limits>

#include "PackageSamples.h"
#include "media/package/Package.h"
#include "real/ChildProcess.h"

namespace kestrum::media {
namespace {

class CaptureFeeder : public ::testing::Test {
  protected:
    std::unique_ptr<PackageFeeder> Open(RoomLimits limits) {
        auto writer = PackageWriter::Open(Path());
        TrackConfigs tracks;
        tracks.video = {64, 48, {1, 66, 0, 10, 0xFF, 0xE0, 0}};
        tracks.audio = AudioTrackConfig{48000, 1, 64000, {0x11, 0x88}};
        writer->SetTracks(tracks);
        return std::make_unique<PackageFeeder>(std::move(writer), Path(), limits);
    }
    std::string Path() const { return m_folder / "lecture.ktr"; }
    /// A NAL unit with its length in front.
    static Bytes Sample() { return {0, 0, 0, 2, 0x65, 0x88}; }

    real::TempFolder m_folder;
};

TEST_F(CaptureFeeder, SoundThatComesLaterThanItsPicture_IsStillInOrder) {
    auto feeder = Open({});
    feeder->PushVideo(0, true, Sample());
    feeder->PushVideo(100, true, Sample());
    feeder->PushAudio(0, Sample());
    feeder->PushAudio(21, Sample());
    feeder->Finish(200);
    EXPECT_EQ(KeyFrames(Path()), (std::vector<std::int64_t>{0, 100}));
    EXPECT_EQ(LengthMs(Path()), 200);
    EXPECT_EQ(WholeVerify(Path(), {}, {}).soundness, Soundness::kSound);
}

TEST_F(CaptureFeeder, WhatWasPushed_ReachesTheFileByItself) {
    auto feeder = Open({});
    feeder->PushVideo(0, true, Sample());
    EXPECT_TRUE(real::WaitFor([&] { return KeyFrames(Path()) == std::vector<std::int64_t>{0}; }));
    feeder->Finish(100);
}

TEST_F(CaptureFeeder, PackageBeyondItsLargestSize_IsAState_AndMediaGoOn) {
    auto feeder = Open({1, 0});
    EXPECT_TRUE(real::WaitFor([&] { return feeder->State() == EncoderState::kLargestSize; }));
    feeder->PushVideo(0, true, Sample());
    feeder->Finish(100);
    EXPECT_EQ(KeyFrames(Path()).size(), 1U);
}

TEST_F(CaptureFeeder, DiskWithoutRoom_IsAState_AndMediaGoOn) {
    RoomLimits limits;
    limits.leastFreeBytes = std::numeric_limits<std::int64_t>::max();
    auto feeder = Open(limits);
    EXPECT_TRUE(real::WaitFor([&] { return feeder->State() == EncoderState::kDiskFull; }));
    feeder->PushVideo(0, true, Sample());
    feeder->Finish(100);
    EXPECT_EQ(KeyFrames(Path()).size(), 1U);
}

TEST_F(CaptureFeeder, AJournalWhosePictureIsThere_IsNotKeptOutByLaterOnes) {
    WriteStored(Path(), {{kProjectFileName, test::ProjectFile({})}});
    auto feeder = Open({});
    feeder->PushVideo(0, true, Sample());
    feeder->PushVideo(70, true, Sample());
    EXPECT_TRUE(feeder->PushJournal(test::JournalOf({70}), 70));
    const bool isThere = real::WaitFor([&] {
        feeder->PushJournal(test::JournalOf({70, 90000}), 90000);  // slides that are turned quickly
        return test::IndexOf(*ReadStored(Path()).at(kProjectFileName)).find("|70") != std::string::npos;
    });
    EXPECT_TRUE(isThere);
    feeder->Finish(100);
}

TEST_F(CaptureFeeder, EnoughRoom_IsNoState) {
    auto feeder = Open({});
    feeder->PushVideo(0, true, Sample());
    ASSERT_TRUE(real::WaitFor([&] { return feeder->WrittenMs() > 0; }));
    EXPECT_EQ(feeder->State(), EncoderState::kRunning);
    EXPECT_TRUE(feeder->PushJournal("", 0));
    feeder->Finish(100);
}

TEST_F(CaptureFeeder, FeederThatIsNotFinished_LeavesAPackageThatIsRecovered) {
    {
        auto feeder = Open({});
        feeder->PushVideo(0, true, Sample());
        ASSERT_TRUE(real::WaitFor([&] { return feeder->WrittenMs() > 0; }));
    }
    EXPECT_EQ(QuickVerify(Path()), Soundness::kInterrupted);
    EXPECT_TRUE(Recover(Path()));
    EXPECT_EQ(KeyFrames(Path()), std::vector<std::int64_t>{0});
}

}  // namespace
}  // namespace kestrum::media
