// The fake media library keeps the promises that the program builds on.
#include "adapters/sim/KsLib.h"

#include <gtest/gtest.h>

#include "adapters/sim/World.h"

namespace kestrum {
namespace {

const String kPackage = u"/home/anna/talk.ktr";

struct SimKsLib : ::testing::Test {
    void Start() {
        world.ksLib.EncoderSetFilename(kPackage, u"/tmp/user/project.ksp", u"");
        world.ksLib.SetCaptureArea(0, 0, 639, 479);
        world.ksLib.EncoderStart(0);
    }
    sim::World world;
};

TEST_F(SimKsLib, Recording_HasItsFirstKeyFrameAtTheOldLength_AndAppends) {
    world.fs.Put(u"/tmp/user/project.ksp", "<project/>");
    Start();
    world.loop.Sleep(5000);
    EXPECT_EQ(world.ksLib.AddKeyFrame(), 5000);
    world.loop.Sleep(1000);
    world.ksLib.EncoderStop(1200);
    EXPECT_EQ(world.ksLib.GetLength(kPackage), 6000);
    Start();
    world.loop.Sleep(2000);
    EXPECT_EQ(world.ksLib.AddKeyFrame(), 8000);
    world.ksLib.EncoderStop(1200);
    auto package = world.ksLib.Get(kPackage);
    ASSERT_TRUE(package);
    EXPECT_EQ(package->keyFrames, (std::vector<std::int32_t>{0, 5000, 6000, 8000}));
    EXPECT_EQ(package->width, 640);
    EXPECT_EQ(package->stored.at("project"), "<project/>");
    EXPECT_FALSE(package->torn);
}

TEST_F(SimKsLib, Crash_LeavesATornPackageThatAWholeVerifyRecovers) {
    world.fs.Put(u"/tmp/user/project.ksp", "<project><index duration=\"00:00\" type=\"OL\"/></project>");
    Start();
    world.loop.Sleep(5000);
    EXPECT_TRUE(world.ksLib.WriteIndexJournal(u"0\tdate\tOne\\tand\t\n"));
    world.ksLib.Crash();
    EXPECT_EQ(world.ksLib.EncoderState(), host::encoder_state::kGone);
    EXPECT_EQ(world.ksLib.verifyKsFile(kPackage), 0);
    EXPECT_NE(world.ksLib.verifyWholeKsFile(kPackage), 0);
    EXPECT_NE(world.ksLib.verifyKsFile(kPackage), 0);
    EXPECT_EQ(world.ksLib.GetLength(kPackage), 5000);
    EXPECT_FALSE(world.ksLib.LastRecovery().empty());
    EXPECT_TRUE(world.ksLib.Get(kPackage)->journal.empty());
    EXPECT_NE(world.ksLib.Get(kPackage)->stored.at("project").find("<title>One\tand</title>"), std::string::npos)
        << world.ksLib.Get(kPackage)->stored.at("project");
}

TEST_F(SimKsLib, EmptyProject_IsOneOnlyForAWholePackageWithoutMedia) {
    EXPECT_EQ(world.ksLib.IsEmptyProject(kPackage), 2);
    world.fs.Put(kPackage, "something else");
    EXPECT_EQ(world.ksLib.IsEmptyProject(kPackage), 0);
    world.ksLib.Put(kPackage, sim::Package());
    EXPECT_EQ(world.ksLib.IsEmptyProject(kPackage), 1);
}

TEST_F(SimKsLib, StoredFiles_ComeOutAsTheyWentIn_AndAnAbsentOneIsNotWritten) {
    world.fs.Put(u"/tmp/user/p", "project");
    world.fs.Put(u"/tmp/user/i", "index");
    EXPECT_EQ(world.ksLib.SetExtendDataInProject(kPackage, {u"/tmp/user/p", u"", u"/tmp/user/none", u"/tmp/user/i"}),
              0);
    EXPECT_EQ(world.ksLib.GetExtendDataFromProject(kPackage, {u"/o/p", u"/o/c", u"/o/f", u"/o/i"}), 0);
    EXPECT_EQ(world.fs.Bytes(u"/o/p"), "project");
    EXPECT_EQ(world.fs.Bytes(u"/o/i"), "index");
    EXPECT_FALSE(world.fs.FileExists(u"/o/c"));
    EXPECT_FALSE(world.fs.FileExists(u"/o/f"));
}

TEST_F(SimKsLib, FailedStore_LeavesThePackageAsItWas) {
    world.fs.Put(u"/tmp/user/p", "old");
    world.ksLib.SetExtendDataInProject(kPackage, {u"/tmp/user/p", u"", u"", u""});
    std::string before = world.fs.Bytes(kPackage);
    world.faults.FailCall(u"fs.WriteFile", 1, sim::Once);
    world.fs.Put(u"/tmp/user/p", "new");
    EXPECT_EQ(world.ksLib.SetExtendDataInProject(kPackage, {u"/tmp/user/p", u"", u"", u""}), -1);
    EXPECT_EQ(sim::Package::FromBytes(before)->stored, world.ksLib.Get(kPackage)->stored);
}

TEST_F(SimKsLib, Package_SurvivesACopyOfItsFile) {
    sim::Package package;
    package.lengthMs = 9000;
    package.keyFrames = {0, 4000};
    package.stored["project"] = std::string("a\0b\n", 4);
    world.ksLib.Put(kPackage, package);
    world.fs.CopyFile(kPackage, u"/tmp/user/copy.ktr");
    auto copy = world.ksLib.Get(u"/tmp/user/copy.ktr");
    ASSERT_TRUE(copy);
    EXPECT_EQ(copy->lengthMs, 9000);
    EXPECT_EQ(copy->keyFrames, package.keyFrames);
    EXPECT_EQ(copy->stored, package.stored);
}

}  // namespace
}  // namespace kestrum
