// What the tests of the settings dialogs share: stored preferences, and a lecture that is open.
#pragma once

#include "DevicesWorld.h"
#include "project/ProjectWorld.h"

namespace kestrum {

inline const String kPackage = u"/home/anna/waves.ktr";
inline const String kWork = u"/tmp/user/scratch";

class DialogTest : public DevicesTest {
  protected:
    void Set(const String& key, const String& value) { world.settings.Set(u"configure", key, value); }
    String Saved(const String& key) const { return world.settings.Get(u"configure", key); }
    /// A lecture is open; with a recording or still without.
    void OpenLecture(bool recorded) {
        support.packagePath = kPackage;
        support.workFolder = kWork;
        support.projectFileName = u"project.ksp";
        world.fs.PutFolder(kWork);
        world.fs.Put(kWork + u"/project.ksp", test::InstallFile("default.ksp"));
        ASSERT_TRUE(project.g_Project.Load(kWork + u"/project.ksp"));
        if (!recorded) return;
        sim::Package package;
        package.lengthMs = 60000;
        package.audioBitrate = 64;
        world.ksLib.Put(kPackage, package);
    }
};

}  // namespace kestrum
