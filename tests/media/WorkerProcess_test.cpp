// The worker as a process: requests over its socket, and the ends that must not lose a recording.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/socket.h>

#include <algorithm>
#include <filesystem>

#include "FakePortal.h"
#include "Places.h"
#include "media/package/Package.h"
#include "media/protocol/Channel.h"
#include "real/MediaProbe.h"
#include "real/PulseServer.h"
#include "real/TestWindow.h"
#include "real/XvfbServer.h"

namespace kestrum::media {
namespace {

using namespace kestrum::real;
using namespace kestrum::media::protocol;

constexpr int kWidth = 320, kHeight = 240;
const std::string kWorker = std::string(places::kInstall) + "/ksmedia";

/// A worker with our end of its channel.
class Worker {
  public:
    explicit Worker(std::vector<std::pair<std::string, std::string>> env) {
        int ends[2];
        if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) throw std::runtime_error("no sockets");
        ChildProcess::Options options;
        options.env = std::move(env);
        options.inheritedFd = ends[1];
        process = ChildProcess({kWorker, "serve", std::to_string(ends[1])}, options);
        close(ends[1]);
        channel = std::make_unique<Channel>(ends[0]);
    }

    /// Sends a request and returns its answer; events are passed over.
    template <typename Request>
    Message Ask(Kind kind, const Request& request) {
        channel->Send(Channel::Make(kind, ++m_id, request));
        for (;;) {
            auto message = channel->Receive();
            if (!message) return {Kind::kFailed, 0, {}};
            if (message->id == m_id && message->kind != Kind::kProgress) return *message;
        }
    }
    template <typename Answer, typename Request>
    Answer Get(Kind kind, const Request& request) {
        const Message message = Ask(kind, request);
        EXPECT_EQ(message.kind, Kind::kDone);
        return message.kind == Kind::kDone ? Unpack<Answer>(message.body) : Answer{};
    }
    /// As the death of the program that started the worker.
    void HangUp() { channel.reset(); }

    ChildProcess process;
    std::unique_ptr<Channel> channel;

  private:
    std::uint32_t m_id = 0;
};

class WorkerProcess : public ::testing::Test {
  protected:
    void SetUp() override {
        std::filesystem::copy_file(std::string(places::kSource) + "/install/default.ksp", m_folder / "project.ksp");
    }
    std::vector<std::pair<std::string, std::string>> Env() const {
        auto env = m_sound.Env();
        env.emplace_back("DISPLAY", m_display.Name());
        return env;
    }
    std::string Package() const { return m_folder / "lecture.ktr"; }
    void Start(Worker& worker) {
        Settings settings;
        settings.picture = {m_display.Name(), 0, 0, kWidth, kHeight};
        settings.soundSources = {PulseServer::kMicrophone};
        ASSERT_EQ(worker.Ask(Kind::kOpen, settings).kind, Kind::kDone);
        const PackageFiles files{Package(), m_folder / "project.ksp", {}, {}, {}};
        ASSERT_EQ(worker.Ask(Kind::kStart, files).kind, Kind::kDone);
    }
    std::int64_t KeyFrame(Worker& worker) { return worker.Get<Number>(Kind::kKeyFrame, Nothing{}).value; }
    void Journal(Worker& worker, std::int64_t position) {
        const std::string text = "0\t\tFirst\t\n" + std::to_string(position) + "\t\tSecond\t\n";
        EXPECT_EQ(worker.Get<Number>(Kind::kJournal, Text{text}).value, 1);
    }
    std::string StoredProject() {
        EXPECT_TRUE(ExtractStored(Package(), {m_folder / "out.ksp", {}, {}, {}}));
        return ReadText(m_folder / "out.ksp");
    }

    XvfbServer m_display{kWidth, kHeight};
    PulseServer m_sound;
    TempFolder m_folder;
};

TEST_F(WorkerProcess, DeathOfTheProgramThatStartedIt_FinishesThePackageWithTheJournalInTheProject) {
    Worker worker(Env());
    Start(worker);
    const std::int64_t key = KeyFrame(worker);
    Journal(worker, key);
    worker.HangUp();

    ASSERT_TRUE(worker.process.WaitForEnd());
    EXPECT_EQ(worker.process.ExitCode(), 0);
    EXPECT_EQ(QuickVerify(Package()), media::Soundness::kSound) << "finished, not merely recoverable";
    EXPECT_EQ(KeyFrames(Package()), (std::vector<std::int64_t>{0, key}));
    EXPECT_GT(LengthMs(Package()), key);
    const std::string project = StoredProject();
    EXPECT_NE(project.find("First"), std::string::npos);
    EXPECT_NE(project.find("Second"), std::string::npos);
}

TEST_F(WorkerProcess, DeathInTheMiddleOfARequest_FinishesThePackageToo) {
    Worker worker(Env());
    Start(worker);
    const std::string half("\x40\x00\x00\x00\x19", 5);
    ASSERT_EQ(send(worker.channel->FileDescriptor(), half.data(), half.size(), MSG_NOSIGNAL), 5);
    worker.HangUp();
    ASSERT_TRUE(worker.process.WaitForEnd());
    EXPECT_EQ(QuickVerify(Package()), media::Soundness::kSound);
}

TEST_F(WorkerProcess, RequestToEnd_FinishesThePackage_TellsThatItIsGone_AndWaitsForTheFarewell) {
    Worker worker(Env());
    Start(worker);
    const std::int64_t key = KeyFrame(worker);
    Journal(worker, key);
    worker.process.Signal(SIGTERM);
    ASSERT_TRUE(WaitFor([&] { return worker.Get<State>(Kind::kState, Nothing{}).state == -1; }));
    EXPECT_EQ(QuickVerify(Package()), media::Soundness::kSound);
    EXPECT_NE(StoredProject().find("Second"), std::string::npos);
    EXPECT_EQ(KeyFrame(worker), -1);
    EXPECT_EQ(worker.Ask(Kind::kStop, Nothing{}).kind, Kind::kDone) << "a stop that comes too late is no error";
    worker.HangUp();
    EXPECT_TRUE(worker.process.WaitForEnd());
    EXPECT_EQ(worker.process.ExitCode(), 0);
}

TEST_F(WorkerProcess, SecondRequestToEnd_EndsAtOnce) {
    Worker worker(Env());
    Start(worker);
    worker.process.Signal(SIGTERM);
    ASSERT_TRUE(WaitFor([&] { return worker.Get<State>(Kind::kState, Nothing{}).state == -1; }));
    worker.process.Signal(SIGTERM);
    EXPECT_TRUE(worker.process.WaitForEnd(15)) << "less than the farewell of the first one";
    EXPECT_EQ(QuickVerify(Package()), media::Soundness::kSound);
}

TEST_F(WorkerProcess, KeyboardInterrupt_IsTheParentsBusiness) {
    Worker worker(Env());
    Start(worker);
    worker.process.Signal(SIGINT);
    worker.process.Signal(SIGHUP);
    EXPECT_GT(KeyFrame(worker), 0);
    EXPECT_EQ(worker.Ask(Kind::kStop, Nothing{}).kind, Kind::kDone);
}

TEST_F(WorkerProcess, KillOfTheWorker_LosesNoJournalEntryAndLittleMedia) {
    Worker worker(Env());
    Start(worker);
    const std::int64_t key = KeyFrame(worker);
    Journal(worker, key);
    std::int64_t written = 0;
    ASSERT_TRUE(WaitFor([&] {
        written = worker.Get<State>(Kind::kState, Nothing{}).writtenMs;
        return written > key + 2000;
    }));
    worker.process.Signal(SIGKILL);
    ASSERT_TRUE(worker.process.WaitForEnd());

    EXPECT_EQ(QuickVerify(Package()), media::Soundness::kInterrupted);
    EXPECT_NE(StoredProject().find("Second"), std::string::npos) << "before any repair";
    const auto verdict = WholeVerify(Package(), {}, [] { return false; });
    EXPECT_EQ(verdict.soundness, media::Soundness::kSound);
    ASSERT_TRUE(verdict.recovered);
    EXPECT_EQ(verdict.recovered->entries, 2);
    EXPECT_GE(LengthMs(Package()), written) << "what was told as written is there";
    EXPECT_NE(StoredProject().find("Second"), std::string::npos);
    EXPECT_EQ(Pictures(Package()).size(), PacketPositions(Package(), "v", false).size());
}

TEST_F(WorkerProcess, LivingRecorder_KeepsItsPackageFromOthers) {
    Worker worker(Env());
    Start(worker);
    Worker other(Env());
    const auto verdict = other.Get<Verdict>(Kind::kVerifyWhole, Text{Package()});
    EXPECT_EQ(verdict.soundness, protocol::Soundness::kRecording);
    EXPECT_EQ(verdict.recovery.happened, 0);
    const PackageFiles files{Package(), m_folder / "project.ksp", {}, {}, {}};
    const Message answer = other.Ask(Kind::kStore, files);
    ASSERT_EQ(answer.kind, Kind::kFailed);
    const auto failure = Unpack<Failure>(answer.body);
    EXPECT_EQ(failure.part, FailedPart::kPackage);
    EXPECT_EQ(failure.detail, static_cast<std::int32_t>(ErrorKind::kLocked));
    EXPECT_NE(failure.sentence, "");
    EXPECT_EQ(worker.Ask(Kind::kStop, Nothing{}).kind, Kind::kDone);
}

TEST_F(WorkerProcess, FailedStart_LeavesTheWorkerReadyForTheNext) {
    Worker worker(Env());
    Settings settings;
    settings.picture = {m_display.Name(), 0, 0, kWidth, kHeight};
    settings.soundSources = {PulseServer::kMicrophone};
    ASSERT_EQ(worker.Ask(Kind::kOpen, settings).kind, Kind::kDone);
    const Message answer = worker.Ask(Kind::kStart, PackageFiles{m_folder / "missing/lecture.ktr", {}, {}, {}, {}});
    ASSERT_EQ(answer.kind, Kind::kFailed);
    EXPECT_EQ(Unpack<Failure>(answer.body).part, FailedPart::kPackage);
    EXPECT_EQ(worker.Get<State>(Kind::kState, Nothing{}).state, 0);
    Start(worker);
    EXPECT_GT(KeyFrame(worker), 0);
    EXPECT_EQ(worker.Ask(Kind::kStop, Nothing{}).kind, Kind::kDone);
}

TEST_F(WorkerProcess, QuestionForTheScreen_WaitsForItsUser_WhileTheWorkerGoesOn) {
    const MessageBus bus;
    FakePortal portal(bus);
    portal.answer = UserAnswer::kSaysNothing;
    auto env = Env();
    env.emplace_back("DBUS_SESSION_BUS_ADDRESS", bus.Address());
    Worker worker(env);
    worker.channel->Send(Channel::Make(Kind::kCast, 1000, Nothing{}));
    ASSERT_TRUE(WaitFor([&] { return portal.questions > 0; }));
    EXPECT_EQ(worker.Get<Number>(Kind::kHello, Nothing{}).value, kVersion);
    worker.Get<Nothing>(Kind::kCancel, Nothing{});
    const auto answer = worker.channel->Receive();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->id, 1000U);
    ASSERT_EQ(answer->kind, Kind::kFailed);
    EXPECT_EQ(Unpack<Failure>(answer->body).sentence,
              "Nobody answered the desktop's question for the screen; record again, and allow it.");
    EXPECT_TRUE(WaitFor([&] { return portal.isWithdrawn.load(); }));
}

TEST_F(WorkerProcess, RecordingFromADesktopThatRefuses_IsRefusedBeforeAnythingIsOpen) {
    const MessageBus bus;
    FakePortal portal(bus);
    portal.answer = UserAnswer::kRefuses;
    auto env = Env();
    env.emplace_back("DBUS_SESSION_BUS_ADDRESS", bus.Address());
    Worker worker(env);
    Settings settings;
    settings.picture = {m_display.Name(), 0, 0, kWidth, kHeight, 1};
    settings.soundSources = {PulseServer::kMicrophone};
    const Message answer = worker.Ask(Kind::kOpen, settings);
    ASSERT_EQ(answer.kind, Kind::kFailed);
    EXPECT_EQ(Unpack<Failure>(answer.body).part, FailedPart::kCapture);
    settings.picture.fromCast = 0;
    EXPECT_EQ(worker.Ask(Kind::kOpen, settings).kind, Kind::kDone) << "the display itself needs no desktop";
}

TEST_F(WorkerProcess, NonsenseRequests_AreRefusedAndTheWorkerGoesOn) {
    Worker worker(Env());
    EXPECT_EQ(worker.Ask(static_cast<Kind>(999), Nothing{}).kind, Kind::kFailed);
    EXPECT_EQ(worker.Ask(Kind::kOpen, Nothing{}).kind, Kind::kFailed) << "too short";
    EXPECT_EQ(worker.Ask(Kind::kStart, PackageFiles{}).kind, Kind::kFailed) << "nothing is open";
    EXPECT_EQ(worker.Get<Number>(Kind::kKeyFrame, Nothing{}).value, -1);
    EXPECT_EQ(worker.Get<Number>(Kind::kHello, Nothing{}).value, kVersion);
}

TEST_F(WorkerProcess, Subcommands_AnswerPeopleAndScripts) {
    {
        Worker worker(Env());
        Start(worker);
        KeyFrame(worker);
        EXPECT_EQ(worker.Ask(Kind::kStop, Nothing{}).kind, Kind::kDone);
    }
    const auto info = real::Run({kWorker, "info", Package()});
    EXPECT_EQ(info.code, 0);
    EXPECT_NE(info.output.find("state: sound\n"), std::string::npos) << info.output;
    EXPECT_NE(info.output.find("frame size: 320x240\n"), std::string::npos) << info.output;
    EXPECT_NE(info.output.find("stored file: project.ksp"), std::string::npos) << info.output;
    const auto keys = real::Run({kWorker, "keys", Package()});
    EXPECT_EQ(std::count(keys.output.begin(), keys.output.end(), '\n'), 2);
    EXPECT_EQ(real::Run({kWorker, "verify", Package()}).output, "sound\n");
    EXPECT_EQ(real::Run({kWorker, "verify", "--quick", Package()}).code, 0);
    EXPECT_EQ(real::Run({kWorker, "info", m_folder / "none.ktr"}).code, 1);
    EXPECT_EQ(real::Run({kWorker, "no-such-subcommand"}).code, 2);
    const auto devices = real::Run({kWorker, "devices"}, Env());
    EXPECT_NE(devices.output.find("mic\tinput (default)\tMicrophone\n"), std::string::npos) << devices.output;
}

}  // namespace
}  // namespace kestrum::media
