"""Makes the documents that `compare_counting.py` counts: invented prose in every format, the same for one seed.

    make_documents.py FOLDER [--scale FACTOR] [NAME…]

A scale of 0.1 makes each document a tenth as long. The PDF is made by LibreOffice and left out where that isn't
installed. The words are syllables joined at random, so nothing in them is anybody's text.
"""

import argparse
import itertools
import random
import shutil
import subprocess
import sys
import tempfile
import unicodedata
import zipfile
from pathlib import Path
from xml.sax.saxutils import escape

ENGLISH = """the of and to a in that is for it was on with be as are this by at from or not have an will can
which their has more when one all its would there been if out so up what about than into them only other time
new some could these two may then do any like our over such""".split()
LETTERS = {  # Onsets and vowels of invented words.
    "en": ("b c d f g h l m n p r s t v w br cl dr fl gr pl sh st th tr".split(), "a e i o u ea ou io".split()),
    "fr": ("b c d f l m n p r s t v ch qu ç d’ l’".split(), "a e é è ê i o ô u eau œ à".split()),
    "de": ("b d f g h k l m n r s t w z sch pf st ß".split(), "a e i o u ä ö ü ei ie".split()),
    "pl": ("b c d g k ł m n p r s t w z ś ż ź cz sz ć ń".split(), "a ą e ę i o ó u y".split()),
    "cs": ("b č d ď h k l m n p r ř s š t ť v ž".split(), "a á e é ě i í o u ů ý".split()),
    "tr": ("b c ç d g ğ k l m n r s ş t v y z".split(), "a e ı i o ö u ü".split()),
    "ru": ("б в г д ж з к л м н п р с т х ц ч ш щ".split(), "а е и о у ы э ю я й".split()),
    "el": ("β γ δ ζ θ κ λ μ ν π ρ σ τ φ χ ψ".split(), "α ά ε έ η ή ι ί ο ό υ ω ώ".split()),
}
THAI = """การ ที่ เป็น และ ของ ใน มี ได้ ไม่ ให้ ว่า กับ คน นี้ ไป มา แล้ว จาก อยู่ ต้อง โดย หรือ ภาษา แปล เอกสาร ลูกค้า งาน บริษัท
สัญญา ราคา ระบบ ความ ปลอดภัย เครื่อง คู่มือ ประเทศ น้ำ อาหาร โรงเรียน หนังสือ อ่าน เขียน เดินทาง บ้าน เพื่อน ชีวิต สุขภาพ แพทย์
เวลา เดือน ชั่วโมง ภูเขา ทะเล แม่น้ำ ต้นไม้ ตลาด เงิน ซื้อ ขาย ธนาคาร กฎหมาย สังคม วัฒนธรรม ข้อมูล โทรศัพท์ ใหม่ ใหญ่ เล็ก สามารถ
ช่วย กำลัง เพราะ เมื่อ ทำงาน นักเรียน โปรแกรม ข่าว""".split()
SCRIPTS = {name: [chr(code) for code in codes] for name, codes in {
    "han": range(0x4E00, 0x4E00 + 3000), "hiragana": range(0x3042, 0x3094), "katakana": range(0x30A2, 0x30F4),
    "hangul": range(0xAC00, 0xAC00 + 11000, 11)}.items()}


def vocabulary(language, size):
    dice = random.Random(language)
    onsets, vowels = LETTERS[language]
    words = dict.fromkeys(ENGLISH if language == "en" else ())
    while len(words) < size:
        syllables = dice.choices((1, 2, 3, 4), (3, 5, 3, 1))[0]
        word = "".join(dice.choice(onsets) + dice.choice(vowels) for _ in range(syllables))
        words.setdefault(word + dice.choice(("", "", "n", "r", "s", "t") if onsets[0] == "b" else ("",)))
    return list(words)


class Stream:
    """Items picked at random, those in front more often, as the words of a language are."""

    def __init__(self, dice, items):
        self._dice, self._items = dice, items
        self._weights = list(itertools.accumulate(1 / (rank + 3) for rank in range(len(items))))
        self._ready = []

    def take(self, count):
        if len(self._ready) < count:
            self._ready = self._dice.choices(self._items, cum_weights=self._weights, k=50_000)
        taken, self._ready = self._ready[-count:], self._ready[:-count]
        return taken


class Prose:
    """Sentences in English letters, with a tenth or so of them repeated."""

    between = " "  # Sentences.

    def __init__(self, seed):
        self.dice = random.Random(seed)
        self._earlier = []
        self._english = Stream(self.dice, vocabulary("en", 30_000))

    def words(self, count):
        return self._english.take(count)

    def sentence(self):
        if self._earlier and self.dice.random() < 0.12:
            return self.dice.choice(self._earlier)
        sentence = self.new_sentence()
        if len(self._earlier) < 4000:
            self._earlier.append(sentence)
        return sentence

    def new_sentence(self):
        words = self.words(self.dice.randint(4, 26))
        return self.dressed(words, {3: "–", 4: str(self.dice.randint(1, 3000))}, "“{}”")

    def dressed(self, words, replaced, quotes):
        words[0] = words[0].capitalize()
        if len(words) > 9:
            words[len(words) // 2] += ","
            place = self.dice.randint(1, 20)
            words[place % 8] = replaced.get(place, words[place % 8])
            if place == 6:
                words[6] = quotes.format(words[6])
        return " ".join(words) + self.dice.choices(".?!…", (18, 1, 1, 1))[0]

    def paragraph(self):
        return self.between.join(self.sentence() for _ in range(self.dice.randint(2, 8)))


class EuropeanProse(Prose):
    def __init__(self, seed):
        super().__init__(seed)
        self._streams = {name: Stream(self.dice, vocabulary(name, 4000)) for name in LETTERS if name != "en"}

    def new_sentence(self):
        language = self.dice.choice(("fr", "fr", "de", "de", "pl", "cs", "tr", "ru", "el"))
        words = self._streams[language].take(self.dice.randint(4, 26))
        if language not in ("ru", "el"):
            words = [own if self.dice.random() < 0.6 else other
                     for own, other in zip(words, self.words(len(words)))]
        text = self.dressed(words, {3: "–", 4: "1 250,50\u00a0€"}, "«\u00a0{}\u00a0»" if language == "fr" else "„{}“")
        return unicodedata.normalize("NFD", text) if self.dice.random() < 0.03 else text  # As some programs write.


class CJKProse(Prose):
    between = ""

    def __init__(self, seed):
        super().__init__(seed)
        self._scripts = {name: Stream(self.dice, characters) for name, characters in SCRIPTS.items()}

    def new_sentence(self):
        take = {name: stream.take for name, stream in self._scripts.items()}
        count, kind = self.dice.randint(8, 48), self.dice.randint(1, 10)
        if kind <= 4:
            text = "".join(take["han"](count))
            return f"{text[:count // 2]}，{text[count // 2:]}。"
        if kind <= 7:
            pairs = zip(take["han"](count // 2), take["hiragana"](count // 2), take["hiragana"](count // 2))
            text = "".join(map("".join, pairs)) + "、" + "".join(take["katakana"](5)) + "。"
            return f"「{text}」" if kind == 7 else text
        letters = take["hangul"](count)
        cuts = range(0, count, self.dice.randint(2, 5))
        return " ".join("".join(letters[begin:end]) for begin, end in zip(cuts, [*cuts[1:], count])) + ". "


class ThaiProse(Prose):
    def new_sentence(self):
        return "".join(self.dice.choices(THAI, k=self.dice.randint(5, 23)))


def blocks(size, make):
    """Text made piece by piece until it has so many bytes."""
    done = 0
    while done < size:
        block = make()
        done += len(block.encode())
        yield block


def write_text(prose, path, size):
    with open(path, "w", encoding="utf-8") as file:
        file.writelines(blocks(size, lambda: prose.paragraph().rstrip() + "\n"))


def write_package(path, parts):
    with zipfile.ZipFile(path, "w") as archive:
        for name, content in parts.items():  # Without the time, the bytes are the same each time.
            archive.writestr(zipfile.ZipInfo(name), content,
                             zipfile.ZIP_STORED if name == "mimetype" else zipfile.ZIP_DEFLATED)


OFFICE = "http://schemas.openxmlformats.org/officeDocument/2006/relationships"
PACKAGE = "http://schemas.openxmlformats.org/package/2006/relationships"
HEAD = '<?xml version="1.0" encoding="UTF-8" standalone="yes"?>\n'


def relationships(targets):
    rows = (f'<Relationship Id="rId{number}" Type="{OFFICE}/{kind}" Target="{target}"/>'
            for number, (kind, target) in enumerate(targets, 1))
    return f'{HEAD}<Relationships xmlns="{PACKAGE}">{"".join(rows)}</Relationships>'


def types(overrides):
    kind = "application/vnd.openxmlformats-"
    rows = (f'<Override PartName="/{part}" ContentType="{kind}officedocument.{type}+xml"/>'
            for part, type in overrides.items())
    return (f'{HEAD}<Types xmlns="http://schemas.openxmlformats.org/package/2006/content-types">'
            f'<Default Extension="rels" ContentType="{kind}package.relationships+xml"/>'
            f'<Default Extension="xml" ContentType="application/xml"/>{"".join(rows)}</Types>')


# --- Word

WORD = ('xmlns:w="http://schemas.openxmlformats.org/wordprocessingml/2006/main" '
        'xmlns:w14="http://schemas.microsoft.com/office/word/2010/wordml" xmlns:v="urn:schemas-microsoft-com:vml" '
        f'xmlns:r="{OFFICE}"')


def word_run(dice, text, property=""):
    return (f'<w:r w:rsidRPr="00{dice.getrandbits(24):06X}"><w:rPr><w:rFonts w:ascii="Calibri" w:hAnsi="Calibri" '
            f'w:cs="Calibri"/>{property}<w:sz w:val="22"/><w:szCs w:val="22"/><w:lang w:val="en-GB"/></w:rPr>'
            f'<w:t xml:space="preserve">{escape(text)}</w:t></w:r>')


def word_paragraph(dice, text, style="BodyText", more=""):
    """In runs of several words, as editing leaves them."""
    words, runs = text.split(" "), []
    while words:
        count = dice.choice((3, 6, 9, 14, 22, 40))
        piece, words = " ".join(words[:count]) + (" " if len(words) > count else ""), words[count:]
        runs.append(word_run(dice, piece, dice.choices(("", "<w:b/>", "<w:i/>"), (17, 2, 1))[0]))
        if dice.random() < 0.1:
            runs.append('<w:proofErr w:type="spellStart"/>')
    return (f'<w:p w14:paraId="{dice.getrandbits(31):08X}" w:rsidR="00{dice.getrandbits(24):06X}" '
            f'w:rsidRDefault="00{dice.getrandbits(24):06X}"><w:pPr><w:pStyle w:val="{style}"/>'
            '<w:spacing w:before="120" w:after="120" w:line="276" w:lineRule="auto"/><w:jc w:val="both"/></w:pPr>'
            f'{"".join(runs)}{more}</w:p>')


def word_table(prose):
    cell = '<w:tc><w:tcPr><w:tcW w:w="2265" w:type="dxa"/></w:tcPr>{}</w:tc>'
    rows = []
    for _ in range(prose.dice.randint(2, 8)):
        texts = [" ".join(prose.words(prose.dice.randint(1, 6))) for _ in range(4)]
        rows.append("".join(cell.format(word_paragraph(prose.dice, text)) for text in texts))
    return f'<w:tbl><w:tblGrid/><w:tr>{"</w:tr><w:tr>".join(rows)}</w:tr></w:tbl>', len(rows) * 14


def write_docx(prose, path, pages):
    dice, words, body, notes, comments = prose.dice, 0, [], [], []
    while words < 400 * pages:
        kind, more = dice.random(), ""
        if kind < 0.03:
            table, count = word_table(prose)
            body.append(table)
            words += count
            continue
        text = " ".join(prose.words(5)) if kind < 0.09 else prose.paragraph()
        words += text.count(" ") + 1
        if kind > 0.985:
            box = word_paragraph(dice, prose.sentence())
            more = (f'<w:r><w:pict><v:shape style="width:150pt"><v:textbox><w:txbxContent>{box}</w:txbxContent>'
                    '</v:textbox></v:shape></w:pict></w:r>')
        elif kind > 0.95:
            notes.append(word_paragraph(dice, prose.sentence()))
            more = f'<w:r><w:footnoteReference w:id="{len(notes)}"/></w:r>'
        elif kind > 0.935:
            comments.append(word_paragraph(dice, prose.sentence()))
            more = f'<w:r><w:commentReference w:id="{len(comments)}"/></w:r>'
        elif kind > 0.925:
            more = word_run(dice, " " + prose.sentence(), "<w:vanish/>")
        body.append(word_paragraph(dice, text, "Heading1" if kind < 0.09 else "BodyText", more))

    def part(element, content):
        return f"{HEAD}<w:{element} {WORD}>{content}</w:{element}>"

    def numbered(element, paragraphs):
        return "".join(f'<w:{element} w:id="{number}">{paragraph}</w:{element}>'
                       for number, paragraph in enumerate(paragraphs, 1))

    style = '<w:style w:type="paragraph" w:styleId="{0}"><w:name w:val="{0}"/><w:pPr><w:keepNext/></w:pPr></w:style>'
    styles = "".join(map(style.format, ["BodyText", *(f"Heading{level}" for level in range(1, 100))]))
    section = '<w:sectPr><w:headerReference w:type="default" r:id="rId2"/></w:sectPr>'
    kinds = ["styles", "header", "footnotes", "comments"]
    write_package(path, {
        "[Content_Types].xml": types({"word/document.xml": "wordprocessingml.document.main",
                                      **{f"word/{kind}.xml": f"wordprocessingml.{kind}" for kind in kinds}}),
        "_rels/.rels": relationships([("officeDocument", "word/document.xml")]),
        "word/_rels/document.xml.rels": relationships([(kind, f"{kind}.xml") for kind in kinds]),
        "word/document.xml": part("document", f'<w:body>{"".join(body)}{section}</w:body>'),
        "word/styles.xml": part("styles", styles),
        "word/header.xml": part("hdr", word_paragraph(dice, prose.sentence())),
        "word/footnotes.xml": part("footnotes", numbered("footnote", notes)),
        "word/comments.xml": part("comments", numbered("comment", comments)),
    })


def write_folder(prose, path, count):
    path.mkdir(exist_ok=True)
    for number in range(count):
        write_docx(prose, path / f"{number:04}.docx", prose.dice.randint(3, 10))


# --- PowerPoint, Excel, OpenDocument

def write_pptx(prose, path, slides):
    names = ('xmlns:a="http://schemas.openxmlformats.org/drawingml/2006/main" '
             f'xmlns:p="http://schemas.openxmlformats.org/presentationml/2006/main" xmlns:r="{OFFICE}"')
    run = '<a:r><a:rPr lang="en-GB" sz="1800" dirty="0"/><a:t>{}</a:t></a:r>'

    def shape(number, kind, texts):
        paragraphs = "".join(f'<a:p><a:pPr lvl="0"/>{run.format(escape(text))}</a:p>' for text in texts)
        return (f'<p:sp><p:nvSpPr><p:cNvPr id="{number}" name="Shape {number}"/><p:cNvSpPr/><p:nvPr><p:ph type="{kind}"/>'
                f'</p:nvPr></p:nvSpPr><p:spPr><a:xfrm><a:off x="500000" y="{number}00000"/><a:ext cx="8000000" '
                f'cy="900000"/></a:xfrm></p:spPr><p:txBody><a:bodyPr/><a:lstStyle/>{paragraphs}</p:txBody></p:sp>')

    def page(element, shapes):
        return f'{HEAD}<p:{element} {names}><p:cSld><p:spTree>{"".join(shapes)}</p:spTree></p:cSld></p:{element}>'

    parts = {}
    for number in range(1, slides + 1):
        title = shape(2, "title", [" ".join(prose.words(6))])
        bodies = [shape(place, "body", [prose.sentence() for _ in range(prose.dice.randint(2, 5))])
                  for place in range(3, 7)]
        parts[f"ppt/slides/slide{number}.xml"] = page("sld", [title, *bodies])
        parts[f"ppt/slides/_rels/slide{number}.xml.rels"] = relationships(
            [("notesSlide", f"../notesSlides/notesSlide{number}.xml")])
        parts[f"ppt/notesSlides/notesSlide{number}.xml"] = page(
            "notes", [shape(2, "body", [prose.sentence() for _ in range(3)])])
    ids = "".join(f'<p:sldId id="{255 + number}" r:id="rId{number}"/>' for number in range(1, slides + 1))
    write_package(path, {
        "[Content_Types].xml": types({"ppt/presentation.xml": "presentationml.presentation.main"}),
        "_rels/.rels": relationships([("officeDocument", "ppt/presentation.xml")]),
        "ppt/presentation.xml": f"{HEAD}<p:presentation {names}><p:sldIdLst>{ids}</p:sldIdLst></p:presentation>",
        "ppt/_rels/presentation.xml.rels": relationships(
            [("slide", f"slides/slide{number}.xml") for number in range(1, slides + 1)]),
        **parts,
    })


def write_xlsx(prose, path, cells):
    dice, columns, texts = prose.dice, "ABCDEFGHIJKLMNOPQRST", max(10, cells // 4)
    strings = (f"<si><t>{escape(prose.sentence() if dice.random() < 0.2 else ' '.join(prose.words(dice.randint(1, 7))))}"
               "</t></si>" for _ in range(texts))

    def cell(column, row):
        if column in "EJOT":
            return f'<c r="{column}{row}" s="1"><v>{dice.random() * 10000:.2f}</v></c>'
        return f'<c r="{column}{row}" t="s"><v>{int(dice.random() * texts)}</v></c>'

    rows = (f'<row r="{row}" spans="1:20" x14ac:dyDescent="0.25">{"".join(cell(column, row) for column in columns)}</row>'
            for row in range(1, cells // len(columns) + 1))
    names = 'xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main"'
    write_package(path, {
        "[Content_Types].xml": types({"xl/workbook.xml": "spreadsheetml.sheet.main",
                                      "xl/worksheets/sheet1.xml": "spreadsheetml.worksheet",
                                      "xl/sharedStrings.xml": "spreadsheetml.sharedStrings"}),
        "_rels/.rels": relationships([("officeDocument", "xl/workbook.xml")]),
        "xl/workbook.xml": f'{HEAD}<workbook {names} xmlns:r="{OFFICE}"><sheets><sheet name="One" sheetId="1" '
                           'r:id="rId1"/></sheets></workbook>',
        "xl/_rels/workbook.xml.rels": relationships([("worksheet", "worksheets/sheet1.xml"),
                                                     ("sharedStrings", "sharedStrings.xml")]),
        "xl/sharedStrings.xml": f'{HEAD}<sst {names}>{"".join(strings)}</sst>',
        "xl/worksheets/sheet1.xml": f'{HEAD}<worksheet {names} xmlns:x14ac="http://schemas.microsoft.com/office/'
                                    f'spreadsheetml/2009/9/ac"><sheetData>{"".join(rows)}</sheetData></worksheet>',
    })


def write_odt(prose, path, pages):
    dice, words, body = prose.dice, 0, []
    while words < 400 * pages:
        text = prose.paragraph()
        words += text.count(" ") + 1
        pieces = [escape(piece) + " " for piece in text.split(", ")]
        pieces = [f'<text:span text:style-name="T{dice.randint(1, 9)}">{piece}</text:span>' if dice.random() < 0.5
                  else piece for piece in pieces]
        if dice.random() < 0.04:
            pieces.append('<text:note text:note-class="footnote"><text:note-citation>1</text:note-citation><text:note-body>'
                          f'<text:p>{escape(prose.sentence())}</text:p></text:note-body></text:note>')
        body.append(f'<text:p text:style-name="P{dice.randint(1, 20)}">{"".join(pieces)}</text:p>')
    name = "urn:oasis:names:tc:opendocument:xmlns"
    names = " ".join(f'xmlns:{prefix}="{name}:{prefix}:1.0"' for prefix in ("office", "text", "style"))
    kind = "application/vnd.oasis.opendocument.text"
    files = {"/": kind, "content.xml": "text/xml", "styles.xml": "text/xml"}
    write_package(path, {
        "mimetype": kind,
        "content.xml": f'{HEAD}<office:document-content {names} office:version="1.2"><office:body><office:text>'
                       f'{"".join(body)}</office:text></office:body></office:document-content>',
        "styles.xml": f'{HEAD}<office:document-styles {names} office:version="1.2"/>',
        "META-INF/manifest.xml": f'{HEAD}<m:manifest xmlns:m="{name}:manifest:1.0" m:version="1.2">' + "".join(
            f'<m:file-entry m:full-path="{path}" m:media-type="{type}"/>' for path, type in files.items()) + "</m:manifest>",
    })


# --- Flat formats

def marked(prose, before, after):
    """A paragraph with two of its words in marks."""
    words = escape(prose.paragraph()).split(" ")
    for place in (4, 9):
        if place < len(words):
            words[place] = before + words[place] + after
    return " ".join(words)


def write_html(prose, path, size):
    def block():
        kind = prose.dice.random()
        if kind < 0.08:
            return f'<h2 id="s{prose.dice.getrandbits(20)}" class="title">{" ".join(prose.words(5))}</h2>\n'
        if kind < 0.12:
            item = '<li class="item"><a href="https://example.org/{}?x=1&amp;y=2">{}</a></li>'
            return f'<ul>{"".join(item.format(word, word) for word in prose.words(6))}</ul>\n'
        text = marked(prose, '<em class="x">', "</em>").replace("–", "&ndash;").replace("“", "&ldquo;")
        return f'<p class="text body-{prose.dice.randint(1, 9)}">{text}</p>\n'

    with open(path, "w", encoding="utf-8") as file:
        file.write('<!DOCTYPE html>\n<html lang="en"><head><meta charset="utf-8"><title>Page</title>'
                   "<style>p{margin:1em}</style><script>var a = '<p>no text</p>';</script></head><body>\n")
        file.writelines(blocks(size, block))
        file.write("</body></html>\n")


def write_rtf(prose, path, size):
    def block():
        text = "".join(letter if letter < "\x80" else f"\\u{ord(letter)}?" for letter in marked(prose, "{\\b ", "}"))
        return ("\\pard\\plain \\ltrpar\\s0\\qj \\li0\\ri0\\sb120\\sa120\\sl276\\slmult1 \\f0\\fs22\\lang2057 {\\rtlch\\fcs1 "
                f"\\af0 \\ltrch\\fcs0 \\insrsid{prose.dice.getrandbits(24)} {text}\\par }}\n")

    with open(path, "w", encoding="ascii", newline="\r\n") as file:
        file.write("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss Calibri;}}{\\stylesheet{\\s0 Normal;}}\n")
        file.writelines(blocks(size, block))
        file.write("}\n")


def write_srt(prose, path, size):
    numbers = itertools.count(1)

    def block():
        number, words = next(numbers), prose.words(prose.dice.randint(3, 14))
        begin = f"{number // 1800:02}:{number // 30 % 60:02}:{number * 2 % 60:02}"
        half = len(words) // 2 + 1
        text = " ".join(words[:half]) + "\n" + " ".join(words[half:]) + "."
        return f"{number}\n{begin},000 --> {begin},900\n{f'<i>{text}</i>' if number % 10 == 0 else text}\n\n"

    with open(path, "w", encoding="utf-8", newline="\r\n") as file:
        file.writelines(blocks(size, block))


def write_pdf(prose, path, pages):
    if not shutil.which("soffice"):
        return
    with tempfile.TemporaryDirectory() as folder:
        source = Path(folder) / f"{path.stem}.odt"
        write_odt(prose, source, pages)
        subprocess.run(["soffice", f"-env:UserInstallation=file://{folder}/profile", "--headless", "--convert-to", "pdf",
                        "--outdir", path.parent, source], check=True, stdout=subprocess.DEVNULL)


# --- What could take more than linear time: by name, what is repeated, how often at scale 1, and the rest.

HOSTILE = {
    "nested.html": ("<div>a ", 100_000, "", ""),
    "nested-inline.html": ("<b><i>a ", 50_000, "", ""),
    "nested.rtf": ("{\\b a ", 100_000, "{\\rtf1 ", ""),
    "nested.md": ("> ", 100_000, "", "a"),
    "unclosed.md": ("[a *b `c ", 100_000, "", ""),
    "one-word.txt": ("abcde", 1_000_000, "", ""),
    "one-word-cjk.txt": ("漢", 1_000_000, "", ""),
    "one-word-thai.txt": ("การ", 100_000, "", ""),
    "marks.txt": ("\u0301\u0300", 500_000, "a", ""),
    "one-word-sentences.txt": ("Word{}. ", 1_000_000, "", ""),
    "unclosed-quotes.txt": ("“Say {}. ", 1_000_000, "", ""),
    "unclosed-tags.html": ("<a b='c ", 500_000, "", ""),
    "unclosed-comments.html": ("<!-- a ", 500_000, "", ""),
    "empty-cues.srt": ("1\r\n\r\n", 500_000, "", ""),
}


def write_hostile(path, scale=1.0):
    repeated, count, before, after = HOSTILE[path.name]
    pieces = (repeated.replace("{}", str(number)) for number in range(int(count * scale)))
    path.write_text(before + "".join(pieces) + after, encoding="utf-8")


DOCUMENTS = {  # By name: what writes it in which prose, and its bytes, pages, slides, cells or files.
    "english.txt": (write_text, Prose, 100_000_000),
    "european.txt": (write_text, EuropeanProse, 50_000_000),
    "cjk.txt": (write_text, CJKProse, 50_000_000),
    "thai.txt": (write_text, ThaiProse, 5_000_000),
    "book-10.docx": (write_docx, Prose, 10),
    "book-100.docx": (write_docx, Prose, 100),
    "book-1000.docx": (write_docx, Prose, 1000),
    "folder": (write_folder, Prose, 1000),
    "slides.pptx": (write_pptx, Prose, 200),
    "cells.xlsx": (write_xlsx, Prose, 1_000_000),
    "book.odt": (write_odt, Prose, 1000),
    "page.html": (write_html, Prose, 20_000_000),
    "book.rtf": (write_rtf, Prose, 20_000_000),
    "film.srt": (write_srt, Prose, 10_000_000),
    "book.pdf": (write_pdf, Prose, 500),
}


def make(path, scale=1.0):
    write, prose, size = DOCUMENTS[path.name]
    write(prose(path.name), path, int(size * scale))


def main():
    parser = argparse.ArgumentParser(description="Makes the documents that are counted for comparison.")
    parser.add_argument("folder", type=Path)
    parser.add_argument("names", nargs="*", metavar="NAME", help="of " + ", ".join(DOCUMENTS))
    parser.add_argument("--scale", type=float, default=1.0)
    arguments = parser.parse_intermixed_args()
    if unknown := set(arguments.names) - set(DOCUMENTS):
        sys.exit(f"There is no {', '.join(sorted(unknown))}.")
    arguments.folder.mkdir(parents=True, exist_ok=True)
    for name in arguments.names or DOCUMENTS:
        print(name, flush=True)
        make(arguments.folder / name, arguments.scale)


if __name__ == "__main__":
    main()
