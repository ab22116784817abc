#!/usr/bin/env python3
"""Writes titles.pptx, the deck of the title tests: each slide another way to have a title, or none.

    python3 tests/impress/make_titles.py TARGET

Built with the parts of samples/make_lecture.py. SlideTitles_test.cpp has what each slide is called.
"""

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "samples"))
import make_lecture as deck  # noqa: E402

INK, WHITE = deck.INK, deck.WHITE
TITLE_ONLY, BLANK = 3, 4
TOP, LOW = (54, 30, 800, 50), (54, 300, 800, 60)
INSET_TOP = 3.5


def words(text, size):
    return [deck.paragraph(deck.run(text, size, INK))]


def blank():
    return deck.Slide(BLANK, WHITE)


def filled():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.text((54, 10, 800, 30), words("A larger text above it", 60))
    slide.title("The title itself")
    return slide


def empty_placeholder():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.placeholder("title", ["<a:p><a:endParaRPr lang=\"en-GB\"/></a:p>"], deck.TITLE_BOX)
    slide.text(TOP, words("A box of 24 points", 24))
    return slide


def largest():
    slide = blank()
    slide.text(LOW, words("Large but low", 60))
    slide.text(TOP, words("High but small", 12))
    slide.text((54, 60, 800, 40), words("The first that is both", 28))
    slide.text((54, 20, 800, 40), words("A larger one behind it", 44))
    return slide


def grouped():
    slide = blank()
    slide.text(TOP, words("Inside a group", 40))
    inner = slide.shapes.pop()
    slide.shapes.append(
        '<p:grpSp><p:nvGrpSpPr><p:cNvPr id="90" name="Group"/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr><a:xfrm>'
        '<a:off x="685800" y="381000"/><a:ext cx="10160000" cy="635000"/><a:chOff x="685800" y="381000"/>'
        f'<a:chExt cx="10160000" cy="635000"/></a:xfrm></p:grpSpPr>{inner}</p:grpSp>')
    slide.text((54, 70, 800, 30), words("Beside the group", 22))
    return slide


def several_sizes():
    slide = blank()
    slide.text(TOP, [deck.paragraph(deck.run("small ", 14, INK) + deck.run("then large", 48, INK))])
    slide.text((54, 60, 800, 40), [deck.paragraph(deck.run("Large ", 32, INK) + deck.run("then small", 10, INK))])
    return slide


def shrunk():
    slide = blank()
    slide.text(TOP, words("Set in 28 points, shrunk to fit", 28))
    slide.shapes[-1] = slide.shapes[-1].replace("<a:normAutofit/>", '<a:normAutofit fontScale="50000"/>')
    slide.text((54, 60, 800, 40), words("Shown as it is set", 24))
    return slide


def breaks():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    lines = deck.run("First line", 36, INK) + "<a:br/>" + deck.run("after a break", 36, INK)
    slide.placeholder("title", [deck.paragraph(lines), *words("Second paragraph", 36)], deck.TITLE_BOX)
    return slide


def very_long():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.title("Long title. " * 500)
    return slide


def arabic():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.title("كيف يعمل الإطار المفتاحي", language="ar-SA")
    return slide


def hebrew_box():
    slide = blank()
    slide.text(TOP, words("איך נמצאת שקופית", 30))
    return slide


def emoji():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.title("🎓 Graduation 👩‍🏫 día")
    return slide


def emoji_box():
    slide = blank()
    slide.text(TOP, words("🎬 Lights", 30))
    return slide


def without_text():
    slide = blank()
    slide.shape("rect", TOP, deck.TEAL)
    return slide


def exactly_twenty():
    slide = blank()
    slide.text(TOP, words("Exactly twenty points", 20))
    return slide


def over_twenty():
    slide = blank()
    slide.text(TOP, words("Half a point more", 20.5))
    return slide


def exactly_a_fifth():
    slide = blank()
    slide.text((54, deck.HEIGHT / 5 - INSET_TOP, 800, 40), words("Exactly a fifth", 30))
    return slide


def just_above_a_fifth():
    slide = blank()
    slide.text((54, deck.HEIGHT / 5 - INSET_TOP - 1, 800, 40), words("One point higher", 30))
    return slide


def like_the_fallback():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.text((54, 10, 800, 30), words("What it is about", 26))
    slide.title("Slide 18")
    return slide


def empty_line_first():
    slide = blank()
    slide.text(TOP, ['<a:p><a:endParaRPr lang="en-GB" sz="800"/></a:p>', *words("Behind an empty line", 30)])
    return slide


def chinese_box():
    slide = blank()
    slide.text(TOP, words("关键帧 and more", 30))
    return slide


def of_blanks():
    slide = deck.Slide(TITLE_ONLY, WHITE)
    slide.title("   ")
    slide.text((54, 10, 800, 30), words("Not looked for", 26))
    return slide


deck.SLIDES = [filled, empty_placeholder, largest, grouped, several_sizes, shrunk, breaks, very_long, arabic, hebrew_box,
               emoji, emoji_box, without_text, exactly_twenty, over_twenty, exactly_a_fifth, just_above_a_fifth,
               like_the_fallback, empty_line_first, chinese_box, of_blanks]

if __name__ == "__main__":
    deck.main()
