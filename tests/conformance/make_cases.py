#!/usr/bin/env python3
"""Makes cases/more_*.jsonl: cases of every operation, from models of their rules in this file.

The models are as simple as they can be, and know nothing of the library: where they and the library
agree, two readings of the rules do. A string here is a Python string of UTF-16 code units, lone
surrogates included. Everything is drawn from generators with fixed seeds, one a file.

    make_cases.py           writes the files
    make_cases.py --check   fails when they are not what this program makes
"""
import json
import random
import re
import struct
import sys
import unicodedata
from datetime import datetime, timedelta
from decimal import ROUND_HALF_UP, Context, Decimal
from pathlib import Path
from zoneinfo import ZoneInfo

CASES = Path(__file__).resolve().parent / "cases"

# ---- Characters -------------------------------------------------------------------------------

NEWLINES = "\n\x0b\x0c\r\x85\u2028\u2029"


def units(text):
    """The text with each character beyond U+FFFF as two."""
    data = text.encode("utf-16-le", "surrogatepass")
    return "".join(chr(unit) for (unit,) in struct.iter_unpack("<H", data))


def characters(string):
    """Pairs (length in units, character) of a string."""
    index = 0
    while index < len(string):
        pair = string[index:index + 2]
        if len(pair) == 2 and "\ud800" <= pair[0] <= "\udbff" and "\udc00" <= pair[1] <= "\udfff":
            yield 2, pair.encode("utf-16-le", "surrogatepass").decode("utf-16-le")
            index += 2
        else:
            yield 1, string[index]
            index += 1


def is_letter(character):
    return unicodedata.category(character)[0] in "LM"


def is_space(character):
    return character == "\t" or unicodedata.category(character) == "Zs"


def is_space_or_newline(character):
    return is_space(character) or character in NEWLINES


SETS = {
    "letters": is_letter,
    "whitespace": is_space,
    "whitespaceAndNewline": is_space_or_newline,
    "decimalDigits": lambda character: unicodedata.category(character) == "Nd",
}


def member_of(description):
    if "set" in description:
        return SETS[description["set"]]
    listed = {character for _, character in characters(description["characters"])}
    return lambda character: character in listed


# ---- Scanner ----------------------------------------------------------------------------------


class Scanner:
    def __init__(self, string, skipped=is_space_or_newline):
        self.string, self.location, self.skipped = string, 0, skipped

    def _run(self, start, member):
        for length, character in characters(self.string[start:]):
            if not member(character):
                break
            start += length
        return start

    def _start(self):
        return self._run(self.location, self.skipped) if self.skipped else self.location

    def _take(self, start, end):
        if start == end:
            return None
        self.location = end
        return self.string[start:end]

    def at_end(self):
        return self._start() == len(self.string)

    def characters_from(self, member):
        start = self._start()
        return self._take(start, self._run(start, member))

    def up_to_characters(self, member):
        return self.characters_from(lambda character: not member(character))

    def string_at(self, text):
        start = self._start()
        return self._take(start, start + len(text)) if self.string.startswith(text, start) else None

    def up_to_string(self, text):
        start = self._start()
        end = self.string.find(text, start)
        return self._take(start, len(self.string) if end < 0 else end)

    def character_at_location(self):
        return None if self.at_end() else self.string[self.location]


class Raised(Exception):
    pass


# ---- Strings ----------------------------------------------------------------------------------


def initial_characters(string):
    result, word, scanner = "", "", Scanner(string)
    while not scanner.at_end():
        scanner.up_to_characters(is_letter)
        word = scanner.characters_from(is_letter) or word
        if not word:
            raise Raised("RangeException")
        result += word[0]
    return result


def lines(string):
    result, position = [], 0
    while True:
        match = re.compile("\r\n|[\n\r\u2028\u2029]").search(string, position)
        contents_end = match.start() if match else len(string)
        end = match.end() if match else len(string)
        result.append(string[position:contents_end if contents_end else end])
        position = end
        if position >= len(string):
            return result


def unsigned_long(string):
    digits = Scanner(string)
    digits.location = digits._start()
    match = re.compile(r"[+-]?[0-9]+").match(string, digits.location)
    value = int(match.group()) if match else 0
    return value if 0 <= value < 1 << 63 else 0


def first_components(string, count, separator, ellipsis=""):
    components = string.split(separator)
    return string if len(components) <= count else separator.join(components[:count]) + ellipsis


def without_html(string, delimiter):
    result, scanner = "", Scanner(string)
    while True:
        text = scanner.up_to_string("<")
        if scanner.up_to_string(">"):
            scanner.string_at(">")
        if not text:
            return result
        if result and delimiter is not None:
            result += delimiter
        result += text


def first_url_component(string):
    scanner = Scanner(string)
    scheme, host = scanner.up_to_string("://") or "", ""
    if scheme:
        scanner.string_at("://")
        host = scanner.up_to_string("/") or ""
    return scheme + "://" + host


PREDEFINED = {"amp": "&", "lt": "<", "gt": ">", "quot": '"', "apos": "'"}


def escaped(string):
    names = {character: f"&{name};" for name, character in PREDEFINED.items()}
    return "".join(names.get(unit, unit) for unit in string)


def unescaped(string, entities):
    def expansion(match):
        name = match.group(1)
        if name.startswith("#"):
            number = int(name[2:], 16) if name[1] == "x" else int(name[1:])
            is_character = 0 < number <= 0x10FFFF and not 0xD800 <= number <= 0xDFFF
            return units(chr(number)) if is_character else match.group()
        return {**entities, **PREDEFINED}.get(name, match.group())

    return re.sub(r"&(#[0-9]+|#x[0-9A-Fa-f]+|[^&;#][^&;]*);", expansion, string)


def trimmed(string):
    while string and is_space(string[0]):
        string = string[1:]
    while string and is_space(string[-1]):
        string = string[:-1]
    return string


def replaced(string, member, replacement):
    result = ""
    scanner = Scanner(string, lambda c: is_space_or_newline(c) and not member(c))
    while not scanner.at_end():
        result += scanner.up_to_characters(member) or ""
        if scanner.characters_from(member):
            result += replacement
    return result


def only(string, member):
    kept, scanner = "", Scanner(string)
    while not scanner.at_end():
        kept += scanner.characters_from(member) or ""
        scanner.up_to_characters(member)
    return kept


def compared(a, b):
    def order(x, y):
        return (x > y) - (x < y)

    def tokens(string):
        return [(int(digits), ) if digits else unit
                for digits, unit in re.findall(r"([0-9]+)|([\s\S])", string)]

    for x, y in zip(tokens(a), tokens(b)):
        if isinstance(x, tuple) and isinstance(y, tuple):
            result = order(x, y)
        else:
            # Beside another character, digits are only characters.
            result = order(x if isinstance(x, str) else "0", y if isinstance(y, str) else "0")
        if result:
            return result
    return order(len(tokens(a)), len(tokens(b))) or order(a, b)


def hex_bytes(string):
    if not string:
        return None
    if any(unit > "\x7f" for unit in string):
        raise Raised("InvalidArgumentException")
    size = (len(string) + 1) // 2
    digits = [int(unit, 16) if unit in "0123456789abcdefABCDEF" else 0
              for unit in string.partition("\0")[0]]
    read = [sum(d << 4 * (len(digits[i:i + 2]) - 1 - k) for k, d in enumerate(digits[i:i + 2]))
            for i in range(0, len(digits), 2)]
    return {"hex": bytes(read + [0] * (size - len(read))).hex()}


# ---- Patterns, sizes, numbers -----------------------------------------------------------------

MAPPING = {"%": "%", "a": "EEE", "A": "EEEE", "b": "MMM", "B": "MMMM", "c": "", "d": "dd",
           "e": "d", "f": "FFFF", "F": "SSS", "H": "HH", "I": "hh", "j": "DDD", "m": "MM",
           "M": "mm", "p": "a", "S": "ss", "w": "e", "x": "", "X": "", "y": "yy", "Y": "yyyy",
           "z": "ZZ", "Z": "zzzz"}


def converted(string, date_format, time_format):
    result, literal, piece, scanner = "", "", None, Scanner(string, None)
    while not scanner.at_end():
        piece = scanner.up_to_string("%") or piece
        literal += piece or ""
        if not scanner.string_at("%"):
            continue
        piece = scanner.character_at_location()
        scanner.location += 1 if piece else 0
        replacement = {**MAPPING, "x": date_format, "X": time_format}.get(piece)
        if replacement is not None:
            if literal:
                result += f"'{literal}'"
                literal = ""
            result += replacement
    return result + (f"'{literal}'" if literal else "")


def size_text(number, template):
    if number < 0:
        raise Raised("InternalInconsistencyException")
    size, unit = float(number), -1
    while size >= 1024:
        size, unit = size / 1024, unit + 1
    if unit > 3:
        raise Raised("RangeException")
    text = "%.1f %sB" % (size, "KMGT"[unit] if unit >= 0 else "")
    return text if template is None else template.replace("%@", text)


NUMBER = re.compile(r"[+-]?(?:[0-9]+\.?[0-9]*|\.[0-9]+)(?:[eE][+-]?[0-9]+)?")


def read_size(string):
    scanner = Scanner(string)
    match = NUMBER.match(string, scanner._start())
    context = Context(prec=38, rounding=ROUND_HALF_UP)
    number = context.create_decimal(match.group()) if match else Decimal(0)
    if match:
        scanner.location = match.end()
    unit = (scanner.up_to_string("\n") or "").upper()
    for _ in range({"KB": 1, "MB": 2, "GB": 3, "TB": 4}.get(unit, 0)):
        number = context.multiply(number, Decimal(1024))
    return format(number, "f")


def single(number):
    """Rounded to single precision."""
    try:
        return struct.unpack("f", struct.pack("f", number))[0]
    except OverflowError:
        return float("inf") if number > 0 else float("-inf")


def float_value(value):
    if isinstance(value, str):
        stripped = value.lstrip()
        match = NUMBER.match(stripped)
        return single(float(match.group())) if match else 0.0
    if isinstance(value, dict):
        return float(value["float"]) if "float" in value else None
    return single(float(value)) if isinstance(value, (bool, int, float)) else None


def int_value(value):
    if isinstance(value, str):
        match = re.match(r"\s*([+-]?[0-9]+)", value)
        return int(match.group(1)) if match else 0
    if isinstance(value, dict) and "float" in value:
        return {"inf": 2**31 - 1, "-inf": -2**31, "nan": 0}[value["float"]]
    return int(value) if isinstance(value, (bool, int, float)) else None


def rect_text(sides):
    return " ".join("%.6f" % side for side in sides)


def rect_of(string):
    if string is None:
        return {"rect": [0.0] * 4}
    pieces = string.split(" ")
    if len(pieces) < 4:
        raise Raised("RangeException")
    return {"rect": [float_value(piece) for piece in pieces[:4]]}


def unique_name(path, delimiter, existing):
    if path not in existing:
        return path
    folder, slash, name = path.rpartition("/")
    point = name.rfind(".")
    has_extension = name[:max(point, 0)].strip(".") != ""
    base, extension = (name[:point], name[point:]) if has_extension else (name, "")
    number = 1
    while (found := f"{folder}{slash}{base}{delimiter}{number}{extension}") in existing:
        number += 1
    return found


# ---- Dates ------------------------------------------------------------------------------------

REFERENCE = datetime(2001, 1, 1)


def local_time(instant, zone):
    """What the zone's clocks show, without the fraction of a second."""
    utc = REFERENCE + timedelta(seconds=instant // 1)
    return utc.replace(tzinfo=ZoneInfo("UTC")).astimezone(ZoneInfo(zone)).replace(tzinfo=None)


def instant_of(local, zone):
    """Of a time that is skipped, as much later; of one that comes twice, the second."""
    offsets = [local.replace(tzinfo=ZoneInfo(zone), fold=fold).utcoffset() for fold in (0, 1)]
    return (local - min(offsets) - REFERENCE).total_seconds()


def carried(year, month, day, hour=0, minute=0, second=0):
    year, month = year + (month - 1) // 12, (month - 1) % 12 + 1
    return datetime(year, month, 1) + timedelta(days=day - 1, hours=hour, minutes=minute,
                                                seconds=second)


def added(local, years=0, months=0, days=0, hours=0, minutes=0, seconds=0):
    return carried(local.year + years, local.month + months, local.day + days, local.hour + hours,
                   local.minute + minutes, local.second + seconds)


def midnight(local, day=None):
    return datetime(local.year, local.month, day or local.day)


# ---- Cases ------------------------------------------------------------------------------------


class File:
    """The cases of a file, made from a generator of its own."""

    def __init__(self, name):
        self.name, self.random, self.cases = name, random.Random("zqticker " + name), []

    def add(self, operation, receiver=None, args=(), environment=None, answer=None, **results):
        case = {"id": f"{self.name}-{len(self.cases) + 1:04}", "op": operation}
        if receiver is not None:
            case["receiver"] = receiver
        case["args"] = list(args)
        if environment:
            case["environment"] = environment
        try:
            case.update({"value": answer()} if answer else results)
        except Raised as exception:
            case["raises"] = str(exception)
        self.cases.append(case)

    def text(self):
        return "".join(json.dumps(case, ensure_ascii=True) + "\n" for case in self.cases)

    def string(self, alphabet, longest):
        return "".join(self.random.choice(alphabet) for _ in range(self.random.randint(0, longest)))


# What strings are made of: letters, marks, digits, spaces, line ends, signs, pairs, lone halves.
ALPHABET = [units(piece) for piece in
            ["a", "b", "Z", "é", "e\u0301", "ß", "İ", "ж", "名", "\U0001D49C", "\U00010400", "0",
             "7", "42", "\u0663", "²", " ", "  ", "\t", "\u00a0", "\u2003", "\u3000", "\n", "\r",
             "\r\n", "\u2028", "\u2029", "\x85", "\x0b", "-", ".", ",", "'", "&", "<", ">", "%",
             "\U0001F600", "\ud83d", "\ude00", "\0", "\ufeff", "\u200b"]]
SET_DESCRIPTIONS = [{"set": name} for name in SETS] + [
    {"characters": units(listed)} for listed in
    ["", "-", " -", "ab", "\n", " \t\n", "e\u0301", "\U0001F600", "\ud83d", "0123456789.,"]]


def make_strings():
    file = File("more_strings")
    draw = file.random
    for _ in range(40):
        string = file.string(ALPHABET, 8)
        file.add("isEmptyString", string, answer=lambda: string == "")
        file.add("isValidString", string, answer=lambda: string != "")
        file.add("lastCharacter", string, answer=lambda: string[-1:] or None)
        file.add("stringByAppendingEllipsis", string, answer=lambda: string + "\u2026")
        file.add("validStringFromString:", args=[string], answer=lambda: string)
        file.add("stringByEscapingEntities", string, answer=lambda: escaped(string))
    for _ in range(120):
        string = file.string(ALPHABET, 12)
        file.add("initialCharacters", string, answer=lambda: initial_characters(string))
        file.add("stringByTrimmingWhitespace", string, answer=lambda: trimmed(string))
    for _ in range(100):
        string = file.string(["a", "b", "\n", "\r", "\r\n", "\u2028", "\u2029", "\x85", " "], 9)
        file.add("componentsSeparatedByLineDelimiter", string, answer=lambda: lines(string))
    for _ in range(80):
        string = file.string([" ", "\n", "+", "-", "0", "1", "9", "18446744073709551616", "x",
                              "9223372036854775807", "9223372036854775808", "\u0663"], 4)
        file.add("unsignedLongValue", string, answer=lambda: unsigned_long(string))
    for string in ["", "0", "00", " 0", "0 ", "no", "NO", "false", "0.0", "\u0660", "true", "yes"]:
        file.add("boolValue", string, answer=lambda: string != "0")
    for _ in range(40):
        string = file.string(["a", "b", ".", "\u2024", " "], 7)
        file.add("lastKeyComponent", string, answer=lambda: string.rpartition(".")[2])
    for _ in range(80):
        string = file.string(["a", "b", ",", ", ", ",,", "\ud83d", "\ude00"], 8)
        separator = draw.choice([",", ", ", ",,", "a", "\ud83d"])
        count, ellipsis = draw.randint(0, 5), draw.choice(["", "...", "\u2026", ","])
        file.add("stringWithFirst:componentsSeparatedByString:", string, [count, separator],
                 answer=lambda: first_components(string, count, separator))
        file.add("stringWithFirst:componentsSeparatedByString:ellipsisString:", string,
                 [count, separator, ellipsis],
                 answer=lambda: first_components(string, count, separator, ellipsis))
    for _ in range(150):
        string = file.string(["<", ">", "<b>", "</b>", "text", " ", "\n", "é", "<>", "a<b"], 9)
        delimiter = draw.choice([None, "", " ", " | ", "<"])
        file.add("stringByRemovingHTMLUsingDelimiter:", string, [delimiter],
                 answer=lambda: without_html(string, delimiter))
    for _ in range(100):
        string = file.string(["http", "://", "/", ":", "host", " ", "\n", "a.b"], 7)
        file.add("stringWithFirstURLComponent", string, answer=lambda: first_url_component(string))
    pieces = ["&", ";", "#", "x", "X", "amp", "&amp;", "&lt;", "&gt;", "&quot;", "&apos;", "&#233;",
              "&#xE9;", "&#xe9;", "&#128512;", "&#x1F600;", "&#0;", "&#xD83D;", "&#1114112;",
              "&#00065;", "&copy;", "&Amp;", "&unknown;", "&#99999999999999999999;", "a", " ", "é"]
    for _ in range(120):
        string = file.string(pieces, 6)
        entities = {"copy": "\u00a9", "amp": "never", "unknown": "&copy;"}
        file.add("stringByUnescapingEntities", string, answer=lambda: unescaped(string, {}))
        file.add("stringByUnescapingEntities:", string, [{"dictionary": entities}],
                 answer=lambda: unescaped(string, entities))
        file.add("stringByEscapingEntities:", string, [None], answer=lambda: escaped(string))
    for _ in range(250):
        string, chosen = file.string(ALPHABET, 10), draw.choice(SET_DESCRIPTIONS)
        replacement = draw.choice(["", "_", " ", "..", "-"])
        file.add("stringByReplacingCharactersInSet:withString:", string, [chosen, replacement],
                 answer=lambda: replaced(string, member_of(chosen), replacement))
    for _ in range(200):
        alphabet = ["a", "b", "0", "00", "1", "9", "10", "99999999999999999999", "File", " ", "é"]
        a, b = file.string(alphabet, 5), file.string(alphabet, 5)
        if draw.random() < 0.5:
            b = a.replace("1", "01") if draw.random() < 0.5 else a + b
        file.add("numericCompare:", a, [b], answer=lambda: compared(a, b))
    for _ in range(100):
        string = file.string(list("0123456789abcdefABCDEFgz -") + ["\0", "é"], 9)
        file.add("hexValue", string, answer=lambda: hex_bytes(string))
    for length, allowed in [(0, ""), (0, "abc"), (1, "z"), (1000, "é"), (3, "\ud83d")]:
        file.add("randomStringOfLength:withCharacters:", args=[length, allowed],
                 answer=lambda: allowed[:1] * length)
    file.add("randomStringOfLength:withCharacters:", args=[1, ""],
             raises="InvalidArgumentException")
    return file


def make_mutable_strings():
    file = File("more_mutable_strings")
    draw = file.random
    for _ in range(40):
        string, other = file.string(ALPHABET, 8), file.string(ALPHABET, 4)
        index = draw.choice([0, 1, 2, len(string), len(string) + 1, 4294967295])
        file.add("appendNilString:", string, [other], receiverAfter=string + other)
        file.add("appendNilString:", string, [None], receiverAfter=string)
        file.add("deleteCharactersFromIndex:", string, [index], receiverAfter=string[:index])
        file.add("deleteAllCharacters", string, receiverAfter="")
    for _ in range(250):
        string, chosen = file.string(ALPHABET, 10), draw.choice(SET_DESCRIPTIONS)
        file.add("removeCharactersNotInSet:", string, [chosen],
                 receiverAfter=only(string, member_of(chosen)))
    return file


def make_scanner():
    file = File("more_scanner")
    skips = [None, "whitespace", "whitespaceAndNewline", "letters"]
    for _ in range(150):
        # Pairs whole: halves that a location falls between are another matter.
        string = file.string([piece for piece in ALPHABET if len(piece) == 1], 6)
        if any("\ud800" <= unit <= "\udfff" for unit in string):
            continue
        skip, location = file.random.choice(skips), file.random.randint(0, len(string))
        scanner = Scanner(string, SETS[skip] if skip else None)
        scanner.location = location
        found = scanner.character_at_location()
        after = location + (found is not None)
        receiver = {"scanner": {"string": string, "location": location, "skip": skip}}
        file.add("characterAtScanLocation", receiver, value=found, locationAfter=location)
        file.add("scanCharacterIntoString:", receiver, value=found is not None, out=found,
                 locationAfter=after)
        file.add("advance", receiver, value=found is not None, locationAfter=after)
    return file


def make_time_patterns():
    file = File("more_time_patterns")
    formats = [("MMMM d, y", "h:mm:ss a z"), ("", "HH:mm"), ("d. MMMM y", "HH 'Uhr' z")]
    pieces = ["%" + letter for letter in MAPPING] + ["%q", "%", "%é", "%\n", "a", " ", "'", ":",
                                                     "é", "%\ud83d", "\ude00", "\n"]
    for count in range(300):
        date_format, time_format = file.random.choice(formats)
        string = pieces[count] if count < len(pieces) else file.string(pieces, 8)
        receiver = {"ZQTimeFormatPatternConverter": {"localDateFormat": date_format,
                                                     "localTimeFormat": time_format}}
        file.add("stringByReplacingOldTimeFormatPatternsInString:", receiver, [string],
                 answer=lambda: converted(string, date_format, time_format))
    return file


def make_file_sizes():
    file = File("more_file_size")
    draw = file.random
    edges = [2**power + delta for power in range(0, 63) for delta in (-1, 0, 1)]
    numbers = edges + [draw.randrange(1 << draw.randint(1, 50)) for _ in range(150)] + [
        -1, -2**63, 2**63 - 1]
    for number in numbers:
        template = draw.choice([None, None, "(%@)", "%@", "Size: %@", "<%@>\n", "é %@ \ud83d"])
        receiver = {"ZQFileSizeFormatter": {"formatString": template}}
        value = draw.choice([number, str(number)])
        file.add("stringForObjectValue:", receiver, [value],
                 answer=lambda: size_text(number, template))
    receiver = {"ZQFileSizeFormatter": {"formatString": None}}
    for value, number in [(0.99, 0), (1023.99, 1023), (2048.5, 2048), (" \t77 apples", 77),
                          ("1e3", 1), ("+5", 5), ("x", 0), ("", 0), (True, 1), (False, 0),
                          ({"decimal": "1536.9"}, 1536), ({"decimal": "0"}, 0), (-0.5, 0)]:
        file.add("stringForObjectValue:", receiver, [value], answer=lambda: size_text(number, None))
    for value in [None, [], [1], {"hex": "01"}, {"dictionary": {"a": 1}}]:
        file.add("stringForObjectValue:", receiver, [value], value=None)
    signs, spaces = ["", "-", "+"], ["", " ", "\n", "\t ", "\u00a0", "\r\n"]
    suffixes = ["", "b", "B", "K", "kb", "KB", "Mb", "gB", "TB", "PB", "KiB", "KB ", "KB\n", "KB\r",
                "MB\nGB", "mb.", "\ufb00", "e", "E+", "k b"]
    for _ in range(400):
        digits = draw.choice(["", str(draw.randrange(10**draw.randint(1, 20))), "0" * 20 + "7",
                              "9" * 38, "1" * 39, "5" * 45])
        fraction = draw.choice(["", ".", "." + str(draw.randrange(10**6)), "." + "3" * 40])
        exponent = draw.choice(["", "", "", "e2", "E-3", "e+1"])
        string = (draw.choice(spaces) + draw.choice(signs) + digits + fraction + exponent +
                  draw.choice(spaces) + draw.choice(suffixes))
        file.add("getObjectValue:forString:", receiver, [string], value=True,
                 out={"decimal": read_size(string)})
    return file


def make_transformers():
    file = File("more_transformers")
    values = [None, 0, 1, -1, 5, 0.5, -0.5, 0.999, 1e10, -1e300, 16777217, 2147483647, -2147483648,
              "", "0", "5", " 5 ", "5.5", "-5", "abc", "1e2", "0x10", ".5", "\n7", True, False,
              [], {"hex": "05"}, {"float": "inf"}, {"float": "-inf"}, {"float": "nan"}, 3.4e38, 0.1]
    for value in values:
        number = float_value(value)
        for boundary in [0, 5, -5, 0.1, 0.5, 16777216, -2147483648, 1e10]:
            limit = single(float(boundary))
            file.add("transformedValue:", {"ZQIsGreaterOrEqualValueTransformer":
                                           {"boundary": boundary}}, [value],
                     value=number is not None and number >= limit)
            file.add("transformedValue:", {"ZQIsLessThanValueTransformer": {"boundary": boundary}},
                     [value], value=number is not None and number < limit)
        whole = int_value(value)
        file.add("transformedValue:", {"ZQIsNotZero": {}}, [value],
                 value=whole is not None and whole != 0)
    for boundary in [0, 1, -2.5, 0.1, 1e10, 16777217, 1e-50]:
        for name in ["ZQIsGreaterOrEqualValueTransformer", "ZQIsLessThanValueTransformer"]:
            file.add("boundary", {name: {"boundary": boundary}}, value=single(float(boundary)))
    return file


def make_rectangles():
    file = File("more_rectangles")
    draw = file.random
    numbers = [0.0, -0.0, 1.0, 0.5, 1e-7, 5e-7, 4.9e-7, 1e21, 123456789.987654321, 1 / 3, 2.5e-6]
    for _ in range(60):
        sides = [draw.choice(numbers) * draw.choice([1, -1, 10, draw.random()]) for _ in range(4)]
        file.add("ZQStringFromRect", args=[{"rect": sides}], answer=lambda: rect_text(sides))
    pieces = ["1", "-2.5", "+3", ".5", "5.", "1e2", "1e", "e1", "", "x", "0x10", "1,5", "--1", "7x",
              "12345678", "0.1", "\t4", "1e-3", "\u0663", "inf", "nan"]
    for _ in range(150):
        string = " ".join(draw.choice(pieces) for _ in range(draw.randint(0, 6)))
        file.add("ZQRectFromString", args=[string], answer=lambda: rect_of(string))
    file.add("ZQRectFromString", args=[None], answer=lambda: rect_of(None))
    return file


def make_file_names():
    file = File("more_file_names")
    draw = file.random
    names = ["a.txt", "a", ".a", ".a.txt", "a.b.c", "..x", "a b.c d", "%@.%i", "é.\u00fc", "d/a.b",
             "d.e/a", "n-1.txt", "n.txt"]
    for _ in range(120):
        path, delimiter = draw.choice(names), draw.choice(["-", "", " ", ".", "--", "%@", "é"])
        folders = sorted({path.rpartition("/")[0]} - {""})
        existing = {path} if draw.random() < 0.9 else set()
        for _ in range(draw.randint(0, 12)):
            taken = unique_name(path, draw.choice([delimiter, "-"]), existing)
            existing.add(taken)
        case = {"files": sorted(existing), "folders": folders}
        if draw.random() < 0.2 and existing:
            case = {"files": [], "folders": folders + sorted(existing)}
        file.add("uniqueFileNameAtPath:delimiter:", args=[path, delimiter], environment=case,
                 answer=lambda: unique_name(path, delimiter, existing))
        file.add("uniqueFileNameAtPath:", args=[path], environment=case,
                 answer=lambda: unique_name(path, "-", existing))
    return file


# Zones and years whose rules have long been settled.
ZONES = ["UTC", "Europe/Berlin", "America/New_York", "Asia/Kathmandu", "Australia/Lord_Howe",
         "Asia/Tokyo", "Pacific/Auckland", "America/St_Johns"]
# Hours around changes of the clocks, ends of months and years, and leap days, in UTC.
MOMENTS = [datetime(*numbers) for numbers in [
    (2008, 2, 28, 12), (2008, 2, 29, 23), (2009, 2, 28, 5), (2009, 12, 31, 23), (2010, 1, 1),
    (2000, 2, 29), (2009, 3, 29, 1), (2009, 3, 29, 0), (2009, 10, 25, 0), (2009, 10, 25, 1),
    (2009, 3, 8, 6), (2009, 3, 8, 7), (2009, 11, 1, 5), (2009, 11, 1, 6), (2010, 4, 3, 15),
    (2001, 1, 1), (1999, 12, 31, 23), (2012, 6, 30, 23)]]


def draw_instant(file):
    moment = file.random.choice(MOMENTS) + timedelta(minutes=file.random.randint(-1500, 1500))
    fraction = file.random.choice([0, 0, 0, 0.25, 0.5, 59.75])
    return (moment - REFERENCE).total_seconds() + fraction


def make_dates():
    file = File("more_dates")
    draw = file.random

    def calendar_date(instant, zone):
        return {"calendarDate": {"instant": instant, "timeZone": zone}}

    for _ in range(80):
        instant, zone, default = draw_instant(file), draw.choice(ZONES), draw.choice(ZONES)
        local, environment = local_time(instant, zone), {"timeZone": default}
        receiver = calendar_date(instant, zone)
        day, month = midnight(local), midnight(local, 1)

        def result(start, **more):
            # The later boundary is reckoned from the earlier one as the clocks there show it.
            first = instant_of(start, default)
            shown = local_time(first, default)
            return calendar_date(instant_of(added(shown, **more), default) if more else first,
                                 default)

        file.add("startOfDay", receiver, environment=environment, value=result(day))
        file.add("startOfNextDay", receiver, environment=environment, value=result(day, days=1))
        file.add("startOfMonth", receiver, environment=environment, value=result(month))
        file.add("startOfNextMonth", receiver, environment=environment,
                 value=result(month, months=1))
        file.add("dateByRemovingTimeFromDate:", args=[{"date": instant}], environment=environment,
                 value=calendar_date(
                     instant_of(midnight(local_time(instant, default)), default), default))
        other, other_zone = instant + draw.choice([0, 3600, -86400]), draw.choice(ZONES)
        file.add("equalToDay:", receiver, [calendar_date(other, other_zone)],
                 value=local.date() == local_time(other, other_zone).date())
        file.add("minuteOfDay", receiver, value=local.hour * 60 + local.minute)
    return file


def make_gregorian():
    file = File("more_gregorian")
    draw = file.random
    for _ in range(80):
        zone = draw.choice(ZONES)
        calendar = {"calendar": {"identifier": "gregorian", "timeZone": zone}}
        numbers = [draw.randint(1991, 2019), draw.randint(-14, 27), draw.randint(-40, 70)]
        time = [draw.randint(-30, 50), draw.randint(-70, 130), draw.randint(-4000, 4000)]
        file.add("dateFromYear:month:day:", calendar, numbers,
                 value={"date": instant_of(carried(*numbers), zone)})
        file.add("dateFromYear:month:day:hour:minute:second:", calendar, numbers + time,
                 value={"date": instant_of(carried(*numbers, *time), zone)})
        instant = draw_instant(file)
        local = local_time(instant, zone)
        date = {"year": local.year, "month": local.month, "day": local.day}
        clock = {"hour": local.hour, "minute": local.minute, "second": local.second}
        for operation, fields in [("gregorianDateComponentsForDate:", date),
                                  ("gregorianTimeComponentsForDate:", clock),
                                  ("gregorianDateAndTimeComponentsForDate:", {**date, **clock})]:
            file.add(operation, calendar, [{"date": instant}], value={"components": fields})
    for year in [1, 4, 100, 400, 1000, 1500, 1582, 1583, 1700, 9999]:
        calendar = {"calendar": {"identifier": "gregorian", "timeZone": "UTC"}}
        for month, day in [(1, 1), (2, 28), (2, 29), (10, 10), (12, 31)]:
            file.add("dateFromYear:month:day:", calendar, [year, month, day],
                     value={"date": instant_of(carried(year, month, day), "UTC")})
    for identifier in ["buddhist", "hebrew", "islamic", "japanese", "persian", "coptic"]:
        calendar = {"calendar": {"identifier": identifier, "timeZone": "UTC"}}
        file.add("dateFromYear:month:day:", calendar, [2009, 1, 1],
                 raises="InternalInconsistencyException")
    return file


def make_date_compatibility():
    file = File("more_date_compatibility")
    draw = file.random
    for _ in range(80):
        instant, zone = draw_instant(file), draw.choice(ZONES)
        environment = {"timeZone": zone, "locale": "en_US"}
        local, receiver = local_time(instant, zone), {"date": instant}
        amounts = [draw.randint(-9, 9), draw.randint(-30, 30), draw.randint(-400, 400),
                   draw.randint(-50, 50), draw.randint(-90, 90), draw.randint(-90, 90)]
        amounts = [amount if draw.random() < 0.4 else 0 for amount in amounts]
        file.add("dateByAddingYears:months:days:hours:minutes:seconds:", receiver, amounts,
                 environment, value={"date": instant_of(added(local, *amounts), zone)})
        other = draw.choice(ZONES)
        numbers = [draw.randint(1991, 2019), draw.randint(-3, 15), draw.randint(-5, 40),
                   draw.randint(-5, 30), draw.randint(-5, 70), draw.randint(-5, 70)]
        file.add("dateWithYear:month:day:hour:minute:second:timeZone:",
                 args=numbers + [{"timeZone": other}], environment=environment,
                 value={"date": instant_of(carried(*numbers), other)})
        for operation, value in [("dayOfCommonEra", local.toordinal()),
                                 ("yearOfCommonEra", local.year), ("monthOfYear", local.month),
                                 ("dayOfMonth", local.day), ("hourOfDay", local.hour),
                                 ("minuteOfHour", local.minute), ("secondOfMinute", local.second),
                                 ("timeZone", {"timeZone": zone})]:
            file.add(operation, receiver, environment=environment, value=value)
        for pattern, form in [("yyyy-MM-dd HH:mm:ss", "%Y-%m-%d %H:%M:%S"),
                              ("EEEE, d MMM yy", None), ("''yyyy''hh 'o''clock' a", None)]:
            text = local.strftime(form) if form else (
                f"{local:%A}, {local.day} {local:%b %y}" if pattern.startswith("E") else
                f"'{local:%Y}'{local:%I} o'clock {local:%p}")
            file.add("descriptionWithCalendarFormat:locale:", receiver,
                     [pattern, {"locale": "en_US"}], environment, value=text)
    return file


MAKERS = [make_strings, make_mutable_strings, make_scanner, make_time_patterns, make_file_sizes,
          make_transformers, make_rectangles, make_file_names, make_dates, make_gregorian,
          make_date_compatibility]


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        sys.exit(__doc__)
    wrong = []
    for maker in MAKERS:
        file = maker()
        path = CASES / f"{file.name}.jsonl"
        if not sys.argv[1:]:
            path.write_text(file.text())
        elif not path.exists() or path.read_text() != file.text():
            wrong.append(path.name)
    if wrong:
        sys.exit(f"{', '.join(wrong)}: not what {sys.argv[0]} makes")


if __name__ == "__main__":
    main()
