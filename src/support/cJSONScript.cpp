#include "support/cJSONScript.h"

#include "host/Error.h"
#include "support/DateText.h"
#include "support/LetterCase.h"
#include "support/ValueText.h"
#include "support/cStringBuilder.h"

namespace kestrum {
namespace {

using DictionaryRef = std::shared_ptr<Dictionary>;
using CollectionRef = std::shared_ptr<Collection>;

/// The deepest nesting level that is evaluated.
constexpr std::int32_t kDeepestLevel = 40;

[[noreturn]] void Mismatch(StringView what) {
    throw host::Error(host::ErrorNumber::TypeMismatch, u"cJSONScript", String(what));
}

bool IsObject(const Value& value) {
    return std::holds_alternative<DictionaryRef>(value) || std::holds_alternative<CollectionRef>(value) ||
           std::holds_alternative<OtherObject>(value);
}

/// The items of a list. An object without entries is as good as an empty list; those of another have no numbers.
std::vector<Value> Items(const Value& value) {
    if (const auto* object = std::get_if<DictionaryRef>(&value)) {
        if ((*object)->count() > 0) Mismatch(u"A list is required, not an object");
        return {};
    }
    const auto* list = std::get_if<CollectionRef>(&value);
    if (list == nullptr) Mismatch(u"A list is required");
    std::vector<Value> items;
    for (std::int32_t i = 1; i <= (*list)->Count(); ++i) items.push_back((*list)->Item(i));
    return items;
}

Dictionary& AsDictionary(const Value& value) {
    if (std::holds_alternative<Empty>(value))
        throw host::Error(host::ErrorNumber::ObjectNotSet, u"cJSONScript", u"The command has no object");
    const auto* object = std::get_if<DictionaryRef>(&value);
    if (object == nullptr) Mismatch(u"An object with names is required");
    return **object;
}

/// A value as it stands in the script, as text; containers have none.
struct Plain {
    String operator()(const Null&) const { return u"null"; }
    String operator()(bool value) const { return value ? u"true" : u"false"; }
    String operator()(const String& value) const { return value; }
    String operator()(const host::DateTime& value) const { return DateTimeText(value); }
    String operator()(const DictionaryRef&) const { Mismatch(u"An object is no text"); }
    String operator()(const CollectionRef&) const { Mismatch(u"A list is no text"); }
    String operator()(const std::shared_ptr<Array>&) const { Mismatch(u"An array is no text"); }
    String operator()(const OtherObject&) const { Mismatch(u"An object is no text"); }
    template <class Number>
    String operator()(const Number& value) const {
        return NumberText(value);
    }
};

String PlainText(const Value& value) {
    return std::visit(Plain{}, value);
}

String NameOf(const Value& value) {
    const auto* name = std::get_if<String>(&value);
    if (name == nullptr) Mismatch(u"A variable's name is a text");
    return *name;
}

/// Texts are compared, not numbers; code unit by code unit but for "eq", which ignores letter case.
bool Holds(StringView type, const String& value1, const String& value2) {
    if (type == u"eq") return LowerLetters(value1) == LowerLetters(value2);
    if (type == u"gt") return value1 > value2;
    if (type == u"lt") return value1 < value2;
    if (type == u"gte") return value1 >= value2;
    if (type == u"lte") return value1 <= value2;
    return false;
}

}  // namespace

/// What a value adds to the output; a visitor of Value.
struct cJSONScript::Output {
    cJSONScript& script;

    String operator()(const DictionaryRef& value) { return script.RunObject(*value); }
    String operator()(const CollectionRef& value) {
        cStringBuilder out;
        for (const Value& item : Items(value)) out.Append(script.ExecCommand(item));
        return out.toString();
    }
    String operator()(const std::shared_ptr<Array>&) { return {}; }
    String operator()(const OtherObject&) { return {}; }
    template <class Other>
    String operator()(const Other& value) {
        return Plain{}(value);
    }
};

String cJSONScript::Eval(StringView script) {
    const Value parsed = JSON::ParseJson(m_state, script);
    if (const String errors = JSON::GetJsonErrors(m_state); !errors.empty()) {
        m_dialogs.ShowMessage(errors, u"Parser Error", IScriptDialogs::Icon::Exclamation);
        return {};
    }
    cStringBuilder out;
    for (const Value& item : Items(parsed)) {
        const bool isText = std::holds_alternative<String>(item) || std::holds_alternative<Null>(item);
        if (!isText && !IsObject(item)) Mismatch(u"An item of a script is a text or an object");
        out.Append(isText ? PlainText(item) : ExecCommand(item));
    }
    return out.toString();
}

String cJSONScript::ExecCommand(const Value& value) {
    if (m_level > kDeepestLevel) return {};  // without a message: the script goes on around it
    ++m_level;
    String out = std::visit(Output{*this}, value);
    --m_level;
    return out;
}

String cJSONScript::RunObject(Dictionary& object) {
    const std::vector<String> keys = object.keys();  // a command may add to the object that it stands in
    cStringBuilder out;
    Call call;
    for (const String& key : keys) {
        const Value value = object.item(key);
        call.key = key;
        if (const auto* text = std::get_if<String>(&value)) {
            call.text = *text;
        } else {
            if (!IsObject(value)) Mismatch(u"A command's value is a text or an object");
            call.text.clear();
            call.object = value;
        }
        out.Append(Run(call));
    }
    return out.toString();
}

String cJSONScript::Run(const Call& call) {
    static constexpr Command kCommands[] = {
        {u"alert", &cJSONScript::Alert},   {u"input", &cJSONScript::Input}, {u"switch", &cJSONScript::Switch},
        {u"set", &cJSONScript::Set},       {u"get", &cJSONScript::Get},     {u"if", &cJSONScript::If},
        {u"return", &cJSONScript::Return},
    };
    const String name = LowerLetters(call.key);
    for (const Command& command : kCommands)
        if (name == command.name) return (this->*command.run)(call);
    return Macro(call);
}

Value cJSONScript::Argument(const Call& call, StringView name) {
    return AsDictionary(call.object).item(name);
}

String cJSONScript::Alert(const Call& call) {
    const String message = Evaluated(call, u"message");
    const String title = Evaluated(call, u"title");
    m_dialogs.ShowMessage(message, title, IScriptDialogs::Icon::Information);
    return {};
}

String cJSONScript::Input(const Call& call) {
    const String prompt = Evaluated(call, u"prompt");
    const String title = Evaluated(call, u"title");
    const String preset = Evaluated(call, u"default");
    return m_dialogs.AskLine(prompt, title, preset).value_or(String());
}

String cJSONScript::Switch(const Call& call) {
    const String fallback = Evaluated(call, u"default");
    const String wanted = LowerLetters(Evaluated(call, u"case"));
    for (const Value& item : Items(Argument(call, u"items"))) {
        Dictionary& branch = AsDictionary(item);
        if (LowerLetters(PlainText(branch.item(u"case"))) == wanted) return ExecCommand(Value(branch.item(u"return")));
    }
    return fallback;
}

String cJSONScript::Set(const Call& call) {
    const String name = NameOf(Argument(call, u"name"));
    const String value = Evaluated(call, u"value");
    m_variables.item(name) = value;
    return {};
}

String cJSONScript::Get(const Call& call) {
    const Value variable = m_variables.item(NameOf(Argument(call, u"name")));
    const String content = ExecCommand(variable);
    return content.empty() ? Evaluated(call, u"default") : content;
}

String cJSONScript::If(const Call& call) {
    const String value1 = Evaluated(call, u"value1");
    const String value2 = Evaluated(call, u"value2");
    const String type = LowerLetters(PlainText(Argument(call, u"type")));
    return Evaluated(call, Holds(type, value1, value2) ? u"true" : u"false");
}

String cJSONScript::Return(const Call& call) {
    return call.text;
}

/// A text that stands in front of an earlier key's object gets that object's values too.
String cJSONScript::Macro(const Call& call) {
    cStringBuilder values;
    values.Append(call.text);
    if (const auto* object = std::get_if<DictionaryRef>(&call.object)) {
        for (const String& key : (*object)->keys()) {
            if (&key != &(*object)->keys().front()) values.Append(u",");
            values.Append(PlainText((*object)->item(key)));
        }
    }
    return u"<%" + UpperLetters(call.key) + u"(" + values.toString() + u")%>";
}

}  // namespace kestrum
