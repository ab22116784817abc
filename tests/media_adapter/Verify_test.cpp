// `kestrum verify` and `kestrum info` as programs on real packages: each kind of damage is seeded, found, named, and
// mended where it can be; no file is changed without being asked, and none brings the program down.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "../media/PackageSamples.h"
#include "Places.h"
#include "adapters/sim/World.h"
#include "media/package/Package.h"
#include "media/package/PackageMap.h"
#include "media/package/ProjectXml.h"

namespace kestrum::media {
namespace {

using namespace test;
namespace fs = std::filesystem;
using Words = std::vector<std::string>;

const std::string kProgram = std::string(places::kInstall) + "/kestrum";

struct Outcome {
    int code = -1;
    std::string out, error;
    bool Says(const std::string& part) const { return (out + error).find(part) != std::string::npos; }
};

/// A file as anybody can compare it: content, time of change, mode, size.
struct Fingerprint {
    explicit Fingerprint(const std::string& path) : content(ReadWholeFile(path)) { stat(path.c_str(), &status); }
    bool operator==(const Fingerprint& other) const {
        return content == other.content && status.st_mtim.tv_sec == other.status.st_mtim.tv_sec &&
               status.st_mtim.tv_nsec == other.status.st_mtim.tv_nsec && status.st_ino == other.status.st_ino;
    }
    std::optional<Bytes> content;
    struct stat status {};
};

class VerifyProgramTest : public testing::Test {
  protected:
    /// Runs the program with its settings and scratch folders inside the test's folder. `asNobody`: without the rights
    /// of the administrator.
    Outcome Run(const Words& words, bool asNobody = false) {
        const std::string out = m_folder.File("out"), error = m_folder.File("error");
        const pid_t child = fork();
        if (child == 0) {
            const int outFile = open(out.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0666);
            const int errorFile = open(error.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0666);
            dup2(outFile, 1);
            dup2(errorFile, 2);
            for (const char* name : {"TMPDIR", "HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"})
                setenv(name, m_home.c_str(), 1);
            if (asNobody && geteuid() == 0 && (setgid(65534) != 0 || setuid(65534) != 0)) _exit(99);
            std::vector<char*> arguments{const_cast<char*>(kProgram.c_str())};
            for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
            arguments.push_back(nullptr);
            execv(kProgram.c_str(), arguments.data());
            _exit(98);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), Text(out), Text(error)};
    }
    static std::string Text(const std::string& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    Outcome Verify() { return Run({"verify", m_path}); }
    Outcome Repair() { return Run({"verify", "--repair", m_path}); }

    void SetUp() override {
        m_home = m_folder.File("home");
        fs::create_directory(m_home);
        chmod(m_home.c_str(), 0777);
        chmod(m_folder.File(".").c_str(), 0777);
    }

    /// A whole lecture of four seconds with a key frame each second; the project file is the product's own form.
    void Record(const std::vector<std::string>& items = {}) {
        RecordFile(m_path);
        Store(items.empty() ? std::vector<std::string>{Item("Waves", 0), Item("Light", 1000), Item("光", 3000)}
                            : items);
    }
    static std::string Item(const std::string& title, std::int64_t pos) {
        return "<item><title>" + title + "</title><recdate>2026/1/5 9:00:00</recdate><pos>" + std::to_string(pos) +
               "</pos></item>";
    }
    std::string Project(const std::vector<std::string>& items, const std::string& duration) const {
        std::string text = Text(std::string(places::kSource) + "/install/default.ksp"), list;
        for (const std::string& item : items) list += item;
        const std::string empty = R"(<index duration="00:00" type="OL"></index>)";
        const auto at = text.find(empty);
        EXPECT_NE(at, std::string::npos);
        return text.replace(at, empty.size(), "<index duration=\"" + duration + "\" type=\"OL\">" + list + "</index>");
    }
    void Store(const std::vector<std::string>& items, const std::string& duration = "") {
        const std::string text = Project(items, duration.empty() ? DurationText(LengthMs(m_path)) : duration);
        WriteStored(m_path, {{kProjectFileName, AsBytes(text)}});
    }
    /// Changes bytes of the stored project file as another program would: the chapters stay as they are.
    void StoreBehindTheBackOf(const std::vector<std::string>& items) {
        const std::string file = m_folder.File("project.ksp");
        WriteWholeFile(file, AsBytes(Project(items, DurationText(LengthMs(m_path)))));
        const ToolResult result = RunTool(
            {"mkvpropedit", m_path, "--replace-attachment", std::string("name:") + kProjectFileName + ":" + file});
        ASSERT_EQ(result.exitCode, 0) << result.output;
    }
    std::vector<std::string> IndexPositions() {
        const std::string index = IndexOf(*ReadStored(m_path).at(kProjectFileName));
        std::vector<std::string> positions;
        std::string part;
        for (const char letter : index.substr(index.find('|')) + "|")
            if (letter != '|')
                part += letter;
            else if (!part.empty())
                positions.push_back(std::exchange(part, {}));
        return positions;
    }
    void Overwrite(std::uint64_t position, const Bytes& bytes) {
        FileStorage::Open(m_path, FileStorage::Access::kReadWrite)->WriteAt(position, bytes);
    }
    PackageMap Map() { return ReadMap(*FileStorage::Open(m_path, FileStorage::Access::kRead)); }

    /// Verify finds it and changes nothing; repair mends all of it and keeps the package as it was.
    void ExpectFoundAndMended(const Words& parts, const std::vector<std::string>& positionsAfter) {
        const Fingerprint before(m_path);
        const Outcome found = Verify();
        EXPECT_EQ(found.code, 3) << found.out << found.error;
        for (const std::string& part : parts) EXPECT_TRUE(found.Says(part)) << part << "\n" << found.out;
        EXPECT_TRUE(Fingerprint(m_path) == before);
        const Outcome mended = Repair();
        EXPECT_EQ(mended.code, 4) << mended.out << mended.error;
        EXPECT_EQ(IndexPositions(), positionsAfter);
        EXPECT_EQ(ReadWholeFile(m_path + ".before-repair"), before.content);
        EXPECT_EQ(Verify().code, 0);
        EXPECT_TRUE(fs::is_empty(fs::path(m_home) / ".") || !HasScratch());
        fs::remove(m_path + ".before-repair");
    }
    bool HasScratch() {
        for (const auto& entry : fs::directory_iterator(m_home))
            if (entry.path().filename().string().rfind("_ks", 0) == 0) return true;
        return false;
    }

    /// Both commands answer with one sentence that says `part`, at once, and leave the file alone.
    void ExpectOneSentence(const std::string& path, const std::string& part, bool asNobody = false) {
        for (const Words& words : {Words{"info", path}, Words{"verify", path}, Words{"verify", "--repair", path}}) {
            const Outcome answer = Run(words, asNobody);
            EXPECT_TRUE(answer.code == 1 || answer.code == 5) << words[0] << answer.code << answer.out << answer.error;
            EXPECT_NE(answer.error.find(part), std::string::npos) << words[0] << ": " << answer.error;
            EXPECT_EQ(std::count(answer.error.begin(), answer.error.end(), '\n'), 1) << answer.error;
            EXPECT_EQ(answer.out, "");
        }
    }

    TempFolder m_folder;
    std::string m_home;
    const std::string m_path = m_folder.File("week 1 光.ktr");
};

TEST_F(VerifyProgramTest, AWholePackage_IsWholeAndUntouched) {
    Record();
    const Fingerprint before(m_path);
    for (const Outcome& answer : {Verify(), Repair()}) {
        EXPECT_EQ(answer.code, 0) << answer.out << answer.error;
        EXPECT_TRUE(answer.Says("3 entries, each at a key frame"));
    }
    EXPECT_TRUE(Fingerprint(m_path) == before);
    EXPECT_FALSE(fs::exists(m_path + ".before-repair"));
}

// --- Six kinds of index damage -------------------------------------------------------------------------------------

TEST_F(VerifyProgramTest, AShiftedIndex_IsFoundAndMovedBack) {
    Record({Item("Waves", 250), Item("Light", 1250), Item("光", 3250)});
    ExpectFoundAndMended({"All entries of the index lie 250 ms away"}, {"0", "1000", "3000"});
}

TEST_F(VerifyProgramTest, AShiftedEntry_IsFoundByTheChapters) {
    Record();
    StoreBehindTheBackOf({Item("Waves", 0), Item("Light", 1300), Item("光", 3000)});
    ExpectFoundAndMended({"Entry 2 \"Light\" lies at 00:01.300; its slide begins at 00:01"}, {"0", "1000", "3000"});
}

TEST_F(VerifyProgramTest, AMissingEntry_IsFoundByTheChapters) {
    Record();
    StoreBehindTheBackOf({Item("Waves", 0), Item("光", 3000)});
    ExpectFoundAndMended({"The entry \"Light\" at 00:01 is missing"}, {"0", "1000", "3000"});
}

TEST_F(VerifyProgramTest, AMissingBeginning_IsFoundAndCovered) {
    Record({Item("Light", 1000), Item("光", 3000)});
    ExpectFoundAndMended({"The index begins at 00:01"}, {"0", "1000", "3000"});
    EXPECT_NE(AsText(*ReadStored(m_path).at(kProjectFileName)).find("<title>----</title>"), std::string::npos);
}

TEST_F(VerifyProgramTest, ADuplicate_IsFoundAndTakenOutOnce) {
    Record({Item("Waves", 0), Item("Light", 1000), Item("Light", 1000)});
    ExpectFoundAndMended({"Entry 3 \"Light\" at 00:01 is there twice"}, {"0", "1000"});
}

TEST_F(VerifyProgramTest, AnUnsortedIndex_IsFoundAndSorted) {
    Record({Item("Waves", 0), Item("光", 3000), Item("Light", 1000)});
    ExpectFoundAndMended({"Entry 3 \"Light\" at 00:01 stands behind"}, {"0", "1000", "3000"});
}

TEST_F(VerifyProgramTest, AnEntryBehindTheEnd_IsFoundAndTakenOut) {
    Record({Item("Waves", 0), Item("Light", 1000), Item("After", 9000)});
    ExpectFoundAndMended({"Entry 3 \"After\" lies at 00:09, at or behind the end"}, {"0", "1000"});
}

TEST_F(VerifyProgramTest, AnEntryOffTheKeyFrames_IsFoundAndTakenOut) {
    Record({Item("Waves", 0), Item("Light", 1000), Item("Between", 2500)});
    ExpectFoundAndMended({"Entry 3 \"Between\" lies at 00:02.500, where the recording has no key frame; the one before "
                          "is at 00:02"},
                         {"0", "1000"});
}

TEST_F(VerifyProgramTest, AWrongLength_IsFoundAndNoEntryIsLostWithIt) {
    Record();
    Store({Item("Waves", 0), Item("Light", 1000), Item("光", 3000)}, "00:02");
    ExpectFoundAndMended({"The project notes a length of 00:02"}, {"0", "1000", "3000"});
}

TEST_F(VerifyProgramTest, SeveralKindsAtOnce_AreAllNamedAndMended) {
    Record({Item("Light", 1000), Item("光", 3000), Item("More", 2000), Item("Between", 2500), Item("After", 9000)});
    ExpectFoundAndMended({"The index begins at 00:01", "Entry 3 \"More\"", "Entry 4 \"Between\"", "Entry 5 \"After\""},
                         {"0", "1000", "2000", "3000"});
}

// --- The file ------------------------------------------------------------------------------------------------------

TEST_F(VerifyProgramTest, AnInterruptedRecording_IsFinished) {
    {
        auto writer = PackageWriter::Open(m_path);
        writer->StoreFiles({{kProjectFileName, AsBytes(Project({Item("Waves", 0)}, "00:00"))}});
        test::Record(*writer, ShortLecture());
        writer->WriteJournal("0\t2026/1/5 9:00:00\tWaves\t\n2000\t2026/1/5 9:00:02\tLight\t\n");
        const Outcome alive = Repair();
        EXPECT_EQ(alive.code, 5);
        EXPECT_TRUE(alive.Says("is being recorded or written at the moment"));
        EXPECT_EQ(std::count(alive.error.begin(), alive.error.end(), '\n'), 1);
    }
    ExpectFoundAndMended({"The recording did not come to its end"}, {"0", "2000"});
}

TEST_F(VerifyProgramTest, ACutFile_IsToldAndMadeWholeAsFarAsItGoes) {
    Record();
    const auto begin = Map().mediaBegin, length = Map().cues->position - begin;
    fs::resize_file(m_path, begin + length * 6 / 10);
    ExpectFoundAndMended({"The file ends at 00:02"}, {"0", "1000"});
    EXPECT_EQ(RunTool({"ffmpeg", "-v", "error", "-i", m_path, "-f", "null", "-"}).output, "");
}

TEST_F(VerifyProgramTest, FilesCutAnywhere_AreToldWithoutACrash) {
    Record();
    const Bytes whole = *ReadWholeFile(m_path);
    const std::uint64_t end = whole.size(), media = Map().mediaBegin;
    for (const std::uint64_t size :
         {std::uint64_t{1}, std::uint64_t{40}, std::uint64_t{511}, std::uint64_t{700}, std::uint64_t{5000}, media / 2,
          media, media + 5, media + 700, end - 200, end - 1}) {
        WriteWholeFile(m_path, std::span(whole).first(size));
        const Outcome info = Run({"info", m_path}), verify = Verify(), repair = Repair();
        EXPECT_LE(info.code, 1) << size << info.error;
        EXPECT_TRUE(verify.code == 3 || verify.code == 5) << size << ": " << verify.code << verify.out << verify.error;
        EXPECT_TRUE(repair.code >= 3 && repair.code <= 5) << size << ": " << repair.code << repair.out << repair.error;
        EXPECT_TRUE(info.Says(".")) << size;
        for (const auto& entry : fs::directory_iterator(fs::path(m_path).parent_path()))
            if (entry.path().string().find("before-repair") != std::string::npos) fs::remove(entry.path());
    }
}

TEST_F(VerifyProgramTest, FlippedBitsInTheMedia_AreToldWithTheirTimeAndLeft) {
    Record();
    const auto begin = Map().mediaBegin, length = Map().cues->position - begin;
    Overwrite(begin + length * 5 / 8, AsBytes("\x55\xAA"));
    const Fingerprint before(m_path);
    for (const Outcome& answer : {Verify(), Repair()}) {
        EXPECT_EQ(answer.code, 3);
        EXPECT_TRUE(answer.Says("The recording is damaged from 00:02 to 00:03")) << answer.out;
    }
    EXPECT_TRUE(Fingerprint(m_path) == before);
    EXPECT_EQ(Run({"info", m_path}).code, 0) << "head and tail are whole";
}

TEST_F(VerifyProgramTest, AZeroedBlock_IsToldWithItsTimeAndLeft) {
    Record();
    const auto begin = Map().mediaBegin, length = Map().cues->position - begin;
    Overwrite(begin + length / 3, Bytes(length / 3, 0));
    const Fingerprint before(m_path);
    const Outcome answer = Repair();
    EXPECT_EQ(answer.code, 3);
    EXPECT_TRUE(answer.Says("The recording is damaged from 00:01 to 00:03")) << answer.out;
    EXPECT_TRUE(Fingerprint(m_path) == before);
}

TEST_F(VerifyProgramTest, ADamagedListOfKeyFrames_IsWrittenAnew) {
    Record();
    Overwrite(Map().cues->End() - 3, AsBytes("\xFF"));
    ExpectFoundAndMended({"The list of key frames at the end of the file is damaged."}, {"0", "1000", "3000"});
}

TEST_F(VerifyProgramTest, DamagedStoredFiles_AreToldByBoth) {
    Record();
    Overwrite(Map().Find(kProjectFileName)->data.data + 3, AsBytes("#"));
    const Outcome verify = Repair(), info = Run({"info", m_path});
    EXPECT_EQ(verify.code, 3);
    EXPECT_TRUE(verify.Says("The stored files (project file, index, pictures) are damaged."));
    EXPECT_EQ(info.code, 1);
    EXPECT_TRUE(info.Says("The stored files (project file, index, pictures) are damaged."));
}

TEST_F(VerifyProgramTest, ProjectFilesThatAreMissingOrBroken_AreTold) {
    RecordFile(m_path);
    EXPECT_TRUE(Verify().Says("The package holds no project file."));
    EXPECT_TRUE(Run({"info", m_path}).Says("holds no project file"));
    WriteStored(m_path, {{kProjectFileName, AsBytes("<kestrum ver=\"8.0\"><project><ind")}});
    const Fingerprint before(m_path);
    EXPECT_TRUE(Repair().Says("The project file in the package cannot be read:"));
    EXPECT_NE(Run({"info", m_path}).error, "");
    WriteStored(m_path, {{kProjectFileName, Bytes{}}});
    EXPECT_EQ(Verify().code, 3);
    WriteStored(m_path, {{kProjectFileName, AsBytes(std::string("<a>") + std::string(100000, '<'))}});
    EXPECT_EQ(Verify().code, 3);
    EXPECT_EQ(Run({"info", m_path}).code, 1);
}

TEST_F(VerifyProgramTest, WhatIsNoPackage_IsOneSentence) {
    ExpectOneSentence(m_path, "There is no package");
    ExpectOneSentence(m_folder.File("no such folder/lecture.ktr"), "There is no package");
    ExpectOneSentence(m_home, "is a folder");
    const std::string pipe = m_folder.File("pipe.ktr"), empty = m_folder.File("empty.ktr"),
                      text = m_folder.File("text.ktr"), foreign = m_folder.File("foreign.ktr");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0666), 0);
    ExpectOneSentence(pipe, "is a pipe or a device");
    ExpectOneSentence("/dev/zero", "is a pipe or a device");
    WriteWholeFile(empty, {});
    ExpectOneSentence(empty, "the file is empty");
    WriteWholeFile(text, AsBytes("Dear students,"));
    ExpectOneSentence(text, "is not a Kestrum package");
    Record();
    ASSERT_EQ(RunTool({"mkvmerge", "-q", "-o", foreign, m_path}).exitCode, 0);
    ExpectOneSentence(foreign, "a Matroska movie of another program");
    chmod(m_path.c_str(), 0);
    ExpectOneSentence(m_path, "may not be read", true);
}

TEST_F(VerifyProgramTest, OtherGenerations_AreOneSentence) {
    Record();
    const std::string head = AsText(*ReadWholeFile(m_path)).substr(0, 512);
    const auto at = head.find("package 8.0");
    ASSERT_NE(at, std::string::npos);
    Overwrite(at + 8, AsBytes("7"));
    ExpectOneSentence(m_path, "older generation (format 7.0)");
    Overwrite(at + 8, AsBytes("9"));
    ExpectOneSentence(m_path, "newer Kestrum (format 9.0)");
}

TEST_F(VerifyProgramTest, AFolderThatCannotBeWritten_FailsBeforeAnythingIsChanged) {
    Record({Item("Light", 1000)});
    chmod(m_path.c_str(), 0644);
    chmod(m_folder.File(".").c_str(), 0755);
    WriteWholeFile(m_folder.File("out"), {});
    WriteWholeFile(m_folder.File("error"), {});
    chmod(m_folder.File("out").c_str(), 0666);
    chmod(m_folder.File("error").c_str(), 0666);
    const Fingerprint before(m_path);
    const Outcome answer = Run({"verify", "--repair", m_path}, true);
    EXPECT_EQ(answer.code, 1) << answer.out << answer.error;
    EXPECT_TRUE(answer.Says("nothing was changed"));
    EXPECT_TRUE(Fingerprint(m_path) == before);
    EXPECT_EQ(Run({"verify", m_path}, true).code, 3);
}

TEST_F(VerifyProgramTest, Json_IsOneObjectForEveryOutcome) {
    Record({Item("Light", 1000), Item("Between", 2500)});
    for (const auto& [words, state] :
         std::vector<std::pair<Words, String>>{{{"verify", "--json", m_path}, u"damaged"},
                                               {{"verify", "--json", "--repair", m_path}, u"repaired"},
                                               {{"verify", "--json", m_path}, u"whole"},
                                               {{"verify", "--json", m_home}, u"refused"}}) {
        const Outcome answer = Run(words);
        EXPECT_EQ(std::count(answer.out.begin(), answer.out.end(), '\n'), 1) << answer.out;
        EXPECT_NE(answer.out.find("\"state\":\"" + host::ToUtf8(state) + "\""), std::string::npos) << answer.out;
        for (const char* field : {"package", "state", "text", "duration_ms", "entries", "findings", "kept"})
            EXPECT_NE(answer.out.find("\"" + std::string(field) + "\":"), std::string::npos) << field;
    }
}

TEST_F(VerifyProgramTest, BytesTurnedOverAnywhere_NeverBringItDown) {
    Record();
    const Bytes whole = *ReadWholeFile(m_path);
    std::uint32_t random = 12345;
    for (int round = 0; round < 12; ++round) {
        Bytes bytes = whole;
        for (int i = 0; i < 20; ++i) {
            random = random * 1664525u + 1013904223u;
            // Half of them in the head and the files, where the structure lies.
            const std::size_t room = i % 2 ? bytes.size() : 8000;
            bytes[random % room] = static_cast<std::uint8_t>(random >> 24);
        }
        WriteWholeFile(m_path, bytes);
        const Outcome verify = Verify(), info = Run({"info", m_path});
        EXPECT_TRUE(verify.code == 0 || verify.code == 3 || verify.code == 5) << verify.code << verify.error;
        EXPECT_LE(info.code, 1);
        EXPECT_EQ(ReadWholeFile(m_path), bytes);
    }
}

}  // namespace
}  // namespace kestrum::media
