// The command language: output, dialogs, variables, nesting, and what fails a run.
#include "support/cJSONScript.h"

#include <gtest/gtest.h>

#include <deque>
#include <functional>

#include "host/Error.h"

namespace kestrum {
namespace {

using Icon = IScriptDialogs::Icon;

/// Answers from a queue (cancelled when it is empty) and tells what was shown.
class Dialogs : public IScriptDialogs {
  public:
    void ShowMessage(const String& message, const String& caption, Icon icon) override {
        shown.push_back((icon == Icon::Exclamation ? u"! " : u"i ") + caption + u": " + message);
        if (meanwhile) std::exchange(meanwhile, nullptr)();
    }
    std::optional<String> AskLine(const String& prompt, const String& caption, const String& preset) override {
        shown.push_back(u"? " + caption + u": " + prompt + u" [" + preset + u"]");
        if (answers.empty()) return std::nullopt;
        String answer = answers.front();
        answers.pop_front();
        return answer;
    }

    std::vector<String> shown;
    std::deque<String> answers;
    /// Happens while the next message is up.
    std::function<void()> meanwhile;
};

class ScriptTest : public ::testing::Test {
  protected:
    String Eval(StringView text) { return script.Eval(text); }
    /// The number of the failure that the script ends in; 0 if it ends well.
    int FailureOf(StringView text) {
        cJSONScript own(state, dialogs);
        try {
            own.Eval(text);
        } catch (const host::Error& error) {
            return static_cast<int>(error.Number());
        }
        return 0;
    }
    /// A script of `levels` arrays inside each other with a text in the middle.
    static String Nested(std::size_t levels) { return String(levels, u'[') + u"'x'" + String(levels, u']'); }

    support::State state;
    Dialogs dialogs;
    cJSONScript script{state, dialogs};
};

TEST_F(ScriptTest, AnEmptyScript_GivesNothing) {
    EXPECT_EQ(Eval(u"[]"), u"");
    EXPECT_EQ(Eval(u"{}"), u"");
    EXPECT_TRUE(dialogs.shown.empty());
}

TEST_F(ScriptTest, TextsAndNulls_AreJoinedWithoutSeparators) {
    EXPECT_EQ(Eval(u"['a',null,'b']"), u"anullb");
}

TEST_F(ScriptTest, ATextThatDoesNotParse_IsToldOnce_AndGivesNothing) {
    EXPECT_EQ(Eval(u"['a',"), u"");
    EXPECT_EQ(Eval(u"hello"), u"");
    EXPECT_EQ(dialogs.shown,
              (std::vector<String>{u"! Parser Error: Missing ']': ['a',\r\n", u"! Parser Error: Invalid JSON"}));
}

TEST_F(ScriptTest, NumbersAndBooleansAtTheTop_FailTheRun) {
    EXPECT_EQ(FailureOf(u"[1]"), 13);
    EXPECT_EQ(FailureOf(u"['a',true]"), 13);
    EXPECT_EQ(FailureOf(u"{'return':'x'}"), 13) << "an object's entries have no numbers";
}

TEST_F(ScriptTest, NestedValues_AreWrittenAsTheyStand) {
    EXPECT_EQ(Eval(u"[[1.50,true,false,null,'x',[2,'y']]]"), u"1.5truefalsenullx2y");
}

TEST_F(ScriptTest, ExecCommand_RunsAParsedTree) {
    EXPECT_EQ(script.ExecCommand(Empty{}), u"");
    EXPECT_EQ(script.ExecCommand(0.5), u"0.5");
    EXPECT_EQ(script.ExecCommand(host::DateTime{2024, 3, 7, 9, 5, 0, 0}), u"2024/3/7 09:05:00");
    EXPECT_EQ(script.ExecCommand(OtherObject{}), u"");
    EXPECT_EQ(script.ExecCommand(std::make_shared<Array>()), u"");
    EXPECT_EQ(script.ExecCommand(JSON::ParseJson(state, u"{return:'x',Return:'y'}")), u"xy");
}

TEST_F(ScriptTest, Return_GivesItsTextUnevaluated) {
    EXPECT_EQ(Eval(u"[{'return':'x'}]"), u"x");
    EXPECT_EQ(Eval(u"[{'return':'[1]'}]"), u"[1]");
    EXPECT_EQ(Eval(u"[{'return':{'a':'b'}}]"), u"");
}

TEST_F(ScriptTest, Alert_EvaluatesMessageAndTitle) {
    EXPECT_EQ(Eval(u"[{'ALERT':{'message':['a',{'return':'b'}],'title':7}}]"), u"");
    EXPECT_EQ(Eval(u"[{'alert':{}}]"), u"");
    EXPECT_EQ(dialogs.shown, (std::vector<String>{u"i 7: ab", u"i : "}));
}

TEST_F(ScriptTest, Input_GivesTheLineEntered_OrNothingWhenCancelled) {
    dialogs.answers = {u"Anna"};
    const StringView ask = u"[{'input':{'prompt':'Name?','title':'Who','default':['A','B']}}]";
    EXPECT_EQ(Eval(ask), u"Anna");
    EXPECT_EQ(Eval(ask), u"");
    EXPECT_EQ(dialogs.shown, (std::vector<String>{u"? Who: Name? [AB]", u"? Who: Name? [AB]"}));
}

TEST_F(ScriptTest, Variables_LiveAsLongAsTheScriptObject) {
    EXPECT_EQ(Eval(u"[{'set':{'name':'v','value':'1'}},{'get':{'name':'v'}}]"), u"1");
    EXPECT_EQ(Eval(u"[{'get':{'name':'v'}}]"), u"1");
    EXPECT_EQ(Eval(u"[{'set':{'name':'v','value':[1,'2']}},{'get':{'name':'v','default':'d'}}]"), u"12");
    EXPECT_EQ(cJSONScript(state, dialogs).Eval(u"[{'get':{'name':'v'}}]"), u"");
}

TEST_F(ScriptTest, Get_OfAnUnknownOrEmptyVariable_GivesTheDefault_EvaluatedOnlyThen) {
    const StringView get = u"[{'get':{'name':'u','default':{'alert':{'message':'asked'},'return':'d'}}}]";
    EXPECT_EQ(Eval(get), u"d");
    EXPECT_EQ(Eval(get), u"d");
    EXPECT_EQ(dialogs.shown.size(), 2u);
    Eval(u"[{'set':{'name':'u','value':'here'}}]");
    EXPECT_EQ(Eval(get), u"here");
    EXPECT_EQ(dialogs.shown.size(), 2u);
    EXPECT_EQ(Eval(u"[{'get':{'name':'U'}}]"), u"") << "names compare exactly";
}

TEST_F(ScriptTest, Switch_GivesTheFirstMatch_OrItsDefault) {
    const auto choose = [&](const String& key) {
        return Eval(
            u"[{'switch':{'default':'none','case':['" + key +
            u"'],'items':[{'case':'One','return':'1'},{'case':2,'return':['two']},{'case':'one','return':'3'}]}}]");
    };
    EXPECT_EQ(choose(u"ONE"), u"1");
    EXPECT_EQ(choose(u"2"), u"two");
    EXPECT_EQ(choose(u"three"), u"none");
}

TEST_F(ScriptTest, Switch_AlwaysEvaluatesItsDefault_ButOnlyTheBranchTaken) {
    EXPECT_EQ(Eval(u"[{'switch':{'default':{'alert':{'message':'default'}},'case':'a','items':["
                   u"{'case':'b','return':{'alert':{'message':'b'}}},{'case':'a','return':'A'},"
                   u"{'case':'a','return':{'alert':{'message':'second'}}}]}}]"),
              u"A");
    EXPECT_EQ(dialogs.shown, (std::vector<String>{u"i : default"}));
}

TEST_F(ScriptTest, Switch_ACaseThatIsMissing_IsTheEmptyText) {
    EXPECT_EQ(Eval(u"[{'switch':{'items':[{'return':'r'}]}}]"), u"r");
    EXPECT_EQ(Eval(u"[{'switch':{'default':'d','items':[]}}]"), u"d");
}

TEST_F(ScriptTest, If_ComparesTexts) {
    const auto compare = [&](const String& type, const String& value1, const String& value2) {
        return Eval(u"[{'if':{'type':'" + type + u"','value1':" + value1 + u",'value2':" + value2 +
                    u",'true':'yes','false':'no'}}]");
    };
    EXPECT_EQ(compare(u"eq", u"'abc'", u"'ABC'"), u"yes");
    EXPECT_EQ(compare(u"EQ", u"'a'", u"'a'"), u"yes");
    EXPECT_EQ(compare(u"eq", u"'Ärger'", u"'ÄRGER'"), u"yes");
    EXPECT_EQ(compare(u"gte", u"'abc'", u"'ABC'"), u"yes") << "small letters have the higher codes";
    EXPECT_EQ(compare(u"lte", u"'abc'", u"'ABC'"), u"no");
    EXPECT_EQ(compare(u"lt", u"10", u"9"), u"yes") << "texts, not numbers";
    EXPECT_EQ(compare(u"gt", u"10", u"9"), u"no");
    EXPECT_EQ(compare(u"gt", u"'b'", u"'a'"), u"yes");
    EXPECT_EQ(compare(u"gt", u"'a'", u"'a'"), u"no");
    EXPECT_EQ(compare(u"lt", u"'a'", u"'a'"), u"no");
    EXPECT_EQ(compare(u"gte", u"'a'", u"'a'"), u"yes");
    EXPECT_EQ(compare(u"lte", u"'a'", u"'a'"), u"yes");
    EXPECT_EQ(compare(u"ne", u"'a'", u"'b'"), u"no");
    EXPECT_EQ(compare(u"", u"'a'", u"'a'"), u"no");
}

TEST_F(ScriptTest, If_EvaluatesOnlyTheBranchTaken) {
    EXPECT_EQ(Eval(u"[{'if':{'value1':1,'value2':1,'type':'eq','true':['t',1],'false':{'alert':{'message':'f'}}}}]"),
              u"t1");
    EXPECT_EQ(Eval(u"[{'if':{'value1':1,'value2':2,'type':'eq','true':{'alert':{'message':'t'}}}}]"), u"");
    EXPECT_TRUE(dialogs.shown.empty());
}

TEST_F(ScriptTest, AnyOtherKey_IsAMacroText) {
    EXPECT_EQ(Eval(u"[{'ask':'x'}]"), u"<%ASK(x)%>");
    EXPECT_EQ(Eval(u"[{'f':{'a':'1','b':'2'}}]"), u"<%F(1,2)%>");
    EXPECT_EQ(Eval(u"[{'f':{'a':1.5,'b':true,'c':null}},{'g':['a']},{'é':''}]"), u"<%F(1.5,true,null)%><%G()%><%É()%>");
}

TEST_F(ScriptTest, AMacro_NeverEvaluatesItsValues) {
    EXPECT_EQ(Eval(u"[{'f':{'a':'<%X(1)%>'}}]"), u"<%F(<%X(1)%>)%>");
    EXPECT_EQ(FailureOf(u"[{'f':{'a':{'return':'x'}}}]"), 13);
    EXPECT_EQ(FailureOf(u"[{'f':{'a':['x']}}]"), 13);
}

TEST_F(ScriptTest, ATextBehindAnObject_GetsThatObjectsValuesToo_InTheSameDictionaryOnly) {
    EXPECT_EQ(Eval(u"[{'f':{'a':'1','b':'2'},'g':'x'},{'h':'y'}]"), u"<%F(1,2)%><%G(x1,2)%><%H(y)%>");
    EXPECT_EQ(Eval(u"[{'alert':{'message':'m'},'g':'x'}]"), u"<%G(xm,)%>") << "the title that was read stays behind";
    EXPECT_EQ(Eval(u"[{'alert':{'message':'m','title':'t'},'alert2':'','ALERT':'again'}]"), u"<%ALERT2(m,t)%>");
    EXPECT_EQ(dialogs.shown.back(), u"i t: m") << "a command with a text reads the arguments of the object before";
}

TEST_F(ScriptTest, ACommandWithoutTheObjectItNeeds_FailsTheRun) {
    EXPECT_EQ(FailureOf(u"[{'alert':'text'}]"), 91);
    EXPECT_EQ(FailureOf(u"[{'alert':['list']}]"), 13);
    for (const StringView value : {u"1", u"true", u"null"}) {
        EXPECT_EQ(FailureOf(u"[{'x':" + String(value) + u"}]"), 13) << host::ToUtf8(value);
    }
}

TEST_F(ScriptTest, ArgumentsOfTheWrongKind_FailTheRun) {
    EXPECT_EQ(FailureOf(u"[{'switch':{'case':'a'}}]"), 13) << "no items";
    EXPECT_EQ(FailureOf(u"[{'switch':{'items':['a']}}]"), 13);
    EXPECT_EQ(FailureOf(u"[{'switch':{'items':[{'case':['a']}]}}]"), 13);
    EXPECT_EQ(FailureOf(u"[{'set':{'value':'x'}}]"), 13) << "no name";
    EXPECT_EQ(FailureOf(u"[{'set':{'name':1,'value':'x'}}]"), 13);
    EXPECT_EQ(FailureOf(u"[{'get':{'name':null}}]"), 13);
    EXPECT_EQ(FailureOf(u"[{'if':{'type':{}}}]"), 13);
}

TEST_F(ScriptTest, Nesting_EndsAfter41Levels_WithoutAMessage) {
    EXPECT_EQ(Eval(Nested(41)), u"x");
    EXPECT_EQ(Eval(Nested(42)), u"");
    EXPECT_EQ(Eval(u"['a'," + Nested(41) + u",'b']"), u"ab") << "the script goes on around it";
    EXPECT_TRUE(dialogs.shown.empty());
    EXPECT_EQ(Eval(Nested(41)), u"x") << "the level is back where it was";
}

TEST_F(ScriptTest, AFailure_LeavesTheLevelWhereItWas) {
    EXPECT_THROW(Eval(u"[[{'x':1}]]"), host::Error);  // two levels
    EXPECT_EQ(Eval(Nested(39)), u"x");
    EXPECT_EQ(Eval(Nested(40)), u"");
    for (int i = 0; i < 100; ++i) {
        try {
            Eval(u"[{'x':1}]");
        } catch (const host::Error&) {  // until the level has reached the end
        }
    }
    EXPECT_EQ(Eval(u"['top',['below']]"), u"top");
}

TEST_F(ScriptTest, AScriptRunFromItsOwnMessage_FindsTheSameVariables) {
    dialogs.meanwhile = [this] { EXPECT_EQ(Eval(u"[{'set':{'name':'v','value':'inner'}}]"), u""); };
    EXPECT_EQ(Eval(u"[{'alert':{'message':'m'}},{'get':{'name':'v'}}]"), u"inner");
}

TEST_F(ScriptTest, AnObjectThatIsItsOwnArgument_IsRunOverTheKeysItHadAtFirst) {
    auto object = std::make_shared<Dictionary>();
    object->Add(u"alert", object);
    EXPECT_EQ(script.ExecCommand(object), u"");
    EXPECT_EQ(object->keys(), (std::vector<String>{u"alert", u"message", u"title"}));
    object->item(u"alert") = Empty{};
}

}  // namespace
}  // namespace kestrum
