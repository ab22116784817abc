#!/usr/bin/env python3
"""Writes lecture.pptx, the sample lecture of the tests and of the first run.

The deck is a real small lecture, "How a Key Frame Works", and holds on purpose one of each thing that a recorder must
cope with: a slide without a title placeholder, Chinese text, a table, builds on click, a hidden slide, and filled
document properties. No two slides look alike, so that a frame of a video can be matched to its slide.

Plain standard library. The same bytes come out on every machine: nothing is compressed, dates are fixed.

    python3 samples/make_lecture.py [TARGET]      (default: lecture.pptx beside this file)
"""

import sys
import zipfile
from pathlib import Path
from xml.sax.saxutils import escape

EMU = 12700  # per point
WIDTH, HEIGHT = 960, 540  # points, 16:9

INK, PAPER, WHITE, NIGHT = "1B2A41", "F7F4EC", "FFFFFF", "101D33"
TEAL, AMBER, RED, BLUE, GREY = "1F8A7D", "E9A23B", "C8414F", "3F6CB0", "6B7688"
PALE_TEAL, PALE_AMBER, PALE_BLUE = "DDF0EC", "FBEBD0", "E2EBF8"

NAMESPACES = (
    'xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" '
    'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships" '
    'xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main"'
)
XML = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'
REL = "http://schemas.openxmlformats.org/officeDocument/2006/relationships/"

PROPERTIES = {
    "title": "How a Key Frame Works",
    "subject": "Video compression for lecturers",
    "author": "Hanna Lindqvist",
    "manager": "Prof. Tomás Ferreira",
    "company": "Institute for Applied Teaching",
    "category": "Lecture",
    "keywords": "video, seeking, compression",
    "comments": "Sample lecture: why seeking jumps, and what a key frame costs.",
}


# ---------------------------------------------------------------------------------------------- shapes

def fill(colour):
    return f'<a:solidFill><a:srgbClr val="{colour}"/></a:solidFill>' if colour else "<a:noFill/>"


def run(text, size, colour, bold=False, language="en-GB"):
    weight = ' b="1"' if bold else ""
    return (
        f'<a:r><a:rPr lang="{language}" sz="{int(size * 100)}"{weight} dirty="0">{fill(colour)}</a:rPr>'
        f"<a:t>{escape(text)}</a:t></a:r>"
    )


def paragraph(runs, align="l", bullet=None, after=0, indent=22):
    if bullet:
        marker = (
            f'<a:spcAft><a:spcPts val="{after * 100}"/></a:spcAft>'
            f'<a:buClr><a:srgbClr val="{bullet}"/></a:buClr><a:buFont typeface="Arial"/><a:buChar char="&#8226;"/>'
        )
        margins = f' marL="{indent * EMU}" indent="-{indent * EMU}"'
    else:
        marker = f'<a:spcAft><a:spcPts val="{after * 100}"/></a:spcAft><a:buNone/>'
        margins = ' marL="0" indent="0"'
    return f'<a:p><a:pPr algn="{align}"{margins}>{marker}</a:pPr>{runs}</a:p>'


def body(paragraphs, anchor="t", inset=7):
    edge = inset * EMU
    return (
        f'<p:txBody><a:bodyPr wrap="square" lIns="{edge}" rIns="{edge}" tIns="{edge // 2}" bIns="{edge // 2}" '
        f'anchor="{anchor}"><a:normAutofit/></a:bodyPr><a:lstStyle/>{"".join(paragraphs)}</p:txBody>'
    )


EMPTY_TEXT = "<p:txBody><a:bodyPr/><a:lstStyle/><a:p><a:endParaRPr lang=\"en-GB\"/></a:p></p:txBody>"


def frame(x, y, w, h):
    return (
        f'<a:xfrm><a:off x="{int(x * EMU)}" y="{int(y * EMU)}"/>'
        f'<a:ext cx="{int(w * EMU)}" cy="{int(h * EMU)}"/></a:xfrm>'
    )


class Slide:
    """One slide under construction; shapes are numbered in drawing order."""

    def __init__(self, layout, background, hidden=False):
        self.layout, self.background, self.hidden = layout, background, hidden
        self.shapes, self.next_id, self.timing = [], 2, ""

    def _id(self):
        self.next_id += 1
        return self.next_id - 1

    def placeholder(self, kind, paragraphs, box, anchor="t", index=None):
        number = self._id()
        idx = f' idx="{index}"' if index else ""
        names = {"title": "Title", "ctrTitle": "Title", "subTitle": "Subtitle", "body": "Content"}
        self.shapes.append(
            f'<p:sp><p:nvSpPr><p:cNvPr id="{number}" name="{names[kind]} {number}"/><p:cNvSpPr>'
            f'<a:spLocks noGrp="1"/></p:cNvSpPr><p:nvPr><p:ph type="{kind}"{idx}/></p:nvPr></p:nvSpPr>'
            f"<p:spPr>{frame(*box)}</p:spPr>{body(paragraphs, anchor)}</p:sp>"
        )
        return number

    def title(self, text, colour=INK, size=36, language="en-GB", box=(54, 34, 852, 64)):
        return self.placeholder("title", [paragraph(run(text, size, colour, True, language))], box, "ctr")

    def shape(self, geometry, box, colour, line=None, paragraphs=None, anchor="ctr", width=1.5, name="Shape", corner=None):
        number = self._id()
        guides = f'<a:gd name="adj" fmla="val {corner}"/>' if corner else ""
        edge = f'<a:ln w="{int(width * EMU)}">{fill(line)}</a:ln>' if line else "<a:ln><a:noFill/></a:ln>"
        self.shapes.append(
            f'<p:sp><p:nvSpPr><p:cNvPr id="{number}" name="{name} {number}"/><p:cNvSpPr/><p:nvPr/></p:nvSpPr>'
            f'<p:spPr>{frame(*box)}<a:prstGeom prst="{geometry}"><a:avLst>{guides}</a:avLst></a:prstGeom>'
            f"{fill(colour)}{edge}</p:spPr>"
            f"{body(paragraphs, anchor) if paragraphs else EMPTY_TEXT}</p:sp>"
        )
        return number

    def text(self, box, paragraphs, anchor="t"):
        number = self._id()
        self.shapes.append(
            f'<p:sp><p:nvSpPr><p:cNvPr id="{number}" name="Text {number}"/><p:cNvSpPr txBox="1"/><p:nvPr/></p:nvSpPr>'
            f'<p:spPr>{frame(*box)}<a:prstGeom prst="rect"><a:avLst/></a:prstGeom><a:noFill/></p:spPr>'
            f"{body(paragraphs, anchor)}</p:sp>"
        )
        return number

    def xml(self):
        show = ' show="0"' if self.hidden else ""
        return (
            f"{XML}<p:sld {NAMESPACES}{show}><p:cSld><p:bg><p:bgPr>{fill(self.background)}<a:effectLst/></p:bgPr></p:bg>"
            f"{tree(''.join(self.shapes))}</p:cSld><p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr>{self.timing}</p:sld>"
        )


def tree(shapes):
    return (
        '<p:spTree><p:nvGrpSpPr><p:cNvPr id="1" name=""/><p:cNvGrpSpPr/><p:nvPr/></p:nvGrpSpPr><p:grpSpPr><a:xfrm>'
        '<a:off x="0" y="0"/><a:ext cx="0" cy="0"/><a:chOff x="0" y="0"/><a:chExt cx="0" cy="0"/></a:xfrm></p:grpSpPr>'
        f"{shapes}</p:spTree>"
    )


def film_strip(slide, top, kinds, left=54, width=852, height=64, labels=True):
    """A row of frames: "I" is a key frame, "P" a delta frame."""
    gap = 8
    each = (width - gap * (len(kinds) - 1)) / len(kinds)
    for number, kind in enumerate(kinds):
        box = (left + number * (each + gap), top, each, height)
        key = kind == "I"
        label = [paragraph(run(kind, 20, NIGHT if key else WHITE, True), "ctr")] if labels else None
        slide.shape("roundRect", box, AMBER if key else BLUE, None, label, name="Frame")


# ---------------------------------------------------------------------------------------------- the slides

def opening():
    s = Slide(1, NIGHT)
    s.shape("rect", (0, 0, 18, HEIGHT), AMBER, name="Band")
    s.placeholder("ctrTitle", [paragraph(run("How a Key Frame Works", 54, WHITE, True))], (72, 128, 820, 84), "b")
    lines = [
        paragraph(run("Why a jump in a video lands where it lands", 26, "BFD0EA"), after=8),
        paragraph(run("Hanna Lindqvist, Institute for Applied Teaching", 18, AMBER)),
    ]
    s.placeholder("subTitle", lines, (72, 220, 820, 90), "t", 1)
    film_strip(s, 410, "IPPPPPIPPPPP", left=79, width=813, height=58)
    return s


def repetition():
    s = Slide(2, PAPER)
    s.shape("rect", (0, 0, WIDTH, 14), TEAL, name="Band")
    s.title("A video is mostly repetition")
    points = [
        "25 pictures a second, nearly all alike",
        "A lecture slide stands still for a minute: 1500 equal pictures",
        "Storing each one whole wastes almost everything",
        "So store one picture, and then only the changes",
    ]
    s.placeholder("body", [paragraph(run(p, 24, INK), bullet=TEAL, after=14) for p in points], (54, 122, 490, 360), "t", 1)
    for number, (x, note) in enumerate([(592, "this picture"), (592, "a little later")]):
        y = 128 + number * 184
        s.shape("rect", (x, y, 296, 142), WHITE, INK, width=2, name="Picture")
        s.shape("rect", (x, y + 106, 296, 36), PALE_TEAL, name="Ground")
        s.shape("ellipse", (x + 60 + 96 * number, y + 66, 52, 52), RED, name="Ball")
        s.shape("triangle", (x + 206, y + 38, 66, 70), TEAL, name="Tree")
        s.text((x, y + 146, 296, 26), [paragraph(run(note, 16, GREY), "ctr")])
    return s


def seeking():
    s = Slide(4, "FFFFFF")
    s.shape("rect", (0, 0, WIDTH, 104), BLUE, name="Band")
    s.text((54, 26, 852, 56), [paragraph(run("Seeking starts at the key frame before", 34, WHITE, True))], "ctr")
    film_strip(s, 176, "IPPPPIPPPP", height=78)
    each = (852 - 8 * 9) / 10 + 8
    wanted = 54 + 8 * each + each / 2 - 4
    s.shape("downArrow", (wanted - 17, 120, 34, 48), RED, name="Wanted")
    s.text((wanted - 300, 126, 270, 34), [paragraph(run("you click here", 20, RED, True), "r")], "ctr")
    start = 54 + 5 * each
    s.shape("rightArrow", (start, 268, wanted - start + 34, 52), PALE_AMBER, AMBER,
            [paragraph(run("decoded, but not shown", 16, INK), "ctr")], name="Decode")
    points = [
        "A delta frame makes sense only after all frames back to its key frame",
        "Ten seconds between key frames: up to ten seconds of decoding per jump",
        "Put a key frame at every slide change, and each jump to a slide is instant",
    ]
    s.text((54, 352, 852, 160), [paragraph(run(p, 22, INK), bullet=BLUE, after=12) for p in points])
    return s


def chinese():
    s = Slide(2, "FFF3E6")
    s.shape("rect", (0, 0, 300, HEIGHT), RED, name="Panel")
    s.shape("ellipse", (54, 172, 192, 192), "D9636F", name="Seal")
    s.text((54, 172, 192, 192), [paragraph(run("帧", 110, WHITE, True, "zh-CN"), "ctr")], "ctr")
    s.title("关键帧是什么？", RED, 40, "zh-CN", (340, 54, 580, 70))
    points = ["关键帧是一幅完整的画面", "其余的帧只记录变化", "跳转总是从关键帧开始", "换幻灯片时应插入关键帧"]
    lines = [paragraph(run(p, 28, INK, language="zh-CN"), bullet=RED, after=18) for p in points]
    s.placeholder("body", lines, (340, 160, 580, 320), "t", 1)
    return s


def backup():
    s = Slide(2, "ECECEC", hidden=True)
    s.title("Backup: why not key frames only?", GREY)
    points = ["Each picture is then compressed by itself, as in a folder of photographs",
              "Seeking is perfect, and the file is many times larger", "Editing systems do this; players do not need it"]
    s.placeholder("body", [paragraph(run(p, 24, INK), bullet=GREY, after=14) for p in points], (54, 122, 852, 260), "t", 1)
    film_strip(s, 412, "IIIIIIIIIIII")
    return s


TABLE = [
    ("Key frame every", "Key frames", "One minute takes"),
    ("picture", "1500", "45.6 MB"),
    ("second", "60", "3.3 MB"),
    ("10 seconds", "6", "0.43 MB"),
    ("slide change", "1", "0.17 MB"),
]


def table():
    s = Slide(3, WHITE)
    s.shape("rect", (0, HEIGHT - 14, WIDTH, 14), AMBER, name="Band")
    s.title("What a key frame costs")
    widths = [372, 240, 240]
    cells = []
    for number, row in enumerate(TABLE):
        line = ""
        for column, text in enumerate(row):
            head = number == 0
            colour = INK if head else (PALE_AMBER if number % 2 == 0 else WHITE)
            align = "l" if column == 0 else "r"
            border = "".join(f'<a:{side} w="6350">{fill("D8C9A8")}</a:{side}>' for side in ("lnT", "lnB"))
            content = paragraph(run(text, 22, WHITE if head else INK, head), align)
            line += (
                f'<a:tc><a:txBody><a:bodyPr/><a:lstStyle/>{content}</a:txBody><a:tcPr marL="152400" marR="152400" '
                f'anchor="ctr">{border}{fill(colour)}</a:tcPr></a:tc>'
            )
        cells.append(f'<a:tr h="{56 * EMU}">{line}</a:tr>')
    grid = "".join(f'<a:gridCol w="{w * EMU}"/>' for w in widths)
    number = s._id()
    xfrm = frame(54, 126, sum(widths), 56 * len(TABLE)).replace("a:xfrm", "p:xfrm")
    s.shapes.append(
        f'<p:graphicFrame><p:nvGraphicFramePr><p:cNvPr id="{number}" name="Table {number}"/><p:cNvGraphicFramePr>'
        f'<a:graphicFrameLocks noGrp="1"/></p:cNvGraphicFramePr><p:nvPr/></p:nvGraphicFramePr>{xfrm}<a:graphic>'
        '<a:graphicData uri="http://schemas.openxmlformats.org/drawingml/2006/table"><a:tbl><a:tblPr firstRow="1"/>'
        f'<a:tblGrid>{grid}</a:tblGrid>{"".join(cells)}</a:tbl></a:graphicData></a:graphic></p:graphicFrame>'
    )
    note = "Measured: a slide of this lecture, 1920 × 1080, one minute at 25 pictures a second, H.264."
    s.text((54, 452, 852, 40), [paragraph(run(note, 16, GREY))])
    return s


def steps():
    s = Slide(3, PALE_BLUE)
    s.title("How a player finds your slide")
    texts = [("1", "Look up", "The index says: this slide begins at 04:10.", TEAL),
             ("2", "Decode", "The player begins at the key frame there.", BLUE),
             ("3", "Show", "The first picture is already the right one.", RED)]
    numbers = []
    for place, (digit, head, text, colour) in enumerate(texts):
        lines = [paragraph(run(digit, 66, WHITE, True), "ctr", after=6), paragraph(run(head, 30, WHITE, True), "ctr", after=14),
                 paragraph(run(text, 22, WHITE), "ctr")]
        numbers.append(s.shape("roundRect", (54 + place * 292, 138, 268, 318), colour, None, lines, name="Step", corner=7000))
    s.timing = click_builds(numbers)
    return s


def click_builds(shapes):
    """Each shape appears at one click."""
    clicks, number = "", 3
    for shape in shapes:
        clicks += (
            f'<p:par><p:cTn id="{number}" fill="hold"><p:stCondLst><p:cond delay="indefinite"/></p:stCondLst>'
            f'<p:childTnLst><p:par><p:cTn id="{number + 1}" fill="hold"><p:stCondLst><p:cond delay="0"/></p:stCondLst>'
            f'<p:childTnLst><p:par><p:cTn id="{number + 2}" presetID="1" presetClass="entr" presetSubtype="0" '
            'fill="hold" grpId="0" nodeType="clickEffect"><p:stCondLst><p:cond delay="0"/></p:stCondLst><p:childTnLst>'
            f'<p:set><p:cBhvr><p:cTn id="{number + 3}" dur="1" fill="hold"><p:stCondLst><p:cond delay="0"/>'
            f'</p:stCondLst></p:cTn><p:tgtEl><p:spTgt spid="{shape}"/></p:tgtEl><p:attrNameLst><p:attrName>'
            'style.visibility</p:attrName></p:attrNameLst></p:cBhvr><p:to><p:strVal val="visible"/></p:to></p:set>'
            "</p:childTnLst></p:cTn></p:par></p:childTnLst></p:cTn></p:par></p:childTnLst></p:cTn></p:par>"
        )
        number += 4
    builds = "".join(f'<p:bldP spid="{shape}" grpId="0" animBg="1"/>' for shape in shapes)
    return (
        '<p:timing><p:tnLst><p:par><p:cTn id="1" dur="indefinite" restart="never" nodeType="tmRoot"><p:childTnLst>'
        '<p:seq concurrent="1" nextAc="seek"><p:cTn id="2" dur="indefinite" nodeType="mainSeq"><p:childTnLst>'
        f"{clicks}</p:childTnLst></p:cTn><p:prevCondLst><p:cond evt=\"onPrev\" delay=\"0\"><p:tgtEl><p:sldTgt/></p:tgtEl>"
        '</p:cond></p:prevCondLst><p:nextCondLst><p:cond evt="onNext" delay="0"><p:tgtEl><p:sldTgt/></p:tgtEl></p:cond>'
        f"</p:nextCondLst></p:seq></p:childTnLst></p:cTn></p:par></p:tnLst><p:bldLst>{builds}</p:bldLst></p:timing>"
    )


def closing():
    s = Slide(2, TEAL)
    s.shape("ellipse", (640, 210, 460, 460), "2C9A8C", name="Disc")
    s.shape("ellipse", (740, 310, 260, 260), "43AC9E", name="Disc")
    s.title("Three things to take home", WHITE, 44, box=(54, 60, 852, 70))
    points = ["A key frame is a whole picture", "Every jump begins at one", "One at each slide change is cheap, and enough"]
    lines = [paragraph(run(p, 30, WHITE), bullet=AMBER, after=20, indent=28) for p in points]
    s.placeholder("body", lines, (54, 170, 760, 230), "t", 1)
    s.text((54, 452, 600, 40), [paragraph(run("Thank you. Questions?", 24, NIGHT, True))], "ctr")
    return s


SLIDES = [opening, repetition, seeking, chinese, backup, table, steps, closing]


# ---------------------------------------------------------------------------------------------- the package around them

def theme():
    colours = [("dk1", INK), ("lt1", WHITE), ("dk2", NIGHT), ("lt2", PAPER), ("accent1", TEAL), ("accent2", AMBER),
               ("accent3", RED), ("accent4", BLUE), ("accent5", "8AB17D"), ("accent6", "6D597A"), ("hlink", BLUE),
               ("folHlink", GREY)]
    scheme = "".join(f'<a:{name}><a:srgbClr val="{value}"/></a:{name}>' for name, value in colours)
    font = '<a:latin typeface="Arial"/><a:ea typeface="Noto Sans CJK SC"/><a:cs typeface=""/>'
    plain = '<a:solidFill><a:schemeClr val="phClr"/></a:solidFill>'
    line = f'<a:ln w="9525">{plain}</a:ln>'
    effect = "<a:effectStyle><a:effectLst/></a:effectStyle>"
    return (
        f'{XML}<a:theme xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" name="Lecture"><a:themeElements>'
        f'<a:clrScheme name="Lecture">{scheme}</a:clrScheme><a:fontScheme name="Lecture"><a:majorFont>{font}</a:majorFont>'
        f'<a:minorFont>{font}</a:minorFont></a:fontScheme><a:fmtScheme name="Lecture"><a:fillStyleLst>{plain * 3}'
        f"</a:fillStyleLst><a:lnStyleLst>{line * 3}</a:lnStyleLst><a:effectStyleLst>{effect * 3}</a:effectStyleLst>"
        f"<a:bgFillStyleLst>{plain * 3}</a:bgFillStyleLst></a:fmtScheme></a:themeElements></a:theme>"
    )


def prompt(kind, box, index=None):
    idx = f' idx="{index}"' if index else ""
    return (
        f'<p:sp><p:nvSpPr><p:cNvPr id="{2 + (index or 0)}" name="{kind}"/><p:cNvSpPr><a:spLocks noGrp="1"/></p:cNvSpPr>'
        f'<p:nvPr><p:ph type="{kind}"{idx}/></p:nvPr></p:nvSpPr><p:spPr>{frame(*box)}<a:prstGeom prst="rect"><a:avLst/>'
        f'</a:prstGeom></p:spPr><p:txBody><a:bodyPr anchor="ctr"/><a:lstStyle/><a:p><a:r><a:rPr lang="en-GB"/>'
        f"<a:t>Click to edit</a:t></a:r></a:p></p:txBody></p:sp>"
    )


TITLE_BOX, BODY_BOX = (54, 34, 852, 64), (54, 122, 852, 360)
LAYOUTS = [
    ("title", "Title Slide", prompt("ctrTitle", (72, 128, 820, 84)) + prompt("subTitle", (72, 220, 820, 90), 1)),
    ("obj", "Title and Content", prompt("title", TITLE_BOX) + prompt("body", BODY_BOX, 1)),
    ("titleOnly", "Title Only", prompt("title", TITLE_BOX)),
    ("blank", "Blank", ""),
]


def layout(kind, name, shapes):
    return (
        f'{XML}<p:sldLayout {NAMESPACES} type="{kind}" preserve="1"><p:cSld name="{name}">{tree(shapes)}</p:cSld>'
        "<p:clrMapOvr><a:masterClrMapping/></p:clrMapOvr></p:sldLayout>"
    )


def master():
    ids = "".join(f'<p:sldLayoutId id="{2147483649 + n}" r:id="rId{n + 1}"/>' for n in range(len(LAYOUTS)))
    level = '<a:lvl1pPr{0}><a:defRPr sz="{1}">{2}<a:latin typeface="+mn-lt"/><a:ea typeface="+mn-ea"/></a:defRPr></a:lvl1pPr>'
    colour = '<a:solidFill><a:schemeClr val="tx1"/></a:solidFill>'
    styles = (
        f"<p:titleStyle>{level.format('', 3600, colour)}</p:titleStyle>"
        f"<p:bodyStyle>{level.format('', 2400, colour)}</p:bodyStyle><p:otherStyle/>"
    )
    mapping = ('<p:clrMap bg1="lt1" tx1="dk1" bg2="lt2" tx2="dk2" accent1="accent1" accent2="accent2" accent3="accent3" '
               'accent4="accent4" accent5="accent5" accent6="accent6" hlink="hlink" folHlink="folHlink"/>')
    shapes = prompt("title", TITLE_BOX) + prompt("body", BODY_BOX, 1)
    return (
        f"{XML}<p:sldMaster {NAMESPACES}><p:cSld><p:bg><p:bgPr>{fill(WHITE)}<a:effectLst/></p:bgPr></p:bg>{tree(shapes)}"
        f"</p:cSld>{mapping}<p:sldLayoutIdLst>{ids}</p:sldLayoutIdLst><p:txStyles>{styles}</p:txStyles></p:sldMaster>"
    )


def presentation(count):
    ids = "".join(f'<p:sldId id="{256 + n}" r:id="rId{n + 2}"/>' for n in range(count))
    return (
        f'{XML}<p:presentation {NAMESPACES}><p:sldMasterIdLst><p:sldMasterId id="2147483648" r:id="rId1"/>'
        f'</p:sldMasterIdLst><p:sldIdLst>{ids}</p:sldIdLst><p:sldSz cx="{WIDTH * EMU}" cy="{HEIGHT * EMU}"/>'
        f'<p:notesSz cx="{HEIGHT * EMU}" cy="{WIDTH * EMU}"/></p:presentation>'
    )


def relations(entries):
    lines = "".join(
        f'<Relationship Id="rId{n + 1}" Type="{kind}" Target="{target}"/>' for n, (kind, target) in enumerate(entries)
    )
    return (
        f'{XML}<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">{lines}</Relationships>'
    )


def core_properties():
    p = {name: escape(text) for name, text in PROPERTIES.items()}
    return (
        f'{XML}<cp:coreProperties xmlns:cp="http://schemas.openxmlformats.org/package/2006/metadata/core-properties" '
        'xmlns:dc="http://purl.org/dc/elements/1.1/" xmlns:dcterms="http://purl.org/dc/terms/" '
        f'xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance"><dc:title>{p["title"]}</dc:title>'
        f'<dc:subject>{p["subject"]}</dc:subject><dc:creator>{p["author"]}</dc:creator>'
        f'<cp:keywords>{p["keywords"]}</cp:keywords><dc:description>{p["comments"]}</dc:description>'
        '<dcterms:created xsi:type="dcterms:W3CDTF">2026-01-05T08:00:00Z</dcterms:created>'
        '<dcterms:modified xsi:type="dcterms:W3CDTF">2026-01-05T08:00:00Z</dcterms:modified>'
        f'<cp:category>{p["category"]}</cp:category></cp:coreProperties>'
    )


def app_properties(count):
    return (
        f'{XML}<Properties xmlns="http://schemas.openxmlformats.org/officeDocument/2006/extended-properties">'
        f'<Slides>{count}</Slides><HiddenSlides>1</HiddenSlides><Manager>{escape(PROPERTIES["manager"])}</Manager>'
        f'<Company>{escape(PROPERTIES["company"])}</Company></Properties>'
    )


def content_types(count):
    base = "application/vnd.openxmlformats-officedocument.presentationml."
    parts = [("/ppt/presentation.xml", base + "presentation.main+xml"), ("/ppt/slideMasters/slideMaster1.xml", base + "slideMaster+xml"),
             ("/ppt/theme/theme1.xml", "application/vnd.openxmlformats-officedocument.theme+xml"),
             ("/docProps/core.xml", "application/vnd.openxmlformats-package.core-properties+xml"),
             ("/docProps/app.xml", "application/vnd.openxmlformats-officedocument.extended-properties+xml")]
    parts += [(f"/ppt/slideLayouts/slideLayout{n + 1}.xml", base + "slideLayout+xml") for n in range(len(LAYOUTS))]
    parts += [(f"/ppt/slides/slide{n + 1}.xml", base + "slide+xml") for n in range(count)]
    overrides = "".join(f'<Override PartName="{name}" ContentType="{kind}"/>' for name, kind in parts)
    return (
        f'{XML}<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types"><Default Extension="rels" '
        'ContentType="application/vnd.openxmlformats-package.relationships+xml"/><Default Extension="xml" '
        f'ContentType="application/xml"/>{overrides}</Types>'
    )


def package():
    """Part name to text, in the order of the file."""
    slides = [make() for make in SLIDES]
    count = len(slides)
    parts = {"[Content_Types].xml": content_types(count)}
    parts["_rels/.rels"] = relations([
        (REL + "officeDocument", "ppt/presentation.xml"),
        ("http://schemas.openxmlformats.org/package/2006/relationships/metadata/core-properties", "docProps/core.xml"),
        (REL + "extended-properties", "docProps/app.xml"),
    ])
    parts["docProps/core.xml"] = core_properties()
    parts["docProps/app.xml"] = app_properties(count)
    parts["ppt/presentation.xml"] = presentation(count)
    parts["ppt/_rels/presentation.xml.rels"] = relations(
        [(REL + "slideMaster", "slideMasters/slideMaster1.xml")]
        + [(REL + "slide", f"slides/slide{n + 1}.xml") for n in range(count)]
        + [(REL + "theme", "theme/theme1.xml")])
    parts["ppt/theme/theme1.xml"] = theme()
    parts["ppt/slideMasters/slideMaster1.xml"] = master()
    parts["ppt/slideMasters/_rels/slideMaster1.xml.rels"] = relations(
        [(REL + "slideLayout", f"../slideLayouts/slideLayout{n + 1}.xml") for n in range(len(LAYOUTS))]
        + [(REL + "theme", "../theme/theme1.xml")])
    for n, entry in enumerate(LAYOUTS):
        parts[f"ppt/slideLayouts/slideLayout{n + 1}.xml"] = layout(*entry)
        parts[f"ppt/slideLayouts/_rels/slideLayout{n + 1}.xml.rels"] = relations(
            [(REL + "slideMaster", "../slideMasters/slideMaster1.xml")])
    for n, slide in enumerate(slides):
        parts[f"ppt/slides/slide{n + 1}.xml"] = slide.xml()
        parts[f"ppt/slides/_rels/slide{n + 1}.xml.rels"] = relations(
            [(REL + "slideLayout", f"../slideLayouts/slideLayout{slide.layout}.xml")])
    return parts


def main():
    target = Path(sys.argv[1]) if len(sys.argv) > 1 else Path(__file__).with_name("lecture.pptx")
    with zipfile.ZipFile(target, "w", zipfile.ZIP_STORED) as archive:
        for name, text in package().items():
            entry = zipfile.ZipInfo(name, (2026, 1, 5, 8, 0, 0))
            entry.create_system = 3
            entry.external_attr = 0o644 << 16
            archive.writestr(entry, text.encode("utf-8"))


if __name__ == "__main__":
    main()
