// Questions about files that are no package, or none that may be touched: a clear answer, and nothing changes.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <random>

#include "PackageSamples.h"
#include "media/package/Layout.h"

namespace kestrum::media {
namespace {

using namespace test;

class PackageQuestionsTest : public ::testing::Test {
  protected:
    ErrorKind KindOf(const std::function<void()>& call) {
        try {
            call();
        } catch (const Error& error) {
            EXPECT_GT(std::string(error.what()).size(), 10u);
            return error.kind;
        }
        ADD_FAILURE() << "no error";
        return ErrorKind::kIo;
    }

    void ExpectRefusedUnchanged(const std::string& path, ErrorKind kind) {
        SCOPED_TRACE(path);
        const auto before = ReadWholeFile(path);
        EXPECT_EQ(IsEmpty(path), Emptiness::kHoldsMedia);
        EXPECT_NE(QuickVerify(path), Soundness::kSound);
        EXPECT_NE(WholeVerify(path, nullptr, nullptr).soundness, Soundness::kSound);
        for (const std::function<void()>& call : std::vector<std::function<void()>>{
                 [&] { LengthMs(path); }, [&] { KeyFrames(path); }, [&] { FrameSize(path); }, [&] { ReadStored(path); },
                 [&] { Recover(path); }, [&] { PackageWriter::Open(path); },
                 [&] {
                     WriteStored(path, {{kPhotoName, AsBytes("x")}});
                 }})
            EXPECT_EQ(KindOf(call), kind);
        EXPECT_EQ(ReadWholeFile(path), before);
    }

    TempFolder m_folder;
    const std::string m_path = m_folder.File("lecture.ktr");
};

TEST_F(PackageQuestionsTest, MissingFile_IsMissingToEveryQuestion) {
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kMissing);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kMissing);
    EXPECT_EQ(KindOf([&] { LengthMs(m_path); }), ErrorKind::kMissing);
    EXPECT_EQ(KindOf([&] { FormatVersion(m_path); }), ErrorKind::kMissing);
    EXPECT_EQ(KindOf([&] { ReadStored(m_path); }), ErrorKind::kMissing);
    EXPECT_FALSE(FileStorage::Exists(m_path));
}

TEST_F(PackageQuestionsTest, MissingFolder_GivesAnErrorAndMakesNothing) {
    const std::string path = m_folder.File("none/lecture.ktr");
    EXPECT_EQ(KindOf([&] { PackageWriter::Open(path); }), ErrorKind::kMissing);
    EXPECT_EQ(KindOf([&] { WriteStored(path, {}); }), ErrorKind::kMissing);
    EXPECT_EQ(IsEmpty(path), Emptiness::kMissing);
}

TEST_F(PackageQuestionsTest, NewPackage_IsEmptyUntilSomethingIsRecorded) {
    PackageWriter::Open(m_path)->Close(0);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kEmpty);
    EXPECT_EQ(QuickVerify(m_path), Soundness::kSound);
    EXPECT_EQ(LengthMs(m_path), 0);
    EXPECT_TRUE(KeyFrames(m_path).empty());
    EXPECT_FALSE(FrameSize(m_path));
    EXPECT_EQ(FormatVersion(m_path), 0x0800);
    EXPECT_EQ(RunTool({"mkvinfo", m_path}).exitCode, 0);
    RecordFile(m_path);
    EXPECT_EQ(IsEmpty(m_path), Emptiness::kHoldsMedia);
}

TEST_F(PackageQuestionsTest, NewPackage_LeavesNoOtherFileBehind) {
    PackageWriter::Open(m_path)->Close(0);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(m_path).parent_path()))
        files += entry.exists() ? 1 : 0;
    EXPECT_EQ(files, 1);
}

TEST_F(PackageQuestionsTest, StrangeFiles_AreRefusedUnchanged) {
    const std::map<std::string, Bytes> strange{{"empty", {}},
                                               {"text", AsBytes("hello")},
                                               {"zeros", Bytes(5'000'000, 0)},
                                               {"ff", Bytes(70'000, 0xFF)},
                                               {"mark", AsBytes("\x1A\x45\xDF\xA3")}};
    for (const auto& [name, content] : strange) {
        WriteWholeFile(m_folder.File(name), content);
        ExpectRefusedUnchanged(m_folder.File(name), ErrorKind::kNotAPackage);
        EXPECT_EQ(FormatVersion(m_folder.File(name)), 0);
        EXPECT_EQ(QuickVerify(m_folder.File(name)), Soundness::kForeign);
    }
}

TEST_F(PackageQuestionsTest, ForeignMatroska_IsNotOneOfOurs) {
    RecordFile(m_path);
    const std::string foreign = m_folder.File("foreign.mkv");
    ASSERT_EQ(RunTool({"mkvmerge", "-q", "-o", foreign, m_path}).exitCode, 0);
    ExpectRefusedUnchanged(foreign, ErrorKind::kNotAPackage);
    EXPECT_EQ(FormatVersion(foreign), 0);
}

TEST_F(PackageQuestionsTest, FolderAndPipe_AreRefused) {
    EXPECT_EQ(KindOf([&] { LengthMs(m_folder.File(".")); }), ErrorKind::kNotAPackage);
    EXPECT_EQ(IsEmpty(m_folder.File(".")), Emptiness::kHoldsMedia);
    EXPECT_EQ(KindOf([&] { PackageWriter::Open(m_folder.File(".")); }), ErrorKind::kNotAPackage);
    ASSERT_EQ(mkfifo(m_path.c_str(), 0600), 0);
    EXPECT_EQ(KindOf([&] { LengthMs(m_path); }), ErrorKind::kNotAPackage);
}

TEST_F(PackageQuestionsTest, LaterFormatVersion_IsReadButNotWritten) {
    RecordFile(m_path);
    const auto storage = FileStorage::Open(m_path, FileStorage::Access::kReadWrite);
    Bytes head = *ReadExactly(*storage, 0, kTracksAt);
    const std::string text = AsText(head);
    const std::size_t at = text.find("package 8.0");
    ASSERT_NE(at, std::string::npos);
    storage->WriteAt(at + 8, AsBytes("9"));
    EXPECT_EQ(FormatVersion(m_path), 0x0900);
    EXPECT_EQ(KeyFrames(m_path).size(), 4u);
    EXPECT_EQ(KindOf([&] { PackageWriter::Open(m_path); }), ErrorKind::kNotAPackage);
    storage->WriteAt(at + 8, AsBytes("7"));
    EXPECT_EQ(FormatVersion(m_path), 0x0700);
}

TEST_F(PackageQuestionsTest, ReadOnlyFile_IsReadAndNotWritten) {
    RecordFile(m_path);
    if (geteuid() == 0) {
        // Root may write anything: a read-only answer can only be had from the system for an immutable name.
        EXPECT_EQ(KindOf([&] { WriteStored("/proc/lecture.ktr", {}); }), ErrorKind::kMissing);
        return;
    }
    ASSERT_EQ(chmod(m_path.c_str(), 0400), 0);
    EXPECT_EQ(KeyFrames(m_path).size(), 4u);
    EXPECT_EQ(WholeVerify(m_path, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(KindOf([&] { PackageWriter::Open(m_path); }), ErrorKind::kNoPermission);
}

TEST_F(PackageQuestionsTest, FullDisk_IsToldApart) {
    try {
        WriteWholeFile("/dev/full", AsBytes("x"));
        FAIL() << "no error";
    } catch (const Error& error) {
        EXPECT_EQ(error.kind, ErrorKind::kDiskFull);
    }
}

TEST_F(PackageQuestionsTest, PathWithBlanksAndChinese_Works) {
    const std::string path = m_folder.File("第一 讲 it's.ktr");
    RecordFile(path);
    EXPECT_EQ(KeyFrames(path).size(), 4u);
    EXPECT_EQ(WholeVerify(path, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(PackageQuestionsTest, BytesTurnedOverAnywhere_NeverHarmAReader) {
    WriteStored(m_path, {{kProjectFileName, ProjectFile({0, 1000})}});
    {
        const auto writer = PackageWriter::Open(m_path);
        Record(*writer, ShortLecture());
        writer->WriteJournal(JournalOf({0, 1000}));
    }
    const Bytes torn = *ReadWholeFile(m_path);
    EXPECT_EQ(ProbePackage(torn), 4);
    std::mt19937 random(42);
    for (int i = 0; i < 3000; ++i) {
        Bytes bytes = torn;
        for (int flips = 0; flips < 3; ++flips) {
            const bool head = random() % 2 == 0;
            const std::size_t at = head ? random() % 6000 : kMediaAt + random() % (bytes.size() - kMediaAt);
            bytes[at] = static_cast<std::uint8_t>(random());
        }
        if (random() % 4 == 0) bytes.resize(random() % bytes.size());
        EXPECT_LE(ProbePackage(bytes), 1000);
    }
}

}  // namespace
}  // namespace kestrum::media
