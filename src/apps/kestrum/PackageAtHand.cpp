#include "apps/kestrum/PackageAtHand.h"

#include <cstdint>

#include "apps/commandline/Texts.h"
#include "project/modProject.h"
#include "support/modGlobal.h"

namespace kestrum::app {
namespace {

constexpr char16_t kPackageEnding[] = u".ktr";
// A recorder that was killed leaves a worker behind that lets go of the package a moment later.
constexpr std::int32_t kLetGoMs = 2000;
constexpr std::int32_t kLookAgainMs = 50;

bool IsInUse(const support::Context& c, host::IPackageInspector& inspector, const String& package) {
    for (std::int32_t waited = 0;; waited += kLookAgainMs) {
        if (inspector.Inspect(package, false, {}).state != host::PackageState::Recording) return false;
        if (waited >= kLetGoMs) return true;
        c.host.loop.Sleep(kLookAgainMs);
    }
}

}  // namespace

String PackageOf(const String& source) {
    return source.ends_with(kPackageEnding) ? source : modGlobal::PackagePathOf(source);
}

void RefuseUnlessPackage(const support::Context& c, host::IPackageInspector& inspector, const String& package,
                         const String& source) {
    String sentence;
    if (!c.host.fs.FileExists(package)) {
        sentence = Sentence(c, u"msgNoPackage", u"There is no package \"%s1\".", {package});
    } else if (c.host.ksLib.GetFileFormatVersion(package) == 0) {
        sentence = Sentence(c, u"msgNotAPackage", u"\"%s1\" is not a Kestrum package.", {package});
    } else if (IsInUse(c, inspector, package)) {
        sentence =
            Sentence(c, u"msgInUse",
                     u"\"%s1\" is being recorded or written at the moment; try again when that has ended.", {package});
    }
    if (!sentence.empty()) throw host::Error(host::ErrorNumber::FileNotFound, source, sentence);
}

void TakePackage(const project::Context& c, const String& package) {
    c.support.projectSource = u"KTR";
    c.support.packagePath = package;
    c.support.packageFolder = modGlobal::FolderOf(c, package);
    do {
        c.support.workFolder =
            modGlobal::Join(c, c.host.shell.Environment(u"temp"), u"_ksproj_" + c.host.fs.TemporaryName());
    } while (c.host.fs.FolderExists(c.support.workFolder));
    c.host.fs.CreateFolder(c.support.workFolder);
    c.support.projectFileName = u"project.ksp";
    modProject::InitProject(c);
}

}  // namespace kestrum::app
