// What an inspection tells about whole, torn, damaged and foreign files, and that it changes none of them.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "PackageSamples.h"
#include "media/package/Inspection.h"
#include "media/package/PackageMap.h"

namespace kestrum::media {
namespace {

using namespace test;

class PackageInspectionTest : public ::testing::Test {
  protected:
    Inspection Look(const std::string& path) {
        const auto before = std::filesystem::is_regular_file(path) ? ReadWholeFile(path) : std::nullopt;
        const Inspection found = Inspect(path, Thoroughness::kEverything, nullptr, nullptr);
        if (before) {
            EXPECT_EQ(ReadWholeFile(path), before);
        }
        return found;
    }
    Inspection Look() { return Look(m_path); }

    /// Four seconds with a project file and its chapters.
    void Record() {
        RecordFile(m_path);
        WriteStored(m_path, {{kProjectFileName, ProjectFile({0, 1000, 2000}, "00:04")}});
    }
    void Overwrite(std::uint64_t position, const Bytes& bytes) {
        FileStorage::Open(m_path, FileStorage::Access::kReadWrite)->WriteAt(position, bytes);
    }
    PackageMap Map() { return ReadMap(*FileStorage::Open(m_path, FileStorage::Access::kRead)); }
    std::uint64_t Size() { return std::filesystem::file_size(m_path); }
    static bool Has(const Inspection& found, DamageKind kind) {
        for (const DamagedPiece& piece : found.damages)
            if (piece.kind == kind) return true;
        return false;
    }

    TempFolder m_folder;
    const std::string m_path = m_folder.File("lecture.ktr");
};

TEST_F(PackageInspectionTest, WholePackage_HasNoDamageAndTellsIndexAndLength) {
    Record();
    const Inspection found = Look();
    EXPECT_EQ(found.kind, FileKind::kPackage);
    EXPECT_EQ(found.soundness, Soundness::kSound);
    EXPECT_TRUE(found.damages.empty());
    EXPECT_TRUE(found.holdsMedia && found.hasProject);
    EXPECT_FALSE(found.entriesWait);
    EXPECT_EQ(found.lengthMs, LengthMs(m_path));
    EXPECT_EQ(found.headLengthMs, found.lengthMs);
    EXPECT_EQ(found.keyFrames, KeyFrames(m_path));
    ASSERT_EQ(found.chapters.size(), 3u);
    EXPECT_EQ(found.chapters[1].ms, 1000);
    EXPECT_EQ(found.chapters[1].title, "Slide 2");
}

TEST_F(PackageInspectionTest, WhatIsNoPackage_IsToldByItsKind) {
    EXPECT_EQ(Look().kind, FileKind::kMissing);
    EXPECT_EQ(Look(m_folder.File("none/lecture.ktr")).kind, FileKind::kMissing);
    EXPECT_EQ(Look(m_folder.File(".")).kind, FileKind::kFolder);
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_EQ(Look().kind, FileKind::kNoFile);
    EXPECT_EQ(Look("/dev/zero").kind, FileKind::kNoFile);
    const std::string empty = m_folder.File("empty.ktr"), text = m_folder.File("text.ktr");
    WriteWholeFile(empty, {});
    EXPECT_EQ(Look(empty).kind, FileKind::kEmptyFile);
    WriteWholeFile(text, AsBytes("Dear students,"));
    EXPECT_EQ(Look(text).kind, FileKind::kForeign);
}

TEST_F(PackageInspectionTest, ForeignMatroska_IsToldApart) {
    Record();
    const std::string foreign = m_folder.File("foreign.mkv");
    ASSERT_EQ(RunTool({"mkvmerge", "-q", "-o", foreign, m_path}).exitCode, 0);
    EXPECT_EQ(Look(foreign).kind, FileKind::kForeignMatroska);
}

TEST_F(PackageInspectionTest, FileThatMayNotBeRead_IsToldSo) {
    Record();
    ASSERT_EQ(chmod(m_path.c_str(), 0), 0);
    // The administrator may read everything: asked as somebody else.
    ASSERT_EQ(chmod(std::filesystem::path(m_path).parent_path().c_str(), 0755), 0);
    const uid_t self = geteuid();
    ASSERT_EQ(seteuid(self == 0 ? 65534 : self), 0);
    const Inspection found = Inspect(m_path, Thoroughness::kEverything, nullptr, nullptr);
    ASSERT_EQ(seteuid(self), 0);
    EXPECT_EQ(found.kind, FileKind::kNoPermission);
    EXPECT_FALSE(found.reason.empty());
}

TEST_F(PackageInspectionTest, FlippedBits_AreToldWithTheSecondsTheyAffect) {
    Record();
    // Two bytes in the third second.
    const auto at = Map().mediaBegin + (Map().cues->position - Map().mediaBegin) * 5 / 8;
    Overwrite(at, AsBytes("\x55\xAA"));
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kDamaged);
    ASSERT_EQ(found.damages.size(), 1u);
    EXPECT_EQ(found.damages[0].kind, DamageKind::kMedia);
    EXPECT_EQ(found.damages[0].beginMs, 2000);
    EXPECT_EQ(found.damages[0].endMs, 3000);
    EXPECT_EQ(Inspect(m_path, Thoroughness::kHeadAndTail, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageInspectionTest, ZeroedBlockOverClusterHeaders_IsOnePieceWithItsSeconds) {
    Record();
    const auto begin = Map().mediaBegin, length = Map().cues->position - begin;
    Overwrite(begin + length / 3, Bytes(length / 3, 0));
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kDamaged);
    ASSERT_EQ(found.damages.size(), 1u);
    EXPECT_EQ(found.damages[0].beginMs, 1000);
    EXPECT_EQ(found.damages[0].endMs, 3000);
    EXPECT_EQ(found.keyFrames.size(), 4u) << "the list of key frames is whole";
}

TEST_F(PackageInspectionTest, CutFile_TellsWhereItEndsAndWhereItShould) {
    Record();
    const auto whole = LengthMs(m_path);
    const auto begin = Map().mediaBegin, length = Map().cues->position - begin;
    std::filesystem::resize_file(m_path, begin + length / 2);
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kInterrupted);
    ASSERT_EQ(found.damages.size(), 1u);
    EXPECT_EQ(found.damages[0].kind, DamageKind::kCutOff);
    EXPECT_EQ(found.damages[0].beginMs, found.lengthMs);
    EXPECT_EQ(found.damages[0].endMs, whole);
    EXPECT_GT(found.lengthMs, 1000);
    EXPECT_LT(found.lengthMs, 3000);
}

TEST_F(PackageInspectionTest, FileCutInFrontOfItsMedia_HasADamagedFront) {
    for (const std::uint64_t size : {300, 600, 5000, 1 << 20, 2 << 20}) {
        std::filesystem::remove(m_path);
        Record();
        std::filesystem::resize_file(m_path, size);
        const Inspection found = Look();
        EXPECT_NE(found.soundness, Soundness::kSound) << size;
        EXPECT_TRUE(found.kind != FileKind::kPackage || Has(found, DamageKind::kFront) ||
                    Has(found, DamageKind::kCutOff))
            << size;
    }
}

TEST_F(PackageInspectionTest, DamagedStoredFiles_AreToldApartFromTheMedia) {
    Record();
    const PackageMap map = Map();
    Overwrite(map.Find(kProjectFileName)->data.data + 3, AsBytes("#"));
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kDamaged);
    ASSERT_EQ(found.damages.size(), 1u);
    EXPECT_EQ(found.damages[0].kind, DamageKind::kStoredFiles);
    EXPECT_EQ(found.keyFrames.size(), 4u);
}

TEST_F(PackageInspectionTest, PackageWithoutAProjectFile_SaysSo) {
    RecordFile(m_path);
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kSound);
    EXPECT_FALSE(found.hasProject);
    EXPECT_TRUE(found.chapters.empty());
}

TEST_F(PackageInspectionTest, KeyFrameListWithAFlippedBit_IsToldAndWrittenAnewByARecovery) {
    Record();
    const auto length = LengthMs(m_path);
    Overwrite(Map().cues->End() - 3, AsBytes("\xFF"));
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kInterrupted);
    EXPECT_TRUE(Has(found, DamageKind::kKeyFrameList));
    EXPECT_EQ(found.lengthMs, length) << "the media tell it";
    EXPECT_EQ(found.keyFrames.size(), 4u);

    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    const Inspection after = Look();
    EXPECT_EQ(after.soundness, Soundness::kSound);
    EXPECT_TRUE(after.damages.empty());
    EXPECT_EQ(after.lengthMs, length);
    EXPECT_EQ(IndexOf(*ReadStored(m_path).at(kProjectFileName)), DurationText(length) + "|0|1000|2000");
}

TEST_F(PackageInspectionTest, InterruptedRecording_IsNoDamage) {
    {
        auto writer = PackageWriter::Open(m_path);
        test::Record(*writer, ShortLecture());
        writer->StoreFiles({{kProjectFileName, ProjectFile({0})}});
        writer->WriteJournal(JournalOf({0, 1000}));
        const Inspection alive = Look();
        EXPECT_EQ(alive.soundness, Soundness::kRecording);
        EXPECT_TRUE(alive.damages.empty());
    }
    const Inspection found = Look();
    EXPECT_EQ(found.soundness, Soundness::kInterrupted);
    EXPECT_TRUE(found.damages.empty());
    EXPECT_TRUE(found.entriesWait);
    EXPECT_GT(found.lengthMs, 3900);
}

TEST_F(PackageInspectionTest, Progress_RisesToHundred_AndACancelEndsEarly) {
    Record();
    std::vector<int> percents;
    Inspect(
        m_path, Thoroughness::kEverything, [&](int percent) { percents.push_back(percent); }, nullptr);
    ASSERT_FALSE(percents.empty());
    EXPECT_TRUE(std::is_sorted(percents.begin(), percents.end()));
    EXPECT_EQ(percents.back(), 100);
    EXPECT_TRUE(Inspect(m_path, Thoroughness::kEverything, nullptr, [] { return true; }).cancelled);
}

}  // namespace
}  // namespace kestrum::media
