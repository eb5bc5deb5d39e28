#!/usr/bin/env python3
"""Makes docs/operations.md: every operation of the system and its name in C++.

An operation `first:second:` is a function called `first` whose parameters are named after the
rest. A declaration whose name does not follow from its operation says so in its comment, on a line
of its own: `Operation: initWithText:andImage:`.

    make_operations.py           writes the page
    make_operations.py --check   fails when the page is not what the headers say
"""
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs" / "operations.md"

HEAD = """# Operations

Made from the headers by `docs/make_operations.py`; do not edit. Left the operation under the
system's own name (`+` for one of the class), right the C++ function. Setters and getters of
properties stand among them.
"""

CLASS = re.compile(r"^(?:class|struct)\s+ZQTICKER_EXPORT\s+(\w+)(?:\s+final)?\s*(?::[^{;]*)?\{")
OPERATION = re.compile(r"^//\s*Operation:\s*((?:\+ )?\S+)\s*$", re.M)
FUNCTION = re.compile(
    r"^(?P<static>static\s+)?(?P<before>[\w:<>,*&\s\[\]]*?)(?P<name>~?\w+)\s*\((?P<params>.*)\)"
    r"\s*(?:const)?\s*(?:noexcept)?\s*(?:override)?\s*(?:final)?\s*(?:=\s*(?:0|default|delete))?$",
    re.S)
NOT_FUNCTIONS = {"Q_CLASSINFO", "Q_DECLARE_METATYPE", "static_assert", "Q_PROPERTY", "defined"}


def split_parameters(text):
    depth, start, parts = 0, 0, []
    for index, char in enumerate(text):
        depth += (char in "<([{") - (char in ">)]}")
        if char == "," and depth == 0:
            parts.append(text[start:index])
            start = index + 1
    parts.append(text[start:])
    return [part.strip() for part in parts if part.strip()]


def parameter_name(text):
    text = re.sub(r"=.*", "", text, flags=re.S).strip()
    match = re.search(r"[\s&*>](\w+)$", text)
    return match.group(1) if match else None


def selector(name, parameters):
    if not parameters:
        return name
    names = [parameter_name(parameter) or "" for parameter in parameters]
    return name + ":" + "".join(label + ":" for label in names[1:])


def statements(text):
    """Yields (comment, statement, position after it, opens a body) at the depth where it starts."""
    index, comment = 0, ""
    while index < len(text):
        if text[index].isspace():
            if text.startswith("\n\n", index):
                comment = ""
            index += 1
        elif text.startswith("//", index):
            end = text.find("\n", index)
            comment += text[index:end] + "\n"
            index = end
        elif text[index] == "#":
            end = index
            while True:
                end = text.find("\n", end)
                if text[end - 1] != "\\":
                    break
                end += 1
            index, comment = end, ""
        elif match := re.match(r"(public|protected|private):", text[index:]):
            yield "", match.group(0), index + match.end(), False
            index += match.end()
            comment = ""
        elif text[index] == "}":
            return
        else:
            start, depth = index, 0
            while index < len(text):
                if text.startswith("//", index):
                    index = text.find("\n", index)
                    continue
                char = text[index]
                depth += (char in "(") - (char in ")")
                if char in ";{" and depth == 0:
                    break
                index += 1
            statement = text[start:index]
            opens = index < len(text) and text[index] == "{"
            yield comment, statement, index + 1, opens
            if opens:
                level = 1
                index += 1
                while index < len(text) and level:
                    level += (text[index] == "{") - (text[index] == "}")
                    index += 1
                if index < len(text) and text[index] == ";":
                    index += 1
            else:
                index += 1
            comment = ""


def clean(statement):
    statement = re.sub(r"//[^\n]*", "", statement)
    statement = re.sub(r"\b(ZQTICKER_EXPORT|virtual|explicit|inline|constexpr|friend|extern)\b|"
                       r"\[\[\w+\]\]", "", statement)
    return " ".join(statement.split())


def operations_of(body, class_name):
    public = False
    for comment, statement, _, _ in statements(body):
        if match := re.match(r"(public|protected|private):", statement):
            public = match.group(1) == "public"
            continue
        if OPERATION.search(comment):
            statement = re.sub(r"^\s*template <[^>]*>", "", statement)
        if not public or statement.lstrip().startswith(("template", "using", "enum", "struct",
                                                         "class", "friend", "typedef")):
            continue
        declaration = clean(statement)
        match = FUNCTION.match(declaration)
        if not match or match.group("name") in NOT_FUNCTIONS or "operator" in declaration:
            continue
        name = match.group("name")
        explicit = OPERATION.search(comment)
        # A constructor counts where it says which operation it stands for.
        if (name == class_name and not explicit) or name.startswith("~"):
            continue
        parameters = split_parameters(match.group("params"))
        prefix = "+ " if match.group("static") else ""
        operation = explicit.group(1) if explicit else selector(name, parameters)
        if explicit:
            prefix = ""
        names = ", ".join(parameter_name(parameter) or "" for parameter in parameters)
        yield f"{prefix}{operation}", f"{name}({names})"


DEFINITION = re.compile(r"^#define (\w+)\(([\w, ]+)\)((?:[^\n]*\\\n)*[^\n]*)$", re.M)


def macros_of(text):
    """The function-like macros of a header: name -> (parameters, text on one line)."""
    return {name: (parameters.split(", "), body.replace("\\\n", " "))
            for name, parameters, body in DEFINITION.findall(text)}


def expanded(text, lists):
    """Declarations that a header makes from a list of attributes, written out."""
    own = macros_of(text)

    def entries(name):
        parameter, body = lists[name][0][0], lists[name][1]
        for inner, arguments in re.findall(r"(\w+)\(([^()]*)\)", body):
            if inner == parameter:
                yield [argument.strip() for argument in arguments.split(",")]
            elif inner in lists:
                yield from entries(inner)

    def expand(match):
        if match.group(1) not in lists or match.group(2) not in own:
            return match.group(0)
        parameters, body = own[match.group(2)]
        out = []
        for arguments in entries(match.group(1)):
            declaration = body
            for parameter, argument in zip(parameters, arguments):
                declaration = re.sub(rf"(?:##)?\b{parameter}(?:##|\b)", argument, declaration)
            out.append(declaration)
        return "\n".join(out)

    return re.sub(r"^ *(ZQ_\w+)\((\w+)\)$", expand, text, flags=re.M)


def rows_of(header, lists):
    text = re.sub(r"^ *(Q_GADGET|Q_OBJECT|ZQ_OBJECT|Q_CLASSINFO\([^)]*\))$", "", header.read_text(),
                  flags=re.M)
    text = re.sub(r"^ *Q_PROPERTY\([^)]*\)$", "", expanded(text, lists), flags=re.M)
    for match in re.finditer(r"(?:class|struct)\s+ZQTICKER_EXPORT\s+\w+[^;{]*\{", text):
        class_name = re.match(r"(?:class|struct)\s+ZQTICKER_EXPORT\s+(\w+)", match.group(0)).group(1)
        rows = list(operations_of(text[match.end():], class_name))
        if match.group(0).startswith("struct"):
            rows = list(operations_of("public:\n" + text[match.end():], class_name))
        if rows:
            yield class_name, rows
    # Functions outside classes stand at the margin and are exported.
    outside = []
    for match in re.finditer(r"((?:^//[^\n]*\n)*)^ZQTICKER_EXPORT\s+([^;{]*\([^;{]*)[;{]", text, re.M):
        declaration = clean(match.group(2))
        if not (found := FUNCTION.match(declaration)):
            continue
        parameters = split_parameters(found.group("params"))
        names = ", ".join(parameter_name(parameter) or "" for parameter in parameters)
        explicit = OPERATION.search(match.group(1))
        operation = explicit.group(1) if explicit else found.group("name")
        row = (operation, f"{found.group('name')}({names})")
        if row not in outside:
            outside.append(row)
    if outside:
        yield "Functions", outside


def page():
    out = [HEAD]
    headers = [header for header in sorted((ROOT / "zqticker").rglob("*.h"))
               if not header.name.endswith("_p.h")]
    # Lists of attributes, to which a macro is given for each of them.
    lists = {}
    for header in headers:
        lists.update({name: macro for name, macro in macros_of(header.read_text()).items()
                      if macro[0] == ["X"]})
    for header in headers:
        for class_name, rows in rows_of(header, lists):
            out.append(f"## {class_name}\n")
            out.append(f"`{header.relative_to(ROOT)}`\n")
            out.append("| operation | C++ |\n|---|---|")
            seen = set()
            for operation, function in rows:
                if (operation, function) not in seen:
                    seen.add((operation, function))
                    out.append(f"| `{operation}` | `{function}` |")
            out.append("")
    return "\n".join(out)


def main():
    made = page()
    if sys.argv[1:] == ["--check"]:
        if PAGE.read_text() != made:
            sys.exit(f"{PAGE.relative_to(ROOT)} is not what the headers say; run {sys.argv[0]}")
    elif not sys.argv[1:]:
        PAGE.write_text(made)
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
