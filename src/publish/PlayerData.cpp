#include "publish/PlayerData.h"

#include <memory>
#include <utility>

#include "project/CTime.h"
#include "support/JSON.h"
#include "support/Numbers.h"
#include "support/modLanguage.h"

namespace kestrum::publish {

namespace {

using DictionaryRef = std::shared_ptr<Dictionary>;
using CollectionRef = std::shared_ptr<Collection>;

constexpr StringView kIndentMark = u"...";

DictionaryRef NewDictionary(support::State& state) {
    return std::get<DictionaryRef>(JSON::ParseJson(state, u"{}"));
}

Value Author(const CProjectFile& project, support::State& state) {
    auto author = NewDictionary(state);
    author->Add(u"name", project.author);
    author->Add(u"photo", String(u"author.png"));
    return author;
}

Value Source(support::State& state, std::int32_t width, std::int32_t height) {
    auto size = NewDictionary(state);
    size->Add(u"width", width);
    size->Add(u"height", height);
    auto source = NewDictionary(state);
    source->Add(u"src", String(u"media.mp4"));
    source->Add(u"size", size);
    auto sources = std::make_shared<Collection>();
    sources->Add(source);
    return sources;
}

Value Entry(CProjectFile& project, std::int32_t number, support::State& state) {
    const bool indented = project.index.Item(number).title.rfind(kIndentMark, 0) == 0;
    if (indented) project.SetTitle(number, project.index.Item(number).title.substr(kIndentMark.size()));
    const CIndexItem& item = project.index.Item(number);
    auto entry = NewDictionary(state);
    entry->Add(u"id", ToText(number));
    entry->Add(u"time", item.pos);
    entry->Add(u"title", item.title);
    entry->Add(u"indent", String(indented ? u"1" : u"0"));
    entry->Add(u"sn", ToText(number));
    return entry;
}

Value Index(CProjectFile& project, support::State& state) {
    auto index = std::make_shared<Collection>();
    for (std::int32_t number = 1; number <= project.index.Count(); ++number) index->Add(Entry(project, number, state));
    return index;
}

}  // namespace

String PlayerConfig(support::State& state, CProjectFile& project, std::int32_t width, std::int32_t height) {
    auto config = NewDictionary(state);
    config->Add(u"title", project.title);
    config->Add(u"poster", String(u"cover.jpg"));
    config->Add(u"author", Author(project, state));
    config->Add(u"width", width);
    config->Add(u"height", height);
    config->Add(u"hideSN", std::int32_t{project.indexType == u"OL" ? 0 : 1});
    config->Add(u"duration", CTime::GetString(CTime::GetSecond(project.durationText), u"sec"));
    config->Add(u"src", Source(state, width, height));
    config->Add(u"index", Index(project, state));
    return u"var config = " + JSON::ToJsonText(config);
}

String QuizConfig(const support::Context& c) {
    static constexpr std::pair<StringView, StringView> kTexts[] = {
        {u"submit", u"Submit"},      {u"continue", u"Continue"},        {u"bypass", u"Skip"},
        {u"right", u"Right"},        {u"choose", u"Choose an answer"},  {u"hide", u"Hide"},
        {u"quizResizer", u"Resize"}, {u"wrongAnswer", u"Wrong answer"}, {u"showAnswer", u"Show answer"}};
    auto texts = NewDictionary(c.support);
    for (const auto& [key, fallback] : kTexts)
        texts->Add(String(key), modLanguage::GetResString(c, u"frmExportMp4", u"quiz_" + String(key), fallback));
    return u"var quiz = [];var quizLang = " + JSON::ToJsonText(texts) + u";";
}

}  // namespace kestrum::publish
