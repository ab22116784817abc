// Texts, times and ticks.
#include "support/modGlobal.h"

#include "SupportWorld.h"

namespace kestrum {
namespace {

using namespace modGlobal;

class modGlobalTest : public SupportTest {};

TEST_F(modGlobalTest, HexText_HoldsEachByteLowByteFirst) {
    EXPECT_EQ(EncodeHexText(u"A"), u"&H4100");
    EXPECT_EQ(EncodeHexText(u"講\n"), u"&H1B8B0A00");
    EXPECT_EQ(EncodeHexText(u""), u"");
    EXPECT_EQ(DecodeHexText(u"&H1B8B0A00"), u"講\n");
    EXPECT_EQ(DecodeHexText(EncodeHexText(u"Anna \U0001F393")), u"Anna \U0001F393");
}

TEST_F(modGlobalTest, DecodeHexText_OfAnythingElse_IsEmpty) {
    EXPECT_EQ(DecodeHexText(u"Display 1"), u"");
    EXPECT_EQ(DecodeHexText(u"&H"), u"");
    EXPECT_EQ(DecodeHexText(u""), u"");
    EXPECT_EQ(DecodeHexText(u"&h4100"), u"");
}

TEST_F(modGlobalTest, StripControlChars_TakesTabsOfBothKinds) {
    EXPECT_EQ(StripControlChars(u"a\tb\vc\r\nd"), u"abc\r\nd");
}

TEST_F(modGlobalTest, StripUrlScheme_TakesHttpAnywhereAndHttpsInFront) {
    EXPECT_EQ(StripUrlScheme(u"  http://a.org/x "), u"a.org/x");
    EXPECT_EQ(StripUrlScheme(u"a.org/?u=http://b.org"), u"a.org/?u=b.org");
    EXPECT_EQ(StripUrlScheme(u"https://a.org"), u"a.org");
    EXPECT_EQ(StripUrlScheme(u"a.org/https://b"), u"a.org/https://b");
}

TEST_F(modGlobalTest, GetUrlHost_EndsAtTheFirstSlash) {
    EXPECT_EQ(GetUrlHost(u"https://a.org:8080/x/y"), u"a.org:8080");
    EXPECT_EQ(GetUrlHost(u"a.org"), u"a.org");
    EXPECT_EQ(GetUrlHost(u""), u"");
}

TEST_F(modGlobalTest, HtmlEscape_GoesThroughItsStepsInOrder) {
    EXPECT_EQ(HtmlEscape(u"<a href=\"x\">Tom & 'Eve'</a>"),
              u"&lt;a href=&quot;x&quot;&gt;Tom &amp; &#039;Eve&#039;&lt;/a&gt;");
    EXPECT_EQ(HtmlEscape(u"a  b"), u"a &nbsp;b");
    EXPECT_EQ(HtmlEscape(u"one\r\ntwo"), u"one<br>two");
    EXPECT_EQ(HtmlEscape(u"a &eq b"), u"a = b");
}

TEST_F(modGlobalTest, Split_KeepsEmptyPieces) {
    EXPECT_EQ(Split(u"a;;b", u";"), (std::vector<String>{u"a", u"", u"b"}));
    EXPECT_EQ(Split(u"", u";"), std::vector<String>{u""});
    EXPECT_EQ(Split(u"a_&&_b", u"_&&_"), (std::vector<String>{u"a", u"b"}));
}

TEST_F(modGlobalTest, SecondsToText_PadsEachPart) {
    EXPECT_EQ(SecondsToText(0), u"00:00:00");
    EXPECT_EQ(SecondsToText(65), u"00:01:05");
    EXPECT_EQ(SecondsToText(3600 * 12 + 34 * 60 + 56), u"12:34:56");
}

TEST_F(modGlobalTest, PositiveTick_LosesItsSignOnly) {
    world.loop.SetFirstTick(-2147483600);
    EXPECT_EQ(GetPositiveTick(world.loop), 48);
    world.loop.SetFirstTick(4711);
    EXPECT_EQ(GetPositiveTick(world.loop), 4711);
}

TEST_F(modGlobalTest, TickDiff_CrossesTheWrap) {
    EXPECT_EQ(TickDiff(100, 150), 50);
    EXPECT_EQ(TickDiff(150, 150), 0);
    EXPECT_EQ(TickDiff(2147483600, 100), 147);
    EXPECT_EQ(TickDiff(1, 0), 2147483646);
}

TEST_F(modGlobalTest, TickDiff_ThatDoesNotFit_Overflows) {
    EXPECT_THROW(TickDiff(-5, 2147483647), host::Error);
}

TEST_F(modGlobalTest, Token_IsFreshForOneMinute) {
    world.loop.SetFirstTick(1000000);
    world.settings.Set(u"tokens\\PowerPoint", u"touchtime", u"940001");
    EXPECT_TRUE(IsTokenFresh(c, u"PowerPoint"));
    EXPECT_FALSE(IsTokenFresh(c, u"Larkspin"));
    world.loop.Sleep(1);
    EXPECT_FALSE(IsTokenFresh(c, u"PowerPoint"));
}

TEST_F(modGlobalTest, Token_WrittenBeforeTheWrap_IsFresh) {
    world.loop.SetFirstTick(100);
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", u"2147483600");
    EXPECT_TRUE(IsTokenFresh(c, u"Larkspin"));
}

TEST_F(modGlobalTest, Token_OfZero_IsStaleUnlessTheSystemHasJustStarted) {
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", u"0");
    world.loop.SetFirstTick(60000);
    EXPECT_FALSE(IsTokenFresh(c, u"Larkspin"));
    world.loop.SetFirstTick(59999);
    EXPECT_TRUE(IsTokenFresh(c, u"Larkspin"));
}

TEST_F(modGlobalTest, Token_ThatIsNoNumber_Raises) {
    world.settings.Set(u"tokens\\Larkspin", u"touchtime", u"soon");
    EXPECT_THROW(IsTokenFresh(c, u"Larkspin"), host::Error);
}

TEST_F(modGlobalTest, OsVersion_IsTheSystemsCode) {
    world.shell.osVersionCode = 61;
    EXPECT_EQ(GetOsVersion(c), 61);
}

}  // namespace
}  // namespace kestrum
