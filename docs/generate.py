"""Builds the source of the reference manual: the hand-written pages of
docs/pages, one page per property, method and event (facts from the type
library source, text from docs/members.md), the constants (from the type
library source) and the error codes (from the error list). Stops with an
error when a member of the type library has no text, when a text names no
member, or when a text lacks its example or its errors.

  generate.py <output folder>
"""
import pathlib
import re
import shutil
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
IDL = ROOT / "encode" / "ocx" / "file_encoder.idl"
ERRORS = ROOT / "encode" / "engine" / "include" / "file_encoder_errors.inc"
PAGES = ROOT / "docs" / "pages"
MEMBERS = ROOT / "docs" / "members.md"


class Member:
    def __init__(self, name, kind, dispid, help_text):
        self.name, self.kind, self.dispid, self.help = name, kind, dispid, help_text
        self.access = []
        self.type = None
        self.arguments = []


def idl_text():
    return IDL.read_text()


def parse_members():
    """Properties and methods of IFileEncoder, events of _IFileEncoderEvents."""
    text = idl_text()
    members = {}
    start = text.index("interface IFileEncoder : IDispatch")
    interface = text[start:text.index("dispinterface", start)]
    pattern = re.compile(r"\[([^\]]*?)\]\s*HRESULT\s+(\w+)\(([^;]*)\);", re.S)
    for attributes, name, arguments in pattern.findall(interface):
        dispid = int(re.search(r"id\((-?\d+)\)", attributes).group(1))
        help_text = re.search(r'helpstring\("([^"]*)"\)', attributes).group(1)
        kind = "property" if ("propget" in attributes or "propput" in attributes) else "method"
        member = members.setdefault(name, Member(name, kind, dispid, help_text))
        if kind == "property":
            member.access.append("read" if "propget" in attributes else "write")
            member.type = re.search(r"\]\s*([\w ]+?)\*?\s+Value", arguments).group(1)
        else:
            member.arguments = parse_arguments(arguments)
    start = text.index("dispinterface _IFileEncoderEvents")
    events = text[start:text.index("coclass FileEncoder", start)]
    for dispid, help_text, name, arguments in re.findall(
            r'\[id\((\d+)\), helpstring\("([^"]*)"\)\]\s*void\s+(\w+)\(([^;]*)\);', events, re.S):
        member = Member(name, "event", int(dispid), help_text)
        member.arguments = parse_arguments(arguments)
        members[name] = member
    return members


def parse_arguments(text):
    arguments = []
    for attributes, type_name, name in re.findall(r"\[([^\]]*)\]\s*([\w ]+?\*?)\s+(\w+)\s*(?:,|$)",
                                                   " ".join(text.split())):
        arguments.append((name, type_name.strip(), [a.strip() for a in attributes.split(",")]))
    return arguments


def parse_enums():
    text = idl_text()
    enums = []
    for help_text, name, body in re.findall(
            r'typedef \[helpstring\("([^"]*)"\)\] enum (\w+) \{(.*?)\}', text, re.S):
        if name == "ErrorCodes":
            continue
        values = re.findall(r"(\w+) = (-?\d+)", body)
        enums.append((name, help_text, values))
    return enums


def parse_errors():
    return re.findall(r'^FE_ERROR_CODE\((\w+), (\d+), "([^"]*)"\)', ERRORS.read_text(), re.M)


def member_texts():
    sections = re.split(r"^## ", MEMBERS.read_text(), flags=re.M)[1:]
    return {section.split("\n", 1)[0].strip(): section.split("\n", 1)[1].strip() for section in sections}


def signature(member):
    if member.kind == "property":
        return f"{member.name} As {vb_type(member.type)}"
    names = []
    for name, _, attributes in member.arguments:
        if "out" in attributes and "retval" in attributes:
            continue
        names.append(f"[{name}]" if "optional" in attributes else name)
    return f"{member.name} {', '.join(names)}".strip()


def vb_type(idl_type):
    return {"BSTR": "String", "long": "Long", "short": "Integer", "VARIANT_BOOL": "Boolean",
            "VARIANT": "Variant", "VARIANT*": "Variant", "BSTR*": "String", "long*": "Long",
            "VARIANT_BOOL*": "Boolean"}.get(idl_type, idl_type)


def member_page(member, text):
    kind = {"property": "Property", "method": "Method", "event": "Event"}[member.kind]
    lines = [f"# {member.name}", "", f"*{kind} of "
             f"{'_IFileEncoderEvents' if member.kind == 'event' else 'IFileEncoder'}:* "
             f"{member.help}.", "", "| | |", "|---|---|", f"| Dispatch id | {member.dispid} |"]
    if member.kind == "property":
        lines.append(f"| Type | {vb_type(member.type)} |")
        lines.append(f"| Access | {', '.join(sorted(member.access, reverse=True))} |")
    lines += ["", "```vb", signature(member), "```", ""]
    if member.kind != "property" and member.arguments:
        lines += ["| Argument | Type | Passing |", "|---|---|---|"]
        for name, type_name, attributes in member.arguments:
            passing = ("in/out (by reference)" if "out" in attributes else "in")
            if "optional" in attributes:
                passing += ", optional"
            lines.append(f"| `{name}` | {vb_type(type_name)} | {passing} |")
        lines.append("")
    lines += [text, ""]
    return "\n".join(lines)


def main():
    output = pathlib.Path(sys.argv[1])
    shutil.rmtree(output, ignore_errors=True)
    shutil.copytree(PAGES, output)
    members = parse_members()
    texts = member_texts()
    problems = [f"no text in docs/members.md for {name}" for name in members if name not in texts]
    problems += [f"docs/members.md describes {name}, which the type library does not have"
                 for name in texts if name not in members]
    for name, text in texts.items():
        if "```vb" not in text:
            problems.append(f"{name}: no VBScript example")
        if "**Errors**" not in text:
            problems.append(f"{name}: no list of errors")
    if problems:
        sys.exit("\n".join(problems))

    reference = output / "reference"
    reference.mkdir()
    index = ["# Members", "", "| Member | Kind | Dispatch id | Summary |", "|---|---|---|---|"]
    for member in sorted(members.values(), key=lambda m: (m.kind != "property", m.kind, m.name)):
        (reference / f"{member.name}.md").write_text(member_page(member, texts[member.name]))
        index.append(f"| [{member.name}]({member.name}.md) | {member.kind} | {member.dispid} | "
                     f"{member.help} |")
    (reference / "index.md").write_text("\n".join(index) + "\n")

    constants = ["# Constants", "",
                 "The type library's enumerations. Scripts that do not load the type library "
                 "(VBScript, JScript) use the numbers; VBA, VB6 and C++ can use the names.", ""]
    for name, help_text, values in parse_enums():
        constants += [f"## {name}", "", f"{help_text}.", "", "| Name | Value |", "|---|---|"]
        constants += [f"| `{constant}` | {value} |" for constant, value in values]
        constants.append("")
    (reference / "constants.md").write_text("\n".join(constants))

    errors = ["# Error codes", "",
              "`LastError` and the `Error` argument of the file methods report either a number "
              "from this table (the control's own codes; with `ThrowError` on, the call fails "
              "with the full code 0x80040000 + number) or a Windows system error number such as "
              "2 (file not found), 5 (access denied) or 87 (invalid parameter). "
              "`LastErrorString` gives the message.", "",
              "| Constant | Number | Full code | Message |", "|---|---|---|---|"]
    for name, number, message in parse_errors():
        errors.append(f"| `{name}` | {number} | 0x{0x80040000 | int(number):08X} | {message} |")
    (reference / "errors.md").write_text("\n".join(errors) + "\n")

    nav = (ROOT / "docs" / "mkdocs.yml").read_text()
    member_nav = "".join(f"      - {m}: reference/{m}.md\n" for m in sorted(members))
    (output.parent / "mkdocs.yml").write_text(nav.replace("      - MEMBERS\n", member_nav))


if __name__ == "__main__":
    main()
