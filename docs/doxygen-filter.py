#!/usr/bin/env python3
"""Doxygen's input filter: says in Doxygen's words what the plain comments of the public headers and the links of the
documents say.

A comment that begins a line documents all declarations up to the next such comment, the first of a file the file; one
behind a field or a value documents that. Lists of declarations by a function type become full declarations.

Usage: doxygen-filter.py HEADER-OR-DOCUMENT
"""
import pathlib
import re
import sys

header = pathlib.Path(sys.argv[1])


def label(page):
    """The name of a document's page; the first one of all is known as index."""
    if page.name == "README.md":
        return "index"
    return ("guide-" if page.resolve().parts[-3:-1] == ("docs", "guide") else "page-") + page.stem.lower()


def document(page):
    """A document with a named title; links go to pages and to headers of the reference, others become plain text."""
    contents = label(page) == "guide-index"

    def link(m):
        picture, text, target = m[1], " ".join(m[2].replace("`", "").split()), pathlib.PurePosixPath(m[3])
        if picture:
            return f"![{text}]({target.name})"
        if target.suffix == ".md":
            of = page.parent / target
            if contents and label(of).startswith("guide-"):
                return f'@subpage {label(of)} "{text}"'
            return f"[{text}](@ref {label(of)})"
        return f"[{text}](@ref {target.name})" if target.suffix == ".h" else text

    blocks = re.split(r"(^```.*?^```$)", page.read_text(), flags=re.MULTILINE | re.DOTALL)
    blocks[::2] = [re.sub(r"(!?)\[([^\]]+)\]\((?!https?:)([^)#]+)\)", link, block) for block in blocks[::2]]
    named = "" if label(page) == "index" else f" {{#{label(page)}}}"
    return re.sub(r"\A# (.*)", lambda m: m[0] + named, "".join(blocks))


if header.suffix == ".md":
    sys.stdout.write(document(header))
    sys.exit()
folder = next(p for p in header.resolve().parents if p.name == "include")

TYPE = re.compile(r"^typedef (\w[\w ]*?\**) ?(\w+)\(([^;]*)\);", re.MULTILINE)
function_types = {m[2]: (m[1], m[3]) for h in folder.rglob("*.h") for m in TYPE.finditer(h.read_text())}


def escape(text):
    text = re.sub(r"[\\@&<>#%\"]", lambda m: {"&": "&amp;", "<": "&lt;", ">": "&gt;"}.get(m[0], "\\" + m[0]), text)
    return re.sub(r"`([^`]+)`", r"<code>\1</code>", text)


def prose(comment):
    """The text of a comment: tables and programs as they stand, the rest as paragraphs."""
    lines = [re.sub(r"^ ?\*? ?", "", line) for line in comment[2:-2].split("\n")]
    lines = [re.sub(r"^---- (.*?)(?: ----)?$", r"\1", line.rstrip()) for line in lines]
    lines[0] = lines[0].strip()
    result = []
    for block in re.split(r"\n(?:\s*\n)+", "\n".join(lines).strip("\n")):
        if re.search(r"^ {3,}(?! *- )\S.*(\n {3,}|$(?!\n))|\S {3,}\S", block) or block.startswith("    "):
            result.append("\\verbatim\n" + block + "\n\\endverbatim")
            continue
        words = ""
        for line in block.split("\n"):  # a hanging indent ends where a line begins at the margin again
            hangs = words.rsplit("\n", 1)[-1].startswith("  ")
            words += ("\n\n" if hangs and not line.startswith((" ", "-")) else "\n") + escape(line)
        result.append(re.sub(r"^ +(?!- )", "", words, flags=re.MULTILINE).strip())
    return "\n\n".join(result)


def declarations(code):
    """Spells lists by a function type out, one declaration for each name."""
    def spell(m):
        if m[1] not in function_types:
            return m[0]
        result, parameters = function_types[m[1]]
        return "\n".join(f"{result} {name}({parameters});" for name in re.findall(r"[\w$]+", m[2]))
    return re.sub(r"^JORM_API (\w+) ([\w$]+(?:,\s*[\w$]+)*);", spell, code, flags=re.MULTILINE)


FIELDS = re.compile(r"^    ((?:const |struct )*\w+ )((?:\**\w+(?:\[\d+\])?, )*\**\w+(?:\[\d+\])?); *(/\*.*?\*/)?\n", re.M | re.S)


def members(code):
    """Fields one by one, each with the comment behind it; one without is told about with its record."""
    def split(m):
        comment = "/**< " + prose(m[3]) + " */" if m[3] else "/**< See the record. */"
        return "".join(f"    {m[1]}{name}; {comment}\n" for name in m[2].split(", "))

    def record(m):
        text = re.sub(r"^    /\*(.*?)\*/$", r"    /**\1*/", m[0], flags=re.M | re.S)
        if not m[0].startswith("enum"):
            text = re.sub(r"; */\*(?!\*)", "; /**<", FIELDS.sub(split, text))
            return re.sub(r";\n", "; /**< See the record. */\n", text)
        text = re.sub(r"/\*(?!\*)", "/**<", text)
        return re.sub(r"(\w,?)\n", r"\1 /**< See above. */\n", text)
    return re.sub(r"^(typedef struct|struct|enum)\b[^;{]*\{[^\n}]*\n.*?^\}", record, code, flags=re.M | re.S)


first, text = True, ""
output = []
for part in re.split(r"(^/\*.*?\*/)", header.read_text(), flags=re.MULTILINE | re.DOTALL):
    if not part.startswith("/*"):
        part = members(declarations(part))
        if text and re.search(r"^(typedef )?struct [^;]*\{", part, re.M):  # a group takes no text from a record
            part = re.sub(r"^(?=(?:typedef|struct|enum|JORM_API|int64_t|#define) )", lambda m: text + "\n", part, flags=re.M)
        elif text:
            part = "/**@{*/\n" + text + part + "/**@}*/\n"
        output.append(part)
    elif first:
        output.append("/** \\file\n" + prose(part) + " */")
        first = False
        continue
    else:
        text = "/** " + prose(part) + " */"
        continue
sys.stdout.write("\n".join(output))
