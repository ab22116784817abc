// The files stored in a package: they come back byte by byte, are replaced as a set or not at all, and what a later
// version put beside them stays.

#include <gtest/gtest.h>

#include <filesystem>

#include "PackageSamples.h"
#include "media/package/FileSet.h"
#include "media/package/Layout.h"

namespace kestrum::media {
namespace {

using namespace test;

class PackageFilesTest : public ::testing::Test {
  protected:
    /// Replaces the files of a copy of `base`, dying at every write in turn; the copy must hold the old or the new set.
    void TryEveryDeath(const std::string& base, const StoredFiles& changes) {
        const StoredFiles before = ReadStored(base);
        StoredFiles after = before;
        for (const auto& [name, content] : changes) {
            if (content) after[name] = content;
            if (!content) after.erase(name);
        }
        const std::string copy = m_folder.File("copy.ktr");
        const auto script = std::make_shared<DyingStorage::Script>();
        int operations = 1;
        for (int fatal = 0; fatal < operations; ++fatal) {
            for (const double written : {0.0, 0.3, 0.999, 1.0, 2.0}) {
                SCOPED_TRACE("operation " + std::to_string(fatal) + ", part " + std::to_string(written));
                std::filesystem::copy_file(base, copy, std::filesystem::copy_options::overwrite_existing);
                *script = {0, written > 1 ? -1 : fatal, written};
                try {
                    ReplaceFilesOfClosedPackage(*OpenDying(copy, script), changes);
                    operations = script->operations;
                } catch (const DyingStorage::Death&) {
                }
                const StoredFiles found = ReadStored(copy);
                EXPECT_TRUE(found == before || found == after);
                EXPECT_TRUE(written <= 1 || found == after);
                EXPECT_EQ(WholeVerify(copy, nullptr, nullptr).soundness, Soundness::kSound);
                EXPECT_TRUE(ReadStored(copy) == before || ReadStored(copy) == after);
                EXPECT_EQ(LengthMs(copy), LengthMs(base));
                WriteStored(copy, changes);
                EXPECT_EQ(ReadStored(copy), after);
            }
        }
        EXPECT_GE(operations, 2);
    }

    TempFolder m_folder;
    const std::string m_path = m_folder.File("lecture.ktr");
};

TEST_F(PackageFilesTest, StoredFiles_ComeBackByteByByte) {
    Bytes all(256 * 40);
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<std::uint8_t>(i * 7 / 3);
    const StoredFiles files{{kProjectFileName, ProjectFile({0, 5})},
                            {kCursorImageName, all},
                            {kPhotoName, Bytes()},
                            {kIndexTextName, AsBytes("a\r\nb\0c")}};
    WriteStored(m_path, files);
    EXPECT_EQ(ReadStored(m_path), files);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kEmpty);
    RecordFile(m_path);
    EXPECT_EQ(ReadStored(m_path), files);
}

TEST_F(PackageFilesTest, AbsentFile_IsStoredAsAbsent) {
    WriteStored(m_path, {{kProjectFileName, ProjectFile({})}, {kPhotoName, AsBytes("photo")}});
    WriteStored(m_path, {{kProjectFileName, ProjectFile({})}, {kPhotoName, std::nullopt}});
    EXPECT_EQ(ReadStored(m_path).count(kPhotoName), 0u);
    EXPECT_EQ(ReadStored(m_path).count(kProjectFileName), 1u);
}

TEST_F(PackageFilesTest, PathsInAndOut_LeaveAbsentFilesAbsent) {
    WriteWholeFile(m_folder.File("in.ksp"), ProjectFile({0}));
    WriteWholeFile(m_folder.File("in.gif"), AsBytes("cursor"));
    WriteStored(m_path, LoadFiles({m_folder.File("in.ksp"), m_folder.File("in.gif"), m_folder.File("no photo"), ""}));
    WriteWholeFile(m_folder.File("out.gif"), AsBytes("a longer old content"));
    EXPECT_TRUE(ExtractStored(
        m_path, {m_folder.File("out.ksp"), m_folder.File("out.gif"), m_folder.File("photo"), m_folder.File("text")}));
    EXPECT_EQ(*ReadWholeFile(m_folder.File("out.ksp")), ProjectFile({0}));
    EXPECT_EQ(AsText(*ReadWholeFile(m_folder.File("out.gif"))), "cursor");
    EXPECT_FALSE(ReadWholeFile(m_folder.File("photo")));
    EXPECT_FALSE(ReadWholeFile(m_folder.File("text")));
}

TEST_F(PackageFilesTest, ReadingIntoFiles_FailsWithoutAProjectAndWritesNothing) {
    WriteStored(m_path, {{kCursorImageName, AsBytes("cursor")}});
    EXPECT_FALSE(ExtractStored(m_path, {m_folder.File("p"), m_folder.File("c"), "", ""}));
    EXPECT_FALSE(FileStorage::Exists(m_folder.File("c")));
}

TEST_F(PackageFilesTest, FilesOfALaterVersion_SurviveEveryOperation) {
    WriteStored(m_path, {{"captions.vtt", AsBytes("WEBVTT")}, {kProjectFileName, ProjectFile({0})}});
    RecordFile(m_path);
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0, 1000})}, {kPhotoName, Bytes(2 << 20, 9)}});
    RecordFile(m_path);
    WriteStored(m_path, {{kPhotoName, std::nullopt}});
    EXPECT_EQ(AsText(*ReadStored(m_path).at("captions.vtt")), "WEBVTT");
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageFilesTest, Index_IsMirroredAsChapters) {
    RecordFile(m_path);
    Bytes project = ProjectFile({0, -1, 2500});
    WriteStored(m_path, {{kProjectFileName, project}});
    const auto chapters = [&] {
        return RunTool({"ffprobe", "-v", "error", "-show_chapters", "-of", "csv=p=0", "-show_entries",
                        "chapter=start:chapter_tags=title", m_path})
            .output;
    };
    EXPECT_EQ(chapters(), "0,Slide 1\n2500000000,Slide 3\n");
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}});
    EXPECT_EQ(chapters(), "0,Slide 1\n");
    WriteStored(m_path, {{kProjectFileName, std::nullopt}});
    EXPECT_EQ(chapters(), "");
}

TEST_F(PackageFilesTest, Replacing_DyingAtAnyWrite_LeavesTheOldOrTheNewSet) {
    RecordFile(m_path);
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}, {kPhotoName, Bytes(30'000, 1)}});
    TryEveryDeath(m_path, {{kProjectFileName, ProjectFile({0, 1000})}, {kPhotoName, Bytes(50'000, 2)}});
    WriteStored(m_path, {{kIndexTextName, AsBytes("now the other slot counts")}});
    TryEveryDeath(m_path, {{kProjectFileName, ProjectFile({0, 1000})}, {kPhotoName, Bytes(50'000, 2)}});
}

TEST_F(PackageFilesTest, ReplacingBySetsTooBigForASlot_DyingAtAnyWrite_LeavesTheOldOrTheNewSet) {
    RecordFile(m_path);
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}, {kPhotoName, Bytes(30'000, 1)}});
    const StoredFiles big{{kProjectFileName, ProjectFile({0, 1000})}, {kPhotoName, Bytes(kSlotSize + 77, 2)}};
    const StoredFiles bigger{{kProjectFileName, ProjectFile({0, 2000})}, {kPhotoName, Bytes(kSlotSize + 99, 3)}};
    TryEveryDeath(m_path, big);
    WriteStored(m_path, big);
    TryEveryDeath(m_path, bigger);
    TryEveryDeath(m_path, {{kProjectFileName, ProjectFile({0, 1000})}, {kPhotoName, std::nullopt}});
}

TEST_F(PackageFilesTest, BigSetsStoredAgainAndAgain_DoNotGrowTheFile) {
    RecordFile(m_path);
    const auto media = std::filesystem::file_size(m_path);
    for (int i = 0; i < 20; ++i) WriteStored(m_path, {{kPhotoName, Bytes(kSlotSize + 100, 4)}});
    EXPECT_LT(std::filesystem::file_size(m_path), media + 4 * kSlotSize);
    for (int i = 0; i < 20; ++i) WriteStored(m_path, {{kPhotoName, Bytes(static_cast<std::size_t>(1000 * i), 4)}});
    EXPECT_LT(std::filesystem::file_size(m_path), media + 4096);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageFilesTest, BigSets_AreReadByEveryReader) {
    RecordFile(m_path);
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0, 1000})}, {kPhotoName, Bytes(kSlotSize + 5, 4)}});
    const ToolResult identified = RunTool({"mkvmerge", "-i", m_path});
    EXPECT_NE(identified.output.find("'photo.gif'"), std::string::npos) << identified.output;
    EXPECT_NE(identified.output.find("Chapters: 2 entries"), std::string::npos) << identified.output;
    RecordFile(m_path);
    EXPECT_EQ(ReadStored(m_path).at(kPhotoName)->size(), kSlotSize + 5);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageFilesTest, Attachments_AreSeenByOtherReaders) {
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}, {kCursorImageName, AsBytes("cursor")}});
    RecordFile(m_path);
    const std::string extracted = m_folder.File("extracted");
    EXPECT_EQ(RunTool({"mkvextract", m_path, "attachments", "1:" + extracted}).exitCode, 0);
    EXPECT_TRUE(*ReadWholeFile(extracted) == ProjectFile({0}) || AsText(*ReadWholeFile(extracted)) == "cursor");
    EXPECT_NE(RunTool({"mkvmerge", "-i", m_path}).output.find("'cursor.gif'"), std::string::npos);
}

TEST_F(PackageFilesTest, PackageEditedByAnotherProgram_IsReadAndWrittenAndLosesNothing) {
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0})}, {kPhotoName, AsBytes("photo")}});
    const std::int64_t length = RecordFile(m_path);
    const std::string note = m_folder.File("handout.pdf");
    WriteWholeFile(note, Bytes(5000, 7));
    ASSERT_EQ(RunTool({"mkvpropedit", m_path, "--edit", "info", "--set", "title=A rather long new title", "--edit",
                       "track:a1", "--set", "name=The speaker", "--attachment-description", "for the audience",
                       "--add-attachment", note})
                  .exitCode,
              0);
    EXPECT_EQ(ReadStored(m_path).at("handout.pdf")->size(), 5000u);
    EXPECT_EQ(LengthMs(m_path), length);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kSound);

    WriteStored(m_path, {{kProjectFileName, ProjectFile({0, 1000})}});
    RecordFile(m_path);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(KeyFrames(m_path).size(), 8u);
    const StoredFiles stored = ReadStored(m_path);
    EXPECT_EQ(stored.at("handout.pdf")->size(), 5000u);
    EXPECT_EQ(AsText(*stored.at(kPhotoName)), "photo");
    EXPECT_EQ(*stored.at(kProjectFileName), ProjectFile({0, 1000}));
    const std::string info = RunTool({"mkvinfo", "--all", m_path}).output;
    EXPECT_NE(info.find("for the audience"), std::string::npos);
    EXPECT_NE(info.find("The speaker"), std::string::npos);
    EXPECT_EQ(info.find("Error"), std::string::npos);
}

TEST_F(PackageFilesTest, DamagedFiles_AreToldAndNeverReplaced) {
    WriteStored(m_path, {{kPhotoName, Bytes(30'000, 1)}});
    FileStorage::Open(m_path, FileStorage::Access::kReadWrite)->WriteAt(kRegionAt + 9000, Bytes(1, 0xFF));
    const auto before = ReadWholeFile(m_path);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kDamaged);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kHoldsMedia);
    EXPECT_THROW(ReadStored(m_path), Error);
    EXPECT_THROW(WriteStored(m_path, {{kCursorImageName, AsBytes("cursor")}}), Error);
    EXPECT_EQ(ReadWholeFile(m_path), before);
}

TEST_F(PackageFilesTest, Storing_WritesBytesInProportionToTheFilesAlone) {
    RecordFile(m_path);
    class Counting final : public IStorage {
      public:
        explicit Counting(const std::string& path)
            : m_inner(FileStorage::Open(path, FileStorage::Access::kReadWrite)) {}
        std::uint64_t Size() override { return m_inner->Size(); }
        std::size_t ReadAt(std::uint64_t position, std::span<std::uint8_t> target) override {
            read += target.size();
            return m_inner->ReadAt(position, target);
        }
        void WriteAt(std::uint64_t position, std::span<const std::uint8_t> data) override {
            written += data.size();
            m_inner->WriteAt(position, data);
        }
        void Truncate(std::uint64_t size) override { m_inner->Truncate(size); }
        void Sync() override { m_inner->Sync(); }
        std::uint64_t read = 0;
        std::uint64_t written = 0;

      private:
        std::unique_ptr<FileStorage> m_inner;
    };
    Counting counting(m_path);
    ReplaceFilesOfClosedPackage(counting, {{kPhotoName, Bytes(10'000, 1)}});
    EXPECT_LT(counting.written, 10'200u);
    EXPECT_LT(counting.read, 10'000u);
}

}  // namespace
}  // namespace kestrum::media
