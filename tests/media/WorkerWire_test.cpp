// How the values of a message become bytes and come back, and what nonsense does.
#include <gtest/gtest.h>
#include <sys/socket.h>

#include <thread>

#include "media/protocol/Channel.h"
#include "media/protocol/Messages.h"

namespace kestrum::media::protocol {
namespace {

TEST(WorkerWire, ValuesComeBackAsTheyWere) {
    Settings settings;
    settings.picture = {":7", -10, 2, 1920, 1080};
    settings.framesPerSecond = 30;
    settings.soundSources = {"mic", "", "名前"};
    settings.audioKbps = 96;
    const auto back = Unpack<Settings>(Pack(settings));
    EXPECT_EQ(back.picture.display, ":7");
    EXPECT_EQ(back.picture.x, -10);
    EXPECT_EQ(back.picture.width, 1920);
    EXPECT_EQ(back.soundSources, settings.soundSources);
    EXPECT_EQ(back.audioKbps, 96);
    EXPECT_EQ(Unpack<Number>(Pack(Number{-1})).value, -1);
    EXPECT_EQ(Unpack<Number>(Pack(Number{INT64_MIN})).value, INT64_MIN);
    EXPECT_EQ(Unpack<Text>(Pack(Text{std::string("a\0b", 3)})).value, std::string("a\0b", 3));
}

TEST(WorkerWire, EveryShortenedMessageIsRefused) {
    Settings settings;
    settings.soundSources = {"mic"};
    const std::string whole = Pack(settings);
    for (std::size_t size = 0; size < whole.size(); ++size) {
        EXPECT_THROW(Unpack<Settings>(whole.substr(0, size)), WireError) << size;
    }
}

TEST(WorkerWire, CountThatCannotBeReservesNoMemory) {
    EXPECT_THROW(Unpack<NumberList>("\xFF\xFF\xFF\xFF"), WireError);
    EXPECT_THROW(Unpack<Text>("\xFF\xFF\xFF\xFFxyz"), WireError);
}

class WorkerChannel : public ::testing::Test {
  protected:
    void SetUp() override {
        int ends[2];
        ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
        near = std::make_unique<Channel>(ends[0]);
        far = std::make_unique<Channel>(ends[1]);
    }
    std::unique_ptr<Channel> near, far;
};

TEST_F(WorkerChannel, MessagesArriveWholeAndInOrderHoweverLarge) {
    const std::string large(3'000'000, 'x');
    std::thread sender([&] {
        EXPECT_TRUE(near->Send(Channel::Make(Kind::kJournal, 1, Text{large})));
        EXPECT_TRUE(near->Send(Channel::Make(Kind::kKeyFrame, 2, Nothing{})));
    });
    const auto first = far->Receive();
    const auto second = far->Receive();
    sender.join();
    ASSERT_TRUE(first && second);
    EXPECT_EQ(Unpack<Text>(first->body).value, large);
    EXPECT_EQ(second->kind, Kind::kKeyFrame);
    EXPECT_EQ(second->id, 2U);
}

TEST_F(WorkerChannel, OtherSideGone_EndsBothDirections) {
    far.reset();
    EXPECT_FALSE(near->Receive());
    EXPECT_FALSE(near->Send(Channel::Make(Kind::kHello, 1, Nothing{})));
}

TEST_F(WorkerChannel, LengthBeyondReason_EndsTheChannel) {
    const std::string header("\xFF\xFF\xFF\x7F\x01\x00\x00\x00\x00\x00", 10);
    ASSERT_EQ(send(near->FileDescriptor(), header.data(), header.size(), 0), 10);
    EXPECT_FALSE(far->Receive());
}

TEST_F(WorkerChannel, EventsWithoutRoom_AreDroppedAndNeverCutAMessageInTwo) {
    const auto event = Channel::Make(Kind::kLevel, 0, Text{std::string(1000, 'e')});
    for (int i = 0; i < 5000; ++i) near->SendIfRoom(event);
    std::thread sender([&] { EXPECT_TRUE(near->Send(Channel::Make(Kind::kDone, 7, Nothing{}))); });
    for (;;) {
        const auto message = far->Receive();
        ASSERT_TRUE(message);
        if (message->kind == Kind::kDone) break;
        ASSERT_EQ(message->body, event.body);
    }
    sender.join();
}

}  // namespace
}  // namespace kestrum::media::protocol
