// What older versions left behind: a project folder becomes a package, an encrypted package a plain one, and whatever
// goes wrong on the way costs neither.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "LegacySamples.h"
#include "Places.h"
#include "media/legacy/BlockCipher.h"
#include "media/legacy/Decryption.h"
#include "media/legacy/LegacyFolder.h"
#include "media/legacy/LegacyProject.h"
#include "media/package/Layout.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {
namespace {

using namespace test;
namespace fs = std::filesystem;

const std::string kPrograms = places::kInstall;

class LegacyTest : public ::testing::Test {
  protected:
    Bytes BytesOf(const std::string& path) const { return ReadWholeFile(path).value(); }
    /// Names of everything below the test's folder, to see what is left behind.
    std::vector<std::string> Everything() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(m_folder.File("")))
            names.push_back(entry.path().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    /// All samples of a package as ffprobe sees them: one check sum a packet.
    static std::string Packets(const std::string& path) {
        const ToolResult read = RunTool(
            {"ffmpeg", "-v", "error", "-i", path, "-map", "0:v", "-map", "0:a", "-c", "copy", "-f", "framemd5", "-"});
        EXPECT_EQ(read.exitCode, 0) << read.output;
        return read.output;
    }

    TempFolder m_folder;
    const std::string m_old = m_folder.File("week 1 課程.ksp");
    const std::string m_package = m_folder.File("week 1 課程.ktr");
};

std::string SentenceOf(const std::function<void()>& action, ErrorKind kind) {
    try {
        action();
    } catch (const Error& error) {
        EXPECT_EQ(error.kind, kind) << error.what();
        return error.what();
    }
    ADD_FAILURE() << "nothing was thrown";
    return {};
}

// --- The project file ------------------------------------------------------------------------------------------------

std::string Upgraded(const std::string& text) {
    const auto project = UpgradeProject(AsBytes(text), 4000);
    return project ? AsText(project->projectFile) : std::string();
}

bool Holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

TEST(LegacyProject, VersionsSixAndSeven_BecomeEightWithTheirMinorNumbers) {
    EXPECT_TRUE(Holds(Upgraded("<r ver=\"7.1.2\"><project/></r>"), "ver=\"8.1.2\""));
    EXPECT_TRUE(Holds(Upgraded("<r ver=\"6.0\"><project/></r>"), "ver=\"8.0\""));
    EXPECT_TRUE(Holds(Upgraded("<r ver=\"7\"><project/></r>"), "ver=\"8\""));
    for (const char* other : {"5.0", "8.0", "9", "70.1", "", "x"})
        EXPECT_EQ(Upgraded("<r ver=\"" + std::string(other) + "\"><project/></r>"), "") << other;
}

TEST(LegacyProject, WhatOldFilesLack_IsAdded_AndWhatTheyHoldStays) {
    const std::string text = AsText(UpgradeProject(OldProjectFile("7.1.2", {0, 2000}), 4000)->projectFile);
    for (const char* kept : {"Botany\tIII 植物", "A. &amp; B.", "<template>blue</template>", "size=\"90x90\">me.jpg<",
                             "<bitrate>64</bitrate>", "duration=\"00:04\"", "<title>Old 2000</title>"})
        EXPECT_TRUE(Holds(text, kept)) << kept;
    for (const char* added : {"<showcursor>1</showcursor>", "<sound volume=\"3\"", "<contentID>0</contentID>", "<name",
                              "<preview>0</preview>", "<keywords", "type=\"OL\""})
        EXPECT_TRUE(Holds(text, added)) << added;
    EXPECT_FALSE(Holds(text, "OGG"));
}

TEST(LegacyProject, AnIndexWithoutALength_GetsThatOfTheMedia) {
    EXPECT_TRUE(Holds(Upgraded("<r ver=\"7.0\"><project><index/></project></r>"), "duration=\"00:04\""));
}

TEST(LegacyProject, ThePhotosName_CountsWithoutAnyFolder) {
    const auto photoOf = [](const std::string& name) {
        const std::string text =
            "<r ver=\"7.0\"><project><configure><photo>" + name + "</photo></configure></project></r>";
        return UpgradeProject(AsBytes(text), 0)->photo;
    };
    EXPECT_EQ(photoOf("../../etc/passwd"), "passwd");
    EXPECT_EQ(photoOf("a\\b.jpg"), "b.jpg");
    EXPECT_EQ(photoOf(".."), "");
}

TEST(LegacyProject, WhatIsNoProjectFile_IsRefused) {
    for (const char* text : {"", "no xml", "<r ver=\"7.0\"/>", "<r><project/></r>", "<r ver=\"7.0\"><project>"})
        EXPECT_EQ(Upgraded(text), "") << text;
}

// --- A folder becomes a package --------------------------------------------------------------------------------------

TEST_F(LegacyTest, Folder_BecomesAPackageWithTheSameMediaAndFiles) {
    MakeLegacyFolder(m_old);
    const auto before = BytesOf(m_old + "/media.ks");
    std::vector<int> told;
    ConvertLegacyFolder(m_old, m_package, {[&](int percent) { told.push_back(percent); }, [] { return false; }});
    EXPECT_EQ(FormatVersion(m_package), kFormatVersion);
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(KeyFrames(m_package), KeyFrames(m_old + "/media.ks"));
    EXPECT_TRUE(Packets(m_package) == Packets(m_old + "/media.ks"));
    const StoredFiles files = ReadStored(m_package);
    EXPECT_EQ(IndexOf(*files.at(kProjectFileName)), DurationText(LengthMs(m_package)) + "|0|2000");
    EXPECT_EQ(AsText(*files.at(kCursorImageName)), "the cursor");
    EXPECT_EQ(AsText(*files.at(kPhotoName)), "the photo");
    EXPECT_EQ(AsText(*files.at(kIndexTextName)), "the index text");
    EXPECT_EQ(BytesOf(m_old + "/media.ks"), before) << "the folder stays";
    EXPECT_EQ(told.back(), 100);
    EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
}

TEST_F(LegacyTest, Package_CanBeRecordedIntoAfterwards) {
    MakeLegacyFolder(m_old);
    ConvertLegacyFolder(m_old, m_package, {});
    const std::int64_t length = LengthMs(m_package);
    EXPECT_GT(RecordFile(m_package), length);
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
}

TEST_F(LegacyTest, FolderWithoutCursorPhotoAndIndexText_IsConvertedWithoutThem) {
    MakeLegacyFolder(m_old);
    for (const char* name : {"/icons/cursor.gif", "/me.jpg", "/inteIndex.txt"}) fs::remove(m_old + name);
    ConvertLegacyFolder(m_old, m_package, {});
    EXPECT_EQ(ReadStored(m_package).size(), 1U);
}

TEST_F(LegacyTest, FolderOfAnInterruptedRecording_IsRecoveredInThePackage) {
    MakeLegacyFolder(m_old);
    const std::string media = m_old + "/media.ks";
    fs::remove(media);
    {
        auto writer = PackageWriter::Open(media);
        Record(*writer, ShortLecture());
        writer->Flush();
    }
    SetFormatVersion(media, "7.0");
    ConvertLegacyFolder(m_old, m_package, {});
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_GT(LengthMs(m_package), 3000);
}

TEST_F(LegacyTest, WhatCannotBeConverted_IsRefusedInASentenceAndMakesNothing) {
    MakeLegacyFolder(m_old);
    const auto refused = [&](ErrorKind kind, const char* part) {
        const auto before = Everything();
        const std::string sentence = SentenceOf([&] { ConvertLegacyFolder(m_old, m_package, {}); }, kind);
        EXPECT_TRUE(Holds(sentence, part)) << sentence;
        EXPECT_EQ(Everything(), before);
    };
    WriteWholeFile(m_package, AsBytes("somebody's file"));
    refused(ErrorKind::kLocked, "another program");
    EXPECT_EQ(AsText(BytesOf(m_package)), "somebody's file");
    fs::remove(m_package);
    WriteWholeFile(m_old + "/project.ksp", OldProjectFile("5.0", {}));
    refused(ErrorKind::kDamaged, "no project file of generation 6 or 7");
    fs::remove(m_old + "/project.ksp");
    refused(ErrorKind::kMissing, "project.ksp");
    WriteWholeFile(m_old + "/project.ksp", OldProjectFile("7.0", {}));
    SetFormatVersion(m_old + "/media.ks", "9.0");
    refused(ErrorKind::kNotAPackage, "format version 9");
    SetFormatVersion(m_old + "/media.ks", "7.0");
    MarkEncrypted(m_old + "/media.ks", Marks::kFlagAndKey);
    refused(ErrorKind::kDamaged, "encrypted");
    WriteWholeFile(m_old + "/media.ks", AsBytes("no media"));
    refused(ErrorKind::kNotAPackage, "no Kestrum recording");
    fs::remove(m_old + "/media.ks");
    refused(ErrorKind::kMissing, "media.ks");
}

TEST_F(LegacyTest, FolderThatIsBeingRecordedInto_IsRefused) {
    MakeLegacyFolder(m_old);
    const int file = open((m_old + "/media.ks").c_str(), O_RDONLY);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    SentenceOf([&] { ConvertLegacyFolder(m_old, m_package, {}); }, ErrorKind::kLocked);
    close(file);
}

// --- The encrypted state ---------------------------------------------------------------------------------------------

TEST(BlockCipher, GivesWhatAesInCounterModeGives) {
    Bytes key(16);
    for (std::size_t i = 0; i < key.size(); ++i) key[i] = static_cast<std::uint8_t>(i);
    Bytes sample(24, 'A');
    BlockCipher(key).Apply(2, 0x1234, sample);
    // openssl enc -aes-128-ctr -K 000102…0f -iv 00000000001234020000000000000000
    const Bytes expected{0xe7, 0xf2, 0x70, 0xe8, 0x93, 0x21, 0x0e, 0x9c, 0xe6, 0xc8, 0xa1, 0xbe,
                         0xae, 0x39, 0x1c, 0xd7, 0x41, 0x99, 0xb4, 0xb8, 0xb3, 0xcd, 0xc4, 0x2d};
    EXPECT_EQ(sample, expected);
    SentenceOf([] { BlockCipher(Bytes(15)); }, ErrorKind::kDamaged);
}

class EncryptedTest : public LegacyTest {
  protected:
    struct Sample {
        Bytes package;
        std::string plain;
    };
    /// Made once: the system's openssl runs for every block.
    static const Sample& MadeOnce() {
        static const Sample sample = [] {
            const TempFolder folder;
            const std::string path = folder.File("lecture.ktr");
            RecordFile(path);
            WriteStored(path, {{kProjectFileName, ProjectFile({0, 2000})}, {"later.bin", AsBytes("of later")}});
            const std::string plainPackets = Packets(path);
            EncryptPackage(path);
            EXPECT_NE(Packets(path), plainPackets);
            return Sample{ReadWholeFile(path).value(), plainPackets};
        }();
        return sample;
    }
    void SetUp() override { WriteWholeFile(m_package, MadeOnce().package); }

    const std::string& plain = MadeOnce().plain;
};

TEST_F(EncryptedTest, Package_SaysSo_AndIsOtherwiseReadAsAny) {
    EXPECT_TRUE(IsEncrypted(m_package));
    EXPECT_EQ(IsEmpty(m_package), Emptiness::kHoldsMedia);
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(KeyFrames(m_package).size(), 4U);
}

TEST_F(EncryptedTest, StoringFiles_KeepsTheState_AndRecordingIsRefused) {
    WriteStored(m_package, {{kProjectFileName, ProjectFile({0})}});
    EXPECT_TRUE(IsEncrypted(m_package));
    SentenceOf([&] { PackageWriter::Open(m_package); }, ErrorKind::kNotAPackage);
}

TEST_F(EncryptedTest, Decrypting_GivesTheSameMediaFilesAndPermissions) {
    chmod(m_package.c_str(), 0600);
    ASSERT_TRUE(DecryptPackage(m_package, {}));
    EXPECT_FALSE(IsEncrypted(m_package));
    EXPECT_EQ(Packets(m_package), plain);
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_EQ(AsText(*ReadStored(m_package).at("later.bin")), "of later");
    EXPECT_EQ(IndexOf(*ReadStored(m_package).at(kProjectFileName)), "00:00|0|2000");
    EXPECT_EQ(AudioBitrate(m_package), 64);
    EXPECT_EQ(fs::status(m_package).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(Everything().size(), 1U);
    const Bytes done = BytesOf(m_package);
    EXPECT_EQ(AsText(done).find("KESTRUM_KEY"), std::string::npos);
    EXPECT_FALSE(DecryptPackage(m_package, {})) << "nothing is left to be done";
    EXPECT_EQ(BytesOf(m_package), done);
    EXPECT_GT(RecordFile(m_package), 4000);
}

TEST_F(EncryptedTest, MediaOfGenerationSeven_AreDecryptedAndStaySo) {
    SetFormatVersion(m_package, "7.0");
    ASSERT_TRUE(DecryptPackage(m_package, {}));
    EXPECT_EQ(FormatVersion(m_package), 0x0700);
    EXPECT_EQ(Packets(m_package), plain);
}

TEST_F(EncryptedTest, TornPackage_IsRecoveredOnTheWay) {
    fs::resize_file(m_package, fs::file_size(m_package) - 700);
    ASSERT_TRUE(DecryptPackage(m_package, {}));
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
    EXPECT_GE(KeyFrames(m_package).size(), 3U);
}

TEST_F(EncryptedTest, DamagedCluster_StaysDamaged) {
    {
        const auto file = FileStorage::Open(m_package, FileStorage::Access::kReadWrite);
        file->WriteAt(kMediaAt + 200, AsBytes("damage"));
    }
    ASSERT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kDamaged);
    ASSERT_TRUE(DecryptPackage(m_package, {}));
    EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kDamaged);
}

TEST_F(EncryptedTest, WithoutAKeyOrWhileRecorded_NothingHappens) {
    const std::string other = m_folder.File("other.ktr");
    RecordFile(other);
    MarkEncrypted(other, Marks::kFlagOnly);
    const Bytes before = BytesOf(other);
    const std::string sentence = SentenceOf([&] { DecryptPackage(other, {}); }, ErrorKind::kDamaged);
    EXPECT_TRUE(Holds(sentence, "key")) << sentence;
    const int file = open(m_package.c_str(), O_RDWR);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    SentenceOf([&] { DecryptPackage(m_package, {}); }, ErrorKind::kLocked);
    close(file);
    EXPECT_EQ(BytesOf(other), before);
    EXPECT_EQ(Everything().size(), 2U);
}

TEST_F(EncryptedTest, StoppedAtAnyPercent_LeavesEverythingAsItWas) {
    const Bytes before = BytesOf(m_package);
    for (const int stopAt : {0, 1, 49, 50, 51, 99}) {
        int reached = 0;
        const Watch watch{[&](int percent) { reached = percent; }, [&] { return reached >= stopAt; }};
        const std::string sentence = SentenceOf([&] { DecryptPackage(m_package, watch); }, ErrorKind::kIo);
        EXPECT_TRUE(Holds(sentence, "Nothing was changed")) << sentence;
        EXPECT_EQ(BytesOf(m_package), before);
        EXPECT_EQ(Everything().size(), 1U);
    }
}

// --- The programs ----------------------------------------------------------------------------------------------------

TEST_F(EncryptedTest, Program_OnADiskThatFillsUpAtAnyPoint_LeavesThePackageAlone) {
    const Bytes before = BytesOf(m_package);
    const auto kilobytes = static_cast<int>(before.size() / 1024);
    for (int limit = 0; limit < kilobytes; limit += 300) {
        const ToolResult result = RunTool({"bash", "-c", "ulimit -f " + std::to_string(limit) + "; exec \"$0\" \"$1\"",
                                           kPrograms + "/ksECT", m_package});
        EXPECT_EQ(result.exitCode, 1) << result.output;
        EXPECT_TRUE(Holds(result.output, "Cannot write")) << result.output;
        EXPECT_EQ(BytesOf(m_package), before);
        EXPECT_EQ(Everything().size(), 1U) << limit;
    }
    const ToolResult done = RunTool({kPrograms + "/ksECT", m_package});
    EXPECT_EQ(done.exitCode, 0) << done.output;
    EXPECT_TRUE(Holds(done.output, "100 %"));
    EXPECT_EQ(Packets(m_package), plain);
}

TEST_F(EncryptedTest, Program_DecryptsWhatALinkPointsAt) {
    const std::string link = m_folder.File("link.ktr");
    fs::create_symlink(m_package, link);
    EXPECT_EQ(RunTool({kPrograms + "/ksECT", link}).exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_FALSE(IsEncrypted(m_package));
}

TEST_F(EncryptedTest, Program_KilledOnTheWay_LeavesThePackageWholeOrDone) {
    for (int i = 0; i < 8; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            execl((kPrograms + "/ksECT").c_str(), "ksECT", m_package.c_str(), nullptr);
            _exit(127);
        }
        usleep(static_cast<useconds_t>(i) * 2000);
        kill(child, i % 2 == 0 ? SIGKILL : SIGTERM);
        waitpid(child, nullptr, 0);
        EXPECT_EQ(WholeVerify(m_package, nullptr, nullptr).soundness, Soundness::kSound);
        EXPECT_EQ(Packets(m_package) == plain, !IsEncrypted(m_package));
    }
}

TEST_F(LegacyTest, Program_ConvertsAFolderWithAnOddName) {
    const std::string odd = m_folder.File("-a 'b' \"c\" 課程.ksp");
    MakeLegacyFolder(odd);
    const ToolResult done = RunTool({kPrograms + "/ksFmtCvt", odd, m_package});
    EXPECT_EQ(done.exitCode, 0) << done.output;
    EXPECT_EQ(FormatVersion(m_package), kFormatVersion);
}

TEST_F(LegacyTest, Program_OnADiskThatFillsUp_MakesNothing) {
    MakeLegacyFolder(m_old);
    const auto before = Everything();
    for (const int limit : {0, 100, 2100}) {
        const ToolResult result =
            RunTool({"bash", "-c", "ulimit -f " + std::to_string(limit) + "; exec \"$0\" \"$1\" \"$2\"",
                     kPrograms + "/ksFmtCvt", m_old, m_package});
        EXPECT_EQ(result.exitCode, 1) << result.output;
        EXPECT_EQ(Everything(), before);
    }
}

TEST_F(LegacyTest, Programs_ExplainThemselvesAndFailInASentence) {
    for (const char* name : {"/ksFmtCvt", "/ksECT"}) {
        EXPECT_EQ(RunTool({kPrograms + name}).exitCode, 2);
        const ToolResult help = RunTool({kPrograms + name, "--help"});
        EXPECT_EQ(help.exitCode, 0);
        EXPECT_TRUE(Holds(help.output, "usage: ")) << help.output;
    }
    const ToolResult missing = RunTool({kPrograms + "/ksECT", m_package});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_TRUE(Holds(missing.output, "ksECT: Cannot open '" + m_package + "'")) << missing.output;
}

}  // namespace
}  // namespace kestrum::media
