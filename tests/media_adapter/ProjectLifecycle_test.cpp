// A command's project on real folders, with the real package library and the real converters: what is opened, what is
// refused, and that nothing of it is left in the temporary folder.
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "../media/LegacySamples.h"
#include "Places.h"
#include "media/package/ProjectXml.h"
#include "media_adapter/ProjectSession.h"
#include "real/ChildProcess.h"

namespace kestrum::adapters {
namespace {

namespace files = std::filesystem;
using media::test::RecordFile;
using Titles = Session::Titles;

class ProjectLifecycleTest : public testing::Test {
  protected:
    ProjectLifecycleTest() {
        files::create_directories(m_scratch);
        files::create_directories(m_talks);
    }

    files::path Deck(const std::string& name) {
        files::path deck = m_talks / name;
        std::ofstream(deck) << "a deck";
        return deck;
    }
    /// Four seconds of media with two entries.
    static void PutPackage(const files::path& path) {
        const std::int64_t length = RecordFile(path.string());
        media::WriteStored(path.string(), {{media::kProjectFileName, ProjectText(media::DurationText(length))},
                                           {media::kPhotoName, media::test::AsBytes("own photo")}});
    }
    static media::Bytes ProjectText(const std::string& duration) {
        std::ifstream file(std::string(places::kInstall) + "/default.ksp", std::ios::binary);
        std::string text{std::istreambuf_iterator<char>(file), {}};
        const std::string empty = R"(<index duration="00:00" type="OL"></index>)";
        const std::string items =
            "<item><title>one</title><recdate></recdate><pos>0</pos></item>"
            "<item><title>two 二</title><recdate></recdate><pos>2000</pos></item>";
        text.replace(text.find(empty), empty.size(),
                     "<index duration=\"" + duration + "\" type=\"OL\">" + items + "</index>");
        return media::test::AsBytes(text);
    }
    /// What a tool command does with the presentation `deck`; its work folder is gone afterwards, whatever happens.
    bool RunCommand(Session& s, const files::path& deck, const std::function<void(Session&)>& work = nullptr) {
        s.UsePresentation(deck);
        bool opened = modProject::LocateProject(s.c);
        if (opened) {
            const bool isNew =
                !(s.fs.FileExists(s.support.packagePath) && s.lib.IsEmptyProject(s.support.packagePath) == 0);
            opened = s.Open(isNew);
        }
        if (opened && work) work(s);
        modProject::DeleteWorkFolder(s.c);
        EXPECT_TRUE(files::is_empty(m_scratch)) << "a scratch folder is left";
        return opened;
    }
    std::vector<std::string> NamesBeside() const {
        std::vector<std::string> names;
        for (const auto& entry : files::directory_iterator(m_talks)) names.push_back(entry.path().filename().string());
        std::sort(names.begin(), names.end());
        return names;
    }
    static const String& LastBox(const Session& s) { return s.world.box.Shown().back().text; }

    real::TempFolder m_folder;
    const files::path m_talks = m_folder.Path() / "talks";
    const files::path m_scratch = m_folder.Path() / "scratch";
    real::ScopedEnv m_temporary{"TMPDIR", m_scratch.string()};
};

TEST_F(ProjectLifecycleTest, OddNames_AreOpenedStoredAndOpenedAgain) {
    const std::string longest = std::string(250, 'x') + ".pptx";
    for (const std::string& name : {std::string("week 1 課程.pptx"), std::string("it's \"quoted\".ppt"),
                                    std::string("-rf.pptx"), std::string("a%20b;c&d$HOME`x`.odp"), longest}) {
        SCOPED_TRACE(name);
        const files::path deck = Deck(name);
        {
            Session s(m_folder.Path());
            ASSERT_TRUE(RunCommand(s, deck)) << host::ToUtf8(LastBox(s));
            ASSERT_TRUE(s.fs.FileExists(s.support.packagePath));
            RecordFile(host::ToUtf8(s.support.packagePath));
        }
        Session s(m_folder.Path());
        EXPECT_TRUE(RunCommand(s, deck, [](Session& open) {
            open.project.g_Project.AddIndex(u"kept", u"0", u"", u"", u"", u"", false, 0);
            open.project.g_Project.SetDuration(open.lib.GetLength(open.support.packagePath));
            modProject::SaveProject(open.c);
        }));
        Session again(m_folder.Path());
        EXPECT_TRUE(RunCommand(again, deck));
        EXPECT_EQ(again.IndexTitles(), Titles{u"kept"});
        EXPECT_TRUE(again.world.box.Shown().empty());
    }
}

TEST_F(ProjectLifecycleTest, LegacyFolder_IsConvertedByTheRealProgram_AndOpened) {
    const files::path deck = Deck("botany III 植物.pptx");
    media::test::MakeLegacyFolder((m_talks / "botany III 植物.ksp").string());
    Session s(m_folder.Path());
    s.world.box.Answer(host::BoxAnswer::Yes);
    ASSERT_TRUE(RunCommand(s, deck));
    EXPECT_EQ(s.IndexTitles(), (Titles{u"Old 0", u"Old 2000"}));
    EXPECT_EQ(s.project.g_Project.ver, u"8.1.2");
    EXPECT_EQ(s.project.g_Project.photo, u"me.jpg");
    ASSERT_EQ(s.world.box.Shown().size(), 1U) << host::ToUtf8(LastBox(s));
    EXPECT_EQ(s.world.box.Shown()[0].title, u"Version Incompatible");
    EXPECT_TRUE(files::exists(m_talks / "botany III 植物.ksp" / "media.ks"));

    Session again(m_folder.Path());
    EXPECT_TRUE(RunCommand(again, deck));
    EXPECT_TRUE(again.world.box.Shown().empty()) << "the folder beside a package is ignored";
}

TEST_F(ProjectLifecycleTest, EncryptedLegacyFolder_IsDecryptedThenConverted) {
    const files::path deck = Deck("old.ppt");
    const std::string folder = (m_talks / "old.ksp").string();
    media::test::MakeLegacyFolder(folder);
    media::test::EncryptPackage(folder + "/media.ks");
    Session s(m_folder.Path());
    s.world.box.Answer(host::BoxAnswer::Yes);
    ASSERT_TRUE(RunCommand(s, deck));
    EXPECT_EQ(s.IndexTitles().size(), 2U);
    EXPECT_FALSE(media::IsEncrypted((m_talks / "old.ktr").string()));
}

TEST_F(ProjectLifecycleTest, LegacyFolderThatCannotBeConverted_IsLeftAlone) {
    const files::path deck = Deck("old.ppt");
    media::test::MakeLegacyFolder((m_talks / "old.ksp").string());
    std::ofstream(m_talks / "old.ksp" / "media.ks") << "no media";
    const auto before = NamesBeside();
    Session s(m_folder.Path());
    s.world.box.Answer(host::BoxAnswer::Yes);
    EXPECT_FALSE(RunCommand(s, deck));
    EXPECT_EQ(NamesBeside(), before);
}

TEST_F(ProjectLifecycleTest, EncryptedPackage_IsDecryptedByTheRealProgram_AndOpened) {
    const files::path deck = Deck("deck.pptx");
    PutPackage(m_talks / "deck.ktr");
    media::test::EncryptPackage((m_talks / "deck.ktr").string());
    Session s(m_folder.Path());
    EXPECT_TRUE(RunCommand(s, deck));
    EXPECT_EQ(s.IndexTitles(), (Titles{u"one", u"two 二"}));
    EXPECT_TRUE(s.world.box.Shown().empty());
    EXPECT_EQ(s.lib.GetECTState(s.support.packagePath), 0);
}

TEST_F(ProjectLifecycleTest, EncryptedPackageWithoutItsKey_IsRefusedAndStays) {
    const files::path deck = Deck("deck.pptx");
    PutPackage(m_talks / "deck.ktr");
    media::test::MarkEncrypted((m_talks / "deck.ktr").string(), media::test::Marks::kFlagOnly);
    Session s(m_folder.Path());
    EXPECT_FALSE(RunCommand(s, deck));
    EXPECT_EQ(s.lib.GetECTState(s.support.packagePath), 1);
    EXPECT_EQ(s.lib.GetECTState(u"/nowhere.ktr"), -1);
}

TEST_F(ProjectLifecycleTest, PackageThatIsBeingRecorded_IsReadAndKeepsItsEntries) {
    const files::path deck = Deck("deck.pptx");
    const std::string package = (m_talks / "deck.ktr").string();
    PutPackage(m_talks / "deck.ktr");
    auto writer = media::PackageWriter::Open(package);
    media::test::Record(*writer, media::test::ShortLecture());
    writer->WriteJournal(media::test::JournalOf({0, 2000, writer->StartMs() + 1000}));
    Session s(m_folder.Path());
    EXPECT_TRUE(RunCommand(s, deck));
    EXPECT_EQ(s.IndexTitles().size(), 3U);
    writer->Close(writer->LengthMs());
    writer.reset();
    Session after(m_folder.Path());
    EXPECT_TRUE(RunCommand(after, deck));
    EXPECT_EQ(after.IndexTitles(), (Titles{u"Slide 1", u"Slide 2", u"Slide 3"}));
}

TEST_F(ProjectLifecycleTest, TornPackage_IsMadeWholeAndTold) {
    const files::path deck = Deck("deck.pptx");
    const std::string package = (m_talks / "deck.ktr").string();
    PutPackage(m_talks / "deck.ktr");
    {
        auto writer = media::PackageWriter::Open(package);
        media::test::Record(*writer, media::test::ShortLecture());
        writer->WriteJournal(media::test::JournalOf({0, 2000, writer->StartMs() + 1000}));
    }
    files::resize_file(package, files::file_size(package) - 100);
    Session s(m_folder.Path());
    EXPECT_TRUE(RunCommand(s, deck));
    EXPECT_EQ(s.IndexTitles().size(), 3U);
    EXPECT_TRUE(s.WasTold(u"interrupted"));
    EXPECT_EQ(media::QuickVerify(package), media::Soundness::kSound);
}

TEST_F(ProjectLifecycleTest, ForeignFile_IsRefusedAndStays) {
    const files::path deck = Deck("deck.pptx");
    std::ofstream(m_talks / "deck.ktr") << "somebody's notes";
    Session s(m_folder.Path());
    EXPECT_FALSE(RunCommand(s, deck));
    EXPECT_EQ(files::file_size(m_talks / "deck.ktr"), 16U);
}

TEST_F(ProjectLifecycleTest, FolderThatCannotBeWritten_IsToldAndLeavesNothing) {
    const files::path deck = Deck("deck.pptx");
    if (geteuid() == 0) {
        ASSERT_EQ(mount("none", m_talks.c_str(), "tmpfs", MS_RDONLY, ""), 0) << "needs the right to mount";
    } else {
        chmod(m_talks.c_str(), 0500);
    }
    Session s(m_folder.Path());
    s.UsePresentation(deck);
    s.support.projectSource = u"KTR";
    s.support.packagePath = host::FromUtf8((m_talks / "deck.ktr").string());
    s.support.packageFolder = host::FromUtf8(m_talks.string());
    s.support.workFolder = host::FromUtf8((m_scratch / "work").string());
    EXPECT_FALSE(s.Open(true));
    EXPECT_EQ(s.world.box.Shown().size(), 1U);
    modProject::DeleteWorkFolder(s.c);
    EXPECT_TRUE(files::is_empty(m_scratch));
    if (geteuid() == 0) umount(m_talks.c_str());
    chmod(m_talks.c_str(), 0700);
}

/// A small file system of its own; needs the right to mount one.
class FullDiskTest : public ProjectLifecycleTest {
  protected:
    void SetUp() override {
        ASSERT_EQ(mount("none", m_talks.c_str(), "tmpfs", 0, "size=110m"), 0) << "run it as root, or in a container";
        m_mounted = true;
    }
    void TearDown() override {
        if (m_mounted) umount(m_talks.c_str());
    }
    /// Fills the disk to the last byte.
    void Fill() {
        std::ofstream filler(m_talks / "filler", std::ios::binary);
        const std::string block(1 << 16, 'x');
        while (filler.write(block.data(), static_cast<std::streamsize>(block.size())).flush()) {
        }
    }
    bool m_mounted = false;
};

TEST_F(FullDiskTest, LessThan100Megabytes_AreTold) {
    const files::path deck = Deck("deck.pptx");
    std::ofstream(m_talks / "filler") << std::string(20 << 20, 'x');
    Session s(m_folder.Path());
    EXPECT_FALSE(RunCommand(s, deck));
    ASSERT_EQ(s.world.box.Shown().size(), 1U);
    EXPECT_NE(LastBox(s).find(u"MB"), String::npos);
}

TEST_F(FullDiskTest, ADiskThatFillsUpMeanwhile_CostsNeitherTheOldIndexNorTheNewOne) {
    const files::path deck = Deck("deck.pptx");
    PutPackage(m_talks / "deck.ktr");
    Session s(m_folder.Path());
    s.UsePresentation(deck);
    ASSERT_TRUE(modProject::LocateProject(s.c));
    ASSERT_TRUE(s.Open(false));
    Fill();
    for (int i = 1; i <= 4000; ++i)
        s.project.g_Project.AddIndex(u"a long title of an entry " + ToText(i), ToText(2000 + i / 4), u"", u"", u"", u"",
                                     false, 0);
    modProject::SaveProject(s.c);
    modProject::DeleteWorkFolder(s.c);
    EXPECT_EQ(media::WholeVerify((m_talks / "deck.ktr").string(), nullptr, nullptr).soundness,
              media::Soundness::kSound);
    const auto stored = media::ReadStored((m_talks / "deck.ktr").string());
    const std::string text = media::test::AsText(*stored.at(media::kProjectFileName));
    const bool newer = text.find("entry 4000<") != std::string::npos;
    EXPECT_TRUE(newer || text.find("two 二") != std::string::npos);
    if (newer) return;
    const bool beside = files::exists(m_talks / "deck.ktr.unsaved");
    EXPECT_TRUE(beside || files::exists(files::path(host::ToUtf8(s.support.workFolder)) / "project.ksp"));
    EXPECT_TRUE(beside || !s.world.box.Shown().empty()) << "the user is told where it is";
}

}  // namespace
}  // namespace kestrum::adapters
