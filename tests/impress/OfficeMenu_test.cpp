// The extension's commands in the menu of an office, and who has them.
#include "adapters/impress/OfficeMenu.h"

#include "impress/OfficeDesk.h"

namespace kestrum::impress {
namespace {

/// Offices that start meanwhile have the extensions of `folder`, and no others that came with the office.
class Extensions {
  public:
    explicit Extensions(const fs::path& folder) {
        setenv("BUNDLED_EXTENSIONS", ("file://" + folder.string()).c_str(), 1);
    }
    ~Extensions() { unsetenv("BUNDLED_EXTENSIONS"); }
};

fs::path BuiltExtensions() {
    return fs::path(places::kInstall) / "impress";
}

TEST(OfficeMenu, WithoutTheExtension_ThereIsNone) {
    const TempFolder none;
    const Extensions extensions(none.Path());
    OfficeDesk desk;
    EXPECT_EQ(desk.office->Menu(), nullptr);
}

TEST(OfficeMenu, APick_ArrivesWithThePresentationOfItsWindow) {
    const Extensions extensions(BuiltExtensions());
    OfficeDesk desk;
    TempFolder folder;
    const auto one = Text(folder.CopyOfLecture("one.pptx")), two = Text(folder.CopyOfLecture("two.pptx"));
    desk.office->Open(one);
    desk.office->Open(two);
    ASSERT_NE(desk.office->Menu(), nullptr);
    std::vector<String> picked;
    desk.office->Menu()->OnPick(
        [&](const String& id) { picked.push_back(id + u" " + desk.App().ActivePresentation()->FullName()); });
    desk.office->Menu()->Show({{u"rec", {true, true}}});
    for (int attempt = 0; attempt < 10 && picked.empty(); ++attempt) {
        desk.Key("alt+k");  // opens the menu of the window that has the keyboard; its first entry is Record
        desk.Key("Return");
        real::WaitFor(
            [&] {
                desk.loop.DoEvents();
                return !picked.empty();
            },
            5);
        if (picked.empty()) desk.Key("Escape");
    }
    ASSERT_EQ(picked.size(), 1u);
    EXPECT_EQ(picked[0], u"rec " + two);
}

}  // namespace
}  // namespace kestrum::impress
