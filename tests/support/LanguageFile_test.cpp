// The language file that is installed holds a text for every key that the code asks for and for every captioned control
// of every form. The sources are read as text, so that a new form or key is found without being listed anywhere.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "Places.h"
#include "SupportWorld.h"
#include "support/frmMsgBox.h"
#include "support/frmStatus.h"
#include "support/modLanguage.h"
#include "support/modXml.h"

namespace kestrum {
namespace {

namespace fs = std::filesystem;

std::string ReadAll(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

/// All sources of the program: path below src/ to text, and the script that makes the menu of the extension.
std::map<std::string, std::string> Sources() {
    std::map<std::string, std::string> sources;
    const fs::path menu = fs::path("packaging") / "impress" / "make-texts";
    sources[menu.generic_string()] = ReadAll(fs::path(places::kSource) / menu);
    const fs::path root = fs::path(places::kSource) / "src";
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        const std::string extension = entry.path().extension().string();
        if (extension == ".cpp" || extension == ".h") {
            sources[fs::relative(entry.path(), root).generic_string()] = ReadAll(entry.path());
        }
    }
    return sources;
}

/// Section to keys of the installed file.
std::map<std::string, std::set<std::string>> Entries() {
    std::map<std::string, std::set<std::string>> entries;
    const std::string bytes = ReadAll(fs::path(places::kSource) / "install" / "res.xml");
    const modXml::Document document = modXml::Document::ParseBytes(bytes);
    for (const modXml::Node& section : document.Root().Children()) {
        std::set<std::string>& keys = entries[host::ToUtf8(section.Attribute(u"name").value())];
        for (const modXml::Node& entry : section.Children()) {
            const std::string key = host::ToUtf8(entry.Attribute(u"name").value());
            EXPECT_TRUE(keys.insert(key).second) << key << " stands twice in one section";
        }
    }
    return entries;
}

/// Section and key to text.
std::map<std::string, std::map<std::string, std::string>> Texts() {
    std::map<std::string, std::map<std::string, std::string>> texts;
    const std::string bytes = ReadAll(fs::path(places::kSource) / "install" / "res.xml");
    const modXml::Document document = modXml::Document::ParseBytes(bytes);
    for (const modXml::Node& section : document.Root().Children()) {
        for (const modXml::Node& entry : section.Children()) {
            texts[host::ToUtf8(section.Attribute(u"name").value())][host::ToUtf8(entry.Attribute(u"name").value())] =
                host::ToUtf8(entry.Text());
        }
    }
    return texts;
}

using Matches = std::vector<std::smatch>;

Matches All(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    return Matches(std::sregex_iterator(text.begin(), text.end(), expression), std::sregex_iterator());
}

class LanguageFileTest : public ::testing::Test {
  protected:
    bool Has(const std::string& section, const std::string& key) {
        return entries.count(section) > 0 && entries[section].count(key) > 0;
    }
    bool HasAnywhere(const std::string& key) {
        return std::any_of(entries.begin(), entries.end(), [&](const auto& s) { return s.second.count(key) > 0; });
    }
    std::map<std::string, std::string> sources = Sources();
    std::map<std::string, std::set<std::string>> entries = Entries();
    std::map<std::string, std::map<std::string, std::string>> texts = Texts();
};

TEST_F(LanguageFileTest, HoldsEveryKeyThatTheCodeNamesWithItsSection) {
    std::size_t found = 0;
    for (const auto& [path, text] : sources) {
        for (const auto& match : All(text, "u\"(frm\\w+|monitor|commandLine)\",\\s*u\"(\\w+)\"")) {
            ++found;
            const bool isPrefix = match[2].str().back() == '_';
            EXPECT_TRUE(isPrefix || Has(match[1], match[2])) << path << ": " << match[1] << ", " << match[2];
        }
    }
    EXPECT_GT(found, 10u) << "the search itself must work";
}

TEST_F(LanguageFileTest, HoldsEveryMessageThatTheCodeNames) {
    std::size_t found = 0;
    for (const auto& [path, text] : sources) {
        for (const auto& match : All(text, "u\"(msg[A-Z0-9]\\w*)\"")) {
            ++found;
            EXPECT_TRUE(HasAnywhere(match[1])) << path << ": " << match[1];
        }
    }
    EXPECT_GT(found, 30u);
}

TEST_F(LanguageFileTest, HoldsEveryCaptionedControlOfEveryFormThatTakesItsCaptionsFromIt) {
    const std::string control =
        "ui::(?:Label|CommandButton|CheckBox|OptionButton|Frame|Menu)\\s+\\w+\\{\\*this,\\s*u\"(\\w+)\"";
    std::size_t forms = 0;
    for (const auto& [path, text] : sources) {
        const std::string name = fs::path(path).stem().string();
        const bool isForm = name.rfind("frm", 0) == 0 && fs::path(path).extension() == ".h";
        const std::string body = sources[fs::path(path).replace_extension(".cpp").generic_string()];
        if (!isForm || body.find("ApplyLanguage(") == std::string::npos) continue;
        ++forms;
        EXPECT_TRUE(Has(name, name)) << name << " has no title";
        for (const auto& match : All(text, control)) EXPECT_TRUE(Has(name, match[1])) << name << "." << match[1];
    }
    EXPECT_GT(forms, 5u);
}

TEST_F(LanguageFileTest, HoldsNothingThatNoSourceAsksFor) {
    const auto asks = [&](const std::string& section, const std::string& key) {
        // Some keys are made of a beginning that the source names and an ending from elsewhere ("quiz_submit").
        std::string beginning = key.substr(0, key.find('_') == std::string::npos ? 0 : key.find('_') + 1);
        for (const std::string ending : {"Means", "Repair"}) {
            if (key.size() > ending.size() && key.compare(key.size() - ending.size(), ending.size(), ending) == 0) {
                beginning = key.substr(0, key.size() - ending.size());
            }
        }
        return std::any_of(sources.begin(), sources.end(), [&](const auto& source) {
            const std::string& text = source.second;
            const bool named = text.find("\"" + key + "\"") != std::string::npos ||
                               (!beginning.empty() && text.find("u\"" + beginning + "\"") != std::string::npos);
            // The sources of a form are named like it, some with an ending of their own ("frmDeviceSave.cpp").
            const bool ofThisForm = fs::path(source.first).stem().string().rfind(section, 0) == 0 ||
                                    (section == "commandLine" && source.first.rfind("apps/", 0) == 0);
            return named && (ofThisForm || text.find("\"" + section + "\"") != std::string::npos);
        });
    };
    for (const auto& [section, keys] : entries) {
        for (const std::string& key : keys) EXPECT_TRUE(asks(section, key)) << section << ", " << key;
    }
}

TEST_F(LanguageFileTest, KeepsEveryPlaceholderOfTheSentencesInTheCode) {
    std::size_t found = 0;
    const std::string call =
        "u\"(frm\\w+|monitor|commandLine)\",\\s*u\"(\\w+)\",\\s*((?:u\"(?:[^\"\\\\]|\\\\.)*\"\\s*)+)";
    for (const auto& [path, text] : sources) {
        for (const auto& match : All(text, call)) {
            if (!Has(match[1], match[2])) continue;
            const std::string shown = texts[match[1]][match[2]];
            for (const std::string mark : {"%s1", "%s2"}) {
                if (match[3].str().find(mark) == std::string::npos) continue;
                ++found;
                EXPECT_NE(shown.find(mark), std::string::npos) << match[1] << ", " << match[2] << " lacks " << mark;
            }
        }
    }
    EXPECT_GE(found, 2u);
}

TEST_F(LanguageFileTest, KeepsTheSentencesThatAreGiven) {
    EXPECT_EQ(
        texts["frmCommon"]["msgSpaceNotEnough"],
        "There is not enough space on drive \"%s1\"! The free space must bigger than \"%s2\" MB for this action.");
    EXPECT_EQ(texts["frmConfig"]["msglAudioQualityHelp"], "you cannot set audio quality if project is not empty.");
    EXPECT_EQ(texts["frmConfig"]["chkHideTool"],
              "Hide toolbar when recording (reappear when pointer moving to the top)");
    EXPECT_EQ(texts["frmPPT"]["msgMarkAsFinal"],
              "Please check whether this presentation is marked as final. If it is, remove Mark as Final from it!");
    EXPECT_EQ(texts["frmMsgBox"]["cmdYes"] + texts["frmMsgBox"]["cmdNo"] + texts["frmMsgBox"]["cmdOK"], "YesNoOK");
}

TEST_F(LanguageFileTest, HasNoTextWithAStrayMarkOrBlank) {
    for (const auto& [section, keys] : texts) {
        for (const auto& [key, text] : keys) {
            EXPECT_EQ(text.find("  "), std::string::npos) << section << ", " << key;
            EXPECT_EQ(text.find('\n'), std::string::npos) << section << ", " << key << ": a line break is \\n";
            for (std::size_t at = text.find('%'); at != std::string::npos; at = text.find('%', at + 1)) {
                EXPECT_TRUE(text.compare(at, 2, "%p") == 0 || text.compare(at, 2, "%s") == 0) << section << ", " << key;
            }
        }
    }
}

TEST_F(LanguageFileTest, StandsInOrder_SoThatTwoAuthorsMerge) {
    const std::string bytes = ReadAll(fs::path(places::kSource) / "install" / "res.xml");
    const modXml::Document document = modXml::Document::ParseBytes(bytes);
    std::vector<String> sections;
    for (const modXml::Node& section : document.Root().Children()) {
        sections.push_back(*section.Attribute(u"name"));
        std::vector<String> keys;
        for (const modXml::Node& entry : section.Children()) keys.push_back(*entry.Attribute(u"name"));
        EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end())) << host::ToUtf8(sections.back());
    }
    EXPECT_TRUE(std::is_sorted(sections.begin(), sections.end()));
}

class InstalledLanguageTest : public SupportTest {
  protected:
    InstalledLanguageTest() {
        world.fs.Put(u"/opt/kestrum/res.xml", ReadAll(fs::path(places::kSource) / "install" / "res.xml"));
    }
};

TEST_F(InstalledLanguageTest, IsReadByTheProgram) {
    EXPECT_EQ(modLanguage::GetResString(c, u"frmCommon", u"btnExit", u"?"), u"Exit");
    EXPECT_EQ(modLanguage::GetResString(c, u"frmPPT", u"msgDiffRatio", u""),
              u"This presentation and the screen use different aspect ratios!\r\n"
              u"Do you want to record only the region of the slide?");
    EXPECT_EQ(modLanguage::GetResString(c, u"frmMsgBox", u"frmMsgBox", u""), u"Kestrum");
}

TEST_F(InstalledLanguageTest, CaptionsEveryButtonOfAForm) {
    auto& form = forms.Get<frmMsgBox>(c);
    modLanguage::ApplyLanguage(c, form);
    EXPECT_FALSE(form.chkPrompt.Caption().empty());
    EXPECT_FALSE(form.cmdOK.Caption().empty());
    EXPECT_FALSE(form.cmdCancel.Caption().empty());
}

}  // namespace
}  // namespace kestrum
